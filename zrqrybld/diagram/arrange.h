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
  Pixels columnGap;  ///< between boxes side by side; the lines run here
  Pixels rowGap;     ///< between boxes one above the other
  PixelSize window;  ///< the picture gets about this shape
};

/// The place of each box. Boxes that are joined, directly or through others, form a group: they stand in columns, each
/// box one column beside a neighbour, ordered so that lines cross little; a long group goes on in a band below. Where
/// that leaves boxes small, the columns are made alike in height, with neighbours in the same or the next one, so that
/// no line runs under a box; where they would still be very small, columns are filled one after the other. Groups
/// follow one another by rows. Of the pictures that may be had so it is the one that a window of this shape shows
/// largest. No two boxes touch.
std::vector<PixelPoint> ArrangeBoxes(std::span<const PixelSize> boxes, std::span<const BoxLink> links,
                                     const ArrangeRules& rules);

}  // namespace zrqrybld
