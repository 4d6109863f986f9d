#include "zrqrybld/diagram/diagram_properties.h"

#include <cmath>
#include <optional>
#include <string_view>

#include "zrqrybld/platform/property_store.h"
#include "zrqrybld/platform/stored_values.h"
#include "zrqrybld/platform/surface.h"

namespace zrqrybld {
namespace {

constexpr Pixels kNarrowestBox = 96_px;

// A colour is stored as its 32 bits; the largest do not fit a signed 32-bit number.
Variant ToVariant(Color color) { return static_cast<std::int64_t>(color.value); }

Color ReadColor(const PropertyStore& store, std::string_view key, Color defaultColor) {
  const std::optional<double> number = store.Read(key, ToVariant(defaultColor)).Number();
  if (!number || !(*number >= -2147483648.0 && *number <= 4294967295.0)) return defaultColor;
  return {static_cast<std::uint32_t>(static_cast<std::int64_t>(*number))};
}

}  // namespace

void DiagramProperties::Read(const PropertyStore& store) {
  entityMinimizeButton = ReadBoolean(store, "EntityMinimizeButton", true);
  const std::optional<double> drop = store.Read("OLEDropMode", 0).Number();
  oleDropMode = drop && *drop == 1 ? OLEDropManual : OLEDropNone;
  entityBackColor = ReadColor(store, "EntityBackColor", Color::System(5));
  entityForeColor = ReadColor(store, "EntityForeColor", Color::System(8));
  entityFrameColor = ReadColor(store, "EntityFrameColor", Color::System(15));
  backColor = ReadColor(store, "BackColor", Color::System(12));
  entityFont = ReadFont(store, "EntityFont");
  entityCaptionFont = ReadFont(store, "EntityCaptionFont");
}

void DiagramProperties::Write(PropertyStore& store) const {
  store.Write("EntityMinimizeButton", entityMinimizeButton, true);
  store.Write("EntityBackColor", ToVariant(entityBackColor));
  store.Write("EntityForeColor", ToVariant(entityForeColor));
  store.Write("EntityFrameColor", ToVariant(entityFrameColor));
  store.Write("BackColor", ToVariant(backColor));
  store.Write("OLEDropMode", static_cast<std::int32_t>(oleDropMode), 0);
  store.Write("EntityFont", zrqrybld::ToVariant(entityFont));
  store.Write("EntityCaptionFont", zrqrybld::ToVariant(entityCaptionFont));
}

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
