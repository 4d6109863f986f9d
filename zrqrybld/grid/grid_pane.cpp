// The grid pane's columns, captions, options, and what it does when tables or cells change.
#include "zrqrybld/grid/grid_pane.h"

#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_grid.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/expression/intelli_list.h"
#include "zrqrybld/grid/cell_values.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/stored_values.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/inner_queries.h"

namespace zrqrybld {
namespace {

constexpr int kInitialRows = 7;

// What a form stores of the pane, with what a new pane has.
struct GridPaneOptions : DateOptions {
  bool showGroupBy = true;
  bool customContextMenu = false;
  Font font;
  std::int32_t orColumns = kFirstOrColumns;
  bool growOrColumns = false;
};

using F = GridPaneOptions;
constexpr StoredTable kStored = {
    Stored<F, &F::format>("DateFormat"),
    Stored<F, &F::style>("DateFormatStyle"),
    Stored<F, &F::showGroupBy>("ShowGroupBy"),  // this and those below are kept in the grid
    Stored<F, &F::customContextMenu>("CustomContextMenu"),
    Stored<F, &F::font>("Font", kStoredAlways),
    Stored<F, &F::orColumns>("OrColumns"),
    Stored<F, &F::growOrColumns>("GrowOrColumns"),
};

// Files and forms always hold a format: the first one is nobody's choice.
bool IsChosen(const std::string& format) { return format != DateOptions().format; }

// Whether a text that is dropped may name a field.
bool IsFieldText(const std::string& text) {
  return text.find_first_of("\r\n") == std::string::npos && !TrimWhite(text).empty() && !text.ends_with('.');
}

}  // namespace

Ref<qbGridPane> qbGridPane::Create() {
  const Ref<qbGridPane> pane(new qbGridPane());
  pane->CreateColumns();
  pane->ResetRows();
  return pane;
}

void qbGridPane::CreateColumns() {
  for (const GridColumnRow& row : kGridColumns) {
    const Ref<zrGridColumn> column =
        grdPane_->Columns()->Add(std::string(row.key), Phrase(TextId{row.caption}).English());
    column->SetWidth(row.width);
    column->SetStyle(row.style);
    column->SetShare(row.share);
    column->SetHasButton(row.hasButton);
  }
  for (const SortWord& word : OfferedSorts(false)) {
    grdPane_->Columns()->Item(kColumnSortType)->ComboItems()->Add(std::string(word.text));
  }
  grdPane_->Columns()->Item(kColumnOutput)->SetDisplayAttribute(kCheckedHeader);
  grdPane_->SetEmptyText(Phrase(text::GridEmpty).English());
  grdPane_->SetShortener([](const std::string& text) { return ShortWithQueries(text); });
  grouping_.Show(true);
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
    if (rows_.IsBusy()) return;
    zrGridRow& cells = rows_.At(row);
    before_ = FieldOf(cells);
    change_ = Change{cells.weak_from_this(), column, RowReader(cells).Text(static_cast<std::size_t>(column))};
  });
  listen(grid.BeforeEdit, [this](std::int32_t row, std::int32_t column) { rules_.FillList(rows_.At(row), column); });
  listen(grid.AfterEdit, [this](std::int32_t row, std::int32_t column) { GridEdited(row, column); });
  listen(grid.BeforeDelete, [this](std::int32_t first, std::int32_t last, bool&) { output_.AboutToGo(first, last); });
  listen(grid.AfterDelete, [this](std::int32_t, std::int32_t) { RowsMoved(); });
  listen(grid.AfterMove, [this](std::int32_t, std::int32_t, std::int32_t) { RowsMoved(); });
  listen(grid.AfterInsert, [this](std::int32_t first, std::int32_t last) {
    for (std::int32_t i = first; i <= last && i <= RowCount(); ++i)
      RowWriter(rows_.At(i)).SetAliasMaxLen(rows_.AliasMaxLen());
    rows_.EnsureEmptyLast();
  });
  listen(grid.RowsShifted, [this](std::int32_t from) { fields_.Shifted(from); });
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
  listen(grid.BuilderWanted, [this] { ShowExpressionBuilder(); });
  listen(grid.OpenWanted, [this] {
    if (const Ref<QueryContext> context = rows_.Context()) context->reports.OpenQueryInCell(Row(), Column());
  });
  listen(grid.RowColChange, [this](std::int32_t row, std::int32_t column) { CurrentCellChanged(row, column); });
}

// --- Link to the hub ---

void qbGridPane::SetContext(const Ref<QueryContext>& context) {
  rows_.SetContext(context);
  // The grid may live longer than the pane.
  grdPane_->SetSuggestionSource([weak = weak_from_this()](std::int32_t column) {
    const auto pane = std::static_pointer_cast<qbGridPane>(weak.lock());
    return pane ? pane->SuggestionsFor(column) : nullptr;
  });
  if (!context) return;
  ApplyGridCaptions();
  ApplyAliasMaxLen();
  RefreshTableList();
}

// Nothing for cells that hold names and choices.
Ref<qbIntelliList> qbGridPane::SuggestionsFor(std::int32_t column) {
  const Ref<QueryContext> context = rows_.Context();
  if (!context || (column != kColumnColumn && column < kColumnCriteria)) return nullptr;
  const bool isCriterion = column != kColumnColumn;
  const Ref<qbIntelliList> list =
      qbIntelliList::Create(context, isCriterion ? EditedText::Criterion : EditedText::Expression);
  if (!isCriterion || Row() == 0) return list;
  const zrGridRow& row = rows_.At(Row());
  list->SetValues(ValuesFor(context, FieldOf(row), rules_.CriteriaOf(*context, row), values_));
  return list;
}

Ref<qbQueryBuilder> qbGridPane::QueryBuilder() const {
  const Ref<QueryContext> context = rows_.Context();
  return context ? context->design.Hub() : nullptr;
}

void qbGridPane::AboutBox() {
  if (const Ref<QueryContext> context = rows_.Context()) {
    context->source.GetToolkit().GetDialogs().ShowMessage("zrQryBld\r\n" + context->source.Say(text::AboutGrid),
                                                          MessageIcon::Information);
  }
}

// --- Properties ---

void qbGridPane::SetDateFormat(std::string format) {
  dates_.format = std::move(format);
  dates_.chosen = true;
  PropertyChanged.Raise(StoredKey<&F::format>(kStored));
}

void qbGridPane::LoadDateFormat(std::string format) {
  const bool chosen = IsChosen(format) || (dates_.chosen && dates_.format == format);
  SetDateFormat(std::move(format));
  dates_.chosen = chosen;
}

void qbGridPane::RestoreDates(const DateOptions& dates) {
  if (dates.format != dates_.format) SetDateFormat(dates.format);
  if (dates.style != dates_.style) SetDateFormatStyle(dates.style);
  dates_.chosen = dates.chosen;
}

void qbGridPane::SetDateFormatStyle(DateFormatEnum style) {
  dates_.style = style;
  PropertyChanged.Raise(StoredKey<&F::style>(kStored));
}

void qbGridPane::SetFont(const zrqrybld::Font& font) {
  grdPane_->SetFont(font);
  PropertyChanged.Raise(StoredKey<&F::font>(kStored));
}

void qbGridPane::SetCustomContextMenu(bool custom) {
  grdPane_->SetCustomContextMenu(custom);
  PropertyChanged.Raise(StoredKey<&F::customContextMenu>(kStored));
}

void qbGridPane::SetOrColumns(std::int32_t count) {
  alternatives_.Set(count);
  PropertyChanged.Raise(StoredKey<&F::orColumns>(kStored));
}

void qbGridPane::SetGrowOrColumns(bool grow) {
  alternatives_.SetGrows(grow);
  PropertyChanged.Raise(StoredKey<&F::growOrColumns>(kStored));
}

bool qbGridPane::AddOrColumn() {
  const std::int32_t before = OrColumns();
  SetOrColumns(before + 1);
  if (OrColumns() == before) return false;
  if (Row() > 0) grdPane_->GotoRowCol(Row(), kColumnCriteria + OrColumns());
  return true;
}

void qbGridPane::ReadProperties(const PropertyStore& store) {
  GridPaneOptions stored;
  ReadStored(kStored, store, stored);
  dates_ = static_cast<const DateOptions&>(stored);
  dates_.chosen = IsChosen(dates_.format);
  grdPane_->SetCustomContextMenu(stored.customContextMenu);
  grdPane_->SetFont(stored.font);
  grouping_.Apply(stored.showGroupBy);
  alternatives_.SetGrows(stored.growOrColumns);
  alternatives_.Set(stored.orColumns);
  rows_.ReportChange();
}

void qbGridPane::WriteProperties(PropertyStore& store) const {
  WriteStored(kStored, store,
              {dates_, ShowGroupBy(), CustomContextMenu(), Font(), alternatives_.Least(), GrowOrColumns()});
}

// --- Captions and lengths ---

void qbGridPane::ApplyGridCaptions() {
  const Ref<QueryContext> context = rows_.Context();
  grdPane_->SetTexts(context ? context->source.Texts() : nullptr);
  grdPane_->SetEmptyText(Say(context, text::GridEmpty));
  for (const GridColumnRow& row : kGridColumns) {
    grdPane_->Columns()->Item(std::string(row.key))->SetCaption(Say(context, TextId{row.caption}));
  }
  alternatives_.ApplyCaption(Say(context, TextId{LanguageGridOr}));
}

void qbGridPane::ApplyAliasMaxLen() {
  const std::int16_t longest = rows_.AliasMaxLen();
  for (const Ref<zrGridRow>& row : *grdPane_->Rows()) RowWriter(*row).SetAliasMaxLen(longest);
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
  if (rowIndex <= 0 || !columnGiven) throw Error(ErrorInvalidCellReference, text::InvalidCell);
  return grdPane_->Rows()->Item(rowIndex)->Value(columnIndex);
}

void qbGridPane::SetValue(const Variant& row, const Variant& column, Variant value) {
  grdPane_->Rows()->Item(row)->SetValue(column, std::move(value));
}

void qbGridPane::SetGroupByFunction(std::int32_t rowIndex, const qbDBFunction& function) {
  RowWriter(*rows_.Hold(rowIndex)).SetGrouping(ChoiceOf(function));
}

void qbGridPane::ResetRows() {
  const RedrawPause pause(*grdPane_);
  grdPane_->Rows()->Clear();
  fields_.Clear();
  sorting_.Clear();
  alternatives_.Fit();
  for (int i = 0; i < kInitialRows; ++i) rows_.AddEmpty();
}

// --- Sorting and grouping ---

void qbGridPane::SortRow(std::int32_t row, const std::string& type) {
  const Ref<zrGridRow> item = rows_.Hold(row);
  const StepScope step(rows_.Context(), kStepSort, RowReader(*item).Text(kColumnColumn));
  sorting_.Sort(*item, type);
}

void qbGridPane::SetShowGroupBy(bool show) {
  if (show == ShowGroupBy()) return;
  const StepScope step(rows_.Context(), kStepGrouping);
  grouping_.Apply(show);
  PropertyChanged.Raise(StoredKey<&F::showGroupBy>(kStored));
  rows_.ReportChange();
}

void qbGridPane::RestoreShowGroupBy(bool show) {
  if (show == ShowGroupBy()) return;
  grouping_.Show(show);
  PropertyChanged.Raise(StoredKey<&F::showGroupBy>(kStored));
}

// --- Fields in and out ---

std::int32_t qbGridPane::SetFieldOutput(const std::string& fieldName, bool checked, const std::string& tableName,
                                        const FieldOutputOptions& options) {
  if (rows_.IsBusy()) return 0;
  const StepScope step(rows_.Context(), checked ? kStepAddColumn : kStepRemoveColumn, fieldName);
  return WholeOrNothing(rows_.Context(), [&] {
    const FieldName field{tableName, fieldName};
    std::int32_t row = 0;
    {
      const auto busy = rows_.Busy();
      if (checked) {
        if (!options.skipSearch) row = output_.Tick(field);
        if (row == 0) row = output_.Add(field, options.before);
      } else {
        output_.Untick(field);
      }
      output_.Push(field, checked);
    }
    rows_.ReportChange();
    return row;
  });
}

bool qbGridPane::OutputTicked() {
  const std::vector<FieldName> fields = output_.TickedOnly();
  if (fields.empty()) return false;
  const StepScope step(rows_.Context(), kStepAddColumns);
  for (const FieldName& field : fields) SetFieldOutput(field.column, true, field.table);
  return true;
}

void qbGridPane::AddRows(const std::vector<QueryRow>& rows) {
  const StepScope step(rows_.Context(), kStepAddColumns);
  {
    const auto busy = rows_.Busy();
    std::size_t widest = 0;
    for (const QueryRow& row : rows) widest = std::max(widest, row.criteria.size());
    alternatives_.Ensure(static_cast<std::int32_t>(widest) - 1);
    output_.AddRows(rows);
    alternatives_.Fit();
  }
  rows_.ReportChange();
}

// The field goes in above the row it was dropped on.
void qbGridPane::DropField(const std::string& text, PixelPoint at) {
  const std::string trimmed(TrimWhite(text));
  if (!IsFieldText(trimmed)) return;
  const FieldName field = output_.FieldIn(trimmed);
  const GridHit hit = grdPane_->GetRowColumnIndex({1_px, at.y});
  SetFieldOutput(field.column, true, field.table, {false, static_cast<std::int32_t>(hit.row)});
}

// --- Tables ---

void qbGridPane::RefreshTables() {
  const Ref<qbEntities> entities = rows_.Entities();
  if (!entities) return;
  RefreshTableList();
  grdPane_->Rows()->RemoveIf([&](const zrGridRow& row) {
    const std::string table = RowReader(row).Text(kColumnTable);
    return !table.empty() && !entities->FindExactly(table);
  });
  RowsMoved();
}

void qbGridPane::RemoveRowsOf(const std::string& tableName) {
  grdPane_->Rows()->RemoveAll(fields_.OfTable(tableName));
  fields_.Forget(tableName);
  sorting_.CloseGaps();
  rows_.EnsureEmptyLast();
}

void qbGridPane::RenameTable(const std::string& before, const std::string& after,
                             const std::function<std::string(std::string_view)>& rewrite) {
  const auto busy = rows_.Busy();
  const Ref<qbEntities> entities = rows_.Entities();
  for (const Ref<zrGridRow>& row : fields_.MayName(before)) {
    if (row->Index() == 0) continue;  // a listener has removed it
    if (RowReader(*row).Text(kColumnTable) == before) RowWriter(*row).SetText(kColumnTable, after);
    const auto rewriteCell = [&](std::size_t column) {
      const std::string* text = row->ValueAt(column).StringIf();
      if (row->Index() == 0 || !text || text->empty()) return;  // a listener may have removed the row
      RowWriter(*row).SetText(column, rewrite(*text));
    };
    const bool isExpression = !entities || !entities->FindExactly(RowReader(*row).Text(kColumnTable));
    if (isExpression) rewriteCell(kColumnColumn);
    for (std::size_t column = kColumnCriteria; column <= rows_.LastColumn(); ++column) {
      rewriteCell(column);
    }
  }
}

void qbGridPane::RenameColumn(const std::string& tableName, const std::string& before, const std::string& after) {
  {
    const auto busy = rows_.Busy();
    for (const Ref<zrGridRow>& row : fields_.Of({tableName, before})) {
      if (row->Index() != 0) RowWriter(*row).SetText(kColumnColumn, after);
    }
  }
  rows_.ReportChange();
}

}  // namespace zrqrybld
