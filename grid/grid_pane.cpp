// The grid pane's columns, captions, options, and what it does when tables or cells change.
#include "grid/grid_pane.h"

#include <algorithm>
#include <optional>

#include "base/error.h"
#include "base/scoped_value.h"
#include "base/text.h"
#include "diagram/entities.h"
#include "grid/sort_order.h"
#include "platform/stored_values.h"

namespace zrqrybld {
namespace {

constexpr int kInitialRows = 7;
constexpr float kGroupByWidth = 1200;
constexpr const char* kDateFormat = "dd-mmm-yyyy";

std::int32_t SortOrderOf(const zrGridRow& row) {
  const std::optional<double> place = RowReader(row).Place();
  return place && *place >= 1 && *place < 1e6 ? static_cast<std::int32_t>(*place) : 0;
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
  for (const SortWord& word : kSortWords) {
    grdPane_->Columns()->Item(kColumnSortType)->ComboItems()->Add(std::string(word.text));
  }
  grdPane_->Columns()->Item(kColumnOutput)->SetDisplayAttribute(kCheckedHeader);
  grdPane_->SetEmptyText("Tick columns in the diagram, drag them here, or type their names.");
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
    for (std::int32_t i = first; i <= last && i <= RowCount(); ++i) RowWriter(RowAt(i)).SetAliasMaxLen(AliasMaxLen());
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
    context->GetToolkit().GetDialogs().ShowMessage("zrQryBld\r\nThe columns of a query.", MessageIcon::Information);
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
  for (const GridColumnRow& row : kGridColumns) {
    grdPane_->Columns()
        ->Item(std::string(row.key))
        ->SetCaption(context ? context->GetLanguageString(row.caption)
                             : std::string(DefaultLanguageString(row.caption)));
  }
}

void qbGridPane::ApplyAliasMaxLen() {
  const std::int16_t longest = AliasMaxLen();
  for (std::int32_t row = 1; row <= RowCount(); ++row) RowWriter(RowAt(row)).SetAliasMaxLen(longest);
}

bool qbGridPane::IsLocked(GridColumnIndex column) const {
  return grdPane_->Columns()->Item(KeyOf(column))->Style() == GridColumnComboList;
}

void qbGridPane::SetLock(GridColumnIndex column, bool lock) {
  grdPane_->Columns()->Item(KeyOf(column))->SetStyle(lock ? GridColumnComboList : GridColumnCombo);
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
  RowWriter(*HoldRow(rowIndex)).SetGrouping(ChoiceOf(function));
}

void qbGridPane::AddEmptyRow() { RowWriter(*grdPane_->Rows()->Add()).SetAliasMaxLen(AliasMaxLen()); }

void qbGridPane::EnsureEmptyLastRow() {
  if (RowCount() == 0 || !RowReader(RowAt(RowCount())).IsEmpty()) AddEmptyRow();
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
    if (RowReader(*row).HasSort()) rows.push_back(row);
  }
  std::ranges::sort(rows, {}, [](const Ref<zrGridRow>& row) { return row->Index(); });
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  sortedRows_.assign(rows.begin(), rows.end());
  return rows;
}

std::int16_t qbGridPane::NextSortOrder(std::int32_t row) const {
  std::int16_t next = 1;
  for (const Ref<zrGridRow>& sorted : SortedRows()) {
    if (sorted->Index() != row && RowReader(*sorted).Direction() != SortDirection::None) ++next;
  }
  return next;
}

void qbGridPane::SortRow(std::int32_t row, const std::string& type) {
  const Ref<zrGridRow> item = grdPane_->Rows()->Item(row);
  const StepScope step(context_.lock(), kStepSort, Text(*item, kColumnColumn));
  const RowWriter writer(*item);
  writer.SetText(kColumnSortType, type);
  if (type.empty()) {
    writer.SetSortPlace(0);
    CloseSortGaps();
  } else if (SortOrderOf(*item) == 0) {
    writer.SetSortPlace(NextSortOrder(row));
  }
}

void qbGridPane::WriteSortOrders(const std::vector<Ref<zrGridRow>>& rows, const std::vector<std::int32_t>& orders) {
  const ScopedValue busy(busy_, true);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i]->Index() == 0) continue;  // a listener has removed it
    if (orders[i] != 0 || !RowReader(*rows[i]).IsBlank(kColumnSortOrder)) RowWriter(*rows[i]).SetSortPlace(orders[i]);
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
  const Ref<zrGridColumn> column = grdPane_->Columns()->Item(KeyOf(kColumnGroupBy));
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
  RowWriter(row).SetGrouping(!showGroupBy_ ? kNoGrouping : column == kAllColumns ? kCountCell : kGroupByCell);
}

// The choice of the row that a text names; none when it has no such choice.
std::optional<GroupingCell> qbGridPane::GroupingChoice(const zrGridRow& row, std::string_view text) const {
  if (text.empty()) return kNoGrouping;
  const Ref<QueryContext> context = context_.lock();
  if (Text(row, kColumnColumn) == kAllColumns) {
    return EqualsNoCase(text, kCountChoice.text) ? std::optional(kCountChoice) : std::nullopt;
  }
  const Ref<qbDBFunction> function = context ? context->DBFunctions()->FindGroupBy(text) : nullptr;
  return function ? std::optional(ChoiceOf(*function)) : std::nullopt;
}

// Who writes the text of a grouping by program, writes no tag. A text that names no choice leaves the tag to whoever
// has written both.
void qbGridPane::TagGrouping(zrGridRow& row) {
  if (const auto choice = GroupingChoice(row, Text(row, kColumnGroupBy))) RowWriter(row).SetGroupingTag(*choice);
}

// --- Tables ---

// What stands at its place already stays: a table more is one entry more, a table less one entry less.
void qbGridPane::RefreshTableList(std::int32_t from) {
  const Ref<zrGridColumn> column = grdPane_->Columns()->Find(KeyOf(kColumnTable));
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
    if (Text(*row, kColumnTable) == before) RowWriter(*row).SetText(kColumnTable, after);
    const auto rewriteCell = [&](std::size_t column) {
      const std::string* text = row->ValueAt(column).StringIf();
      if (row->Index() == 0 || !text || text->empty()) return;  // a listener may have removed the row
      RowWriter(*row).SetText(column, rewrite(*text));
    };
    const bool isExpression = !entities || !entities->FindExactly(Text(*row, kColumnTable));
    if (isExpression) rewriteCell(kColumnColumn);
    for (std::size_t column = kColumnCriteria; column <= LastColumn(); ++column) {
      rewriteCell(column);
    }
  }
}

void qbGridPane::RenameColumn(const std::string& tableName, const std::string& before, const std::string& after) {
  {
    const ScopedValue busy(busy_, true);
    for (const Ref<zrGridRow>& row : RowsOf({tableName, before})) {
      if (row->Index() != 0) RowWriter(*row).SetText(kColumnColumn, after);
    }
  }
  ReportChange();
}

}  // namespace zrqrybld
