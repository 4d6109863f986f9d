#include "zrqrybld/diagram/arrange.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "zrqrybld/diagram/column_balance.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
constexpr int kWidthsTried = 14;
constexpr double kNextWidth = 1.3;
constexpr double kDenseCost = 2.0;            // so much larger must all become that lines may run under boxes
constexpr double kBalancedCost = 1.15;        // or that boxes stand in columns that say less
constexpr std::size_t kMostBalanced = 1'000;  // boxes

using Positions = std::vector<std::size_t>;
using Neighbours = std::vector<Positions>;

Neighbours NeighboursOf(std::size_t count, std::span<const BoxLink> links) {
  Neighbours neighbours(count);
  for (const BoxLink& link : links) {
    if (link.from == link.to) continue;
    neighbours[link.from].push_back(link.to);
    neighbours[link.to].push_back(link.from);
  }
  return neighbours;
}

// The boxes of one group in columns. Joins lead to the same column or the next one.
struct Columns {
  std::vector<Positions> all;
  std::size_t root = 0;  // the column from which the others were counted
};

struct Block {
  std::vector<std::pair<std::size_t, PixelPoint>> places;
  PixelSize size;
  double cost = 1;
};

class Arranger {
 public:
  Arranger(std::span<const PixelSize> boxes, std::span<const BoxLink> links, const ArrangeRules& rules)
      : boxes_(boxes),
        neighbours_(NeighboursOf(boxes.size(), links)),
        rules_(rules),
        window_{std::max(rules.window.width, rules.columnGap), std::max(rules.window.height, rules.rowGap)},
        columnOf_(boxes.size(), kNone),
        rankOf_(boxes.size(), 0),
        placeOf_(boxes.size()) {}

  std::vector<PixelPoint> Run() {
    FindGroups();
    std::vector<PixelPoint> best(boxes_.size());
    double smallest = std::numeric_limits<double>::infinity();
    Pixels width = window_.width;
    for (int i = 0; i < kWidthsTried; ++i, width = width * kNextWidth) {
      const double shrinks = std::max(1.0, PlaceAll(width));
      if (shrinks >= smallest) continue;
      smallest = shrinks;
      best = placeOf_;
      if (shrinks <= 1) break;
    }
    return best;
  }

 private:
  // --- Groups and their columns ---

  // Each group in two ways: from one end of it, and from its most joined box to both sides.
  void FindGroups() {
    for (std::size_t box = 0; box < boxes_.size(); ++box) {
      if (columnOf_[box] != kNone) continue;
      const std::vector<Positions> reached = Reach({box});
      const std::size_t farEnd = reached.back().front();
      Positions members;
      for (const Positions& column : reached) members.insert(members.end(), column.begin(), column.end());
      std::vector<Columns>& ways = groups_.emplace_back();
      Forget(members);
      ways.push_back({Reach({neighbours_[box].size() <= 1 ? box : farEnd}), 0});
      Order(ways.back());
      if (members.size() <= 2) continue;
      Forget(members);
      ways.push_back(BothSides(
          *std::ranges::max_element(members, {}, [this](std::size_t member) { return neighbours_[member].size(); })));
      Order(ways.back());
    }
  }

  void Forget(const Positions& members) {
    for (const std::size_t member : members) columnOf_[member] = kNone;
  }

  // What is joined to these boxes and was not reached yet, by its distance.
  std::vector<Positions> Reach(Positions from) {
    std::vector<Positions> columns{std::move(from)};
    for (const std::size_t box : columns.front()) columnOf_[box] = 0;
    for (std::size_t column = 0; column < columns.size(); ++column) {
      Positions next;
      for (const std::size_t box : columns[column]) {
        for (const std::size_t other : neighbours_[box]) {
          if (columnOf_[other] != kNone) continue;
          columnOf_[other] = column + 1;
          next.push_back(other);
        }
      }
      if (!next.empty()) columns.push_back(std::move(next));
    }
    return columns;
  }

  // What hangs together without the root stays on one side of it, so that no line runs across it.
  Columns BothSides(std::size_t root) {
    columnOf_[root] = 0;
    std::vector<Positions> parts;
    for (const std::size_t first : neighbours_[root]) {
      if (columnOf_[first] != kNone) continue;
      const std::size_t part = parts.size();
      Positions& members = parts.emplace_back();
      for (const Positions& column : Reach({first})) members.insert(members.end(), column.begin(), column.end());
      for (const std::size_t member : members) partOf_[member] = part;
    }
    for (const Positions& members : parts) Forget(members);
    std::vector<Positions> begins(parts.size());
    for (const std::size_t first : neighbours_[root]) {
      if (std::exchange(columnOf_[first], 0) == kNone) begins[partOf_[first]].push_back(first);
    }
    std::vector<Positions> sides[2];
    std::size_t counts[2] = {0, 0};
    for (std::size_t part = 0; part < parts.size(); ++part) {
      const std::size_t side = counts[1] <= counts[0] ? 1 : 0;
      counts[side] += parts[part].size();
      const std::vector<Positions> columns = Reach(std::move(begins[part]));
      sides[side].resize(std::max(sides[side].size(), columns.size()));
      for (std::size_t i = 0; i < columns.size(); ++i) {
        sides[side][i].insert(sides[side][i].end(), columns[i].begin(), columns[i].end());
      }
    }
    Columns both{{sides[0].rbegin(), sides[0].rend()}, sides[0].size()};
    both.all.push_back({root});
    both.all.insert(both.all.end(), sides[1].begin(), sides[1].end());
    return both;
  }

  // Each column in the order of the mean place of its neighbours in the column before, so that lines cross little.
  void Order(Columns& columns) {
    for (std::size_t i = 0; i < columns.all.size(); ++i) {
      for (const std::size_t box : columns.all[i]) columnOf_[box] = i;
    }
    for (const std::size_t box : columns.all[columns.root]) rankOf_[box] = 0;
    for (std::size_t i = columns.root + 1; i < columns.all.size(); ++i) OrderColumn(columns.all[i], i - 1);
    for (std::size_t i = columns.root; i-- > 0;) OrderColumn(columns.all[i], i + 1);
  }

  void OrderColumn(Positions& column, std::size_t before) {
    std::vector<std::pair<double, std::size_t>> keyed;
    for (const std::size_t box : column) keyed.emplace_back(MeanRankIn(before, box), box);
    std::ranges::stable_sort(keyed, {}, &std::pair<double, std::size_t>::first);
    for (std::size_t i = 0; i < keyed.size(); ++i) {
      column[i] = keyed[i].second;
      rankOf_[column[i]] = static_cast<double>(i);
    }
  }

  double MeanRankIn(std::size_t column, std::size_t box) const {
    double sum = 0;
    double count = 0;
    for (const std::size_t other : neighbours_[box]) {
      if (columnOf_[other] != column) continue;
      sum += rankOf_[other];
      ++count;
    }
    return count > 0 ? sum / count : 0;
  }

  // --- Places ---

  double ShareOfWindow(PixelSize size, double cost) const {
    return std::max(size.width / window_.width, size.height / window_.height) * cost;
  }

  // Of all ways to place a group the one that shows it largest.
  Block BestBlock(const std::vector<Columns>& ways, Pixels width) {
    Block best;
    double least = std::numeric_limits<double>::infinity();
    const auto consider = [&](Block block) {
      const double share = ShareOfWindow(block.size, block.cost);
      if (share >= least) return;
      least = share;
      best = std::move(block);
    };
    const Pixels height = width * (window_.height / window_.width);
    const auto considerAt = [&](const Columns& columns, double cost) {
      Block block = Fold(columns, width);
      block.cost = cost;
      consider(std::move(block));
    };
    for (const Columns& columns : ways) considerAt(columns, 1);
    if (least <= 1) return best;
    considerAt(Balanced(ways.back(), width), kBalancedCost);
    const Columns dense = Dense(ways.front(), height);
    if (dense.all.size() > 1) considerAt(dense, kDenseCost);
    return best;
  }

  // As many columns as this width holds, about as high as one another, with joins to the same or the next one.
  Columns Balanced(const Columns& columns, Pixels width) {
    Positions members{columns.all[columns.root].front()};
    for (const Positions& column : columns.all) {
      for (const std::size_t box : column) {
        if (box != members.front()) members.push_back(box);
      }
    }
    if (members.size() > kMostBalanced) return columns;
    Pixels widths;
    for (std::size_t i = 0; i < members.size(); ++i) {
      indexOf_[members[i]] = i;
      widths += boxes_[members[i]].width + rules_.columnGap;
    }
    const auto fit =
        static_cast<std::size_t>((width + rules_.columnGap) * static_cast<double>(members.size()) / widths);
    const std::size_t count = std::clamp(fit, std::size_t{1}, members.size());
    JoinedBoxes joined{Neighbours(members.size()), {}};
    Positions begins(members.size());
    for (std::size_t column = 0; column < columns.all.size(); ++column) {
      const std::size_t had = columns.all.size();
      const std::size_t now = had > count ? column * count / had : column + (count - had) / 2;
      for (const std::size_t box : columns.all[column]) begins[indexOf_[box]] = now;
    }
    for (std::size_t i = 0; i < members.size(); ++i) {
      for (const std::size_t other : neighbours_[members[i]]) joined.neighbours[i].push_back(indexOf_[other]);
      joined.heights.push_back(boxes_[members[i]].height + rules_.rowGap);
    }
    Columns balanced;
    for (Positions& column : BalanceColumns(joined, std::move(begins), count)) {
      for (std::size_t& box : column) box = members[box];
      if (!column.empty()) balanced.all.push_back(std::move(column));
    }
    return balanced;
  }

  // One box below the other in the order of the columns, and no column higher than this.
  Columns Dense(const Columns& columns, Pixels height) const {
    Columns dense{{{}}};
    Pixels filled;
    for (const Positions& column : columns.all) {
      for (const std::size_t box : column) {
        if (filled > 0_px && filled + boxes_[box].height > height) {
          dense.all.emplace_back();
          filled = 0_px;
        }
        dense.all.back().push_back(box);
        filled += boxes_[box].height + rules_.rowGap;
      }
    }
    return dense;
  }

  // All groups, by rows that are so wide. Returns how much all has to shrink to fit the window.
  double PlaceAll(Pixels width) {
    PixelPoint origin{};
    Pixels rowHeight;
    PixelSize whole{};
    double cost = 1;
    for (const std::vector<Columns>& ways : groups_) {
      const Block block = BestBlock(ways, width);
      cost = std::max(cost, block.cost);
      if (origin.x > 0_px && origin.x + block.size.width > width) {
        origin = {0_px, origin.y + rowHeight + rules_.rowGap};
        rowHeight = 0_px;
      }
      for (const auto& [box, place] : block.places) placeOf_[box] = origin + place;
      rowHeight = std::max(rowHeight, block.size.height);
      whole = {std::max(whole.width, origin.x + block.size.width),
               std::max(whole.height, origin.y + block.size.height)};
      origin.x += block.size.width + rules_.columnGap;
    }
    return ShareOfWindow(whole, cost);
  }

  struct Stand {
    Pixels left;
    std::size_t band;
    PixelSize size;
  };

  // Columns side by side up to this width, further ones in a band below that runs back. Where a band turns, the columns
  // stand one above the other, so that the lines between them run beside both.
  std::vector<Stand> Stands(const Columns& columns, Pixels width) const {
    std::vector<Stand> stands;
    bool back = false;
    for (const Positions& column : columns.all) {
      const PixelSize size = SizeOf(column);
      if (stands.empty()) {
        stands.push_back({0_px, 0, size});
        continue;
      }
      const Stand& before = stands.back();
      const Pixels left =
          back ? before.left - rules_.columnGap - size.width : before.left + before.size.width + rules_.columnGap;
      const bool turns = back ? left < 0_px : left + size.width > width;
      if (turns) back = !back;
      stands.push_back(turns ? Stand{before.left, before.band + 1, size} : Stand{left, before.band, size});
    }
    return stands;
  }

  Block Fold(const Columns& columns, Pixels width) const {
    const std::vector<Stand> stands = Stands(columns, width);
    std::vector<Pixels> heights(stands.back().band + 1);
    for (const Stand& stand : stands) heights[stand.band] = std::max(heights[stand.band], stand.size.height);
    Block block;
    Pixels top;
    for (std::size_t i = 0; i < stands.size(); ++i) {
      const Stand& stand = stands[i];
      if (i > 0 && stand.band != stands[i - 1].band) top += heights[stand.band - 1] + rules_.rowGap * 2;
      // What is much lower than its neighbours stands in their middle.
      const Pixels room = heights[stand.band] - stand.size.height;
      Pixels y = top + (room > stand.size.height ? room / 2 : 0_px);
      for (const std::size_t box : columns.all[i]) {
        block.places.push_back({box, {stand.left, y}});
        y += boxes_[box].height + rules_.rowGap;
      }
      block.size = {std::max(block.size.width, stand.left + stand.size.width), top + heights[stand.band]};
    }
    MakeRoomForLines(block);
    return block;
  }

  PixelSize SizeOf(const Positions& column) const {
    PixelSize size{0_px, -rules_.rowGap};
    for (const std::size_t box : column) {
      size = {std::max(size.width, boxes_[box].width), size.height + boxes_[box].height + rules_.rowGap};
    }
    return size;
  }

  // Lines between boxes that stand one above the other run at their left.
  void MakeRoomForLines(Block& block) const {
    std::size_t first = 0;
    for (const auto& [box, place] : block.places) first += place.x == 0_px ? 1 : 0;
    if (first < 2) return;
    for (auto& [box, place] : block.places) place.x += rules_.columnGap / 2;
    block.size.width += rules_.columnGap / 2;
  }

  std::span<const PixelSize> boxes_;
  Neighbours neighbours_;
  ArrangeRules rules_;
  PixelSize window_;
  std::vector<std::vector<Columns>> groups_;
  Positions columnOf_;  // the column of each box in its group
  Positions partOf_ = Positions(boxes_.size());
  Positions indexOf_ = Positions(boxes_.size());  // in what is balanced
  std::vector<double> rankOf_;                    // the place in its column
  std::vector<PixelPoint> placeOf_;
};

}  // namespace

std::vector<PixelPoint> ArrangeBoxes(std::span<const PixelSize> boxes, std::span<const BoxLink> links,
                                     const ArrangeRules& rules) {
  return Arranger(boxes, links, rules).Run();
}

}  // namespace zrqrybld
