#include "zrqrybld/grid/grid_layout.h"

#include <algorithm>
#include <cmath>

namespace zrqrybld {
namespace {

constexpr Pixels kEdgeZone = 4_px;

}  // namespace

GridLayout::GridLayout(std::span<const Pixels> widths, Pixels headerHeight, Pixels rowHeight, Pixels rowHeaderWidth,
                       std::size_t rowCount)
    : headerHeight_(headerHeight), rowHeight_(rowHeight), rowHeaderWidth_(rowHeaderWidth), rowCount_(rowCount) {
  Pixels right;
  rights_.reserve(widths.size());
  for (const Pixels width : widths) rights_.push_back(right += width);
}

PixelSize GridLayout::ContentSize() const {
  return {rights_.empty() ? 0_px : rights_.back(), rowHeight_ * static_cast<double>(rowCount_)};
}

PixelRect GridLayout::CellRect(std::size_t row, std::size_t column) const {
  const PixelRect header = ColumnHeaderRect(column);
  const PixelRect rowHeader = RowHeaderRect(row);
  return {header.left, rowHeader.top, header.width, rowHeader.height};
}

PixelRect GridLayout::ColumnHeaderRect(std::size_t column) const {
  const Pixels left = column > 1 ? rights_[column - 2] : 0_px;
  return {rowHeaderWidth_ + left - offset_.x, 0_px, rights_[column - 1] - left, headerHeight_};
}

PixelRect GridLayout::RowHeaderRect(std::size_t row) const {
  return {0_px, headerHeight_ + rowHeight_ * static_cast<double>(row - 1) - offset_.y, rowHeaderWidth_, rowHeight_};
}

GridLayout::Range GridLayout::VisibleRows(Pixels viewHeight) const {
  const double first = std::floor(offset_.y / rowHeight_) + 1;
  const double last = std::ceil((offset_.y + viewHeight - headerHeight_) / rowHeight_);
  return {static_cast<std::size_t>(std::max(first, 1.0)),
          static_cast<std::size_t>(std::clamp(last, 0.0, static_cast<double>(rowCount_)))};
}

GridLayout::Range GridLayout::VisibleColumns(Pixels viewWidth) const {
  const std::size_t first = ColumnAt(offset_.x);
  const std::size_t last = ColumnAt(offset_.x + viewWidth - rowHeaderWidth_);
  return {first == 0 ? 1 : first, last == 0 ? rights_.size() : last};
}

std::size_t GridLayout::ColumnAt(Pixels x) const {
  if (x < 0_px) return 0;
  const auto right = std::ranges::upper_bound(rights_, x);
  return right == rights_.end() ? 0 : static_cast<std::size_t>(right - rights_.begin()) + 1;
}

GridHit GridLayout::HitTest(PixelPoint point) const {
  const bool inHeader = point.y < headerHeight_;
  const bool inRowHeader = point.x < rowHeaderWidth_;
  const Pixels x = point.x - rowHeaderWidth_ + offset_.x;
  if (inHeader && point.x >= rowHeaderWidth_ - kEdgeZone) {
    // The edge of the last visible column before the point, or the one behind it.
    for (std::size_t column = rights_.size(); column >= 1; --column) {
      const bool shown = rights_[column - 1] > (column > 1 ? rights_[column - 2] : 0_px);
      const Pixels distance = Pixels(std::fabs((rights_[column - 1] - x).Value()));
      if (shown && distance <= kEdgeZone) return {GridPart::ColumnEdge, 0, column};
    }
  }
  if (inHeader && inRowHeader) return {GridPart::Corner, 0, 0};
  const std::size_t column = inRowHeader ? 0 : ColumnAt(x);
  if (inHeader) return column == 0 ? GridHit{} : GridHit{GridPart::ColumnHeader, 0, column};
  const double down = std::floor((point.y - headerHeight_ + offset_.y) / rowHeight_);
  if (down < 0 || down >= static_cast<double>(rowCount_)) return {};
  const auto row = static_cast<std::size_t>(down) + 1;
  if (inRowHeader) return {GridPart::RowHeader, row, 0};
  return column == 0 ? GridHit{} : GridHit{GridPart::Cell, row, column};
}

PixelPoint GridLayout::OffsetToShow(std::size_t row, std::size_t column, PixelSize view) const {
  PixelPoint offset = offset_;
  const PixelRect cell = CellRect(row, column);
  if (cell.Right() > view.width) offset.x += cell.Right() - view.width;
  const Pixels left = cell.left + offset_.x - offset.x;
  if (left < rowHeaderWidth_) offset.x -= rowHeaderWidth_ - left;
  if (cell.Bottom() > view.height) offset.y += cell.Bottom() - view.height;
  const Pixels top = cell.top + offset_.y - offset.y;
  if (top < headerHeight_) offset.y -= headerHeight_ - top;
  return offset;
}

}  // namespace zrqrybld
