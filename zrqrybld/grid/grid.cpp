// The grid's state: current cell, row selection, scrolling, changes.
#include "zrqrybld/grid/grid.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/platform/stored_values.h"

namespace zrqrybld {
namespace {

constexpr Pixels kRowHeaderWidth = 22_px;
constexpr Pixels kRowAir = 8_px;
constexpr Pixels kHeaderAir = 10_px;

using F = GridOptions;
constexpr StoredTable kStored = {
    Stored<F, &F::allowColumnResize>("AllowColumnResize"),
    Stored<F, &F::allowRowInsert>("AllowRowInsert"),
    Stored<F, &F::font>("Font", kStoredAlways),
};

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
  options_.font = font;
  editing_.SetFont(font);
  UpdateScrollBars();
  editing_.Place();
  Redraw();
}

void zrGrid::SetFillsWidth(bool fills) {
  options_.fillsWidth = fills;
  ColumnsChanged();
}

void zrGrid::SetHasCellButtons(bool has) {
  options_.hasCellButtons = has;
  editing_.Place();
  Redraw();
}

void zrGrid::SetShortener(std::function<std::string(const std::string&)> shorten) {
  shorten_ = std::move(shorten);
  Redraw();
}

std::string zrGrid::ShortText(std::size_t row, std::size_t column) const {
  return shorten_ && columns_->At(column).HasButton() ? shorten_(CellText(row, column)) : std::string();
}

// At the right end of the current cell, and of each that can be opened; nothing where there is none.
PixelRect zrGrid::CellButton(std::size_t row, std::size_t column) const {
  constexpr Pixels kWidth = 22_px;
  if (!options_.hasCellButtons || row == 0 || column == 0) return {};
  const bool isCurrent = row == currentRow_ && column == currentColumn_;
  if (!isCurrent && ShortText(row, column).empty()) return {};
  if (!columns_->At(column).HasButton() || rows_->At(row).Locked()) return {};
  const PixelRect cell = Layout().CellRect(row, column);
  return {cell.Right() - kWidth, cell.top, kWidth - 1_px, cell.height - 1_px};
}

void zrGrid::SetEmptyText(std::string text) {
  emptyText_ = std::move(text);
  Redraw();
}

// The editors belong to the surface that has made them.
void zrGrid::OnSurfaceChanged() {
  CommitEdit();
  editing_.SurfaceChanged();
  gesture_ = NoGesture{};
  UpdateScrollBars();
}

void zrGrid::ReadProperties(const PropertyStore& store) {
  ReadStored(kStored, store, options_);
  SetFont(options_.font);
  Refresh();
}

void zrGrid::WriteProperties(PropertyStore& store) const { WriteStored(kStored, store, options_); }

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

// Each column's own width, and its share of what all of them leave free.
std::vector<Pixels> zrGrid::ColumnWidths() const {
  const ScreenScale scale = GetSurface().Scale();
  std::vector<Pixels> widths;
  widths.reserve(static_cast<std::size_t>(columns_->Count()));
  Pixels free = GetSurface().ViewSize().width - kRowHeaderWidth;
  double shares = 0;
  for (const Ref<zrGridColumn>& column : *columns_) {
    const auto twips = static_cast<double>(column->Width());
    widths.emplace_back(std::round(scale.PixelsX(Twips(twips)).Value()));
    free = free - widths.back();
    if (column->Width() > 0) shares += static_cast<double>(column->Share());
  }
  if (!options_.fillsWidth || free <= 0_px || shares <= 0) return widths;
  for (const Ref<zrGridColumn>& column : *columns_) {
    if (column->Width() <= 0) continue;
    const double share = static_cast<double>(column->Share()) / shares;
    widths[static_cast<std::size_t>(column->Index()) - 1] += Pixels(std::floor((free * share).Value()));
  }
  return widths;
}

GridLayout zrGrid::Layout() const {
  const Pixels line = GetSurface().Metrics().LineHeight(options_.font);
  GridLayout layout(ColumnWidths(), Pixels(std::ceil((line + kHeaderAir).Value())),
                    Pixels(std::ceil((line + kRowAir).Value())), kRowHeaderWidth,
                    static_cast<std::size_t>(rows_->Count()));
  layout.SetOffset(scroller_.Offset());
  return layout;
}

std::string zrGrid::CellText(std::size_t row, std::size_t column) const {
  return rows_->At(row).ValueAt(column).Text();
}

// --- What columns and rows report ---

void zrGrid::ColumnsChanged() {
  const Ref<Object> alive = Alive();
  checkedHeader_.Forget();
  const auto* sizing = std::get_if<SizingColumn>(&gesture_);
  if (sizing && sizing->column > static_cast<std::size_t>(columns_->Count())) gesture_ = NoGesture{};
  if (editing_.HasLostColumn()) CancelEdit();
  if (editing_.IsHidden()) CommitEdit();
  if (currentColumn_ > static_cast<std::size_t>(columns_->Count())) MakeCurrent(0, 0);
  if (autoRedraw_) UpdateScrollBars();
  editing_.Place();
  Redraw();
}

bool zrGrid::BeforeCellChange(std::size_t row, std::size_t column) {
  bool cancel = false;
  BeforeChange.Raise(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column), cancel);
  return !cancel;
}

void zrGrid::AfterCellChange(std::size_t row, std::size_t column) {
  checkedHeader_.Forget();
  Redraw();
  AfterChange.Raise(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column));
}

// The current row stays current wherever it goes; when it is gone, the one that has its place is.
void zrGrid::RowsChanged(std::size_t from) {
  selection_.Clear();
  checkedHeader_.Forget();
  if (editing_.HasLostRow()) CancelEdit();
  RowsShifted.Raise(static_cast<std::int32_t>(from));
  if (currentRow_ >= from) {
    const Ref<Object> current = current_.lock();
    const auto index = current ? static_cast<std::size_t>(static_cast<const zrGridRow&>(*current).Index()) : 0;
    const std::size_t row = std::min(index != 0 ? index : currentRow_, static_cast<std::size_t>(rows_->Count()));
    if (row != currentRow_) MakeCurrent(row, row == 0 ? 0 : currentColumn_);
    const bool isThere = currentRow_ != 0 && currentRow_ <= static_cast<std::size_t>(rows_->Count());
    if (index == 0 && isThere) current_ = rows_->At(currentRow_).weak_from_this();
  }
  if (autoRedraw_) UpdateScrollBars();
  editing_.Place();
  Redraw();
}

// Listeners hear of the end also when an error ends it.
void zrGrid::InBatch(GridWork kind, const std::function<void()>& work) {
  const Ref<Object> alive = Alive();
  Batch.Raise(kind, true);
  try {
    work();
  } catch (...) {
    Batch.Raise(kind, false);
    throw;
  }
  Batch.Raise(kind, false);
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
  Pixels width = text.TextWidth(columns_->At(position).Caption(), options_.font);
  if (columns_->At(position).DisplayAttribute() == kCheckedHeader) width += HeaderCheckBox({}).Right();
  const GridLayout::Range rows = Layout().VisibleRows(GetSurface().ViewSize().height);
  for (std::size_t row = rows.first; row <= rows.last; ++row) {
    if (!IsCheckBoxColumn(position)) width = std::max(width, text.TextWidth(CellText(row, position), options_.font));
  }
  const Twips fitting = GetSurface().Scale().TwipsX(Pixels(std::ceil(width.Value())) + kGridTextPadding * 2 + 2_px);
  columns_->At(position).SetWidth(std::max(static_cast<float>(fitting.Value()), least));
}

void zrGrid::MakeCurrent(std::size_t row, std::size_t column) {
  const Ref<Object> alive = Alive();
  if (row == 0 || column == 0) row = column = 0;
  if (row != currentRow_ || column != currentColumn_) CommitEdit();
  // A listener of the edit may have taken it away.
  if (row > static_cast<std::size_t>(rows_->Count()) || column > static_cast<std::size_t>(columns_->Count())) return;
  if (row != 0) {
    const PixelPoint offset = Layout().OffsetToShow(row, column, GetSurface().ViewSize());
    OnScroll(Orientation::Horizontal, static_cast<int>(offset.x.Value()));
    OnScroll(Orientation::Vertical, static_cast<int>(offset.y.Value()));
    UpdateScrollBars();
  }
  if (row == currentRow_ && column == currentColumn_) return;
  currentRow_ = row;
  currentColumn_ = column;
  current_ = row == 0 ? std::weak_ptr<Object>() : rows_->At(row).weak_from_this();
  Redraw();
  hasMoved_ = true;
  if (!tellsLater_) TellOfMove();
}

void zrGrid::TellOfMove() {
  if (std::exchange(hasMoved_, false)) RowColChange.Raise(Row(), Column());
}

void zrGrid::SelectRows(std::size_t first, std::size_t last) {
  selection_.Select(first, last, static_cast<std::size_t>(rows_->Count()));
  Redraw();
}

void zrGrid::DeleteSelectedRows() {
  CommitEdit();
  const RowRange range = selection_.Range();
  if (!options_.allowRowInsert || range.Empty()) return;
  InBatch(GridWork::DeleteRows, [&] { DeleteRange(range); });
}

void zrGrid::DeleteRange(RowRange range) {
  bool cancel = false;
  BeforeDelete.Raise(static_cast<std::int32_t>(range.first), static_cast<std::int32_t>(range.last), cancel);
  if (cancel) return;
  rows_->RemoveIf([&](const zrGridRow& row) { return range.Contains(static_cast<std::size_t>(row.Index())); });
  if (rows_->Count() == 0) rows_->Add();
  SelectRows(range.first, range.last);
  AfterDelete.Raise(static_cast<std::int32_t>(range.first), static_cast<std::int32_t>(range.last));
  SelectRows(0, 0);
}

void zrGrid::InsertRows() {
  CommitEdit();
  const RowRange range = selection_.Range();
  if (!options_.allowRowInsert || range.Empty()) return;
  InBatch(GridWork::InsertRows, [&] { InsertRange(range); });
}

void zrGrid::InsertRange(RowRange range) {
  bool cancel = false;
  BeforeInsert.Raise(static_cast<std::int32_t>(range.first), static_cast<std::int32_t>(range.last), cancel);
  if (cancel) return;
  const auto place = static_cast<std::int32_t>(std::min(range.first, static_cast<std::size_t>(rows_->Count()) + 1));
  {
    const ScopedValue later(tellsLater_, true);
    for (std::size_t i = 0; i < range.Count(); ++i) {
      rows_->Add({}, place <= rows_->Count() ? Variant(place) : Variant::Missing());
    }
  }
  SelectRows(range.first, range.last);
  AfterInsert.Raise(static_cast<std::int32_t>(range.first), static_cast<std::int32_t>(range.last));
  TellOfMove();
  Redraw();
}

bool zrGrid::MoveRows(int direction) {
  CommitEdit();
  const RowRange range = selection_.OrElse(currentRow_);
  if (range.Empty()) return false;
  return MoveRange(range, direction < 0 ? range.first - 1 : range.last + 2);
}

// Moves rows to stand before the row that has this number now.
bool zrGrid::MoveRange(RowRange range, std::size_t before) {
  const auto count = static_cast<std::size_t>(rows_->Count());
  const bool stays = before >= range.first && before <= range.last + 1;
  if (!options_.allowRowInsert || stays || before < 1 || before > count + 1 || range.last > count) return false;
  const std::size_t target = before < range.first ? before : before - range.Count();
  const bool selected = !selection_.Empty();
  InBatch(GridWork::MoveRows, [&] {
    for (std::size_t i = 0; i < range.Count(); ++i) {
      const std::size_t from = before < range.first ? range.first + i : range.first;
      const std::size_t to = before < range.first ? before + i : before - 1;
      rows_->Move(static_cast<std::int32_t>(from), static_cast<std::int32_t>(to));
    }
    if (selected) SelectRows(target, target + range.Count() - 1);
    AfterMove.Raise(static_cast<std::int32_t>(range.first), static_cast<std::int32_t>(range.last),
                    static_cast<std::int32_t>(target));
  });
  return true;
}

// --- Scrolling ---

void zrGrid::UpdateScrollBars() {
  const GridLayout layout = Layout();
  const PixelSize view = GetSurface().ViewSize();
  const PixelSize content = layout.ContentSize();
  const auto update = [&](Orientation orientation, Pixels visible, Pixels whole) {
    scroller_.SetRange(GetSurface(), orientation, visible, whole, static_cast<int>(layout.RowHeight().Value()));
  };
  update(Orientation::Horizontal, view.width - layout.RowHeaderWidth(), content.width);
  update(Orientation::Vertical, view.height - layout.HeaderHeight(), content.height);
}

void zrGrid::OnResize() {
  UpdateScrollBars();
  editing_.Place();
  Redraw();
}

void zrGrid::OnScroll(Orientation orientation, int value) {
  if (!scroller_.ScrollTo(orientation, value)) return;
  editing_.Place();
  Redraw();
}

}  // namespace zrqrybld
