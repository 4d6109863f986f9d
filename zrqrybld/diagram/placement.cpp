#include "zrqrybld/diagram/placement.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zrqrybld {
namespace {

constexpr std::size_t kRememberedSizes = 64;

// The free place in one row: past each box in the way, from the first box again after every move.
std::optional<Twips> FreePlaceInRow(Twips y, TwipsSize size, const std::map<std::uint64_t, TwipsRect>& inRow,
                                    const PlacementRules& rules) {
  Twips x{0};
  while (x <= rules.surfaceWidth - size.width) {
    const TwipsRect candidate{x, y, size.width, size.height};
    const auto inTheWay =
        std::ranges::find_if(inRow, [&](const auto& entry) { return entry.second.Overlaps(candidate); });
    if (inTheWay == inRow.end()) return x;
    x = inTheWay->second.Right() + rules.gap;
  }
  return std::nullopt;
}

// An entry gets another value, without a need of memory.
template <class Set, class Value>
void Replace(Set& set, const Value& before, const Value& after) {
  auto entry = set.extract(set.find(before));
  entry.value() = after;
  set.insert(std::move(entry));
}

double FirstRowAtOrAfter(Twips y, Twips step) { return std::max(0.0, std::ceil(y / step)); }
// The first row in which a box of this height meets what begins at `top`.
double FirstRowMeeting(Twips top, Twips height, Twips step) {
  return std::max(0.0, std::floor((top - height) / step) + 1);
}

}  // namespace

// --- Boxes come, move and go ---

PlacedBoxes::Id PlacedBoxes::Add(const TwipsRect& box) {
  Insert(++latest_, box);
  return latest_;
}

// What is full stays full when the latest box moves there: it is the last one that a search asks.
void PlacedBoxes::Move(Id id, const TwipsRect& box) {
  const auto before = boxes_.find(id);
  if (before == boxes_.end() || before->second == box) return;
  ForgetFullRows(before->second);
  if (id != latest_) ForgetFullRows(box);
  const TwipsRect was = std::exchange(before->second, box);
  Replace(byTop_, std::pair(was.top.Value(), id), std::pair(box.top.Value(), id));
  Replace(heights_, was.height.Value(), box.height.Value());
  Replace(rights_, was.Right().Value(), box.Right().Value());
  Replace(bottoms_, was.Bottom().Value(), box.Bottom().Value());
}

void PlacedBoxes::Remove(Id id) {
  const auto box = boxes_.find(id);
  if (box == boxes_.end()) return;
  ForgetFullRows(box->second);
  Erase(id);
}

// All that needs memory comes first.
void PlacedBoxes::Insert(Id id, const TwipsRect& box) {
  ByTop top{{box.top.Value(), id}};
  std::multiset<double> height{box.height.Value()};
  std::multiset<double> right{box.Right().Value()};
  std::multiset<double> bottom{box.Bottom().Value()};
  boxes_[id] = box;
  byTop_.merge(top);
  heights_.merge(height);
  rights_.merge(right);
  bottoms_.merge(bottom);
}

void PlacedBoxes::Erase(Id id) {
  const auto found = boxes_.find(id);
  const TwipsRect& box = found->second;
  byTop_.erase({box.top.Value(), id});
  heights_.erase(heights_.find(box.height.Value()));
  rights_.erase(rights_.find(box.Right().Value()));
  bottoms_.erase(bottoms_.find(box.Bottom().Value()));
  boxes_.erase(found);
}

std::optional<TwipsPoint> PlacedBoxes::Reach() const {
  if (boxes_.empty()) return std::nullopt;
  return TwipsPoint{Twips(*rights_.rbegin()), Twips(*bottoms_.rbegin())};
}

// The first box that may reach below `y`: none is higher than the highest.
PlacedBoxes::ByTop::const_iterator PlacedBoxes::FirstReaching(Twips y) const {
  return heights_.empty() ? byTop_.end() : byTop_.lower_bound({y.Value() - *heights_.rbegin(), 0});
}

bool PlacedBoxes::IsCovered(Id id) const {
  const auto found = boxes_.find(id);
  if (found == boxes_.end()) return false;
  const TwipsRect& box = found->second;
  for (auto other = FirstReaching(box.top); other != byTop_.end() && other->first < box.Bottom().Value(); ++other) {
    if (other->second != id && boxes_.at(other->second).Overlaps(box)) return true;
  }
  return false;
}

// --- The search ---

void PlacedBoxes::ForgetFullRows(const TwipsRect& changed) {
  for (FullRows& full : full_) {
    full.row = std::min(full.row, FirstRowMeeting(changed.top, full.size.height, rules_.rowStep));
  }
}

PlacedBoxes::FullRows& PlacedBoxes::FullRowsFor(TwipsSize size, const PlacementRules& rules) {
  const bool same =
      rules.surfaceWidth == rules_.surfaceWidth && rules.gap == rules_.gap && rules.rowStep == rules_.rowStep;
  if (!same) full_.clear();
  rules_ = rules;
  const auto known = std::ranges::find(full_, size, &FullRows::size);
  if (known != full_.end()) return *known;
  if (full_.size() < kRememberedSizes) return full_.emplace_back(FullRows{size, 0});
  FullRows& oldest = full_[nextForgotten_++ % kRememberedSizes];
  return oldest = {size, 0};
}

TwipsPoint PlacedBoxes::FindPlace(TwipsSize size, const PlacementRules& rules, std::optional<Id> itself) {
  FullRows& full = FullRowsFor(size, rules);
  if (itself && boxes_.contains(*itself)) ForgetFullRows(boxes_.at(*itself));
  const bool remember =
      !itself || itself == latest_;  // any other comes back among those that are asked before the last
  InRow inRow;
  double row = full.row;
  auto next = FirstReaching(rules.rowStep * row);
  // Between two rows nothing changes unless a box ends above the lower one, or begins above its lower edge; so only the
  // first rows after such a place are tried, with the same answer as trying all.
  for (;;) {
    const Twips y = rules.rowStep * row;
    if (remember) full.row = row;
    if (y > rules.lowestRow) return {};
    for (; next != byTop_.end() && next->first < (y + size.height).Value(); ++next) {
      if (next->second != itself) inRow.emplace(next->second, boxes_.at(next->second));
    }
    std::erase_if(inRow, [&](const auto& entry) { return entry.second.Bottom() <= y; });
    if (const std::optional<Twips> x = FreePlaceInRow(y, size, inRow, rules)) return {*x, y};
    double following = std::numeric_limits<double>::infinity();
    for (const auto& [id, box] : inRow) {
      following = std::min(following, FirstRowAtOrAfter(box.Bottom(), rules.rowStep));
    }
    if (next != byTop_.end()) {
      following = std::min(following, FirstRowMeeting(Twips(next->first), size.height, rules.rowStep));
    }
    if (std::isinf(following)) return {};  // wider than the surface
    row = std::max(following, row + 1);
  }
}

}  // namespace zrqrybld
