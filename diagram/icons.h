// Icons drawn as vectors, sharp at every scale.
#pragma once

#include "platform/canvas.h"

namespace zrqrybld {

enum class Icon : std::uint8_t {
  Table,
  View,
  Key,
};

/// Draws the icon into the largest square in the middle of `rect`.
void DrawIcon(Canvas& canvas, Icon icon, const PixelRect& rect, const Ink& ink);

}  // namespace zrqrybld
