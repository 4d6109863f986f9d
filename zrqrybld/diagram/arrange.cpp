#include "zrqrybld/diagram/arrange.h"

#include <algorithm>
#include <limits>

namespace zrqrybld {
namespace {

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

using Neighbours = std::vector<std::vector<std::size_t>>;

Neighbours NeighboursOf(std::size_t count, std::span<const BoxLink> links) {
  Neighbours neighbours(count);
  for (const BoxLink& link : links) {
    if (link.from == link.to) continue;
    neighbours[link.from].push_back(link.to);
    neighbours[link.to].push_back(link.from);
  }
  return neighbours;
}

// The boxes of one group, by their distance from `start`.
std::vector<std::vector<std::size_t>> Columns(std::size_t start, const Neighbours& neighbours,
                                              std::vector<std::size_t>& columnOf) {
  std::vector<std::vector<std::size_t>> columns{{start}};
  columnOf[start] = 0;
  for (std::size_t column = 0; column < columns.size(); ++column) {
    std::vector<std::size_t> next;
    for (const std::size_t box : columns[column]) {
      for (const std::size_t other : neighbours[box]) {
        if (columnOf[other] != kNone) continue;
        columnOf[other] = column + 1;
        next.push_back(other);
      }
    }
    if (!next.empty()) columns.push_back(std::move(next));
  }
  return columns;
}

class Arranger {
 public:
  Arranger(std::span<const TwipsSize> boxes, std::span<const BoxLink> links, const ArrangeRules& rules)
      : boxes_(boxes),
        neighbours_(NeighboursOf(boxes.size(), links)),
        rules_(rules),
        places_(boxes.size()),
        columnOf_(boxes.size(), kNone),
        scratch_(boxes.size(), kNone),
        rankOf_(boxes.size(), 0) {}

  std::vector<TwipsPoint> Run() {
    for (std::size_t box = 0; box < boxes_.size(); ++box) {
      if (columnOf_[box] == kNone) PlaceGroup(Columns(FarEndOf(box), neighbours_, columnOf_));
    }
    return std::move(places_);
  }

 private:
  // One end of the box's group: a box that is reached last. Beginning there makes a chain a chain.
  std::size_t FarEndOf(std::size_t box) {
    if (neighbours_[box].size() <= 1) return box;
    const auto columns = Columns(box, neighbours_, scratch_);
    for (const auto& column : columns) {
      for (const std::size_t visited : column) scratch_[visited] = kNone;
    }
    return columns.back().front();
  }

  void PlaceGroup(std::vector<std::vector<std::size_t>> columns) {
    OrderByNeighbours(columns);
    Twips x;
    Twips height;
    for (const auto& column : columns) {
      Twips y;
      Twips width;
      for (const std::size_t box : column) {
        places_[box] = {x, y};
        y += boxes_[box].height + rules_.rowGap;
        width = std::max(width, boxes_[box].width);
      }
      height = std::max(height, y);
      x += width + rules_.columnGap;
    }
    const bool fits = origin_.x + x - rules_.columnGap <= rules_.surfaceWidth;
    if (origin_.x > Twips() && !fits) {
      origin_ = {Twips(), origin_.y + bandHeight_};
      bandHeight_ = Twips();
    }
    for (const auto& column : columns) {
      for (const std::size_t box : column) places_[box] = origin_ + places_[box];
    }
    origin_.x += x;
    bandHeight_ = std::max(bandHeight_, height);
  }

  // Each column in the order of the mean place of its neighbours in the column before, so that lines cross little.
  void OrderByNeighbours(std::vector<std::vector<std::size_t>>& columns) {
    for (auto& column : columns) {
      std::vector<std::pair<double, std::size_t>> keyed;
      for (const std::size_t box : column) keyed.emplace_back(MeanRankBefore(box), box);
      std::ranges::stable_sort(keyed, {}, &std::pair<double, std::size_t>::first);
      for (std::size_t i = 0; i < keyed.size(); ++i) {
        column[i] = keyed[i].second;
        rankOf_[column[i]] = static_cast<double>(i);
      }
    }
  }

  double MeanRankBefore(std::size_t box) const {
    double sum = 0;
    double count = 0;
    for (const std::size_t other : neighbours_[box]) {
      if (columnOf_[other] + 1 != columnOf_[box]) continue;
      sum += rankOf_[other];
      ++count;
    }
    return count > 0 ? sum / count : 0;
  }

  std::span<const TwipsSize> boxes_;
  Neighbours neighbours_;
  ArrangeRules rules_;
  std::vector<TwipsPoint> places_;
  std::vector<std::size_t> columnOf_;  // the column of each box in its group
  std::vector<std::size_t> scratch_;   // one list for all groups: a fresh one each would cost the whole diagram
  std::vector<double> rankOf_;         // the place in its column
  TwipsPoint origin_{};
  Twips bandHeight_;
};

}  // namespace

std::vector<TwipsPoint> ArrangeBoxes(std::span<const TwipsSize> boxes, std::span<const BoxLink> links,
                                     const ArrangeRules& rules) {
  return Arranger(boxes, links, rules).Run();
}

}  // namespace zrqrybld
