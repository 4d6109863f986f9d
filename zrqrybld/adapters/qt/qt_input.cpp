#include "zrqrybld/adapters/qt/qt_input.h"

#include <QApplication>
#include <algorithm>
#include <iterator>

#include "zrqrybld/adapters/qt/qt_geometry.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/platform/commands.h"

namespace zrqrybld {
namespace {

struct KeyRow {
  int qtKey;
  std::int32_t keyCode;
};
// Plus, minus, the menu key and F5 to F24 have no name in `KeyCode`, but commands hang on them; they get the codes that
// keyboards commonly give them.
constexpr KeyRow kKeys[] = {
    {Qt::Key_Backspace, KeyCodeBack},
    {Qt::Key_Tab, KeyCodeTab},
    {Qt::Key_Backtab, KeyCodeTab},
    {Qt::Key_Return, KeyCodeEnter},
    {Qt::Key_Enter, KeyCodeEnter},
    {Qt::Key_Escape, KeyCodeEscape},
    {Qt::Key_Space, KeyCodeSpace},
    {Qt::Key_PageUp, KeyCodePageUp},
    {Qt::Key_PageDown, KeyCodePageDown},
    {Qt::Key_End, KeyCodeEnd},
    {Qt::Key_Home, KeyCodeHome},
    {Qt::Key_Left, KeyCodeLeft},
    {Qt::Key_Up, KeyCodeUp},
    {Qt::Key_Right, KeyCodeRight},
    {Qt::Key_Down, KeyCodeDown},
    {Qt::Key_Insert, KeyCodeInsert},
    {Qt::Key_Delete, KeyCodeDelete},
    {Qt::Key_Menu, 93},
    {Qt::Key_Plus, 107},
    {Qt::Key_Minus, 109},
};

struct CursorRow {
  Cursor cursor;
  Qt::CursorShape shape;
};
constexpr CursorRow kCursors[] = {
    {Cursor::Arrow, Qt::ArrowCursor},
    {Cursor::Wait, Qt::WaitCursor},
    {Cursor::Move, Qt::SizeAllCursor},
    {Cursor::SizeHorizontal, Qt::SizeHorCursor},
    {Cursor::SizeVertical, Qt::SizeVerCursor},
    {Cursor::SizeDiagonalDown, Qt::SizeFDiagCursor},
    {Cursor::SizeDiagonalUp, Qt::SizeBDiagCursor},
    {Cursor::ColumnSplit, Qt::SplitHCursor},
    {Cursor::NoDrop, Qt::ForbiddenCursor},
    {Cursor::Join, Qt::DragLinkCursor},
};
static_assert(std::size(kCursors) == static_cast<std::size_t>(Cursor::Join) + 1);

// The text a key types. A command key (Ctrl or Alt held) types nothing, but both together are how some keyboards
// report AltGr, which does type.
std::string TypedText(const QKeyEvent& event) {
  const bool ctrl = event.modifiers().testFlag(Qt::ControlModifier);
  const bool alt = event.modifiers().testFlag(Qt::AltModifier);
  if (ctrl != alt) return {};
  const QString text = event.text();
  const bool printable = std::ranges::all_of(text, [](QChar c) { return c.unicode() >= 0x20 && c.unicode() != 0x7f; });
  return printable ? ToUtf8(text) : std::string();
}

}  // namespace

std::int32_t ToKeyCode(int qtKey) {
  const bool letterOrDigit = (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) || (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9);
  if (letterOrDigit) return qtKey;
  if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24) return KeyCodeF1 + (qtKey - Qt::Key_F1);
  const auto row = std::ranges::find(kKeys, qtKey, &KeyRow::qtKey);
  return row == std::end(kKeys) ? 0 : row->keyCode;
}

std::int32_t ToShift(Qt::KeyboardModifiers modifiers) {
  return (modifiers.testFlag(Qt::ShiftModifier) ? ShiftShift : 0) |
         (modifiers.testFlag(Qt::ControlModifier) ? ShiftCtrl : 0) |
         (modifiers.testFlag(Qt::AltModifier) ? ShiftAlt : 0);
}

std::int32_t ToButtons(Qt::MouseButtons buttons) {
  return (buttons.testFlag(Qt::LeftButton) ? ButtonLeft : 0) | (buttons.testFlag(Qt::RightButton) ? ButtonRight : 0) |
         (buttons.testFlag(Qt::MiddleButton) ? ButtonMiddle : 0);
}

KeyEvent ToKeyEvent(const QKeyEvent& event) {
  KeyEvent key{ToKeyCode(event.key()), ToShift(event.modifiers()), TypedText(event)};
  if (event.key() == Qt::Key_Backtab) key.shift |= ShiftShift;
  return key;
}

bool IsUndoKey(const QKeyEvent& event) { return Asks(ToKeyEvent(event), Command::Undo); }

bool IsRedoKey(const QKeyEvent& event) { return Asks(ToKeyEvent(event), Command::Redo); }

MouseEvent ToMouseEvent(const QMouseEvent& event) {
  const bool moving = event.type() == QEvent::MouseMove;
  return {ToButtons(moving ? event.buttons() : Qt::MouseButtons(event.button())), ToShift(event.modifiers()),
          ToPixelPoint(event.position())};
}

WheelEvent ToWheelEvent(const QWheelEvent& event, double lineHeight) {
  WheelEvent wheel{ToShift(event.modifiers()), ToPixelPoint(event.position())};
  // Qt counts to the left and up, the library to the right and down.
  if (!event.pixelDelta().isNull() && lineHeight > 0) {
    wheel.linesX = -event.pixelDelta().x() / lineHeight;
    wheel.linesY = -event.pixelDelta().y() / lineHeight;
  } else {
    const double linesPerUnit = QApplication::wheelScrollLines() / double{QWheelEvent::DefaultDeltasPerStep};
    wheel.linesX = -event.angleDelta().x() * linesPerUnit;
    wheel.linesY = -event.angleDelta().y() * linesPerUnit;
  }
  return wheel;
}

Qt::CursorShape ToCursorShape(Cursor cursor) { return std::ranges::find(kCursors, cursor, &CursorRow::cursor)->shape; }

}  // namespace zrqrybld
