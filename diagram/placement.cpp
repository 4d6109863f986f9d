#include "diagram/placement.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <set>
#include <vector>

namespace zrqrybld {
namespace {

// The free place in one row: past each box in the way, from the first box again after every move.
std::optional<Twips> FreePlaceInRow(Twips y, TwipsSize size, const std::vector<TwipsRect>& inRow,
                                    const PlacementRules& rules) {
  Twips x{0};
  while (x <= rules.surfaceWidth - size.width) {
    const TwipsRect candidate{x, y, size.width, size.height};
    const auto inTheWay = std::ranges::find_if(inRow, [&](const TwipsRect& box) { return box.Overlaps(candidate); });
    if (inTheWay == inRow.end()) return x;
    x = inTheWay->Right() + rules.gap;
  }
  return std::nullopt;
}

}  // namespace

TwipsPoint FindPlace(TwipsSize size, std::span<const TwipsRect> boxes, const PlacementRules& rules) {
  // Between two rows nothing changes unless a box ends above the lower one, or begins above its lower
  // edge; so only the first rows after such a place are tried, with the same answer as trying all.
  std::vector<double> rows{0};
  const auto firstRowAtOrAfter = [&](Twips y) { return std::max(0.0, std::ceil(y / rules.rowStep)); };
  for (const TwipsRect& box : boxes) {
    rows.push_back(firstRowAtOrAfter(box.Bottom()));
    const double below = (box.top - size.height) / rules.rowStep;
    rows.push_back(std::max(0.0, std::floor(below) + 1));
  }
  std::ranges::sort(rows);
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());

  // The rows go down, so each box enters the row once, at its top, and leaves it once, at its bottom.
  std::vector<std::size_t> byTop(boxes.size());
  std::iota(byTop.begin(), byTop.end(), 0u);
  std::ranges::sort(byTop, {}, [&](std::size_t box) { return boxes[box].top; });
  std::size_t next = 0;
  std::set<std::size_t> current;  // positions, because the order of the boxes decides
  std::vector<TwipsRect> inRow;
  for (const double row : rows) {
    const Twips y = rules.rowStep * row;
    if (y > rules.lowestRow) break;
    for (; next < byTop.size() && boxes[byTop[next]].top < y + size.height; ++next) current.insert(byTop[next]);
    std::erase_if(current, [&](std::size_t box) { return boxes[box].Bottom() <= y; });
    inRow.clear();
    for (const std::size_t box : current) inRow.push_back(boxes[box]);
    if (const std::optional<Twips> x = FreePlaceInRow(y, size, inRow, rules)) return {*x, y};
  }
  return {};
}

}  // namespace zrqrybld
