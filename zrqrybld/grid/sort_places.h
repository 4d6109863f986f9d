// SortPlaces: the rows of a grid pane that the query is sorted by, and their places among each other, which stay the
// run 1 to N whatever happens to the rows.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "zrqrybld/grid/pane_rows.h"

namespace zrqrybld {

class SortPlaces {
 public:
  /// `rows` must outlive this.
  explicit SortPlaces(PaneRows& rows) : rows_(rows) {}

  /// The row has got a sort type or a number, or has lost it.
  void Note(const zrGridRow& row);
  /// There are no rows any more.
  void Clear() { sorted_.clear(); }

  /// 1 + the number of sorted rows other than the one at this position.
  std::int16_t Next(std::int32_t except) const;
  /// The places that the row can have: 1 to this one.
  std::int16_t Last(const zrGridRow& row) const { return Next(row.Index()); }
  /// Gives the row a place, or none (0); the others make room, or close up.
  void Place(zrGridRow& row, std::int32_t place);
  /// Rows were removed or moved.
  void CloseGaps();
  /// Sorts by the row behind those that are sorted already, or no more ("").
  void Sort(zrGridRow& row, std::string_view type);

 private:
  std::vector<Ref<zrGridRow>> Rows() const;
  void Write(const std::vector<Ref<zrGridRow>>& rows, const std::vector<std::int32_t>& places);

  PaneRows& rows_;
  // With a sort type or number. Entries are only added; what is out of date is dropped when it is met.
  mutable std::vector<WeakRef<Object>> sorted_;
};

}  // namespace zrqrybld
