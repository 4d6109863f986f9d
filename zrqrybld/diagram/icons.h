// Icons drawn as vectors, sharp at every scale.
#pragma once

#include "zrqrybld/diagram/box_rows.h"
#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

enum class Icon : std::uint8_t {
  Table,
  View,
  Query,
  Key,
  Joined,
  Ascending,
  Descending,
  Filter,
  Minimize,
  Restore,
};

/// Draws what a column holds: "1" for numbers, "A" for texts and so on; nothing for `TypeKind::None`.
void DrawTypeIcon(Canvas& canvas, TypeKind kind, const PixelRect& rect, const Ink& ink);

/// Draws the icon into the largest square in the middle of `rect`.
void DrawIcon(Canvas& canvas, Icon icon, const PixelRect& rect, const Ink& ink);

}  // namespace zrqrybld
