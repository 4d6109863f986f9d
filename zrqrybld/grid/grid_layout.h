// Where the cells of a grid stand, and what is under a point. Pure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/units.h"

namespace zrqrybld {

/// Kept free on both sides of a cell's text.
inline constexpr Pixels kGridTextPadding = 6_px;

/// What is under a point of a grid.
enum class GridPart : std::uint8_t { Nothing, Corner, ColumnHeader, ColumnEdge, RowHeader, Cell };

struct GridHit {
  GridPart part = GridPart::Nothing;
  std::size_t row = 0;     ///< from 1; 0 for none
  std::size_t column = 0;  ///< from 1; 0 for none
};

/// The sizes of a grid, in pixels, and how far it is scrolled.
class ZRQRYBLD_API GridLayout {
 public:
  GridLayout() = default;
  /// `widths` holds one width a column; hidden columns have width 0.
  GridLayout(std::span<const Pixels> widths, Pixels headerHeight, Pixels rowHeight, Pixels rowHeaderWidth,
             std::size_t rowCount);

  /// Scrolls by pixels.
  void SetOffset(PixelPoint offset) { offset_ = offset; }

  Pixels HeaderHeight() const { return headerHeight_; }
  Pixels RowHeaderWidth() const { return rowHeaderWidth_; }
  Pixels RowHeight() const { return rowHeight_; }

  /// The size of all cells together, headers not counted.
  PixelSize ContentSize() const;

  PixelRect CellRect(std::size_t row, std::size_t column) const;
  PixelRect ColumnHeaderRect(std::size_t column) const;
  PixelRect RowHeaderRect(std::size_t row) const;

  /// The rows that are at least partly visible in a view of this height: first and last, from 1; the last
  /// is before the first when there are none.
  struct Range {
    std::size_t first;
    std::size_t last;
  };
  Range VisibleRows(Pixels viewHeight) const;
  Range VisibleColumns(Pixels viewWidth) const;

  /// What is under the point. A column's right edge counts as an edge 4 pixels to both sides.
  GridHit HitTest(PixelPoint point) const;

  /// The offset at which the cell is wholly visible in a view of this size, as near to the present one as
  /// may be.
  PixelPoint OffsetToShow(std::size_t row, std::size_t column, PixelSize view) const;

 private:
  std::size_t ColumnAt(Pixels x) const;  // x from the left edge of the first column

  std::vector<Pixels> rights_;  // the right edge of each column, from the left edge of the first
  Pixels headerHeight_;
  Pixels rowHeight_{1};
  Pixels rowHeaderWidth_;
  std::size_t rowCount_ = 0;
  PixelPoint offset_{};
};

}  // namespace zrqrybld
