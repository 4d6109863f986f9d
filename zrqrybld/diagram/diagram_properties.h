// DiagramProperties: what a diagram pane stores: how its boxes look, and whether it takes drops.
#pragma once

#include "zrqrybld/base/units.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entity_box.h"
#include "zrqrybld/platform/font.h"
#include "zrqrybld/platform/image.h"

namespace zrqrybld {

struct DiagramProperties {
  bool entityMinimizeButton = true;
  OLEDropModeEnum oleDropMode = OLEDropNone;
  Color entityBackColor = Color::System(5);
  Color entityForeColor = Color::System(8);
  Color entityFrameColor = Color::System(15);
  Color backColor = Color::System(12);
  Font entityFont;
  Font entityCaptionFont;
  Ref<ImageList> itemsImageList;  ///< not stored

  /// The sizes of the boxes on a surface, from the fonts.
  BoxMetrics MetricsOn(const Surface& surface) const;
  /// What a user can make of a box: its caption can be read, and one row be seen.
  PixelSize SmallestBoxOn(const Surface& surface) const;
  /// Gives a box these colours.
  void Colour(qbEntityList& box) const;
  /// What the surface is painted with.
  Ink SurfaceInk() const;
};

}  // namespace zrqrybld
