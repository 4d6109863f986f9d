// SetFieldOutput: the one way by which a field gets into the grid or out of it, and how the grid and
// the boxes keep each other's ticks.
#include "base/scoped_value.h"
#include "diagram/entities.h"
#include "grid/grid_columns.h"
#include "grid/grid_pane.h"

namespace zrqrybld {

std::int32_t qbGridPane::SetFieldOutput(const std::string& fieldName, bool checked, const std::string& tableName,
                                        const FieldOutputOptions& options) {
  if (busy_) return 0;
  const StepScope step(context_.lock(), checked ? "Add query column" : "Remove query column");
  std::int32_t row = 0;
  {
    const ScopedValue busy(busy_, true);
    if (checked) {
      if (!options.skipSearch) row = TickRows(fieldName, tableName);
      if (row == 0) row = FillNewRow(fieldName, tableName, options.before);
    } else {
      UntickRows(fieldName, tableName);
    }
    PushToDiagram(fieldName, tableName, checked);
  }
  ReportChange();
  return row;
}

bool qbGridPane::IsRowOf(const zrGridRow& row, const std::string& table, const std::string& field) const {
  const std::string* rowTable = row.ValueAt(kColumnTable).StringIf();
  const std::string* rowColumn = row.ValueAt(kColumnColumn).StringIf();
  return rowTable && rowColumn && *rowTable == table && *rowColumn == field;
}

// The first row of the field outputs it from now on; 0 when it has no row.
std::int32_t qbGridPane::TickRows(const std::string& fieldName, const std::string& tableName) {
  for (std::int32_t i = 1; i <= RowCount(); ++i) {
    if (!IsRowOf(RowAt(i), tableName, fieldName)) continue;
    RowAt(i).SetValue("output", true);
    return i;
  }
  return 0;
}

// All rows of the field stop to output it; those that say nothing else go.
void qbGridPane::UntickRows(const std::string& fieldName, const std::string& tableName) {
  for (std::int32_t i = RowCount(); i >= 1; --i) {
    if (i > RowCount()) continue;  // a listener of RowColChange has removed rows, too
    zrGridRow& row = RowAt(i);
    if (!IsRowOf(row, tableName, fieldName)) continue;
    if (HasContent(row)) {
      row.SetValue("output", false);
    } else {
      grdPane_->Rows()->Remove(i);
    }
  }
  EnsureEmptyLastRow();
}

std::int32_t qbGridPane::FirstEmptyRow() const {
  for (std::int32_t i = 1; i <= RowCount(); ++i) {
    if (IsEmptyRow(RowAt(i))) return i;
  }
  return 0;
}

std::int32_t qbGridPane::FillNewRow(const std::string& fieldName, const std::string& tableName, std::int32_t before) {
  std::int32_t position = before;
  if (before > 0) {
    grdPane_->Rows()->Add({}, before);
  } else {
    position = FirstEmptyRow();
    if (position == 0) {
      AddEmptyRow();
      position = RowCount();
    }
  }
  zrGridRow& row = RowAt(position);
  row.SetMaxLen("alias", AliasMaxLen());
  row.SetValue("table", tableName);
  row.SetValue("column", fieldName);
  row.SetValue("output", true);
  if (showGroupBy_) SetRowGroupBy(row);
  EnsureEmptyLastRow();
  return position;
}

void qbGridPane::AddRows(const std::vector<RowContent>& rows) {
  const StepScope step(context_.lock(), "Add query columns");
  {
    const ScopedValue busy(busy_, true);
    grdPane_->SetAutoRedraw(false);
    std::int32_t position = FirstEmptyRow();
    for (const RowContent& content : rows) {
      if (position == 0 || position > RowCount()) {
        AddEmptyRow();
        position = RowCount();
      }
      SetCells(RowAt(position), content);
      ++position;
    }
    EnsureEmptyLastRow();
    grdPane_->SetAutoRedraw(true);
    for (const RowContent& content : rows) {
      if (content.output) PushToDiagram(content.column, content.table, true);
    }
  }
  ReportChange();
}

void qbGridPane::SetCells(zrGridRow& row, const RowContent& content) {
  const auto set = [&row](std::int32_t column, const std::string& text) {
    if (!text.empty()) row.SetValue(column, text);
  };
  row.SetMaxLen("alias", AliasMaxLen());
  set(kColumnTable, content.table);
  set(kColumnColumn, content.column);
  set(kColumnAlias, content.alias);
  row.SetValue(static_cast<std::int32_t>(kColumnOutput), content.output);
  set(kColumnSortType, content.sortType);
  set(kColumnSortOrder, content.sortOrder);
  if (!content.groupBy.empty()) {
    const Ref<QueryContext> context = context_.lock();
    const Ref<qbDBFunction> function = context ? context->DBFunctions()->FindGroupBy(content.groupBy) : nullptr;
    if (function) {
      SetGroupByFunction(row.Index(), *function);
    } else {
      set(kColumnGroupBy, content.groupBy);
    }
  }
  for (std::size_t i = 0; i < content.criteria.size(); ++i) {
    set(kColumnCriteria + static_cast<std::int32_t>(i), content.criteria[i]);
  }
}

void qbGridPane::PushToDiagram(const std::string& fieldName, const std::string& tableName, bool checked) {
  const Ref<qbEntities> entities = Entities();
  const Ref<qbEntity> entity = entities ? entities->FindExactly(tableName) : nullptr;
  if (!entity) return;
  // A column's key is its name; an item that was given another text is found by that.
  Ref<qbEntityItem> item = entity->Items()->Item(fieldName);
  if (!item || item->Text() != fieldName) item = entity->Items()->FindByText(fieldName, true);
  if (item) item->SetChecked(checked);
}

// What stands behind the last "." is the field, what stands before it the table; it goes in above the row it was
// dropped on. A text that is no field of the diagram is left alone.
void qbGridPane::DropField(const std::string& text, PixelPoint at) {
  const std::size_t dot = text.rfind('.');
  const Ref<qbEntities> entities = Entities();
  if (dot == std::string::npos || !entities) return;
  const Ref<qbEntity> entity = entities->Item(text.substr(0, dot));
  const Ref<qbEntityItem> item = entity ? entity->Items()->Item(text.substr(dot + 1)) : nullptr;
  if (!item) return;
  const GridHit hit = grdPane_->GetRowColumnIndex({1_px, at.y});
  const bool onRow = hit.row != 0 && !IsEmptyRow(RowAt(static_cast<std::int32_t>(hit.row)));
  SetFieldOutput(item->Text(), true, entity->Caption(), {false, onRow ? static_cast<std::int32_t>(hit.row) : 0});
}

bool qbGridPane::IsOutput(const Field& field) const {
  for (std::int32_t i = 1; i <= RowCount(); ++i) {
    const zrGridRow& row = RowAt(i);
    if (row.ValueAt(kColumnOutput) == Variant(true) && IsRowOf(row, field.table, field.name)) return true;
  }
  return false;
}

}  // namespace zrqrybld
