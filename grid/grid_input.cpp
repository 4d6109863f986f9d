// The grid's mouse and keyboard.
#include <algorithm>
#include <cmath>

#include "grid/grid.h"

namespace zrqrybld {
namespace {

constexpr Pixels kNarrowest = 16_px;

}  // namespace

void zrGrid::OnMouseDown(const MouseEvent& event) {
  GetSurface().SetFocus();
  const GridLayout layout = Layout();
  const GridHit hit = layout.HitTest(event.position);
  switch (hit.part) {
    case GridPart::ColumnEdge:
      if (!allowColumnResize_ || event.button != ButtonLeft) return;
      gesture_ = SizingColumn{hit.column, event.position.x - layout.ColumnHeaderRect(hit.column).Right()};
      GetSurface().SetCapture(true);
      return;
    case GridPart::RowHeader:
      SelectRows(hit.row, (event.shift & ShiftShift) != 0);
      return;
    case GridPart::Cell:
      selection_ = {};
      MakeCurrent(hit.row, hit.column);
      if (event.button == ButtonLeft) ToggleCheckBox(hit.row, hit.column);
      Redraw();
      return;
    default:
      return;
  }
}

void zrGrid::OnMouseMove(const MouseEvent& event) {
  if (const auto* sizing = std::get_if<SizingColumn>(&gesture_)) {
    const Pixels left = Layout().ColumnHeaderRect(sizing->column).left;
    const Pixels width = std::max(event.position.x - sizing->grip - left, kNarrowest);
    columns_->At(sizing->column).SetWidth(static_cast<float>(GetSurface().Scale().TwipsX(width).Value()));
    return;
  }
  const bool edge = allowColumnResize_ && Layout().HitTest(event.position).part == GridPart::ColumnEdge;
  GetSurface().SetCursor(edge ? Cursor::ColumnSplit : Cursor::Arrow);
}

void zrGrid::OnMouseUp(const MouseEvent& event) {
  if (std::holds_alternative<SizingColumn>(gesture_)) {
    gesture_ = NoGesture{};
    GetSurface().SetCapture(false);
  }
  MouseUp.Raise(event.button, event.shift, static_cast<float>(event.position.x.Value()),
                static_cast<float>(event.position.y.Value()));
  const GridHit hit = Layout().HitTest(event.position);
  if (event.button == ButtonRight && hit.part == GridPart::Cell) {
    ShowContextMenu.Raise(static_cast<std::int32_t>(hit.row), static_cast<std::int32_t>(hit.column));
  }
}

void zrGrid::OnDoubleClick(const MouseEvent& event) {
  const GridHit hit = Layout().HitTest(event.position);
  // The second click of two on a check box is a click of its own.
  if (hit.part == GridPart::Cell && event.button == ButtonLeft) ToggleCheckBox(hit.row, hit.column);
  DblClick.Raise();
}

void zrGrid::ToggleCheckBox(std::size_t row, std::size_t column) {
  // A listener of RowColChange may have taken the row away.
  if (row > static_cast<std::size_t>(rows_->Count()) || column > static_cast<std::size_t>(columns_->Count())) return;
  zrGridRow& target = rows_->At(row);
  if (!IsCheckBoxColumn(column) || target.Locked()) return;
  target.SetValue(static_cast<std::int32_t>(column), target.ValueAt(column) != Variant(true));
}

void zrGrid::OnWheel(const WheelEvent& event) {
  const bool sideways = (event.shift & ShiftShift) != 0;
  const double x = sideways ? event.linesX + event.linesY : event.linesX;
  const double y = sideways ? 0 : event.linesY;
  OnScroll(Orientation::Horizontal, horizontal_.value + static_cast<int>(std::round(x * horizontal_.step)));
  OnScroll(Orientation::Vertical, vertical_.value + static_cast<int>(std::round(y * vertical_.step)));
  UpdateScrollBars();
}

bool zrGrid::OnKeyDown(const KeyEvent& event) {
  if (event.shift != ShiftNone) return false;
  switch (event.keyCode) {
    case KeyCodeLeft:
    case KeyCodeUp:
    case KeyCodeRight:
    case KeyCodeDown:
      return MoveCurrent(event.keyCode);
    case KeyCodeEnter:
      return MoveCurrent(KeyCodeRight);
    case KeyCodeSpace:
      if (currentRow_ == 0) return false;
      ToggleCheckBox(currentRow_, currentColumn_);
      return true;
    case KeyCodeDelete:
      if (!allowRowInsert_ || selection_.first == 0) return false;
      DeleteSelectedRows();
      return true;
    default:
      return false;
  }
}

std::size_t zrGrid::NextShownColumn(std::size_t from, int direction) const {
  const auto count = static_cast<std::int64_t>(columns_->Count());
  for (std::int64_t column = static_cast<std::int64_t>(from) + direction; column >= 1 && column <= count;
       column += direction) {
    if (columns_->At(static_cast<std::size_t>(column)).Width() > 0) return static_cast<std::size_t>(column);
  }
  return from;
}

bool zrGrid::MoveCurrent(std::int32_t keyCode) {
  const auto count = static_cast<std::size_t>(rows_->Count());
  if (count == 0 || columns_->Count() == 0) return false;
  if (currentRow_ == 0) {
    MakeCurrent(1, NextShownColumn(0, 1));
    return true;
  }
  std::size_t row = currentRow_;
  std::size_t column = currentColumn_;
  if (keyCode == KeyCodeLeft) column = NextShownColumn(column, -1);
  if (keyCode == KeyCodeRight) column = NextShownColumn(column, 1);
  if (keyCode == KeyCodeUp && row > 1) --row;
  if (keyCode == KeyCodeDown && row < count) ++row;
  MakeCurrent(row, column);
  return true;
}

// The row before which a drop at this place inserts: behind the last one when it lies below all rows.
static std::size_t DropRowAt(const GridLayout& layout, PixelPoint point, std::size_t count) {
  const GridHit hit = layout.HitTest({layout.RowHeaderWidth() / 2, point.y});
  return hit.row != 0 ? hit.row : point.y < layout.HeaderHeight() ? 1 : count + 1;
}

bool zrGrid::OnDragOver(const std::string& text, const MouseEvent& event) {
  std::int32_t effect = 0;
  OLEDragOver.Raise(text, effect, event.button, event.shift, static_cast<float>(event.position.x.Value()),
                    static_cast<float>(event.position.y.Value()));
  dropRow_ = effect != 0 ? DropRowAt(Layout(), event.position, static_cast<std::size_t>(rows_->Count())) : 0;
  Redraw();
  return effect != 0;
}

void zrGrid::OnDragLeave() {
  dropRow_ = 0;
  Redraw();
}

void zrGrid::OnDrop(const std::string& text, const MouseEvent& event) {
  OnDragLeave();
  std::int32_t effect = 1;
  OLEDragDrop.Raise(text, effect, event.button, event.shift, static_cast<float>(event.position.x.Value()),
                    static_cast<float>(event.position.y.Value()));
}

void zrGrid::OnFocusChanged(bool focused) {
  focused_ = focused;
  if (focused && currentRow_ == 0) MoveCurrent(KeyCodeDown);  // so that the keyboard has a place to start from
  Redraw();
}

// Text that does not fit its cell is shown whole.
std::string zrGrid::ToolTipAt(PixelPoint point) const {
  const GridLayout layout = Layout();
  const GridHit hit = layout.HitTest(point);
  if (hit.part != GridPart::Cell || columns_->At(hit.column).Style() == GridColumnCheckBox) return {};
  const std::string text = CellText(hit.row, hit.column);
  const Pixels room = layout.CellRect(hit.row, hit.column).width - kGridTextPadding * 2;
  return GetSurface().Metrics().TextWidth(text, font_) > room ? text : std::string();
}

}  // namespace zrqrybld
