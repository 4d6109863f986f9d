#include <algorithm>

#include "zrqrybld/automation/public_names.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/join_facts.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/host/date_format.h"
#include "zrqrybld/host/designer_values.h"
#include "zrqrybld/host/language_ids.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/sql/join_kind.h"
#include "zrqrybld/sql/query_kind.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

// The name of a member is the name here.
#define MEMBER(Name) \
  EnumerationMember { #Name, Name }

constexpr EnumerationMember kConnectionState[] = {MEMBER(ConnectionClosed), MEMBER(ConnectionOpened)};
constexpr EnumerationMember kDateFormat[] = {MEMBER(DateFormatNative), MEMBER(DateFormatEscapeSequence)};
constexpr EnumerationMember kFieldOrder[] = {MEMBER(FieldOrderDefault), MEMBER(FieldOrderOrdinal)};
constexpr EnumerationMember kJoinComparison[] = {
    MEMBER(JoinEqual),   MEMBER(JoinNotEqual),       MEMBER(JoinLess), MEMBER(JoinLessOrEqual),
    MEMBER(JoinGreater), MEMBER(JoinGreaterOrEqual), MEMBER(JoinLike), MEMBER(JoinSame)};
constexpr EnumerationMember kJoinExistence[] = {MEMBER(JoinReturnsRows), MEMBER(JoinTargetExists),
                                                MEMBER(JoinTargetMissing), MEMBER(JoinSourceExists),
                                                MEMBER(JoinSourceMissing)};
constexpr EnumerationMember kJoinType[] = {MEMBER(JoinInner), MEMBER(JoinAllOfThis), MEMBER(JoinAllOfEarlier),
                                           MEMBER(JoinAllOfBoth)};
constexpr EnumerationMember kLanguageID[] = {
    MEMBER(LanguageGridColumn),
    MEMBER(LanguageGridAlias),
    MEMBER(LanguageGridTable),
    MEMBER(LanguageGridSortType),
    MEMBER(LanguageGridSortOrder),
    MEMBER(LanguageGridGroupBy),
    MEMBER(LanguageGridCriteria),
    MEMBER(LanguageGridOr),
    MEMBER(LanguageGridOutput),
    MEMBER(LanguageTableCaption),
    MEMBER(LanguageTableTables),
    MEMBER(LanguageTableViews),
    MEMBER(LanguageTableAddButton),
    MEMBER(LanguageTableCloseButton),
    MEMBER(LanguageJoinCaption),
    MEMBER(LanguageJoinFrameCaption),
    MEMBER(LanguageJoinTable1),
    MEMBER(LanguageJoinTable2),
    MEMBER(LanguageJoinAcceptButton),
    MEMBER(LanguageJoinCancelButton),
    MEMBER(LanguageExprBuildCaption),
    MEMBER(LanguageExprBuildGridParamName),
    MEMBER(LanguageExprBuildGridParamValue),
    MEMBER(LanguageExprBuildAcceptButton),
    MEMBER(LanguageExprBuildCancelButton),
    MEMBER(LanguageExprBuildToolTipClearExpr),
    MEMBER(LanguageExprBuildToolTipInsert),
    MEMBER(LanguageZoomExprCaption),
    MEMBER(LanguageZoomExprAcceptButton),
    MEMBER(LanguageZoomExprCancelButton),
    MEMBER(LanguageParametersCaption),
    MEMBER(LanguageParametersStatement),
    MEMBER(LanguageParametersAcceptButton),
    MEMBER(LanguageParametersCancelButton),
};
constexpr EnumerationMember kOLEDropMode[] = {MEMBER(OLEDropNone), MEMBER(OLEDropManual)};
constexpr EnumerationMember kError[] = {MEMBER(ErrorInvalidResFile), MEMBER(ErrorInvalidCellReference),
                                        MEMBER(ErrorParsingText),    MEMBER(ErrorLoadingQuery),
                                        MEMBER(ErrorAddingTable),    MEMBER(ErrorInvalidPropertyValue)};
constexpr EnumerationMember kInfo[] = {MEMBER(InfoDone),
                                       MEMBER(InfoRetrieveConnectionInfo),
                                       MEMBER(InfoTableAdded),
                                       MEMBER(InfoRelationshipAdded),
                                       MEMBER(InfoRetrieveTableInfo),
                                       MEMBER(InfoSavingQuery),
                                       MEMBER(InfoLoadingQuery),
                                       MEMBER(InfoTableRemoved),
                                       MEMBER(InfoAddTables),
                                       MEMBER(InfoParsingSQL),
                                       MEMBER(InfoSavingDetail)};
constexpr EnumerationMember kQueryKind[] = {MEMBER(QueryMain), MEMBER(QueryDerivedTable), MEMBER(QueryCommonTable),
                                            MEMBER(QueryMember)};
constexpr EnumerationMember kQueryOperator[] = {MEMBER(QueryUnion),     MEMBER(QueryUnionAll),
                                                MEMBER(QueryIntersect), MEMBER(QueryIntersectAll),
                                                MEMBER(QueryExcept),    MEMBER(QueryExceptAll)};
constexpr EnumerationMember kIndicatorStyle[] = {MEMBER(IndicatorNone), MEMBER(IndicatorImage)};
constexpr EnumerationMember kOperator[] = {MEMBER(SQLOperatorComparison), MEMBER(SQLOperatorLogical),
                                           MEMBER(SQLOperatorArithmetic), MEMBER(SQLOperatorBitwise)};
constexpr EnumerationMember kSyntax[] = {
    MEMBER(SQLSyntaxGeneric),   MEMBER(SQLSyntaxMSSQL),      MEMBER(SQLSyntaxOracle), MEMBER(SQLSyntaxAccess),
    MEMBER(SQLSyntaxOpenSQL),   MEMBER(SQLSyntaxPostgreSQL), MEMBER(SQLSyntaxMySQL),  MEMBER(SQLSyntaxSQLite),
    MEMBER(SQLSyntaxSQLServer), MEMBER(SQLSyntaxOracle12),   MEMBER(SQLSyntaxANSI)};

#undef MEMBER

constexpr Enumeration kEnumerations[] = {
    {kPublicName<ConnectionStateEnum>, kConnectionState},
    {kPublicName<DateFormatEnum>, kDateFormat},
    {kPublicName<FieldOrderEnum>, kFieldOrder},
    {kPublicName<JoinComparisonEnum>, kJoinComparison},
    {kPublicName<JoinExistenceEnum>, kJoinExistence},
    {kPublicName<JoinTypeEnum>, kJoinType},
    {kPublicName<LanguageIDEnum>, kLanguageID},
    {kPublicName<OLEDropModeEnum>, kOLEDropMode},
    {kPublicName<QueryBuilderErrorEnum>, kError},
    {kPublicName<QueryBuilderInfoEnum>, kInfo},
    {kPublicName<QueryKindEnum>, kQueryKind},
    {kPublicName<QueryOperatorEnum>, kQueryOperator},
    {kPublicName<RelationshipIndicatorStyle>, kIndicatorStyle},
    {kPublicName<SQLOperatorEnum>, kOperator},
    {kPublicName<SQLSyntaxEnum>, kSyntax},
};

}  // namespace

std::span<const Enumeration> Enumerations() { return kEnumerations; }

bool IsEnumerationValue(std::string_view enumeration, std::int32_t value) {
  const auto* known = std::ranges::find(kEnumerations, enumeration, &Enumeration::name);
  if (known == std::end(kEnumerations)) return true;
  return std::ranges::find(known->members, value, &EnumerationMember::value) != known->members.end();
}

}  // namespace zrqrybld
