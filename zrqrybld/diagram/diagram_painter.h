// The picture of a diagram: surface, lines, boxes, and what is going on with them.
#pragma once

#include <optional>

#include "zrqrybld/base/units.h"
#include "zrqrybld/diagram/diagram_gestures.h"
#include "zrqrybld/diagram/diagram_scene.h"
#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

class DiagramCamera;
class DiagramMinimap;
class DiagramSelection;
class DiagramSite;
class KeyJoin;
struct DiagramProperties;

/// What is selected, pointed at and dragged. A picture that is saved shows nothing of it.
struct DiagramMarks {
  const DiagramSelection& selection;
  const KeyJoin& keyJoin;
  DiagramHit hover;
  const DiagramGestures::DraggingRow* drag = nullptr;
  std::optional<PixelRect> frame;
  bool namesOnly = false;  ///< boxes are too small for more
};

/// Draws everything that touches `visible`, a part of the surface, in pixels of the surface at 100 %; `marks` may be
/// nothing.
void PaintDiagram(Canvas& canvas, const DiagramSite& site, const DiagramScene& scene, const PixelRect& visible,
                  const DiagramMarks* marks);

/// Draws the pane's part `dirty` as the camera shows it.
void PaintPane(Canvas& canvas, const DiagramSite& site, const DiagramProperties& properties, const DiagramScene& scene,
               const DiagramCamera& camera, const DiagramMinimap& minimap, const DiagramMarks& marks,
               const PixelRect& dirty);

}  // namespace zrqrybld
