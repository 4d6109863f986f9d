#include "zrqrybld/diagram/column_balance.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace zrqrybld {
namespace {

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
constexpr int kMostPasses = 40;
constexpr std::size_t kMostMoved = 40;  // together

class Balance {
 public:
  Balance(const JoinedBoxes& boxes, std::vector<std::size_t> columns, std::size_t count)
      : boxes_(boxes), columnOf_(std::move(columns)), load_(count, 0), change_(count, 0) {
    for (std::size_t box = 0; box < columnOf_.size(); ++box) load_[columnOf_[box]] += Height(box);
    Walk();
  }

  std::vector<std::vector<std::size_t>> Run() {
    for (int pass = 0; pass < kMostPasses && Improve(); ++pass) {
    }
    std::vector<std::vector<std::size_t>> columns(load_.size());
    for (const std::size_t box : order_) columns[columnOf_[box]].push_back(box);
    return columns;
  }

 private:
  double Height(std::size_t box) const { return boxes_.heights[box].Value(); }

  // The boxes in the order of a walk from the first one, each followed by all that hangs on it.
  void Walk() {
    const std::size_t count = columnOf_.size();
    std::vector<std::size_t> parent(count, kNone), breadth{0};
    parent[0] = 0;
    for (std::size_t i = 0; i < breadth.size(); ++i) {
      for (const std::size_t other : boxes_.neighbours[breadth[i]]) {
        if (parent[other] != kNone) continue;
        parent[other] = breadth[i];
        breadth.push_back(other);
      }
    }
    std::vector<std::size_t> hang(count, 1);  // with the box itself
    for (std::size_t i = breadth.size(); i-- > 1;) hang[parent[breadth[i]]] += hang[breadth[i]];
    std::vector<std::size_t> next(count, 0);  // the place of the next box that hangs on this one
    placeOf_.resize(count);
    order_.resize(count);
    hang_.resize(count);
    for (const std::size_t box : breadth) {
      const std::size_t place = box == 0 ? 0 : std::exchange(next[parent[box]], next[parent[box]] + hang[box]);
      placeOf_[box] = place;
      order_[place] = box;
      hang_[place] = hang[box];
      next[box] = place + 1;
    }
  }

  bool Improve() {
    bool any = false;
    for (std::size_t place = order_.size(); place-- > 0;) {
      for (const int step : {-1, 1}) {
        any = (hang_[place] > 1 && hang_[place] <= kMostMoved && Shift(place, hang_[place], step)) || any;
        any = Shift(place, 1, step) || any;
      }
    }
    return any;
  }

  // Moves boxes that follow one another in the walk one column on, if all joins may stay and the columns become more
  // alike.
  bool Shift(std::size_t first, std::size_t count, int step) {
    for (std::size_t place = first; place < first + count; ++place) {
      if (!MayShift(order_[place], first, count, step)) return false;
    }
    double gain = 0;
    std::size_t begin = load_.size(), end = 0;  // of the columns that change
    for (std::size_t place = first; place < first + count; ++place) {
      const std::size_t column = columnOf_[order_[place]];
      const std::size_t next = column + static_cast<std::size_t>(step);
      change_[column] -= Height(order_[place]);
      change_[next] += Height(order_[place]);
      begin = std::min({begin, column, next});
      end = std::max({end, column + 1, next + 1});
    }
    for (std::size_t column = begin; column < end; ++column) {
      gain -= change_[column] * (2 * load_[column] + change_[column]);
    }
    const bool better = gain > 1;
    for (std::size_t column = begin; column < end; ++column) {
      load_[column] += better ? change_[column] : 0;
      change_[column] = 0;
    }
    for (std::size_t place = first; better && place < first + count; ++place) {
      columnOf_[order_[place]] += static_cast<std::size_t>(step);
    }
    return better;
  }

  bool MayShift(std::size_t box, std::size_t first, std::size_t count, int step) const {
    const std::size_t column =
        columnOf_[box] + static_cast<std::size_t>(step);  // in front of the first one: very large
    if (column >= load_.size()) return false;
    for (const std::size_t other : boxes_.neighbours[box]) {
      const bool goesAlong = placeOf_[other] >= first && placeOf_[other] < first + count;
      if (!goesAlong && (columnOf_[other] > column + 1 || column > columnOf_[other] + 1)) return false;
    }
    return true;
  }

  const JoinedBoxes& boxes_;
  std::vector<std::size_t> columnOf_;
  std::vector<double> load_;    // the height of each column
  std::vector<double> change_;  // of it, by what is tried
  std::vector<std::size_t> order_, placeOf_;
  std::vector<std::size_t> hang_;  // how many boxes hang on the one at a place, with it
};

}  // namespace

std::vector<std::vector<std::size_t>> BalanceColumns(const JoinedBoxes& boxes, std::vector<std::size_t> columns,
                                                     std::size_t count) {
  return Balance(boxes, std::move(columns), count).Run();
}

}  // namespace zrqrybld
