// CellRules: what a grid pane does when a cell was edited, and what its list offers before, column by column.
#pragma once

#include <cstdint>
#include <string>

#include "zrqrybld/base/event.h"
#include "zrqrybld/grid/group_by_column.h"
#include "zrqrybld/grid/sort_places.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/sql/criteria_context.h"

namespace zrqrybld {

class CellRules {
 public:
  /// A criterion is about to be brought into its normal form; see `qbGridPane::AfterEditExpressionFormat`.
  using FormatEvent = Event<std::int32_t, std::int32_t, const std::string&, const std::string&, std::int32_t, bool,
                            const std::string&, const std::string&, std::string&, bool&>;

  /// All must outlive this.
  CellRules(PaneRows& rows, SortPlaces& sorting, const GroupByColumn& grouping, const FormatEvent& formatting)
      : rows_(rows), sorting_(sorting), grouping_(grouping), formatting_(formatting) {}

  /// One work of the user's begins: however many cells it changes, trouble is told once.
  void BeginWork() { complained_ = false; }
  /// A cell was edited; `before` is what it showed.
  void Edited(zrGridRow& row, std::int32_t column, const std::string& before);
  /// A cell is about to be edited: its list is made.
  void FillList(const zrGridRow& row, std::int32_t column);
  /// Refills the list of tables; what stands before this position is as it was.
  void FillTables(std::int32_t from = 1);
  /// How a criterion of the row is read and written.
  CriteriaContext CriteriaOf(const QueryContext& context, const zrGridRow& row) const;

 private:
  // What is known of an edit.
  struct Edit {
    zrGridRow& row;
    std::int32_t column;
    const std::string& before;
  };
  // The rule of a column: what follows an edit, and what fills its list. Either may be missing.
  struct Rule {
    void (CellRules::*edited)(const Edit& edit);
    void (CellRules::*fillList)(const zrGridRow& row);
  };
  static const Rule& RuleOf(std::int32_t column);

  void ColumnEdited(const Edit& edit);
  void TakeAlias(zrGridRow& row) const;
  void CheckExpression(zrGridRow& row) const;
  void TableEdited(const Edit& edit);
  void SortTypeEdited(const Edit& edit);
  bool WritesNullsPlace() const;
  void FillSortTypes(const zrGridRow& row);
  void SortOrderEdited(const Edit& edit);
  void GroupByEdited(const Edit& edit);
  void CriterionEdited(const Edit& edit);
  void CheckCriterion(const Edit& edit) const;
  void FillColumns(const zrGridRow& row);
  void FillAllTables(const zrGridRow& row);
  void FillSortPlaces(const zrGridRow& row);
  void FillGroupings(const zrGridRow& row);

  zrGridComboItems& EmptiedList(GridColumnIndex column) const;
  void Complain(const Edit& edit, const std::string& text, MessageIcon icon);

  PaneRows& rows_;
  SortPlaces& sorting_;
  const GroupByColumn& grouping_;
  const FormatEvent& formatting_;
  bool complained_ = false;  // in the work that is going on
};

}  // namespace zrqrybld
