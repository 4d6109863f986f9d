// What the grid pane does when cells change, by the user or by program: row and diagram follow each other; and what it
// fills in before a cell is edited.
#include <algorithm>

#include "base/scoped_value.h"
#include "base/text.h"
#include "diagram/entities.h"
#include "grid/field_names.h"
#include "grid/grid_pane.h"
#include "sql/source_rules.h"

namespace zrqrybld {

void qbGridPane::CellChanged(std::int32_t row, std::int32_t column) {
  const bool namesField = column == kColumnColumn || column == kColumnTable;
  if (namesField) NoteRow(RowAt(row));
  if (column == kColumnSortType || column == kColumnSortOrder) NoteSorted(RowAt(row));
  if (busy_) return;
  const Ref<QueryContext> context = context_.lock();
  const StepScope step(context, kStepEditCell, CaptionOf(column));
  WholeOrNothing(context, [&] { FollowChange(row, column, namesField); });
}

void qbGridPane::FollowChange(std::int32_t row, std::int32_t column, bool namesField) {
  const Ref<zrGridRow> cells = HoldRow(row);
  {
    const ScopedValue busy(busy_, true);
    if (namesField) {
      RespellField(*cells, column);
      if (cells->Index() == 0) return;  // a listener has removed the row
      if (column == kColumnColumn || cells->ValueAt(kColumnGroupBy).IsBlank()) SetRowGroupBy(*cells);
      EnsureEmptyLastRow();
    }
    if (column == kColumnGroupBy) TagGrouping(*cells);
    if (namesField || column == kColumnOutput) {
      // A row that names another field gives up the old one; its box stays ticked while another row outputs it.
      const Field left = before_;
      const Field now = FieldOf(*cells);
      const bool leftOutput = IsOutput(left);
      const bool nowOutput = IsOutput(now);
      PushToDiagram(left, leftOutput);
      PushToDiagram(now, nowOutput);
    }
    AfterChange.Raise(row, column);
  }
  ReportChange();
}

// A qualified text is split into table and column, and names that differ in letter case only, or stand in quotes, get
// the diagram's spelling; after this, comparisons are exact.
void qbGridPane::RespellField(zrGridRow& row, std::int32_t column) {
  const Ref<QueryContext> context = context_.lock();
  const Ref<qbEntities> entities = Entities();
  if (!entities || !context) return;
  const Field typed = FieldOf(row);
  if (column == kColumnTable && typed.table.empty()) return;
  const NameRules rules = CurrentNameRules(*context);
  const Ref<qbEntity> entity = FindTypedTable(*entities, typed.table, rules);
  const Ref<qbEntityItem> item = entity ? FindTypedColumn(*entity, typed.name, rules) : nullptr;
  const auto set = [&row](std::size_t cell, const std::string& text) {
    if (row.Index() != 0) RowWriter(row).SetText(cell, text);  // a listener may have removed it
  };
  if (item) {
    const std::string name = item->Text();
    set(kColumnTable, entity->Caption());
    set(kColumnColumn, name);
  } else if (column == kColumnTable) {
    if (entity) set(kColumnTable, entity->Caption());
  } else if (const std::optional<FieldName> field = FindQualifiedField(*entities, typed.name, rules)) {
    set(kColumnTable, field->table);
    set(kColumnColumn, field->column);
  }
}

// A field's box is unticked only when its last output goes.
void qbGridPane::RowsAboutToGo(std::int32_t first, std::int32_t last) {
  const ScopedValue busy(busy_, true);
  for (std::int32_t i = first; i <= last && i <= RowCount(); ++i) {
    const Ref<zrGridRow> row = HoldRow(i);
    if (!RowReader(*row).IsOutput()) continue;
    RowWriter(*row).SetOutput(false);
    const Field field = FieldOf(*row);
    if (!IsOutput(field)) PushToDiagram(field, false);
  }
}

// Rows were deleted or moved: the sort numbers close up, the statement follows the order.
void qbGridPane::RowsMoved() {
  CloseSortGaps();
  EnsureEmptyLastRow();
  ReportChange();
}

void qbGridPane::CurrentCellChanged(std::int32_t row, std::int32_t column) {
  currentText_ = row > 0 && column > 0
                     ? grdPane_->CellText(static_cast<std::size_t>(row), static_cast<std::size_t>(column))
                     : std::string();
  RowColChange.Raise(row, column);
}

std::string qbGridPane::CaptionOf(std::int32_t column) const {
  return column > 0 ? grdPane_->Columns()->Item(column)->Caption() : std::string();
}

// What the user does at one stroke: one step, one statement.
void qbGridPane::BatchChanged(GridWork kind, bool begins) {
  static constexpr StepName kNames[] = {kStepEditCell,   kStepEditCells,  kStepPaste,
                                        kStepInsertRows, kStepDeleteRows, kStepMoveRows};
  if (begins) {
    complained_ = false;
    change_.reset();
    batches_.push_back(context_.lock());
    try {
      if (batches_.back())
        batches_.back()->BeginStep(kNames[static_cast<std::size_t>(kind)], CaptionOf(grdPane_->Column()));
    } catch (...) {
      batches_.pop_back();
      throw;
    }
    return;
  }
  if (batches_.empty()) return;
  const Ref<QueryContext> context = batches_.back();
  batches_.pop_back();
  EnsureEmptyLastRow();
  if (context) context->EndStep();
}

// --- Lists, made before a cell is edited ---

void qbGridPane::RefillLists(std::int32_t row, std::int32_t column) {
  const zrGridRow& cells = RowAt(row);
  const auto refill = [&]() -> zrGridComboItems& {
    zrGridComboItems& list = *grdPane_->Columns()->Item(column)->ComboItems();
    list.Clear();
    return list;
  };
  switch (column) {
    case kColumnColumn:
      FillColumnList(refill(), cells);
      return;
    case kColumnTable:
      RefreshTableList();
      return;
    case kColumnSortOrder:
      FillSortOrderList(refill(), row);
      return;
    case kColumnGroupBy:
      FillGroupByList(refill(), cells);
      return;
    default:
      return;
  }
}

// The columns of the row's table; without one those of all tables, with their tables' captions.
void qbGridPane::FillColumnList(zrGridComboItems& list, const zrGridRow& row) const {
  const Ref<qbEntities> entities = Entities();
  if (!entities) return;
  const Ref<qbEntity> only = entities->FindExactly(Text(row, kColumnTable));
  for (std::int32_t i = 1; i <= entities->Count(); ++i) {
    const Ref<qbEntity> entity = entities->Item(i);
    if (only && entity != only) continue;
    const qbEntityItems& items = *entity->Items();
    const std::string prefix = only ? std::string() : entity->Caption() + ".";
    for (std::int32_t j = 1; j <= items.Count(); ++j) list.Add(prefix + items.Item(j)->Text());
  }
}

// "*" can only be counted; any other column is grouped by or goes into one of the aggregates.
void qbGridPane::FillGroupByList(zrGridComboItems& list, const zrGridRow& row) const {
  const auto add = [&list](const GroupingCell& choice) { list.Add(std::string(choice.text), choice.tag); };
  if (Text(row, kColumnColumn) == kAllColumns) return add(kCountChoice);
  const Ref<QueryContext> context = context_.lock();
  if (!context) return;
  constexpr std::int32_t kGroupByChoice = 1;
  const qbDBFunctions& functions = *context->DBFunctions();
  for (std::int32_t i = 1; i <= functions.Count(); ++i) {
    const Ref<qbDBFunction> function = functions.Item(i);
    if ((function->Flags() & kGroupByChoice) != 0) add(ChoiceOf(*function));
  }
}

// The places that the row can have among the sorted ones.
void qbGridPane::FillSortOrderList(zrGridComboItems& list, std::int32_t row) const {
  const std::int32_t places = NextSortOrder(row);
  for (std::int32_t i = 1; i <= places; ++i) list.Add(std::to_string(i));
}

}  // namespace zrqrybld
