// The grid's picture. Only visible cells are drawn.
#include <algorithm>

#include "grid/grid.h"

namespace zrqrybld {
namespace {

constexpr Pixels kCheckBox = 15_px;

}  // namespace

void zrGrid::Paint(Canvas& canvas, const PixelRect& dirty) const {
  const PixelSize view = GetSurface().ViewSize();
  const GridLayout layout = Layout();
  canvas.FillRect({{}, {}, view.width, view.height}, ColorRole::Box);
  const GridLayout::Range rows = layout.VisibleRows(view.height);
  const GridLayout::Range columns = layout.VisibleColumns(view.width);
  {
    const ClipScope clip(canvas, {layout.RowHeaderWidth(), layout.HeaderHeight(), view.width - layout.RowHeaderWidth(),
                                  view.height - layout.HeaderHeight()});
    for (std::size_t row = rows.first; row <= rows.last; ++row) {
      for (std::size_t column = columns.first; column <= columns.last; ++column) {
        const PixelRect rect = layout.CellRect(row, column);
        if (!rect.Empty() && rect.Overlaps(dirty)) PaintCell(canvas, rect, row, column);
      }
    }
  }
  PaintHeaders(canvas, layout, view);
  if (dropRow_ != 0) {
    // The bar where a drop would insert.
    const PixelRect row = layout.RowHeaderRect(dropRow_);
    canvas.FillRect({0_px, std::max(row.top, layout.HeaderHeight()) - 1_px, view.width, 3_px}, ColorRole::Focus);
  }
}

void zrGrid::PaintHeaders(Canvas& canvas, const GridLayout& layout, PixelSize view) const {
  const GridLayout::Range rows = layout.VisibleRows(view.height);
  const GridLayout::Range columns = layout.VisibleColumns(view.width);
  {
    const ClipScope clip(canvas,
                         {layout.RowHeaderWidth(), {}, view.width - layout.RowHeaderWidth(), layout.HeaderHeight()});
    for (std::size_t column = columns.first; column <= columns.last; ++column) {
      const PixelRect rect = layout.ColumnHeaderRect(column);
      if (rect.Empty()) continue;
      canvas.DrawPart(ThemedPart::ColumnHeader, rect, {});
      canvas.DrawText(rect.Inset(kGridTextPadding, {}), columns_->At(column).Caption(), {ColorRole::Text, font_});
    }
  }
  {
    const ClipScope clip(canvas,
                         {{}, layout.HeaderHeight(), layout.RowHeaderWidth(), view.height - layout.HeaderHeight()});
    for (std::size_t row = rows.first; row <= rows.last; ++row) {
      canvas.DrawPart(ThemedPart::RowHeader, layout.RowHeaderRect(row),
                      {.pressed = selection_.Contains(row), .disabled = false});
    }
  }
  canvas.DrawPart(ThemedPart::RowHeader, {{}, {}, layout.RowHeaderWidth(), layout.HeaderHeight()}, {});
}

void zrGrid::PaintCell(Canvas& canvas, const PixelRect& rect, std::size_t row, std::size_t column) const {
  const bool selected = selection_.Contains(row);
  const bool current = row == currentRow_ && column == currentColumn_;
  const Ink fill = selected ? ColorRole::RowSelected : row % 2 == 0 ? ColorRole::RowAlternate : ColorRole::Box;
  const Ink ink = selected ? ColorRole::RowSelectedText : ColorRole::Text;
  canvas.FillRect(rect, fill);
  canvas.FillRect({rect.Right() - 1_px, rect.top, 1_px, rect.height}, ColorRole::GridLine);
  canvas.FillRect({rect.left, rect.Bottom() - 1_px, rect.width, 1_px}, ColorRole::GridLine);
  if (columns_->At(column).Style() == GridColumnCheckBox) {
    const Variant& value = rows_->At(row).ValueAt(column);
    canvas.DrawPart(ThemedPart::CheckBox,
                    {rect.CenterX() - kCheckBox / 2, rect.CenterY() - kCheckBox / 2, kCheckBox, kCheckBox},
                    {.checked = value == Variant(true)});
  } else {
    canvas.DrawText(rect.Inset(kGridTextPadding, {}), CellText(row, column), {ink, font_});
  }
  if (current) canvas.StrokeRect(rect, focused_ ? ColorRole::Focus : ColorRole::GridLine, focused_ ? 2_px : 1_px);
}

}  // namespace zrqrybld
