// Sort numbers: the run 1 to N over the sorted rows. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zrqrybld {

/// The numbers without gaps and duplicates, in the same order; of two equal numbers the first row keeps
/// the smaller. 0 means "not sorted" and stays 0.
std::vector<std::int32_t> CloseSortGaps(std::span<const std::int32_t> orders);

/// The numbers after one row was given another one, without gaps and duplicates: the others make room in their order. A
/// wish above the number of sorted rows is the last place; 0 takes the row out. `row` counts from 0.
std::vector<std::int32_t> PlaceSortOrder(std::span<const std::int32_t> orders, std::size_t row, std::int32_t wished);

}  // namespace zrqrybld
