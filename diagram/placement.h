// Where a new box goes: the first free place, row by row. Pure.
#pragma once

#include <span>

#include "base/units.h"

namespace zrqrybld {

struct PlacementRules {
  Twips surfaceWidth;  ///< the visible width
  Twips lowestRow;     ///< rows below it are not tried
  Twips gap;           ///< kept to the right of a box that is in the way
  Twips rowStep;       ///< the distance between two rows that are tried
};

/// The top left corner for a box of `size`. Rows are tried from the top, `rowStep` apart; in a row the
/// box moves from the left edge to the right of each box in its way, in the order of `boxes`. Boxes
/// that only touch are not in the way. When nothing is free the answer is (0, 0).
TwipsPoint FindPlace(TwipsSize size, std::span<const TwipsRect> boxes, const PlacementRules& rules);

}  // namespace zrqrybld
