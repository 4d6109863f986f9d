#include "zrqrybld/diagram/beside.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "zrqrybld/diagram/arrange.h"
#include "zrqrybld/diagram/routing.h"

namespace zrqrybld {
namespace {

// Searching costs boxes times lines for each new box.
constexpr std::size_t kMostPlacedOneByOne = 40;
constexpr std::size_t kMostPartners = 6;
constexpr std::size_t kMostHeights = 24;  // tried beside a partner
constexpr double kCrossing = 10'000;      // what a line under a box is worth, in pixels of distance
constexpr double kOutside = 2'000;
constexpr double kAside = 60;  // to the left, or not in line with a column
constexpr Pixels kStub = 14_px;

class Placer {
 public:
  Placer(std::vector<PixelRect>& boxes, std::size_t firstNew, std::span<const JoinPlace> joins,
         const BesideRules& rules)
      : boxes_(boxes), joins_(joins), rules_(rules), joinsOf_(boxes.size()), stands_(boxes.size()) {
    for (std::size_t i = 0; i < joins.size(); ++i) {
      if (joins[i].from == joins[i].to) continue;
      joinsOf_[joins[i].from].push_back(i);
      joinsOf_[joins[i].to].push_back(i);
    }
    std::fill_n(stands_.begin(), firstNew, true);
  }

  void Run() {
    const auto standing = static_cast<std::size_t>(std::ranges::count(stands_, true));
    if (standing > 0 && boxes_.size() - standing <= kMostPlacedOneByOne) PlaceJoined(standing);
    ArrangeOthers();
  }

 private:
  std::size_t OtherEnd(std::size_t join, std::size_t box) const {
    return joins_[join].from == box ? joins_[join].to : joins_[join].from;
  }

  // A box that stands now may be the partner of the next one.
  void PlaceJoined(std::size_t firstNew) {
    for (bool placed = true; placed;) {
      placed = false;
      for (std::size_t box = firstNew; box < boxes_.size(); ++box) {
        if (stands_[box] || Partners(box).empty()) continue;
        boxes_[box] = BestPlace(box);
        stands_[box] = true;
        placed = true;
      }
    }
  }

  std::vector<std::size_t> Partners(std::size_t box) const {
    std::vector<std::size_t> partners;
    for (const std::size_t join : joinsOf_[box]) {
      const std::size_t other = OtherEnd(join, box);
      if (!stands_[other] || std::ranges::find(partners, other) != partners.end()) continue;
      partners.push_back(other);
      if (partners.size() == kMostPartners) break;
    }
    return partners;
  }

  PixelRect BestPlace(std::size_t box) {
    PixelRect best = boxes_[box];
    double least = std::numeric_limits<double>::infinity();
    FindLines();
    for (const std::size_t partner : Partners(box)) {
      const PixelRect& beside = boxes_[partner];
      const Pixels width = boxes_[box].width;
      const Pixels column = EndOfColumn(beside) + rules_.columnGap;
      for (const Pixels left : {column, beside.Right() + rules_.columnGap, beside.left - rules_.columnGap - width}) {
        if (left < 0_px) continue;
        const double side = (left == column ? 0 : kAside) + (left + width > rules_.window.width ? kOutside : 0);
        for (const Pixels top : Heights(left, beside.top, boxes_[box])) {
          const double distance = std::fabs((top - beside.top).Value()) + side;
          if (distance >= least) continue;
          const PixelRect place{left, top, width, boxes_[box].height};
          const double cost = distance + kCrossing * Crossings(box, place);
          if (cost >= least) continue;
          least = cost;
          best = place;
        }
      }
    }
    return best;
  }

  // How far the boxes reach to the right that begin where this one does.
  Pixels EndOfColumn(const PixelRect& box) const {
    Pixels end = box.Right();
    for (std::size_t i = 0; i < boxes_.size(); ++i) {
      const bool inColumn = std::fabs((boxes_[i].left - box.left).Value()) < kStub.Value();
      if (stands_[i] && inColumn) end = std::max(end, boxes_[i].Right());
    }
    return end;
  }

  // The free heights in this column, the nearest first: level with the partner, and below and above each box there.
  std::vector<Pixels> Heights(Pixels left, Pixels wanted, const PixelRect& size) const {
    const PixelRect column{left - rules_.columnGap, 0_px, size.width + rules_.columnGap * 2, 0_px};
    std::vector<PixelRect> inColumn;
    std::vector<Pixels> tops{wanted};
    for (std::size_t i = 0; i < boxes_.size(); ++i) {
      const PixelRect& box = boxes_[i];
      if (!stands_[i] || box.left >= column.Right() || box.Right() <= column.left) continue;
      inColumn.push_back({box.left, box.top - rules_.rowGap, box.width, box.height + rules_.rowGap * 2});
      tops.push_back(box.Bottom() + rules_.rowGap);
      tops.push_back(box.top - rules_.rowGap - size.height);
    }
    std::ranges::stable_sort(tops, {}, [&](Pixels top) { return std::fabs((top - wanted).Value()); });
    std::vector<Pixels> free;
    for (const Pixels top : tops) {
      const bool isFree = top >= 0_px && std::ranges::none_of(inColumn, [&](const PixelRect& box) {
                            return top < box.Bottom() && box.top < top + size.height;
                          });
      if (isFree) free.push_back(top);
      if (free.size() == kMostHeights) break;
    }
    return free;
  }

  // --- Lines ---

  using Line = std::vector<PixelPoint>;

  Line LineOf(const JoinPlace& join, const PixelRect& from, const PixelRect& to) const {
    return RouteLine({from, from.top + join.fromY}, {to, to.top + join.toY}, kStub);
  }

  void FindLines() {
    lines_.clear();
    for (const JoinPlace& join : joins_) {
      if (stands_[join.from] && stands_[join.to]) lines_.push_back(LineOf(join, boxes_[join.from], boxes_[join.to]));
    }
  }

  static bool RunsUnder(const Line& line, const PixelRect& box) {
    for (std::size_t i = 1; i < line.size(); ++i) {
      const auto [left, right] = std::minmax(line[i - 1].x, line[i].x);
      const auto [top, bottom] = std::minmax(line[i - 1].y, line[i].y);
      if (left < box.Right() && right > box.left && top < box.Bottom() && bottom > box.top) return true;
    }
    return false;
  }

  // How often a line would run under a box if the box stood there.
  double Crossings(std::size_t box, const PixelRect& place) const {
    const PixelRect around = place.Inset(-kStub / 2, 0_px);
    auto count =
        static_cast<double>(std::ranges::count_if(lines_, [&](const Line& line) { return RunsUnder(line, around); }));
    for (const std::size_t join : joinsOf_[box]) {
      const std::size_t other = OtherEnd(join, box);
      if (!stands_[other]) continue;
      const bool isFrom = joins_[join].from == box;
      const Line line = LineOf(joins_[join], isFrom ? place : boxes_[other], isFrom ? boxes_[other] : place);
      for (std::size_t i = 0; i < boxes_.size(); ++i) {
        if (i != other && i != box && stands_[i] && RunsUnder(line, boxes_[i])) ++count;
      }
    }
    return count;
  }

  // --- The others ---

  void ArrangeOthers() {
    std::vector<std::size_t> others;
    std::vector<std::size_t> positions(boxes_.size());
    PixelRect standing;
    for (std::size_t i = 0; i < boxes_.size(); ++i) {
      if (stands_[i]) {
        standing = standing.Union(boxes_[i]);
      } else {
        positions[i] = others.size();
        others.push_back(i);
      }
    }
    std::vector<PixelSize> sizes;
    sizes.reserve(others.size());
    for (const std::size_t box : others) sizes.push_back({boxes_[box].width, boxes_[box].height});
    std::vector<BoxLink> links;
    for (const JoinPlace& join : joins_) {
      if (!stands_[join.from] && !stands_[join.to]) links.push_back({positions[join.from], positions[join.to]});
    }
    const std::vector<PixelPoint> places = ArrangeBoxes(sizes, links, {rules_.columnGap, rules_.rowGap, rules_.window});
    const PixelPoint corner = CornerFor(sizes, places, standing);
    for (std::size_t i = 0; i < others.size(); ++i) {
      PixelRect& box = boxes_[others[i]];
      box = {corner.x + places[i].x, corner.y + places[i].y, box.width, box.height};
    }
  }

  // At the right of all that stand while the window is so wide, else below.
  PixelPoint CornerFor(const std::vector<PixelSize>& sizes, const std::vector<PixelPoint>& places,
                       const PixelRect& standing) const {
    if (standing.Empty()) return {};
    Pixels width;
    for (std::size_t i = 0; i < sizes.size(); ++i) width = std::max(width, places[i].x + sizes[i].width);
    const Pixels right = standing.Right() + rules_.columnGap;
    if (right + width <= rules_.window.width) return {right, std::max(standing.top, 0_px)};
    return {0_px, standing.Bottom() + rules_.rowGap * 2};
  }

  std::vector<PixelRect>& boxes_;
  std::span<const JoinPlace> joins_;
  const BesideRules& rules_;
  std::vector<std::vector<std::size_t>> joinsOf_;
  std::vector<bool> stands_;
  std::vector<Line> lines_;  // between boxes that stand
};

}  // namespace

void PlaceBeside(std::vector<PixelRect>& boxes, std::size_t firstNew, std::span<const JoinPlace> joins,
                 const BesideRules& rules) {
  Placer(boxes, firstNew, joins, rules).Run();
}

}  // namespace zrqrybld
