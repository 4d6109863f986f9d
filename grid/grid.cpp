// The grid's state: current cell, row selection, scrolling, changes.
#include "grid/grid.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "base/error.h"

namespace zrqrybld {
namespace {

constexpr Pixels kRowHeaderWidth = 22_px;
constexpr Pixels kRowAir = 8_px;
constexpr Pixels kHeaderAir = 10_px;

}  // namespace

Ref<zrGrid> zrGrid::Create() {
  const Ref<zrGrid> grid(new zrGrid());
  grid->columns_ = std::make_shared<zrGridColumns>(static_cast<ColumnOwner*>(grid.get()));
  grid->rows_ = std::make_shared<zrGridRows>(static_cast<RowOwner*>(grid.get()));
  return grid;
}

zrGrid::~zrGrid() {
  columns_->Detach();
  rows_->Detach();
}

void zrGrid::SetFont(const zrqrybld::Font& font) {
  font_ = font;
  UpdateScrollBars();
  Redraw();
}

void zrGrid::SetAutoRedraw(bool redraw) {
  autoRedraw_ = redraw;
  if (redraw) Refresh();
}

void zrGrid::Refresh() {
  UpdateScrollBars();
  GetSurface().InvalidateAll();
}

void zrGrid::Redraw() {
  if (autoRedraw_) GetSurface().InvalidateAll();
}

GridLayout zrGrid::Layout() const {
  const ScreenScale scale = GetSurface().Scale();
  const Pixels line = GetSurface().Metrics().LineHeight(font_);
  std::vector<Pixels> widths;
  widths.reserve(static_cast<std::size_t>(columns_->Count()));
  for (std::size_t i = 1; i <= static_cast<std::size_t>(columns_->Count()); ++i) {
    const auto twips = static_cast<double>(columns_->At(i).Width());
    widths.push_back(Pixels(std::round(scale.PixelsX(Twips(twips)).Value())));
  }
  GridLayout layout(widths, Pixels(std::ceil((line + kHeaderAir).Value())), Pixels(std::ceil((line + kRowAir).Value())),
                    kRowHeaderWidth, static_cast<std::size_t>(rows_->Count()));
  layout.SetOffset({Pixels(horizontal_.value), Pixels(vertical_.value)});
  return layout;
}

std::string zrGrid::CellText(std::size_t row, std::size_t column) const {
  return rows_->At(row).ValueAt(column).Text();
}

// --- What columns and rows report ---

void zrGrid::ColumnsChanged() {
  if (currentColumn_ > static_cast<std::size_t>(columns_->Count())) MakeCurrent(0, 0);
  if (autoRedraw_) UpdateScrollBars();
  Redraw();
}

bool zrGrid::BeforeCellChange(std::size_t row, std::size_t column) {
  bool cancel = false;
  BeforeChange.Raise(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column), cancel);
  return !cancel;
}

void zrGrid::AfterCellChange(std::size_t row, std::size_t column) {
  Redraw();
  AfterChange.Raise(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column));
}

void zrGrid::RowsChanged() {
  const auto count = static_cast<std::size_t>(rows_->Count());
  selection_ = {};
  if (currentRow_ > count) MakeCurrent(count, count == 0 ? 0 : currentColumn_);
  if (autoRedraw_) UpdateScrollBars();
  Redraw();
}

// --- Current cell and selected rows ---

PixelRect zrGrid::GetRowColumnXY(std::int32_t row, const Variant& column) const {
  if (row < 1 || row > rows_->Count()) ThrowNoSuchItem();
  return Layout().CellRect(static_cast<std::size_t>(row), columns_->PositionOf(column));
}

void zrGrid::GotoRowCol(std::int32_t row, const Variant& column) {
  if (row < 1 || row > rows_->Count()) ThrowNoSuchItem();
  MakeCurrent(static_cast<std::size_t>(row), columns_->PositionOf(column));
}

void zrGrid::FitColumn(const Variant& column, float least) {
  const std::size_t position = columns_->PositionOf(column);
  const TextMetrics& text = GetSurface().Metrics();
  Pixels width = text.TextWidth(columns_->At(position).Caption(), font_);
  const GridLayout::Range rows = Layout().VisibleRows(GetSurface().ViewSize().height);
  for (std::size_t row = rows.first; row <= rows.last; ++row) {
    if (!IsCheckBoxColumn(position)) width = std::max(width, text.TextWidth(CellText(row, position), font_));
  }
  const Twips fitting = GetSurface().Scale().TwipsX(Pixels(std::ceil(width.Value())) + kGridTextPadding * 2 + 2_px);
  columns_->At(position).SetWidth(std::max(static_cast<float>(fitting.Value()), least));
}

void zrGrid::MakeCurrent(std::size_t row, std::size_t column) {
  if (row == 0 || column == 0) row = column = 0;
  if (row != 0) {
    const PixelPoint offset = Layout().OffsetToShow(row, column, GetSurface().ViewSize());
    OnScroll(Orientation::Horizontal, static_cast<int>(offset.x.Value()));
    OnScroll(Orientation::Vertical, static_cast<int>(offset.y.Value()));
    UpdateScrollBars();
  }
  if (row == currentRow_ && column == currentColumn_) return;
  currentRow_ = row;
  currentColumn_ = column;
  Redraw();
  RowColChange.Raise(Row(), Column());
}

void zrGrid::SelectRows(std::size_t row, bool extend) {
  if (extend && selection_.first != 0) {
    selection_ = {std::min(selection_.first, row), std::max(selection_.last, row)};
  } else {
    selection_ = {row, row};
  }
  Redraw();
}

void zrGrid::DeleteSelectedRows() {
  const RowRange range = selection_;
  bool cancel = false;
  BeforeDelete.Raise(static_cast<std::int32_t>(range.first), static_cast<std::int32_t>(range.last), cancel);
  if (cancel) return;
  const auto last = std::min(range.last, static_cast<std::size_t>(rows_->Count()));
  for (std::size_t row = last; row >= range.first; --row) rows_->Remove(static_cast<std::int32_t>(row));
  if (rows_->Count() == 0) rows_->Add();
  selection_ = {};
  AfterDelete.Raise(static_cast<std::int32_t>(range.first), static_cast<std::int32_t>(range.last));
  Redraw();
}

// --- Scrolling ---

void zrGrid::UpdateScrollBars() {
  const GridLayout layout = Layout();
  const PixelSize view = GetSurface().ViewSize();
  const PixelSize content = layout.ContentSize();
  const auto update = [&](Orientation orientation, ScrollState& bar, Pixels visible, Pixels whole, Pixels step) {
    bar.page = std::max(0, static_cast<int>(visible.Value()));
    bar.step = static_cast<int>(step.Value());
    bar.maximum = std::max(0, static_cast<int>(std::ceil((whole - visible).Value())));
    bar.value = std::clamp(bar.value, 0, bar.maximum);
    GetSurface().SetScrollBar(orientation, bar);
  };
  update(Orientation::Horizontal, horizontal_, view.width - layout.RowHeaderWidth(), content.width, layout.RowHeight());
  update(Orientation::Vertical, vertical_, view.height - layout.HeaderHeight(), content.height, layout.RowHeight());
}

void zrGrid::OnResize() {
  UpdateScrollBars();
  Redraw();
}

void zrGrid::OnScroll(Orientation orientation, int value) {
  ScrollState& bar = orientation == Orientation::Horizontal ? horizontal_ : vertical_;
  const int clamped = std::clamp(value, 0, bar.maximum);
  if (clamped == bar.value) return;
  bar.value = clamped;
  Redraw();
}

}  // namespace zrqrybld
