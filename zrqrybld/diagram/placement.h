// Where a new box goes: the first free place, row by row, among boxes kept by their places. Pure.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include "zrqrybld/base/units.h"

namespace zrqrybld {

struct PlacementRules {
  Twips surfaceWidth;  ///< the visible width
  Twips lowestRow;     ///< rows below it are not tried
  Twips gap;           ///< kept to the right of a box that is in the way
  Twips rowStep;       ///< the distance between two rows that are tried
};

/// The boxes of a diagram. What a search has found full is not searched again while nothing there has moved, so that
/// filling a diagram costs the same for every box.
class PlacedBoxes {
 public:
  /// A box, by when it was added: a search asks the boxes in this order.
  using Id = std::uint64_t;

  Id Add(const TwipsRect& box);
  void Move(Id id, const TwipsRect& box);
  void Remove(Id id);

  /// How far the boxes reach to the right and down; nothing without boxes.
  std::optional<TwipsPoint> Reach() const;

  /// Whether another box lies on this one. Boxes that only touch do not.
  bool IsCovered(Id id) const;

  /// The top left corner for a box of `size`. Rows are tried from the top, `rowStep` apart; in a row the box moves from
  /// the left edge to the right of each box in its way, in the order of adding. Boxes that only touch are not in the
  /// way, and neither is `itself`, the box that is placed anew. When nothing is free the answer is (0, 0).
  TwipsPoint FindPlace(TwipsSize size, const PlacementRules& rules, std::optional<Id> itself = {});

 private:
  using InRow = std::map<Id, TwipsRect>;  // in the order of adding
  using ByTop = std::set<std::pair<double, Id>>;
  // No row above this one has room for a box of the size.
  struct FullRows {
    TwipsSize size;
    double row;
  };

  ByTop::const_iterator FirstReaching(Twips y) const;
  void Insert(Id id, const TwipsRect& box);
  void Erase(Id id);
  void ForgetFullRows(const TwipsRect& changed);
  FullRows& FullRowsFor(TwipsSize size, const PlacementRules& rules);

  std::unordered_map<Id, TwipsRect> boxes_;
  ByTop byTop_;
  std::multiset<double> heights_;
  std::multiset<double> rights_;
  std::multiset<double> bottoms_;
  Id latest_ = 0;
  std::vector<FullRows> full_;  // for the sizes that were asked for lately
  std::size_t nextForgotten_ = 0;
  PlacementRules rules_{};  // under which `full_` holds
};

}  // namespace zrqrybld
