// The grid pane's columns, captions, options, and what it does when tables or cells change.
#include "grid/grid_pane.h"

#include <algorithm>
#include <optional>

#include "base/error.h"
#include "base/scoped_value.h"
#include "base/text.h"
#include "base/texts_grid.h"
#include "diagram/entities.h"
#include "grid/sort_order.h"
#include "platform/stored_values.h"

namespace zrqrybld {
namespace {

constexpr int kInitialRows = 7;
constexpr float kGroupByWidth = 1200;
constexpr const char* kDateFormat = "dd-mmm-yyyy";

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
        grdPane_->Columns()->Add(std::string(row.key), Phrase(TextId{row.caption}).English());
    column->SetWidth(row.width);
    column->SetStyle(row.style);
  }
  for (const char* text : {"Ascending", "Descending", "Unsorted"}) {
    grdPane_->Columns()->Item("sort_type")->ComboItems()->Add(text);
  }
  grdPane_->Columns()->Item("output")->SetDisplayAttribute(kCheckedHeader);
  grdPane_->SetEmptyText(Phrase(text::GridEmpty).English());
  ApplyShowGroupBy();
  ConnectGrid();
}

void qbGridPane::ConnectGrid() {
  // Who listens to the pane, or to the grid, may let go of it.
  const auto listen = [this](auto& event, auto listener) {
    links_.push_back(event.Connect([this, listener](auto&&... arguments) {
      const Ref<Object> alive = shared_from_this();
      listener(arguments...);
    }));
  };
  zrGrid& grid = *grdPane_;
  listen(grid.AfterChange, [this](std::int32_t row, std::int32_t column) { CellChanged(row, column); });
  listen(grid.BeforeChange, [this](std::int32_t row, std::int32_t column, bool&) {
    if (busy_) return;
    before_ = FieldOf(RowAt(row));
    change_ = Change{RowAt(row).weak_from_this(), column, Text(RowAt(row), static_cast<std::size_t>(column))};
  });
  listen(grid.BeforeEdit, [this](std::int32_t row, std::int32_t column) { RefillLists(row, column); });
  listen(grid.AfterEdit, [this](std::int32_t row, std::int32_t column) { GridEdited(row, column); });
  listen(grid.BeforeDelete, [this](std::int32_t first, std::int32_t last, bool&) { RowsAboutToGo(first, last); });
  listen(grid.AfterDelete, [this](std::int32_t, std::int32_t) { RowsMoved(); });
  listen(grid.AfterMove, [this](std::int32_t, std::int32_t, std::int32_t) { RowsMoved(); });
  listen(grid.AfterInsert, [this](std::int32_t first, std::int32_t last) {
    for (std::int32_t i = first; i <= last && i <= RowCount(); ++i) RowAt(i).SetMaxLen("alias", AliasMaxLen());
    EnsureEmptyLastRow();
  });
  listen(grid.RowsShifted, [this](std::int32_t from) { emptyFrom_ = std::min(emptyFrom_, from); });
  listen(grid.Batch, [this](GridWork kind, bool begins) { BatchChanged(kind, begins); });
  listen(grid.OLEDragOver, [](const std::string& text, std::int32_t& effect, auto&&...) {
    if (IsFieldText(text)) effect = 1;
  });
  listen(grid.OLEDragDrop,
         [this](const std::string& text, std::int32_t&, std::int32_t, std::int32_t, float x, float y) {
           DropField(text, {Pixels(static_cast<double>(x)), Pixels(static_cast<double>(y))});
         });
  listen(grid.DblClick, [this] { DblClick.Raise(); });
  listen(grid.ShowContextMenu, [this](std::int32_t row, std::int32_t column) { ShowContextMenu.Raise(row, column); });
  listen(grid.MenuWanted, [this](const GridHit& hit, PixelPoint at) { ShowMenu(hit, at); });
  listen(grid.ZoomWanted, [this] { ShowExpressionZoom(); });
  listen(grid.RowColChange, [this](std::int32_t row, std::int32_t column) { CurrentCellChanged(row, column); });
}

// --- Link to the hub ---

void qbGridPane::SetContext(const Ref<QueryContext>& context) {
  context_ = context;
  // The grid may live longer than the pane: it knows the context only.
  grdPane_->SetSuggestionSource([link = context_](std::int32_t column) { return SuggestionsFor(link, column); });
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

void qbGridPane::AboutBox() {
  if (const Ref<QueryContext> context = context_.lock()) {
    context->GetToolkit().GetDialogs().ShowMessage("zrQryBld\r\n" + context->Say(text::AboutGrid),
                                                   MessageIcon::Information);
  }
}

// --- Properties ---

void qbGridPane::SetDateFormat(std::string format) {
  dateFormat_ = std::move(format);
  PropertyChanged.Raise("DateFormat");
}

void qbGridPane::SetDateFormatStyle(DateFormatEnum style) {
  dateFormatStyle_ = style;
  PropertyChanged.Raise("DateFormatStyle");
}

void qbGridPane::SetFont(const zrqrybld::Font& font) {
  grdPane_->SetFont(font);
  PropertyChanged.Raise("Font");
}

void qbGridPane::SetCustomContextMenu(bool custom) {
  grdPane_->SetCustomContextMenu(custom);
  PropertyChanged.Raise("CustomContextMenu");
}

void qbGridPane::ReadProperties(const PropertyStore& store) {
  const Variant dateFormat = store.Read("DateFormat", kDateFormat);
  dateFormat_ = dateFormat.IsString() ? dateFormat.Text() : kDateFormat;
  const std::optional<double> style = store.Read("DateFormatStyle", 0).Number();
  dateFormatStyle_ = style && *style == 1 ? DateFormatEscapeSequence : DateFormatNative;
  showGroupBy_ = ReadBoolean(store, "ShowGroupBy", true);
  grdPane_->SetCustomContextMenu(ReadBoolean(store, "CustomContextMenu", false));
  grdPane_->SetFont(ReadFont(store, "Font"));
  ApplyShowGroupBy();
  ReportChange();
}

void qbGridPane::WriteProperties(PropertyStore& store) const {
  store.Write("DateFormat", dateFormat_, kDateFormat);
  store.Write("DateFormatStyle", static_cast<std::int32_t>(dateFormatStyle_), 0);
  store.Write("ShowGroupBy", showGroupBy_, true);
  store.Write("CustomContextMenu", CustomContextMenu(), false);
  store.Write("Font", ToVariant(Font()));
}

// --- Captions and lengths ---

void qbGridPane::ReportChange() {
  if (const Ref<QueryContext> context = context_.lock()) context->QueryChanged();
}

void qbGridPane::ApplyGridCaptions() {
  const Ref<QueryContext> context = context_.lock();
  grdPane_->SetTexts(context ? context->Texts() : nullptr);
  grdPane_->SetEmptyText(Say(context, text::GridEmpty));
  for (const GridColumnRow& row : kGridColumns) {
    grdPane_->Columns()->Item(std::string(row.key))->SetCaption(Say(context, TextId{row.caption}));
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
  if (rowIndex <= 0 || !columnGiven) throw Error(ErrorInvalidCellReference, text::InvalidCell);
  return grdPane_->Rows()->Item(rowIndex)->Value(columnIndex);
}

void qbGridPane::SetValue(const Variant& row, const Variant& column, Variant value) {
  grdPane_->Rows()->Item(row)->SetValue(column, std::move(value));
}

void qbGridPane::SetGroupByFunction(std::int32_t rowIndex, const qbDBFunction& function) {
  const Ref<zrGridRow> row = HoldRow(rowIndex);
  const std::string& syntax = function.Syntax();
  row->SetTagVariant("group_by", syntax.empty() ? function.Name() : syntax);
  row->SetValue("group_by", function.DisplayText());
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
  const RedrawPause pause(*grdPane_);
  grdPane_->Rows()->Clear();
  rowsByField_.clear();
  rowsByTable_.clear();
  sortedRows_.clear();
  for (int i = 0; i < kInitialRows; ++i) AddEmptyRow();
}

// --- Sorting and grouping ---

void qbGridPane::NoteSorted(const zrGridRow& row) {
  constexpr std::size_t kSlack = 64;
  if (sortedRows_.size() > 2 * static_cast<std::size_t>(RowCount()) + kSlack) SortedRows();
  sortedRows_.push_back(RowAt(row.Index()).weak_from_this());
}

// The rows with a sort type or a number, in their order: what is not sorted costs nothing.
std::vector<Ref<zrGridRow>> qbGridPane::SortedRows() const {
  std::vector<Ref<zrGridRow>> rows;
  for (const WeakRef<Object>& noted : sortedRows_) {
    const auto row = std::static_pointer_cast<zrGridRow>(noted.lock());
    if (!row || row->Index() == 0) continue;
    if (!row->ValueAt(kColumnSortType).IsBlank() || !row->ValueAt(kColumnSortOrder).IsBlank()) rows.push_back(row);
  }
  std::ranges::sort(rows, {}, [](const Ref<zrGridRow>& row) { return row->Index(); });
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  sortedRows_.assign(rows.begin(), rows.end());
  return rows;
}

std::int16_t qbGridPane::NextSortOrder(std::int32_t row) const {
  std::int16_t next = 1;
  for (const Ref<zrGridRow>& sorted : SortedRows()) {
    const std::string type = Text(*sorted, kColumnSortType);
    if (sorted->Index() != row && !type.empty() && !EqualsNoCase(type, "UNSORTED")) ++next;
  }
  return next;
}

void qbGridPane::SortRow(std::int32_t row, const std::string& type) {
  const Ref<zrGridRow> item = grdPane_->Rows()->Item(row);
  const StepScope step(context_.lock(), kStepSort, Text(*item, kColumnColumn));
  item->SetValue("sort_type", type);
  if (type.empty()) {
    item->SetValue("sort_order", "");
    CloseSortGaps();
  } else if (SortOrderOf(*item) == 0) {
    item->SetValue("sort_order", std::to_string(NextSortOrder(row)));
  }
}

void qbGridPane::WriteSortOrders(const std::vector<Ref<zrGridRow>>& rows, const std::vector<std::int32_t>& orders) {
  const ScopedValue busy(busy_, true);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i]->Index() == 0) continue;  // a listener has removed it
    if (orders[i] != 0) {
      rows[i]->SetValue("sort_order", std::to_string(orders[i]));
    } else if (!rows[i]->ValueAt(kColumnSortOrder).IsBlank()) {
      rows[i]->SetValue("sort_order", "");
    }
  }
}

void qbGridPane::CloseSortGaps() {
  const std::vector<Ref<zrGridRow>> rows = SortedRows();
  std::vector<std::int32_t> orders;
  for (const Ref<zrGridRow>& row : rows) orders.push_back(SortOrderOf(*row));
  WriteSortOrders(rows, zrqrybld::CloseSortGaps(orders));
}

// The run stays 1 to N: the others make room, or close up.
void qbGridPane::SetSortOrder(zrGridRow& row, std::int32_t order) {
  std::vector<Ref<zrGridRow>> rows = SortedRows();
  const Ref<zrGridRow> self = grdPane_->Rows()->Item(row.Index());
  auto at = std::ranges::find(rows, self);
  if (at == rows.end()) {
    at = std::ranges::find_if(rows, [&](const Ref<zrGridRow>& other) { return other->Index() > row.Index(); });
    at = rows.insert(at, self);
  }
  std::vector<std::int32_t> orders;
  for (const Ref<zrGridRow>& sorted : rows) orders.push_back(SortOrderOf(*sorted));
  WriteSortOrders(rows, PlaceSortOrder(orders, static_cast<std::size_t>(at - rows.begin()), order));
}

void qbGridPane::SetShowGroupBy(bool show) {
  if (show == showGroupBy_) return;
  const StepScope step(context_.lock(), kStepGrouping);
  showGroupBy_ = show;
  ApplyShowGroupBy();
  PropertyChanged.Raise("ShowGroupBy");
  ReportChange();
}

void qbGridPane::ShowGroupByColumn() {
  const Ref<zrGridColumn> column = grdPane_->Columns()->Item("group_by");
  if (showGroupBy_) {
    column->SetWidth(groupByWidth_ > 0 ? groupByWidth_ : kGroupByWidth);
  } else {
    if (column->Width() > 0) groupByWidth_ = column->Width();
    column->SetWidth(0);
  }
}

void qbGridPane::ApplyShowGroupBy() {
  ShowGroupByColumn();
  const ScopedValue busy(busy_, true);
  for (std::int32_t i = 1; i <= RowCount(); ++i) SetRowGroupBy(*HoldRow(i));
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

// What stands at its place already stays: a table more is one entry more, a table less one entry less.
void qbGridPane::RefreshTableList(std::int32_t from) {
  const Ref<zrGridColumn> column = grdPane_->Columns()->Find("table");
  if (!column) return;
  zrGridComboItems& list = *column->ComboItems();
  const Ref<qbEntities> entities = Entities();
  const std::int32_t count = entities ? entities->Count() : 0;
  std::int32_t same = std::min({from - 1, count, list.Count()});
  const auto isSame = [&](std::int32_t entry) {
    return same < count && entry <= list.Count() && list.Item(entry)->Text() == entities->Item(same + 1)->Caption();
  };
  if (!isSame(same + 1) && isSame(same + 2)) list.Remove(same + 1);
  while (isSame(same + 1)) ++same;
  while (list.Count() > same) list.Remove(list.Count());
  for (std::int32_t i = same + 1; i <= count; ++i) list.Add(entities->Item(i)->Caption());
}

void qbGridPane::RefreshTables() {
  const Ref<qbEntities> entities = Entities();
  if (!entities) return;
  RefreshTableList();
  grdPane_->Rows()->RemoveIf([&](const zrGridRow& row) {
    const std::string table = Text(row, kColumnTable);
    return !table.empty() && !entities->FindExactly(table);
  });
  CloseSortGaps();
  EnsureEmptyLastRow();
  ReportChange();
}

void qbGridPane::RemoveRowsOf(const std::string& tableName) {
  grdPane_->Rows()->RemoveAll(RowsOfTable(tableName));
  rowsByTable_.erase(tableName);
  CloseSortGaps();
  EnsureEmptyLastRow();
}

void qbGridPane::RenameTable(const std::string& before, const std::string& after,
                             const std::function<std::string(std::string_view)>& rewrite) {
  const ScopedValue busy(busy_, true);
  const Ref<qbEntities> entities = Entities();
  for (std::int32_t i = 1; i <= RowCount(); ++i) {
    const Ref<zrGridRow> row = HoldRow(i);
    if (Text(*row, kColumnTable) == before) row->SetValue("table", after);
    const auto rewriteCell = [&](std::size_t column) {
      const std::string* text = row->ValueAt(column).StringIf();
      if (row->Index() == 0 || !text || text->empty()) return;  // a listener may have removed the row
      row->SetValue(static_cast<std::int32_t>(column), rewrite(*text));
    };
    const bool isExpression = !entities || !entities->FindExactly(Text(*row, kColumnTable));
    if (isExpression) rewriteCell(kColumnColumn);
    for (std::size_t column = kColumnCriteria; column <= static_cast<std::size_t>(ColumnCount()); ++column) {
      rewriteCell(column);
    }
  }
}

void qbGridPane::RenameColumn(const std::string& tableName, const std::string& before, const std::string& after) {
  {
    const ScopedValue busy(busy_, true);
    for (const Ref<zrGridRow>& row : RowsOf({tableName, before})) {
      if (row->Index() != 0) row->SetValue("column", after);
    }
  }
  ReportChange();
}

}  // namespace zrqrybld
