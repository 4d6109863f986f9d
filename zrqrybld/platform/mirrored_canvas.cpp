#include "zrqrybld/platform/mirrored_canvas.h"

namespace zrqrybld {

void MirroredCanvas::DrawText(const PixelRect& rect, std::string_view text, const TextStyle& style) {
  TextStyle mirrored = style;
  if (style.alignment != TextAlignment::Center) {
    mirrored.alignment = style.alignment == TextAlignment::Left ? TextAlignment::Right : TextAlignment::Left;
  }
  canvas_.DrawText(Mirror(rect), text, mirrored);
}

std::vector<PixelPoint> MirroredCanvas::Mirror(std::span<const PixelPoint> points) const {
  std::vector<PixelPoint> mirrored(points.begin(), points.end());
  for (PixelPoint& point : mirrored) point.x = axis_ - point.x;
  return mirrored;
}

// Inside the view x stands at origin + x * zoom; its mirror place there must stand at axis - that.
void MirroredCanvas::PushView(PixelPoint origin, double zoom) {
  views_.push_back({axis_, std::make_unique<ViewScope>(canvas_, origin, zoom)});
  axis_ = (axis_ - origin.x * 2) / zoom;
}

void MirroredCanvas::PopView() {
  axis_ = views_.back().axis;
  views_.pop_back();
}

}  // namespace zrqrybld
