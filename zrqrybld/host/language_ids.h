// The language strings that applications know by name.
#pragma once

#include <cstdint>

namespace zrqrybld {

/// The numbers of the captions that applications know by name.
enum LanguageIDEnum : std::int32_t {
  LanguageGridColumn = 0,
  LanguageGridAlias = 1,
  LanguageGridTable = 2,
  LanguageGridSortType = 3,
  LanguageGridSortOrder = 4,
  LanguageGridGroupBy = 5,
  LanguageGridCriteria = 6,
  LanguageGridOr = 7,
  LanguageGridOutput = 8,
  LanguageTableCaption = 100,
  LanguageTableTables = 101,
  LanguageTableViews = 102,
  LanguageTableAddButton = 103,
  LanguageTableCloseButton = 104,
  LanguageJoinCaption = 200,
  LanguageJoinFrameCaption = 201,
  LanguageJoinTable1 = 202,
  LanguageJoinTable2 = 203,
  LanguageJoinAcceptButton = 204,
  LanguageJoinCancelButton = 205,
  LanguageExprBuildCaption = 300,
  LanguageExprBuildGridParamName = 301,
  LanguageExprBuildGridParamValue = 302,
  LanguageExprBuildAcceptButton = 303,
  LanguageExprBuildCancelButton = 304,
  LanguageExprBuildToolTipClearExpr = 305,
  LanguageExprBuildToolTipInsert = 306,
  LanguageZoomExprCaption = 400,
  LanguageZoomExprAcceptButton = 401,
  LanguageZoomExprCancelButton = 402,
  LanguageParametersCaption = 500,
  LanguageParametersStatement = 501,
  LanguageParametersAcceptButton = 502,
  LanguageParametersCancelButton = 503,
};

}  // namespace zrqrybld
