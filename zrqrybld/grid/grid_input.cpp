// The grid's keyboard.
#include <algorithm>

#include "zrqrybld/grid/grid.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {

// What a key does while no editor is open.
class GridKeys {
 public:
  explicit GridKeys(zrGrid& grid) : grid_(grid) {}
  bool Act(const KeyEvent& event) const {
    return SelectionKey(event) || CommandKey(event) || JumpKey(event) || TypingKey(event);
  }

 private:
  bool CommandKey(const KeyEvent& event) const;
  bool RowKey(const KeyEvent& event) const;
  bool SelectionKey(const KeyEvent& event) const;
  bool JumpKey(const KeyEvent& event) const;
  bool TypingKey(const KeyEvent& event) const;

  zrGrid& grid_;
};

// Keys that act on the current cell or the selected rows.
bool GridKeys::CommandKey(const KeyEvent& event) const {
  if (Asks(event, Command::ContextMenu)) {
    if (grid_.currentRow_ == 0) {
      grid_.OfferMenu({}, {0_px, grid_.Layout().HeaderHeight()});
      return true;
    }
    const PixelRect cell = grid_.GetRowColumnXY(grid_.Row(), grid_.Column());
    grid_.OfferMenu({GridPart::Cell, grid_.currentRow_, grid_.currentColumn_}, {cell.left, cell.Bottom()});
    return true;
  }
  if (Asks(event, Command::OpenBuilder)) {
    grid_.BuilderWanted.Raise();
    return true;
  }
  if (Asks(event, Command::GoToQueryAtCaret) && grid_.currentRow_ != 0 &&
      !grid_.ShortText(grid_.currentRow_, grid_.currentColumn_).empty()) {
    grid_.OpenWanted.Raise();
    return true;
  }
  if (Asks(event, Command::NextStop)) return grid_.MoveToNextCell(1);
  if (Asks(event, Command::PreviousStop)) return grid_.MoveToNextCell(-1);
  if (Asks(event, Command::CopyCells)) {
    grid_.GetSurface().SetClipboardText(grid_.CopyText());
    return true;
  }
  if (Asks(event, Command::PasteCells)) {
    grid_.PasteText(grid_.GetSurface().ClipboardText());
    return true;
  }
  if (Asks(event, Command::ZoomCell)) {
    grid_.ZoomWanted.Raise();
    return true;
  }
  if (Asks(event, Command::EditCell)) return grid_.OpenEditor();
  if (Asks(event, Command::OpenList)) {
    if (!grid_.OpenEditor()) return false;
    grid_.editing_.OnListKey(event);
    return true;
  }
  if (RowKey(event)) return true;
  if (event.shift != ShiftNone) return false;
  switch (event.keyCode) {
    case KeyCodeEnter:
      return grid_.MoveToNextCell(1);
    case KeyCodeSpace:
      if (grid_.currentRow_ == 0 || !grid_.IsCheckBoxColumn(grid_.currentColumn_)) return false;
      grid_.ToggleCheckBox(grid_.currentRow_, grid_.currentColumn_);
      return true;
    default:
      return false;
  }
}

// Keys that delete and insert rows.
bool GridKeys::RowKey(const KeyEvent& event) const {
  const bool deletes = Asks(event, Command::DeleteRows);
  if (!grid_.options_.allowRowInsert || (!deletes && !Asks(event, Command::InsertRows))) return false;
  if (grid_.selection_.Empty()) {
    if (!grid_.options_.rowKeysTakeCurrent || grid_.currentRow_ == 0) return false;
    grid_.SelectRows(grid_.currentRow_, grid_.currentRow_);
  }
  if (deletes) {
    grid_.DeleteSelectedRows();
  } else {
    grid_.InsertRows();
  }
  return true;
}

// Shift with the space bar or the arrows selects rows; Alt moves them.
bool GridKeys::SelectionKey(const KeyEvent& event) const {
  const bool vertical = event.keyCode == KeyCodeUp || event.keyCode == KeyCodeDown;
  if (Asks(event, Command::MoveRowsUp)) return grid_.MoveRows(-1);
  if (Asks(event, Command::MoveRowsDown)) return grid_.MoveRows(1);
  if (event.keyCode == KeyCodeEscape && event.shift == ShiftNone && !grid_.selection_.Empty()) {
    grid_.SelectRows(0, 0);
    return true;
  }
  if (event.shift != ShiftShift || grid_.currentRow_ == 0) return false;
  if (event.keyCode == KeyCodeSpace) {
    grid_.selection_.SetAnchor(grid_.currentRow_);
    grid_.SelectRows(grid_.currentRow_, grid_.currentRow_);
    return true;
  }
  if (!vertical) return false;
  if (grid_.selection_.Empty()) grid_.selection_.SetAnchor(grid_.currentRow_);
  grid_.MoveCurrent(event.keyCode);
  const RowRange range = grid_.selection_.UpTo(grid_.currentRow_);
  grid_.SelectRows(range.first, range.last);
  return true;
}

// The arrows, and keys that go further.
bool GridKeys::JumpKey(const KeyEvent& event) const {
  const bool ctrl = event.shift == ShiftCtrl;
  if (event.shift != ShiftNone && !ctrl) return false;
  switch (event.keyCode) {
    case KeyCodeLeft:
    case KeyCodeUp:
    case KeyCodeRight:
    case KeyCodeDown:
      return !ctrl && grid_.MoveCurrent(event.keyCode);
    default:
      break;
  }
  const auto count = static_cast<std::size_t>(grid_.rows_->Count());
  if (count == 0 || grid_.columns_->Count() == 0 || grid_.currentRow_ == 0) return false;
  const ScrollState& bar = grid_.scroller_.Bar(Orientation::Vertical);
  const auto page = static_cast<std::size_t>(std::max(1, bar.page / std::max(1, bar.step) - 1));
  const std::size_t first = grid_.NextShownColumn(0, 1);
  const std::size_t last = grid_.NextShownColumn(static_cast<std::size_t>(grid_.columns_->Count()) + 1, -1);
  switch (event.keyCode) {
    case KeyCodeHome:
      grid_.MakeCurrent(ctrl ? 1 : grid_.currentRow_, first);
      return true;
    case KeyCodeEnd:
      grid_.MakeCurrent(ctrl ? count : grid_.currentRow_, last);
      return true;
    case KeyCodePageUp:
      grid_.MakeCurrent(grid_.currentRow_ > page ? grid_.currentRow_ - page : 1, grid_.currentColumn_);
      return !ctrl;
    case KeyCodePageDown:
      grid_.MakeCurrent(std::min(grid_.currentRow_ + page, count), grid_.currentColumn_);
      return !ctrl;
    default:
      return false;
  }
}

// What types something replaces the cell's text; the backspace key empties it.
bool GridKeys::TypingKey(const KeyEvent& event) const {
  const bool empties = event.keyCode == KeyCodeBack && event.shift == ShiftNone;
  if (event.text.empty() && !empties) return false;
  if (grid_.currentRow_ == 0 && !grid_.BeginAtFirstCell()) return false;
  const std::string typed = empties ? std::string() : event.text;
  return grid_.OpenEditor(&typed);
}

// --- The grid ---

// While no cell is current the first one is shown as current: there the keys begin.
bool zrGrid::OnKeyDown(const KeyEvent& event) {
  const bool moves = event.keyCode >= KeyCodePageUp && event.keyCode <= KeyCodeDown;
  const bool acts = moves || event.keyCode == KeyCodeSpace || event.keyCode == KeyCodeEnter ||
                    Asks(event, Command::EditCell) || Asks(event, Command::OpenList);
  const bool begins = event.keyCode == KeyCodeTab || (acts && event.shift == ShiftNone);
  if (focused_ && currentRow_ == 0 && begins) BeginAtFirstCell();
  return IsEditing() ? editing_.OnKeyDown(event) : GridKeys(*this).Act(event);
}

// --- Moving the current cell ---

// The next column with a width, or `from` when there is none.
std::size_t zrGrid::NextShownColumn(std::size_t from, int direction) const {
  const auto count = static_cast<std::int64_t>(columns_->Count());
  for (std::int64_t column = static_cast<std::int64_t>(from) + direction; column >= 1 && column <= count;
       column += direction) {
    if (columns_->At(static_cast<std::size_t>(column)).Width() > 0) return static_cast<std::size_t>(column);
  }
  return from;
}

bool zrGrid::BeginAtFirstCell() {
  if (rows_->Count() == 0 || columns_->Count() == 0) return false;
  MakeCurrent(1, NextShownColumn(0, 1));
  return true;
}

bool zrGrid::MoveCurrent(std::int32_t keyCode) {
  const auto count = static_cast<std::size_t>(rows_->Count());
  if (currentRow_ == 0 || count == 0) return BeginAtFirstCell();
  std::size_t row = currentRow_;
  std::size_t column = currentColumn_;
  if (keyCode == KeyCodeLeft) column = NextShownColumn(column, -1);
  if (keyCode == KeyCodeRight) column = NextShownColumn(column, 1);
  if (keyCode == KeyCodeUp && row > 1) --row;
  if (keyCode == KeyCodeDown && row < count) ++row;
  MakeCurrent(row, column);
  return true;
}

// The next cell of the row, behind its end the first one of the next row; backwards alike. False at the grid's ends.
bool zrGrid::MoveToNextCell(int direction) {
  if (currentRow_ == 0) return BeginAtFirstCell();
  const auto count = static_cast<std::size_t>(rows_->Count());
  const std::size_t column = NextShownColumn(currentColumn_, direction);
  if (column != currentColumn_) {
    MakeCurrent(currentRow_, column);
    return true;
  }
  if (direction < 0 ? currentRow_ <= 1 : currentRow_ >= count) return false;
  MakeCurrent(
      direction < 0 ? currentRow_ - 1 : currentRow_ + 1,
      direction < 0 ? NextShownColumn(static_cast<std::size_t>(columns_->Count()) + 1, -1) : NextShownColumn(0, 1));
  return true;
}

void zrGrid::OnFocusChanged(bool focused) {
  focused_ = focused;
  if (!focused && editing_.LeavesKeyboard()) CommitEdit();
  Redraw();
}

}  // namespace zrqrybld
