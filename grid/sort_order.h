// Sort numbers: the run 1 to N over the sorted rows. Pure.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace zrqrybld {

/// The numbers without gaps and duplicates, in the same order; of two equal numbers the first row keeps
/// the smaller. 0 means "not sorted" and stays 0.
std::vector<std::int32_t> CloseSortGaps(std::span<const std::int32_t> orders);

}  // namespace zrqrybld
