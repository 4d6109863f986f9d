// The grid's picture. Only visible cells are drawn.
#include <algorithm>

#include "grid/grid.h"

namespace zrqrybld {
namespace {

constexpr Pixels kCheckBox = 15_px;
constexpr Pixels kHintMark = 7_px;

TextAlignment AlignmentOf(const zrGridColumn& column) {
  constexpr std::int16_t kRight = 1;
  constexpr std::int16_t kCentered = 2;
  return column.Alignment() == kRight      ? TextAlignment::Right
         : column.Alignment() == kCentered ? TextAlignment::Center
                                           : TextAlignment::Left;
}

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
    if (edit_ && edit_->isCombo) cboList_->Paint(canvas, dirty);
    if (!emptyText_.empty() && !edit_ && HoldsNothing()) {
      const PixelRect body{layout.RowHeaderWidth(), layout.HeaderHeight() + layout.RowHeight(),
                           view.width - layout.RowHeaderWidth(), layout.RowHeight() * 2};
      canvas.FillRect(body, ColorRole::Box);
      canvas.DrawText(body.Inset(kGridTextPadding, {}), emptyText_, {ColorRole::QuietText, font_});
    }
    PaintHint(canvas, layout, view);
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
      PaintColumnHeader(canvas, rect, column);
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

// The check box of a header stands in front of its caption.
PixelRect zrGrid::HeaderCheckBox(const PixelRect& header) const {
  return {header.left + kGridTextPadding, header.CenterY() - kCheckBox / 2, kCheckBox, kCheckBox};
}

void zrGrid::PaintColumnHeader(Canvas& canvas, const PixelRect& rect, std::size_t column) const {
  canvas.DrawPart(ThemedPart::ColumnHeader, rect, {.hover = column == hoverHeader_});
  PixelRect text = rect.Inset(kGridTextPadding, {});
  if (columns_->At(column).DisplayAttribute() == kCheckedHeader) {
    const CheckState state = StateOfColumn(column);
    const PixelRect box = HeaderCheckBox(rect);
    canvas.DrawPart(ThemedPart::CheckBox, box,
                    {.checked = state == CheckState::On,
                     .mixed = state == CheckState::Mixed,
                     .disabled = state == CheckState::None});
    const Pixels taken = box.Right() + kGridTextPadding - text.left;
    text.left += taken;
    text.width -= taken;
  }
  canvas.DrawText(text, columns_->At(column).Caption(), {ColorRole::Text, font_});
}

// What is wrong with the current cell stands below it, above it where there is no room.
void zrGrid::PaintHint(Canvas& canvas, const GridLayout& layout, PixelSize view) const {
  if (currentRow_ == 0 || edit_) return;
  const std::string& hint = rows_->At(currentRow_).HintAt(currentColumn_);
  if (hint.empty()) return;
  const PixelRect cell = layout.CellRect(currentRow_, currentColumn_);
  const Pixels width = std::min(GetSurface().Metrics().TextWidth(hint, font_) + kGridTextPadding * 2 + 2_px,
                                view.width - layout.RowHeaderWidth());
  const Pixels left = std::max(std::min(cell.left, view.width - width), layout.RowHeaderWidth());
  const bool below = cell.Bottom() + cell.height <= view.height;
  const PixelRect box{left, below ? cell.Bottom() : cell.top - cell.height, width, cell.height};
  canvas.FillRect(box, ColorRole::Box);
  canvas.StrokeRect(box, ColorRole::Error, 1_px);
  canvas.DrawText(box.Inset(kGridTextPadding, {}), hint, {ColorRole::Error, font_});
}

bool zrGrid::HoldsNothing() const {
  for (std::size_t row = 1; row <= static_cast<std::size_t>(rows_->Count()); ++row) {
    for (std::size_t column = 1; column <= static_cast<std::size_t>(columns_->Count()); ++column) {
      if (!rows_->At(row).ValueAt(column).IsBlank()) return false;
    }
  }
  return true;
}

void zrGrid::PaintCell(Canvas& canvas, const PixelRect& rect, std::size_t row, std::size_t column) const {
  const bool selected = selection_.Contains(row);
  // While no cell is current, the keyboard would begin at the first one.
  const bool begins = currentRow_ == 0 && focused_ && row == 1 && column == NextShownColumn(0, 1);
  const bool current = begins || (row == currentRow_ && column == currentColumn_);
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
    canvas.DrawText(rect.Inset(kGridTextPadding, {}), CellText(row, column),
                    {ink, font_, AlignmentOf(columns_->At(column))});
  }
  if (!rows_->At(row).HintAt(column).empty()) {
    const PixelPoint corner{rect.Right() - 1_px, rect.top};
    const PixelPoint points[] = {corner, {corner.x - kHintMark, corner.y}, {corner.x, corner.y + kHintMark}};
    canvas.FillPolygon(points, ColorRole::Error);
  }
  const bool active = focused_ || edit_;
  if (current) canvas.StrokeRect(rect, active ? ColorRole::Focus : ColorRole::GridLine, active ? 2_px : 1_px);
}

}  // namespace zrqrybld
