// DiagramMinimap: a small picture of the whole diagram in a corner of the pane, with a frame around the part that is
// seen.
#pragma once

#include <optional>

#include "zrqrybld/base/object.h"
#include "zrqrybld/base/units.h"

namespace zrqrybld {

class Canvas;
class DiagramCamera;
class DiagramScene;
class DiagramSelection;
class DiagramSite;

class DiagramMinimap {
 public:
  DiagramMinimap(DiagramSite& site, const DiagramScene& scene, DiagramCamera& camera)
      : site_(site), scene_(scene), camera_(camera) {}

  /// Whether it is wanted; false at first.
  bool Shown() const { return shown_; }
  void Show(bool shown);

  /// Where it stands on the pane; nothing while it is not wanted, all of the diagram is seen, or the pane is too small.
  std::optional<PixelRect> Place() const;
  bool Contains(PixelPoint onPane) const;
  /// Scrolls so that what stands at this point of it is in the middle of the pane.
  void GoTo(PixelPoint onPane);
  void Paint(Canvas& canvas, const DiagramSelection& selection) const;

  /// It, as assistive technology names it.
  const Ref<Object>& Identity() const { return identity_; }

 private:
  struct Marker final : Object {
    std::string_view TypeName() const override { return "Minimap"; }
  };

  DiagramSite& site_;
  const DiagramScene& scene_;
  DiagramCamera& camera_;
  const Ref<Object> identity_ = std::make_shared<Marker>();
  bool shown_ = false;
};

}  // namespace zrqrybld
