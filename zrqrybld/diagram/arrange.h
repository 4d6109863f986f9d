// Laying boxes out along their joins. Pure.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "zrqrybld/base/units.h"

namespace zrqrybld {

/// A join between two boxes, by their positions from 0.
struct BoxLink {
  std::size_t from;
  std::size_t to;
};

struct ArrangeRules {
  Twips columnGap;     ///< between boxes side by side; the lines run here
  Twips rowGap;        ///< between boxes one above the other
  Twips surfaceWidth;  ///< groups of joined boxes are put side by side up to here
};

/// The place of each box. Boxes that are joined, directly or through others, form a group: they stand in columns, each
/// box one column behind a neighbour, ordered so that lines cross little. Groups follow one another by rows. No two
/// boxes touch.
std::vector<TwipsPoint> ArrangeBoxes(std::span<const TwipsSize> boxes, std::span<const BoxLink> links,
                                     const ArrangeRules& rules);

}  // namespace zrqrybld
