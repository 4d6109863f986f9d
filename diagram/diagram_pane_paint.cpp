// The pane's picture: surface, lines, boxes.
#include "diagram/diagram_pane.h"

namespace zrqrybld {

void qbDiagramPane::Paint(Canvas& canvas, const PixelRect& dirty) const {
  const PixelSize view = GetSurface().ViewSize();
  const Ink surface = backColor_ == Color::System(12) ? Ink(ColorRole::Surface) : Ink(backColor_);
  canvas.FillRect({{}, {}, view.width, view.height}, surface);
  if (stacking_.empty()) {
    canvas.DrawText({{}, {}, view.width, view.height}, "Add tables to begin: Query \xE2\x96\xB8 Add Tables",
                    {ColorRole::SurfaceText, {}, TextAlignment::Center});
    return;
  }
  const ScreenScale scale = GetSurface().Scale();
  const PixelPoint offset = PixelPoint{} - ScrollOffset();
  // Lines run under the boxes, the selected one on top of the others.
  const auto paintLine = [&](const Ref<qbLine>& line) { line->Paint(canvas, scale, offset, line == hover_.line); };
  for (const Ref<qbLine>& line : lines_) {
    if (!line->Selected()) paintLine(line);
  }
  for (const Ref<qbEntityList>& box : stacking_) {
    const PixelRect place = PlaceOf(*box);
    if (!place.Overlaps(dirty)) continue;
    box->Paint(canvas, place, selected_ && box->Entity() == selected_, box == hover_.box ? hover_.part : BoxHit{});
  }
  for (const Ref<qbLine>& line : lines_) {
    if (line->Selected()) paintLine(line);
  }
}

}  // namespace zrqrybld
