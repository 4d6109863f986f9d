// RowSelection: the rows of a grid that are selected by their headers. Pure.
#pragma once

#include <algorithm>
#include <cstddef>

namespace zrqrybld {

/// Rows from the first to the last, from 1; none when first is 0.
struct RowRange {
  std::size_t first = 0;
  std::size_t last = 0;
  bool Empty() const { return first == 0; }
  bool Contains(std::size_t row) const { return first != 0 && row >= first && row <= last; }
  std::size_t Count() const { return first == 0 ? 0 : last - first + 1; }
};

class RowSelection {
 public:
  const RowRange& Range() const { return range_; }
  bool Empty() const { return range_.Empty(); }
  bool Contains(std::size_t row) const { return range_.Contains(row); }
  /// The selected rows, else this one (0 for none).
  RowRange OrElse(std::size_t row) const { return Empty() ? RowRange{row, row} : range_; }

  void Clear() { range_ = {}; }
  /// Selects rows of so many; a last one before the first selects none. Rows that do not exist are left out.
  void Select(std::size_t first, std::size_t last, std::size_t count) {
    last = std::min(last, count);
    range_ = first == 0 || first > last ? RowRange{} : RowRange{first, last};
  }
  /// The row from which the selection is extended.
  void SetAnchor(std::size_t row) { anchor_ = row; }
  /// From the anchor to this row.
  RowRange UpTo(std::size_t row) const { return {std::min(anchor_, row), std::max(anchor_, row)}; }

 private:
  RowRange range_;
  std::size_t anchor_ = 0;
};

}  // namespace zrqrybld
