#include "zrqrybld/diagram/diagram_properties.h"

#include <cmath>

#include "zrqrybld/platform/surface.h"

namespace zrqrybld {
namespace {

constexpr Pixels kNarrowestBox = 96_px;

}  // namespace

BoxMetrics DiagramProperties::MetricsOn(const Surface& surface) const {
  const TextMetrics& text = surface.Metrics();
  BoxMetrics metrics;
  metrics.font = entityFont;
  metrics.captionFont = entityCaptionFont;
  metrics.rowHeight = Pixels(std::ceil((text.LineHeight(entityFont) + 5_px).Value()));
  metrics.captionHeight = Pixels(std::ceil((text.LineHeight(entityCaptionFont) + 10_px).Value()));
  metrics.scale = surface.Scale();
  return metrics;
}

PixelSize DiagramProperties::SmallestBoxOn(const Surface& surface) const {
  const BoxMetrics metrics = MetricsOn(surface);
  return {kNarrowestBox, metrics.captionHeight + metrics.rowHeight};
}

void DiagramProperties::Colour(qbEntityList& box) const {
  box.SetColors({entityForeColor, entityFrameColor});
  box.SetBackColor(entityBackColor);
}

Ink DiagramProperties::SurfaceInk() const {
  return backColor == Color::System(12) ? Ink(ColorRole::Surface) : Ink(backColor);
}

}  // namespace zrqrybld
