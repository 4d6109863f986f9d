// The grid's keyboard.
#include <algorithm>

#include "grid/grid.h"
#include "platform/commands.h"

namespace zrqrybld {

bool zrGrid::OnKeyDown(const KeyEvent& event) {
  if (edit_)
    return edit_->isCombo && edit_->column->Style() == GridColumnComboList ? cboList_->OnKeyDown(event) : false;
  return SelectionKey(event) || CommandKey(event) || JumpKey(event) || TypingKey(event);
}

// Keys that act on the current cell or the selected rows.
bool zrGrid::CommandKey(const KeyEvent& event) {
  const bool plain = event.shift == ShiftNone;
  if (Asks(event, Command::ContextMenu)) {
    if (currentRow_ == 0) {
      OfferMenu({}, {0_px, Layout().HeaderHeight()});
      return true;
    }
    const PixelRect cell = GetRowColumnXY(Row(), Column());
    OfferMenu({GridPart::Cell, currentRow_, currentColumn_}, {cell.left, cell.Bottom()});
    return true;
  }
  if (event.keyCode == KeyCodeTab) return MoveToNextCell(event.shift == ShiftShift ? -1 : 1);
  if (Asks(event, Command::CopyCells)) {
    GetSurface().SetClipboardText(CopyText());
    return true;
  }
  if (Asks(event, Command::PasteCells)) {
    PasteText(GetSurface().ClipboardText());
    return true;
  }
  if (Asks(event, Command::ZoomCell)) {
    ZoomWanted.Raise();
    return true;
  }
  if (Asks(event, Command::EditCell)) return OpenEditor();
  if (Asks(event, Command::OpenList)) {
    if (!OpenEditor()) return false;
    if (edit_ && edit_->isCombo) cboList_->OnKeyDown(event);
    return true;
  }
  const bool ofRows = allowRowInsert_ && selection_.first != 0;
  if (ofRows && Asks(event, Command::DeleteRows)) {
    DeleteSelectedRows();
    return true;
  }
  if (ofRows && Asks(event, Command::InsertRows)) {
    InsertRows();
    return true;
  }
  if (!plain) return false;
  switch (event.keyCode) {
    case KeyCodeEnter:
      return MoveToNextCell(1);
    case KeyCodeSpace:
      if (currentRow_ == 0 || !IsCheckBoxColumn(currentColumn_)) return false;
      ToggleCheckBox(currentRow_, currentColumn_);
      return true;
    default:
      return false;
  }
}

// Shift with the space bar or the arrows selects rows; Alt moves them.
bool zrGrid::SelectionKey(const KeyEvent& event) {
  const bool vertical = event.keyCode == KeyCodeUp || event.keyCode == KeyCodeDown;
  if (Asks(event, Command::MoveRowsUp)) return MoveRows(-1);
  if (Asks(event, Command::MoveRowsDown)) return MoveRows(1);
  if (event.keyCode == KeyCodeEscape && event.shift == ShiftNone && selection_.first != 0) {
    SelectRows(0, 0);
    return true;
  }
  if (event.shift != ShiftShift || currentRow_ == 0) return false;
  if (event.keyCode == KeyCodeSpace) {
    anchor_ = currentRow_;
    SelectRows(currentRow_, currentRow_);
    return true;
  }
  if (!vertical) return false;
  if (selection_.first == 0) anchor_ = currentRow_;
  MoveCurrent(event.keyCode);
  SelectRows(std::min(anchor_, currentRow_), std::max(anchor_, currentRow_));
  return true;
}

// The arrows, and keys that go further.
bool zrGrid::JumpKey(const KeyEvent& event) {
  const bool ctrl = event.shift == ShiftCtrl;
  if (event.shift != ShiftNone && !ctrl) return false;
  switch (event.keyCode) {
    case KeyCodeLeft:
    case KeyCodeUp:
    case KeyCodeRight:
    case KeyCodeDown:
      return !ctrl && MoveCurrent(event.keyCode);
    default:
      break;
  }
  const auto count = static_cast<std::size_t>(rows_->Count());
  if (count == 0 || columns_->Count() == 0 || currentRow_ == 0) return false;
  const auto page = static_cast<std::size_t>(std::max(1, vertical_.page / std::max(1, vertical_.step) - 1));
  const std::size_t first = NextShownColumn(0, 1);
  const std::size_t last = NextShownColumn(static_cast<std::size_t>(columns_->Count()) + 1, -1);
  switch (event.keyCode) {
    case KeyCodeHome:
      MakeCurrent(ctrl ? 1 : currentRow_, first);
      return true;
    case KeyCodeEnd:
      MakeCurrent(ctrl ? count : currentRow_, last);
      return true;
    case KeyCodePageUp:
      MakeCurrent(currentRow_ > page ? currentRow_ - page : 1, currentColumn_);
      return !ctrl;
    case KeyCodePageDown:
      MakeCurrent(std::min(currentRow_ + page, count), currentColumn_);
      return !ctrl;
    default:
      return false;
  }
}

// What types something replaces the cell's text; the backspace key empties it.
bool zrGrid::TypingKey(const KeyEvent& event) {
  const bool empties = event.keyCode == KeyCodeBack && event.shift == ShiftNone;
  if (event.text.empty() && !empties) return false;
  if (currentRow_ == 0 && !MoveCurrent(KeyCodeDown)) return false;
  const std::string typed = empties ? std::string() : event.text;
  return OpenEditor(&typed);
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

// The next cell of the row, behind its end the first one of the next row; backwards alike. False at the grid's ends.
bool zrGrid::MoveToNextCell(int direction) {
  if (currentRow_ == 0) return MoveCurrent(KeyCodeDown);
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
  // A combo whose text box is hidden leaves the keyboard to the grid.
  const bool editsHere = edit_ && edit_->isCombo && cboList_->HideEdit();
  if (!focused && editsHere) CommitEdit();
  Redraw();
}

}  // namespace zrqrybld
