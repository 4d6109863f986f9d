#include "zrqrybld/grid/sort_order.h"

#include <algorithm>
#include <cstddef>

namespace zrqrybld {

std::vector<std::int32_t> CloseSortGaps(std::span<const std::int32_t> orders) {
  std::vector<std::size_t> sorted;
  for (std::size_t i = 0; i < orders.size(); ++i) {
    if (orders[i] != 0) sorted.push_back(i);
  }
  std::ranges::stable_sort(sorted, {}, [&](std::size_t i) { return orders[i]; });
  std::vector<std::int32_t> closed(orders.size(), 0);
  for (std::size_t rank = 0; rank < sorted.size(); ++rank) closed[sorted[rank]] = static_cast<std::int32_t>(rank) + 1;
  return closed;
}

std::vector<std::int32_t> PlaceSortOrder(std::span<const std::int32_t> orders, std::size_t row, std::int32_t wished) {
  std::vector<std::int32_t> others(orders.begin(), orders.end());
  others[row] = 0;
  others = CloseSortGaps(others);
  if (wished <= 0) return others;
  const auto sorted = static_cast<std::int32_t>(std::ranges::count_if(others, [](std::int32_t n) { return n != 0; }));
  const std::int32_t place = std::min(wished, sorted + 1);
  for (std::int32_t& order : others) {
    if (order >= place) ++order;
  }
  others[row] = place;
  return others;
}

}  // namespace zrqrybld
