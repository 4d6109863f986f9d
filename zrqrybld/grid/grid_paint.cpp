// The grid's picture. Only visible cells are drawn.
#include <algorithm>

#include "zrqrybld/grid/grid.h"

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

// One picture of a grid.
class GridPainter {
 public:
  GridPainter(const zrGrid& grid, Canvas& canvas, const PixelRect& dirty)
      : grid_(grid), canvas_(canvas), dirty_(dirty), view_(grid.GetSurface().ViewSize()), layout_(grid.Layout()) {}
  void Paint() const;

 private:
  void PaintHeaders() const;
  void PaintColumnHeader(const PixelRect& rect, std::size_t column) const;
  void PaintCell(const PixelRect& rect, std::size_t row, std::size_t column) const;
  void PaintHint() const;
  void PaintDots(const PixelRect& button, const Ink& ink) const;
  void PaintOpenSign(const PixelRect& button, const Ink& ink) const;

  const zrGrid& grid_;
  Canvas& canvas_;
  const PixelRect& dirty_;
  const PixelSize view_;
  const GridLayout layout_;
};

void GridPainter::Paint() const {
  canvas_.FillRect({{}, {}, view_.width, view_.height}, ColorRole::Box);
  const GridLayout::Range rows = layout_.VisibleRows(view_.height);
  const GridLayout::Range columns = layout_.VisibleColumns(view_.width);
  {
    const ClipScope clip(canvas_, {layout_.RowHeaderWidth(), layout_.HeaderHeight(),
                                   view_.width - layout_.RowHeaderWidth(), view_.height - layout_.HeaderHeight()});
    for (std::size_t row = rows.first; row <= rows.last; ++row) {
      for (std::size_t column = columns.first; column <= columns.last; ++column) {
        const PixelRect rect = layout_.CellRect(row, column);
        if (!rect.Empty() && rect.Overlaps(dirty_)) PaintCell(rect, row, column);
      }
    }
    grid_.editing_.Paint(canvas_, dirty_);
    if (grid_.IsEditing()) {
      canvas_.StrokeRect(grid_.PlaceOfEdit(grid_.Row(), grid_.Column()).editor.Inset(-2_px), ColorRole::Focus, 2_px);
    }
    if (!grid_.emptyText_.empty() && !grid_.IsEditing() && grid_.HoldsNothing()) {
      const PixelRect body{layout_.RowHeaderWidth(), layout_.HeaderHeight() + layout_.RowHeight(),
                           view_.width - layout_.RowHeaderWidth(), layout_.RowHeight() * 2};
      canvas_.FillRect(body, ColorRole::Box);
      canvas_.DrawText(body.Inset(kGridTextPadding, {}), grid_.emptyText_, {ColorRole::QuietText, grid_.options_.font});
    }
    PaintHint();
  }
  PaintHeaders();
  if (grid_.dropRow_ != 0) {
    // The bar where a drop would insert.
    const PixelRect row = layout_.RowHeaderRect(grid_.dropRow_);
    canvas_.FillRect({0_px, std::max(row.top, layout_.HeaderHeight()) - 1_px, view_.width, 3_px}, ColorRole::Focus);
  }
}

void GridPainter::PaintHeaders() const {
  const GridLayout::Range rows = layout_.VisibleRows(view_.height);
  const GridLayout::Range columns = layout_.VisibleColumns(view_.width);
  {
    const ClipScope clip(
        canvas_, {layout_.RowHeaderWidth(), {}, view_.width - layout_.RowHeaderWidth(), layout_.HeaderHeight()});
    for (std::size_t column = columns.first; column <= columns.last; ++column) {
      const PixelRect rect = layout_.ColumnHeaderRect(column);
      if (rect.Empty()) continue;
      PaintColumnHeader(rect, column);
    }
  }
  {
    const ClipScope clip(canvas_,
                         {{}, layout_.HeaderHeight(), layout_.RowHeaderWidth(), view_.height - layout_.HeaderHeight()});
    for (std::size_t row = rows.first; row <= rows.last; ++row) {
      canvas_.DrawPart(ThemedPart::RowHeader, layout_.RowHeaderRect(row),
                       {.pressed = grid_.selection_.Contains(row), .disabled = false});
    }
  }
  canvas_.DrawPart(ThemedPart::RowHeader, {{}, {}, layout_.RowHeaderWidth(), layout_.HeaderHeight()}, {});
}

void GridPainter::PaintColumnHeader(const PixelRect& rect, std::size_t column) const {
  canvas_.DrawPart(ThemedPart::ColumnHeader, rect, {.hover = column == grid_.hoverHeader_});
  PixelRect text = rect.Inset(kGridTextPadding, {});
  if (grid_.columns_->At(column).DisplayAttribute() == kCheckedHeader) {
    const CheckState state = grid_.StateOfColumn(column);
    const PixelRect box = grid_.HeaderCheckBox(rect);
    canvas_.DrawPart(ThemedPart::CheckBox, box,
                     {.checked = state == CheckState::On,
                      .mixed = state == CheckState::Mixed,
                      .disabled = state == CheckState::None});
    const Pixels taken = box.Right() + kGridTextPadding - text.left;
    text.left += taken;
    text.width -= taken;
  }
  canvas_.DrawText(text, grid_.columns_->At(column).Caption(), {ColorRole::Text, grid_.options_.font});
}

// What is wrong with the current cell stands below it, above it where there is no room.
void GridPainter::PaintHint() const {
  if (grid_.currentRow_ == 0 || grid_.IsEditing()) return;
  const std::string& hint = grid_.rows_->At(grid_.currentRow_).HintAt(grid_.currentColumn_);
  if (hint.empty()) return;
  const PixelRect cell = layout_.CellRect(grid_.currentRow_, grid_.currentColumn_);
  const Pixels width =
      std::min(grid_.GetSurface().Metrics().TextWidth(hint, grid_.options_.font) + kGridTextPadding * 2 + 2_px,
               view_.width - layout_.RowHeaderWidth());
  const Pixels left = std::max(std::min(cell.left, view_.width - width), layout_.RowHeaderWidth());
  const bool below = cell.Bottom() + cell.height <= view_.height;
  const PixelRect box{left, below ? cell.Bottom() : cell.top - cell.height, width, cell.height};
  canvas_.FillRect(box, ColorRole::Box);
  canvas_.StrokeRect(box, ColorRole::Error, 1_px);
  canvas_.DrawText(box.Inset(kGridTextPadding, {}), hint, {ColorRole::Error, grid_.options_.font});
}

void GridPainter::PaintCell(const PixelRect& rect, std::size_t row, std::size_t column) const {
  const bool selected = grid_.selection_.Contains(row);
  // While no cell is current, the keyboard would begin at the first one.
  const bool begins = grid_.currentRow_ == 0 && grid_.focused_ && row == 1 && column == grid_.NextShownColumn(0, 1);
  const bool current = begins || (row == grid_.currentRow_ && column == grid_.currentColumn_);
  const Ink fill = selected ? ColorRole::RowSelected : row % 2 == 0 ? ColorRole::RowAlternate : ColorRole::Box;
  const Ink ink = selected ? ColorRole::RowSelectedText : ColorRole::Text;
  canvas_.FillRect(rect, fill);
  canvas_.FillRect({rect.Right() - 1_px, rect.top, 1_px, rect.height}, ColorRole::GridLine);
  canvas_.FillRect({rect.left, rect.Bottom() - 1_px, rect.width, 1_px}, ColorRole::GridLine);
  const PixelRect button = grid_.CellButton(row, column);
  const std::string brief = button.Empty() ? std::string() : grid_.ShortText(row, column);
  const bool opens = !brief.empty();
  if (grid_.columns_->At(column).Style() == GridColumnCheckBox) {
    const Variant& value = grid_.rows_->At(row).ValueAt(column);
    // Below the box of the header, where there is one.
    const bool below = grid_.columns_->At(column).DisplayAttribute() == kCheckedHeader;
    const PixelRect middle{rect.CenterX() - kCheckBox / 2, rect.CenterY() - kCheckBox / 2, kCheckBox, kCheckBox};
    canvas_.DrawPart(ThemedPart::CheckBox, below ? grid_.HeaderCheckBox(rect) : middle,
                     {.checked = value == Variant(true)});
  } else {
    PixelRect text = rect.Inset(kGridTextPadding, {});
    if (!button.Empty()) text.width = std::max(button.left - text.left, 0_px);
    std::string shown = grid_.CellText(row, column);
    if (opens && grid_.GetSurface().Metrics().TextWidth(shown, grid_.options_.font) > text.width) shown = brief;
    canvas_.DrawText(text, shown, {ink, grid_.options_.font, AlignmentOf(grid_.columns_->At(column))});
  }
  if (!grid_.rows_->At(row).HintAt(column).empty()) {
    const PixelPoint corner{rect.Right() - 1_px, rect.top};
    const PixelPoint points[] = {corner, {corner.x - kHintMark, corner.y}, {corner.x, corner.y + kHintMark}};
    canvas_.FillPolygon(points, ColorRole::Error);
  }
  if (!button.Empty()) {
    canvas_.FillRect(button, fill);
    canvas_.StrokeRect(button.Inset(2_px, 3_px), ColorRole::GridLine, 1_px, 3_px);
    opens ? PaintOpenSign(button, ink) : PaintDots(button, ink);
  }
  const bool active = grid_.focused_ || grid_.IsEditing();
  if (current) canvas_.StrokeRect(rect, active ? ColorRole::Focus : ColorRole::GridLine, active ? 2_px : 1_px);
}

void GridPainter::PaintDots(const PixelRect& button, const Ink& ink) const {
  for (const double dot : {-4.0, 0.0, 4.0}) {
    canvas_.FillRect({button.CenterX() + Pixels(dot) - 1_px, button.CenterY() - 1_px, 2_px, 2_px}, ink);
  }
}

// A sheet within a sheet.
void GridPainter::PaintOpenSign(const PixelRect& button, const Ink& ink) const {
  const PixelRect outer{button.CenterX() - 6_px, button.CenterY() - 5_px, 11_px, 10_px};
  canvas_.StrokeRect(outer, ink, 1_px);
  canvas_.FillRect({outer.left + 4_px, outer.top + 4_px, 5_px, 4_px}, ink);
}

// --- The grid ---

void zrGrid::Paint(Canvas& canvas, const PixelRect& dirty) const { GridPainter(*this, canvas, dirty).Paint(); }

// The check box of a header stands in front of its caption.
PixelRect zrGrid::HeaderCheckBox(const PixelRect& header) {
  return {header.left + kGridTextPadding, header.CenterY() - kCheckBox / 2, kCheckBox, kCheckBox};
}

bool zrGrid::HoldsNothing() const {
  const auto columns = static_cast<std::size_t>(columns_->Count());
  for (const Ref<zrGridRow>& row : *rows_) {
    for (std::size_t column = 1; column <= columns; ++column) {
      if (!row->ValueAt(column).IsBlank()) return false;
    }
  }
  return true;
}

}  // namespace zrqrybld
