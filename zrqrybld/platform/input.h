// Plain structs for what the user does. Adapters translate their toolkit's events into these.
#pragma once

#include <cstdint>
#include <string>

#include "zrqrybld/base/units.h"

namespace zrqrybld {

/// Mouse buttons, as bits.
enum MouseButton : std::int32_t { ButtonNone = 0, ButtonLeft = 1, ButtonRight = 2, ButtonMiddle = 4 };

/// Modifier keys held, as bits.
enum ShiftMask : std::int32_t { ShiftNone = 0, ShiftShift = 1, ShiftCtrl = 2, ShiftAlt = 4 };

/// What a control says that a drag over it is doing.
enum DragOverStateEnum : std::int32_t { DragEnter = 0, DragLeave = 1, DragOver = 2 };

/// A button going down or up, a double click, or the pointer moving.
struct MouseEvent {
  std::int32_t button = ButtonNone;  ///< the button that went down or up; all held ones while moving
  std::int32_t shift = ShiftNone;    ///< `ShiftMask` bits
  PixelPoint position;               ///< from the control's top left corner
};

/// A turn of the wheel or a scroll by touch.
struct WheelEvent {
  std::int32_t shift = ShiftNone;
  PixelPoint position;
  double linesX = 0;  ///< lines to scroll to the right
  double linesY = 0;  ///< lines to scroll down
};

/// Codes of the keys that the library handles; letters and digits are their upper-case ASCII codes.
enum KeyCode : std::int32_t {
  KeyCodeBack = 8,
  KeyCodeTab = 9,
  KeyCodeEnter = 13,
  KeyCodeEscape = 27,
  KeyCodeSpace = 32,
  KeyCodePageUp = 33,
  KeyCodePageDown = 34,
  KeyCodeEnd = 35,
  KeyCodeHome = 36,
  KeyCodeLeft = 37,
  KeyCodeUp = 38,
  KeyCodeRight = 39,
  KeyCodeDown = 40,
  KeyCodeInsert = 45,
  KeyCodeDelete = 46,
  KeyCodeMenu = 93,
  KeyCodePlus = 107,
  KeyCodeMinus = 109,
  KeyCodeF1 = 112,
  KeyCodeF2 = 113,
  KeyCodeF4 = 115,
};

/// A key going down or up.
struct KeyEvent {
  std::int32_t keyCode = 0;
  std::int32_t shift = ShiftNone;
  std::string text = {};  ///< what the key types, in UTF-8; empty for keys that type nothing
};

}  // namespace zrqrybld
