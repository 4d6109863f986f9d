// The grid pane's columns, captions, options, and what it does when tables or cells change.
#include "grid/grid_pane.h"

#include "base/error.h"
#include "base/scoped_value.h"
#include "base/text.h"
#include "diagram/entities.h"
#include "grid/sort_order.h"

namespace zrqrybld {
namespace {

constexpr int kInitialRows = 7;
constexpr float kGroupByWidth = 1200;

std::int32_t SortOrderOf(const zrGridRow& row) {
  const std::optional<double> number = ParseNumber(row.ValueAt(kColumnSortOrder).Text());
  return number && *number >= 1 && *number < 1e6 ? static_cast<std::int32_t>(*number) : 0;
}

}  // namespace

Ref<qbGridPane> qbGridPane::Create() {
  const Ref<qbGridPane> pane(new qbGridPane());
  pane->CreateColumns();
  pane->ResetRows();
  return pane;
}

void qbGridPane::CreateColumns() {
  grdPane_ = zrGrid::Create();
  for (const GridColumnRow& row : kGridColumns) {
    const Ref<zrGridColumn> column =
        grdPane_->Columns()->Add(std::string(row.key), std::string(DefaultLanguageString(row.caption)));
    column->SetWidth(row.width);
    column->SetStyle(row.style);
  }
  for (const char* text : {"Ascending", "Descending", "Unsorted"}) {
    grdPane_->Columns()->Item("sort_type")->ComboItems()->Add(text);
  }
  ApplyShowGroupBy();
  links_.push_back(
      grdPane_->AfterChange.Connect([this](std::int32_t row, std::int32_t column) { CellChanged(row, column); }));
  links_.push_back(grdPane_->BeforeChange.Connect([this](std::int32_t row, std::int32_t, bool&) {
    if (!busy_) before_ = FieldOf(RowAt(row));
  }));
  links_.push_back(grdPane_->BeforeDelete.Connect(
      [this](std::int32_t first, std::int32_t last, bool&) { RowsAboutToGo(first, last); }));
  links_.push_back(grdPane_->AfterDelete.Connect([this](std::int32_t, std::int32_t) {
    CloseSortGaps();
    EnsureEmptyLastRow();
    ReportChange();
  }));
  links_.push_back(grdPane_->OLEDragOver.Connect(
      [](const std::string& text, std::int32_t& effect, std::int32_t, std::int32_t, float, float) {
        if (text.find('.') != std::string::npos) effect = 1;
      }));
  links_.push_back(grdPane_->OLEDragDrop.Connect(
      [this](const std::string& text, std::int32_t&, std::int32_t, std::int32_t, float x, float y) {
        DropField(text, {Pixels(static_cast<double>(x)), Pixels(static_cast<double>(y))});
      }));
  links_.push_back(grdPane_->DblClick.Connect([this] { DblClick.Raise(); }));
  links_.push_back(grdPane_->ShowContextMenu.Connect(
      [this](std::int32_t row, std::int32_t column) { ShowContextMenu.Raise(row, column); }));
  links_.push_back(grdPane_->RowColChange.Connect(
      [this](std::int32_t row, std::int32_t column) { RowColChange.Raise(row, column); }));
}

// --- Link to the hub ---

void qbGridPane::SetContext(const Ref<QueryContext>& context) {
  context_ = context;
  if (!context) return;
  ApplyGridCaptions();
  ApplyAliasMaxLen();
  RefreshTableList();
}

Ref<qbQueryBuilder> qbGridPane::QueryBuilder() const {
  const Ref<QueryContext> context = context_.lock();
  return context ? context->Hub() : nullptr;
}

Ref<qbEntities> qbGridPane::Entities() const {
  const Ref<QueryContext> context = context_.lock();
  return context ? context->Entities() : nullptr;
}

std::int16_t qbGridPane::AliasMaxLen() const {
  const Ref<QueryContext> context = context_.lock();
  return context ? context->AliasMaxLen() : std::int16_t{0};
}

void qbGridPane::ReportChange() {
  if (const Ref<QueryContext> context = context_.lock()) context->QueryChanged();
}

void qbGridPane::ApplyGridCaptions() {
  const Ref<QueryContext> context = context_.lock();
  for (const GridColumnRow& row : kGridColumns) {
    grdPane_->Columns()
        ->Item(std::string(row.key))
        ->SetCaption(context ? context->GetLanguageString(row.caption)
                             : std::string(DefaultLanguageString(row.caption)));
  }
}

void qbGridPane::ApplyAliasMaxLen() {
  const std::int16_t longest = AliasMaxLen();
  for (std::int32_t row = 1; row <= RowCount(); ++row) RowAt(row).SetMaxLen("alias", longest);
}

bool qbGridPane::IsLocked(std::string_view key) const {
  return grdPane_->Columns()->Item(key)->Style() == GridColumnComboList;
}

void qbGridPane::SetLock(std::string_view key, bool lock) {
  grdPane_->Columns()->Item(key)->SetStyle(lock ? GridColumnComboList : GridColumnCombo);
}

// --- Cells ---

Variant qbGridPane::Value(const Variant& row, const Variant& column) const {
  const std::int32_t rowIndex = row.IsMissing() ? grdPane_->Row() : row.ToInt32();
  const Variant columnIndex = column.IsMissing() ? Variant(grdPane_->Column()) : column;
  const bool columnGiven = columnIndex.IsString() || columnIndex.ToInt32() > 0;
  if (rowIndex <= 0 || !columnGiven) throw Error(ErrorInvalidCellReference, "Invalid Cell Reference.");
  return grdPane_->Rows()->Item(rowIndex)->Value(columnIndex);
}

void qbGridPane::SetValue(const Variant& row, const Variant& column, Variant value) {
  grdPane_->Rows()->Item(row)->SetValue(column, std::move(value));
}

void qbGridPane::SetGroupByFunction(std::int32_t rowIndex, const qbDBFunction& function) {
  zrGridRow& row = *grdPane_->Rows()->Item(rowIndex);
  const std::string& syntax = function.Syntax();
  row.SetTagVariant("group_by", syntax.empty() ? function.Name() : syntax);
  row.SetValue("group_by", function.DisplayText());
}

bool qbGridPane::IsEmptyRow(const zrGridRow& row) const {
  return row.ValueAt(kColumnColumn).IsBlank() && row.ValueAt(kColumnTable).IsBlank();
}

// Anything to the right of "output" but the grouping.
bool qbGridPane::HasContent(const zrGridRow& row) const {
  for (std::size_t column = kColumnOutput + 1; column <= static_cast<std::size_t>(ColumnCount()); ++column) {
    if (column != kColumnGroupBy && !row.ValueAt(column).IsBlank()) return true;
  }
  return false;
}

void qbGridPane::AddEmptyRow() { grdPane_->Rows()->Add()->SetMaxLen("alias", AliasMaxLen()); }

void qbGridPane::EnsureEmptyLastRow() {
  if (RowCount() == 0 || !IsEmptyRow(RowAt(RowCount()))) AddEmptyRow();
}

void qbGridPane::ResetRows() {
  grdPane_->SetAutoRedraw(false);
  grdPane_->Rows()->Clear();
  for (int i = 0; i < kInitialRows; ++i) AddEmptyRow();
  grdPane_->SetAutoRedraw(true);
}

// --- Sorting and grouping ---

std::int16_t qbGridPane::NextSortOrder(std::int32_t row) const {
  std::int16_t next = 1;
  for (std::int32_t i = 1; i <= RowCount(); ++i) {
    const std::string type = Text(RowAt(i), kColumnSortType);
    if (i != row && !type.empty() && !EqualsNoCase(type, "UNSORTED")) ++next;
  }
  return next;
}

void qbGridPane::SortRow(std::int32_t row, const std::string& type) {
  const Ref<zrGridRow> item = grdPane_->Rows()->Item(row);
  const StepScope step(context_.lock(), "Sort");
  item->SetValue("sort_type", type);
  if (type.empty()) {
    item->SetValue("sort_order", "");
    CloseSortGaps();
  } else if (SortOrderOf(*item) == 0) {
    item->SetValue("sort_order", std::to_string(NextSortOrder(row)));
  }
}

void qbGridPane::CloseSortGaps() {
  std::vector<std::int32_t> orders;
  for (std::int32_t i = 1; i <= RowCount(); ++i) orders.push_back(SortOrderOf(RowAt(i)));
  const std::vector<std::int32_t> closed = zrqrybld::CloseSortGaps(orders);
  const ScopedValue busy(busy_, true);
  for (std::int32_t i = 1; i <= RowCount(); ++i) {
    const std::int32_t order = closed[static_cast<std::size_t>(i - 1)];
    if (order != 0) RowAt(i).SetValue("sort_order", std::to_string(order));
  }
}

void qbGridPane::SetShowGroupBy(bool show) {
  if (show == showGroupBy_) return;
  showGroupBy_ = show;
  ApplyShowGroupBy();
  ReportChange();
}

void qbGridPane::ApplyShowGroupBy() {
  const Ref<zrGridColumn> column = grdPane_->Columns()->Item("group_by");
  if (showGroupBy_) {
    column->SetWidth(groupByWidth_ > 0 ? groupByWidth_ : kGroupByWidth);
  } else {
    if (column->Width() > 0) groupByWidth_ = column->Width();
    column->SetWidth(0);
  }
  const ScopedValue busy(busy_, true);
  for (std::int32_t i = 1; i <= RowCount(); ++i) SetRowGroupBy(RowAt(i));
}

// "*" counts rows; any other column groups. Rows without a column are left alone.
void qbGridPane::SetRowGroupBy(zrGridRow& row) {
  const std::string column = Text(row, kColumnColumn);
  if (column.empty()) return;
  const bool all = column == "*";
  row.SetTagVariant("group_by", showGroupBy_ ? all ? "COUNT" : "GROUP BY" : "");
  row.SetValue("group_by", showGroupBy_ ? all ? "Count" : "Group By" : "");
}

// --- Tables ---

void qbGridPane::RefreshTableList() {
  const Ref<zrGridComboItems>& list = grdPane_->Columns()->Item("table")->ComboItems();
  list->Clear();
  const Ref<qbEntities> entities = Entities();
  for (std::int32_t i = 1; entities && i <= entities->Count(); ++i) list->Add(entities->Item(i)->Caption());
}

void qbGridPane::RefreshTables() {
  const Ref<qbEntities> entities = Entities();
  if (!entities) return;
  RefreshTableList();
  for (std::int32_t i = RowCount(); i >= 1; --i) {
    if (i > RowCount()) continue;  // a listener of RowColChange has removed rows, too
    const std::string table = Text(RowAt(i), kColumnTable);
    if (!table.empty() && !entities->FindExactly(table)) grdPane_->Rows()->Remove(i);
  }
  CloseSortGaps();
  EnsureEmptyLastRow();
  ReportChange();
}

void qbGridPane::RemoveRowsOf(const std::string& tableName) {
  for (std::int32_t i = RowCount(); i >= 1; --i) {
    if (i <= RowCount() && Text(RowAt(i), kColumnTable) == tableName) grdPane_->Rows()->Remove(i);
  }
  CloseSortGaps();
  EnsureEmptyLastRow();
}

void qbGridPane::RenameTable(const std::string& before, const std::string& after,
                             const std::function<std::string(std::string_view)>& rewrite) {
  const ScopedValue busy(busy_, true);
  const Ref<qbEntities> entities = Entities();
  for (std::int32_t i = 1; i <= RowCount(); ++i) {
    zrGridRow& row = RowAt(i);
    if (Text(row, kColumnTable) == before) row.SetValue("table", after);
    const auto rewriteCell = [&](std::size_t column) {
      const std::string* text = row.ValueAt(column).StringIf();
      if (text && !text->empty()) row.SetValue(static_cast<std::int32_t>(column), rewrite(*text));
    };
    const bool isExpression = !entities || !entities->FindExactly(Text(row, kColumnTable));
    if (isExpression) rewriteCell(kColumnColumn);
    for (std::size_t column = kColumnCriteria; column <= static_cast<std::size_t>(ColumnCount()); ++column) {
      rewriteCell(column);
    }
  }
}

// --- Cells that the user or the application has changed ---

void qbGridPane::CellChanged(std::int32_t row, std::int32_t column) {
  if (busy_) return;
  const StepScope step(context_.lock(), "Change cell");
  {
    const ScopedValue busy(busy_, true);
    if (column == kColumnColumn || column == kColumnTable) {
      SetRowGroupBy(RowAt(row));
      EnsureEmptyLastRow();
    }
    if (column == kColumnOutput || column == kColumnColumn || column == kColumnTable) {
      // A row that names another field gives up the old one; its box stays ticked while another row outputs it.
      const Field left = before_;
      const Field now = FieldOf(RowAt(row));
      const bool leftOutput = IsOutput(left);
      const bool nowOutput = IsOutput(now);
      PushToDiagram(left.name, left.table, leftOutput);
      PushToDiagram(now.name, now.table, nowOutput);
    }
    AfterChange.Raise(row, column);
  }
  ReportChange();
}

// A field's box is unticked only when its last output goes.
void qbGridPane::RowsAboutToGo(std::int32_t first, std::int32_t last) {
  const ScopedValue busy(busy_, true);
  for (std::int32_t i = first; i <= last && i <= RowCount(); ++i) {
    zrGridRow& row = RowAt(i);
    if (row.ValueAt(kColumnOutput) != Variant(true)) continue;
    row.SetValue("output", false);
    const Field field = FieldOf(row);
    if (!IsOutput(field)) PushToDiagram(field.name, field.table, false);
  }
}

}  // namespace zrqrybld
