// Where new boxes go among those that stand: beside the boxes they are joined to. Pure.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "zrqrybld/base/units.h"

namespace zrqrybld {

/// A join between two boxes, by their positions from 0, and how far below their tops its line ends.
struct JoinPlace {
  std::size_t from;
  std::size_t to;
  Pixels fromY;
  Pixels toY;
};

struct BesideRules {
  Pixels columnGap;  ///< between boxes side by side; the lines run here, with the sign of their join's kind
  Pixels rowGap;     ///< between boxes one above the other
  PixelSize window;  ///< boxes are kept inside its width where there is a choice
};

/// Moves the new boxes, which are the last ones from `firstNew` on; the others stay. A box goes beside one that it is
/// joined to, where it has the gaps around it, no line runs under it and none of its own under another box, as near as
/// can be. Boxes that are joined to none that stands, and so many that their order matters more, are arranged together
/// below all. Without any that stands all are arranged.
void PlaceBeside(std::vector<PixelRect>& boxes, std::size_t firstNew, std::span<const JoinPlace> joins,
                 const BesideRules& rules);

}  // namespace zrqrybld
