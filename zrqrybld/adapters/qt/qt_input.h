// Qt's keys, buttons and modifiers in the terms of platform/input.h.
#pragma once

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/platform/surface.h"

namespace zrqrybld {

/// The `KeyCode` of a key; 0 for a key that has none.
std::int32_t ToKeyCode(int qtKey);

/// The held modifiers as `ShiftMask` bits.
std::int32_t ToShift(Qt::KeyboardModifiers modifiers);

/// The buttons as `MouseButton` bits; other buttons of a mouse are left out.
std::int32_t ToButtons(Qt::MouseButtons buttons);

/// What a key event means: its code, its modifiers and the text it types.
ZRQRYBLD_API KeyEvent ToKeyEvent(const QKeyEvent& event);

/// Ctrl+Z; Ctrl+Y or Ctrl+Shift+Z, on every platform.
bool IsUndoKey(const QKeyEvent& event);
bool IsRedoKey(const QKeyEvent& event);

/// A button that went down or up, or, while the mouse moves, all that are held.
MouseEvent ToMouseEvent(const QMouseEvent& event);

/// The wheel's way in lines. A touch pad's pixels count as parts of a line of `lineHeight` pixels.
WheelEvent ToWheelEvent(const QWheelEvent& event, double lineHeight);

/// The pointer's shape.
Qt::CursorShape ToCursorShape(Cursor cursor);

}  // namespace zrqrybld
