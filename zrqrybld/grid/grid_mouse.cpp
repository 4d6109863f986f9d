// The grid's mouse: cells, headers, edges, menus, and texts that are dropped.
#include <algorithm>
#include <cmath>
#include <utility>

#include "zrqrybld/base/texts_grid.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/grid/grid.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

constexpr Pixels kNarrowest = 16_px;
constexpr double kDragDistance = 5;

// The row before which a drop at this place inserts: behind the last one when it lies below all rows.
std::size_t DropRowAt(const GridLayout& layout, PixelPoint point, std::size_t count) {
  const GridHit hit = layout.HitTest({layout.RowHeaderWidth() / 2, point.y});
  return hit.row != 0 ? hit.row : point.y < layout.HeaderHeight() ? 1 : count + 1;
}

}  // namespace

void zrGrid::OnMouseDown(const MouseEvent& event) {
  if (PressButton(event)) return;
  if (editing_.OnMouseDown(event)) return;
  CommitEdit();  // a click elsewhere; what is under the pointer is looked up after it
  const GridHit hit = Layout().HitTest(event.position);
  switch (hit.part) {
    case GridPart::ColumnEdge:
    case GridPart::ColumnHeader:
      GetSurface().SetFocus();
      PressHeader(hit, event);
      return;
    case GridPart::RowHeader:
      GetSurface().SetFocus();
      PressRowHeader(hit.row, event);
      return;
    case GridPart::Cell:
      PressCell(hit, event);
      return;
    default:
      GetSurface().SetFocus();
      SelectRows(0, 0);
      return;
  }
}

// A button that opens the cell, or one of the current cell for the builder.
bool zrGrid::PressButton(const MouseEvent& event) {
  const auto isOn = [&](std::size_t row, std::size_t column) {
    return event.button == ButtonLeft && CellButton(row, column).Contains(event.position);
  };
  const GridHit hit = Layout().HitTest(event.position);
  const bool isOther = hit.part == GridPart::Cell && isOn(hit.row, hit.column);
  if (!isOther && !isOn(currentRow_, currentColumn_)) return false;
  const Ref<Object> alive = Alive();
  CommitEdit();
  if (isOther) {
    MakeCurrent(hit.row, hit.column);
    GetSurface().SetFocus();
  }
  if (currentRow_ == 0 || currentRow_ > static_cast<std::size_t>(rows_->Count())) return true;
  (ShortText(currentRow_, currentColumn_).empty() ? BuilderWanted : OpenWanted).Raise();
  return true;
}

void zrGrid::PressHeader(const GridHit& hit, const MouseEvent& event) {
  if (event.button != ButtonLeft) return;
  const PixelRect header = Layout().ColumnHeaderRect(hit.column);
  if (hit.part == GridPart::ColumnHeader) {
    const bool checked = columns_->At(hit.column).DisplayAttribute() == kCheckedHeader;
    if (checked && HeaderCheckBox(header).Contains(event.position)) CheckColumn(hit.column);
    return;
  }
  if (!options_.allowColumnResize) return;
  gesture_ = SizingColumn{hit.column, event.position.x - header.Right()};
  GetSurface().SetCapture(true);
}

// Selects the row, or with Shift all rows up to it. A row that is selected already may be the handle of all of them.
void zrGrid::PressRowHeader(std::size_t row, const MouseEvent& event) {
  if ((event.shift & ShiftShift) != 0 && !selection_.Empty()) {
    const RowRange range = selection_.UpTo(row);
    SelectRows(range.first, range.last);
  } else if (!selection_.Contains(row)) {
    selection_.SetAnchor(row);
    SelectRows(row, row);
  }
  MakeCurrent(row, currentColumn_ != 0 ? currentColumn_ : NextShownColumn(0, 1));
  if (event.button != ButtonLeft || event.shift != ShiftNone || !options_.allowRowInsert) return;
  gesture_ = MovingRows{event.position, row, false};
  GetSurface().SetCapture(true);
}

void zrGrid::PressCell(const GridHit& hit, const MouseEvent& event) {
  SelectRows(0, 0);
  MakeCurrent(hit.row, hit.column);
  GetSurface().SetFocus();
  // A listener may have gone elsewhere.
  if (currentRow_ != hit.row || currentColumn_ != hit.column) return;
  if (IsCheckBoxColumn(hit.column)) {
    if (event.button == ButtonLeft) ToggleCheckBox(hit.row, hit.column);
  } else {
    OpenEditor();
  }
}

void zrGrid::OnMouseMove(const MouseEvent& event) {
  if (const auto* sizing = std::get_if<SizingColumn>(&gesture_)) {
    const Pixels left = Layout().ColumnHeaderRect(sizing->column).left;
    const Pixels width = std::max(event.position.x - sizing->grip - left, kNarrowest);
    columns_->At(sizing->column).SetShare(0);
    columns_->At(sizing->column).SetWidth(static_cast<float>(GetSurface().Scale().TwipsX(width).Value()));
    return;
  }
  if (auto* moving = std::get_if<MovingRows>(&gesture_)) {
    DragRows(*moving, event.position);
    return;
  }
  const GridHit hit = Layout().HitTest(event.position);
  const bool edge = options_.allowColumnResize && hit.part == GridPart::ColumnEdge;
  GetSurface().SetCursor(edge ? Cursor::ColumnSplit : Cursor::Arrow);
  const std::size_t header = hit.part == GridPart::ColumnHeader ? hit.column : 0;
  if (std::exchange(hoverHeader_, header) != header) Redraw();
}

void zrGrid::OnMouseLeave() {
  if (std::exchange(hoverHeader_, std::size_t{0}) != 0) Redraw();
}

void zrGrid::DragRows(MovingRows& moving, PixelPoint to) {
  const double way = std::hypot((to.x - moving.from.x).Value(), (to.y - moving.from.y).Value());
  if (!moving.started && way < kDragDistance) return;
  moving.started = true;
  // Near the edges the rows scroll along.
  const GridLayout layout = Layout();
  const PixelSize view = GetSurface().ViewSize();
  const int step = scroller_.Bar(Orientation::Vertical).step;
  if (scroller_.ScrollTowards(Orientation::Vertical, to.y, layout.HeaderHeight(), view.height, step)) editing_.Place();
  UpdateScrollBars();
  dropRow_ = DropRowAt(Layout(), to, static_cast<std::size_t>(rows_->Count()));
  GetSurface().SetCursor(Cursor::Move);
  Redraw();
}

void zrGrid::OnMouseUp(const MouseEvent& event) {
  editing_.OnMouseUp(event);
  const bool ends = event.button == ButtonLeft && !std::holds_alternative<NoGesture>(gesture_);
  if (ends) {
    const Gesture gesture = std::exchange(gesture_, NoGesture{});
    GetSurface().SetCapture(false);
    if (const auto* moving = std::get_if<MovingRows>(&gesture)) {
      const std::size_t before = std::exchange(dropRow_, std::size_t{0});
      GetSurface().SetCursor(Cursor::Arrow);
      if (moving->started) {
        MoveRange(selection_.Range(), before);
      } else if (moving->grip <= static_cast<std::size_t>(rows_->Count())) {
        selection_.SetAnchor(moving->grip);
        SelectRows(moving->grip, moving->grip);
      }
      Redraw();
    }
  }
  MouseUp.Raise(event.button, event.shift, static_cast<float>(event.position.x.Value()),
                static_cast<float>(event.position.y.Value()));
  if (event.button == ButtonRight) OfferMenu(Layout().HitTest(event.position), event.position);
}

void zrGrid::OfferMenu(const GridHit& hit, PixelPoint at) {
  if (hit.part == GridPart::Cell) {
    ShowContextMenu.Raise(static_cast<std::int32_t>(hit.row), static_cast<std::int32_t>(hit.column));
  }
  if (!customContextMenu_) MenuWanted.Raise(hit, at);
}

void zrGrid::OnDoubleClick(const MouseEvent& event) {
  const GridHit hit = Layout().HitTest(event.position);
  if (event.button == ButtonLeft) {
    // The second click of two on a check box is a click of its own.
    if (hit.part == GridPart::Cell) ToggleCheckBox(hit.row, hit.column);
    if (hit.part == GridPart::ColumnEdge && options_.allowColumnResize) {
      FitColumn(static_cast<std::int32_t>(hit.column),
                static_cast<float>(GetSurface().Scale().TwipsX(kNarrowest).Value()));
    }
    if (hit.part == GridPart::ColumnHeader) PressHeader(hit, event);
  }
  DblClick.Raise();
}

void zrGrid::ToggleCheckBox(std::size_t row, std::size_t column) {
  // A listener of RowColChange may have taken the row away.
  if (row > static_cast<std::size_t>(rows_->Count()) || column > static_cast<std::size_t>(columns_->Count())) return;
  zrGridRow& target = rows_->At(row);
  if (!IsCheckBoxColumn(column) || target.Locked()) return;
  target.SetValue(static_cast<std::int32_t>(column), target.ValueAt(column) != Variant(true));
}

// --- A header that stands for its cells ---

// Checks all cells, or none when all are checked.
void zrGrid::CheckColumn(std::size_t column) {
  const bool check = StateOfColumn(column) != CheckState::On;
  InBatch(GridWork::EditCells, [&] {
    for (auto row = static_cast<std::size_t>(rows_->Count()); row >= 1; --row) {
      if (row > static_cast<std::size_t>(rows_->Count())) continue;  // a listener has removed rows
      zrGridRow& target = rows_->At(row);
      if (target.ValueAt(column).IsEmpty() || target.Locked()) continue;
      target.SetValue(static_cast<std::int32_t>(column), check);
    }
  });
}

// --- Wheel, drops, tool tips ---

void zrGrid::OnWheel(const WheelEvent& event) {
  const bool sideways = (event.shift & ShiftShift) != 0;
  const double x = sideways ? event.linesX + event.linesY : event.linesX;
  const double y = sideways ? 0 : event.linesY;
  const auto scroll = [this](Orientation orientation, double lines) {
    const ScrollState& bar = scroller_.Bar(orientation);
    OnScroll(orientation, bar.value + static_cast<int>(std::round(lines * bar.step)));
  };
  scroll(Orientation::Horizontal, x);
  scroll(Orientation::Vertical, y);
  UpdateScrollBars();
}

bool zrGrid::OnDragOver(const std::string& text, const MouseEvent& event) {
  const bool takes = drop_.Over(text, event, 0);
  dropRow_ = takes ? Layout().HitTest({1_px, event.position.y}).row : 0;
  Redraw();
  return takes;
}

void zrGrid::OnDragLeave() {
  dropRow_ = 0;
  Redraw();
  drop_.Leave(true);
}

void zrGrid::OnDrop(const std::string& text, const MouseEvent& event) {
  drop_.Leave(false);
  OnDragLeave();
  CommitEdit();
  drop_.Drop(text, event);
}

// Text that does not fit its cell is shown whole; what is wrong with it comes first.
std::string zrGrid::ToolTipAt(PixelPoint point) const {
  const GridLayout layout = Layout();
  const GridHit hit = layout.HitTest(point);
  if (hit.part == GridPart::Cell && CellButton(hit.row, hit.column).Contains(point)) {
    const bool opens = !ShortText(hit.row, hit.column).empty();
    const TextId does = opens ? text::OpensCellQuery : text::DoesBuilder;
    return Say(does) + " (" + KeyTextOf(opens ? Command::GoToQueryAtCaret : Command::OpenBuilder) + ")";
  }
  const auto unlessItFits = [&](const std::string& text, Pixels width) {
    return GetSurface().Metrics().TextWidth(text, options_.font) > width - kGridTextPadding * 2 ? text : std::string();
  };
  if (hit.part == GridPart::ColumnHeader) {
    return unlessItFits(columns_->At(hit.column).Caption(), layout.ColumnHeaderRect(hit.column).width);
  }
  if (hit.part != GridPart::Cell) return {};
  if (const std::string& hint = rows_->At(hit.row).HintAt(hit.column); !hint.empty()) return hint;
  if (IsCheckBoxColumn(hit.column)) return {};
  return unlessItFits(CellText(hit.row, hit.column), layout.CellRect(hit.row, hit.column).width);
}

}  // namespace zrqrybld
