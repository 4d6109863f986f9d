// Spreading joined boxes over columns that are about as high as one another. Pure.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "zrqrybld/base/units.h"

namespace zrqrybld {

/// Boxes that hang together, by their positions from 0.
struct JoinedBoxes {
  std::vector<std::vector<std::size_t>> neighbours;
  std::vector<Pixels> heights;
};

/// The boxes in the columns from 0 to `count` - 1, each column from top to bottom, some maybe empty. `columns` says
/// where each box begins; a join must lead to the same column or the next one there, and does so afterwards. Where a
/// box goes with all that hangs on it, these stay near it, also within a column.
std::vector<std::vector<std::size_t>> BalanceColumns(const JoinedBoxes& boxes, std::vector<std::size_t> columns,
                                                     std::size_t count);

}  // namespace zrqrybld
