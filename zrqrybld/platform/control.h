// Control: a core object that lives in a surface, paints itself and takes plain input structs.
//
// Adapters call the On... functions and Paint; nothing here knows a toolkit.
#pragma once

#include <memory>
#include <string>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/platform/accessible.h"
#include "zrqrybld/platform/canvas.h"
#include "zrqrybld/platform/surface.h"

namespace zrqrybld {

struct KeyEvent;
struct MouseEvent;
struct WheelEvent;

/// Base of the panes, the grid and everything else that is painted.
class ZRQRYBLD_API Control : public Object {
 public:
  Control();
  ~Control() override;

  /// Puts the control into a window. nullptr takes it out again; it then lives on a headless surface.
  /// The surface must outlive the control or be taken out first.
  void AttachSurface(Surface* surface);

  /// The surface the control lives in; never nothing.
  Surface& GetSurface() const { return *surface_; }

  /// Draws everything that touches `dirty`. Raises nothing and changes nothing.
  virtual void Paint(Canvas& canvas, const PixelRect& dirty) const = 0;

  /// What the user or the window did. The control that has no use for it ignores it.
  virtual void OnResize() {}
  virtual void OnMouseDown(const MouseEvent&) {}
  virtual void OnMouseMove(const MouseEvent&) {}
  virtual void OnMouseUp(const MouseEvent&) {}
  virtual void OnDoubleClick(const MouseEvent&) {}
  virtual void OnMouseLeave() {}
  /// A text is dragged over the control. Returns whether it may be dropped here.
  virtual bool OnDragOver(const std::string& /*text*/, const MouseEvent&) { return false; }
  /// The drag has left the control, or was given up.
  virtual void OnDragLeave() {}
  /// A text is dropped where `OnDragOver` has allowed it.
  virtual void OnDrop(const std::string& /*text*/, const MouseEvent&) {}
  /// Time has passed while the surface ticks.
  virtual void OnTick() {}
  virtual void OnWheel(const WheelEvent&) {}
  virtual void OnFocusChanged(bool /*focused*/) {}

  /// The user moved a scroll bar to `value` pixels.
  virtual void OnScroll(Orientation, int /*value*/) {}

  /// Returns whether the key was used; an unused key goes on to the window.
  virtual bool OnKeyDown(const KeyEvent&) { return false; }
  virtual void OnKeyUp(const KeyEvent&) {}

  /// The tool tip for this place; "" for none.
  virtual std::string ToolTipAt(PixelPoint) const { return {}; }

  /// What the control tells assistive technology; nothing when there is nothing to say but that it is there.
  virtual AccessibleTree* Accessible() { return nullptr; }

 protected:
  /// The surface was changed: fonts and factors may differ.
  virtual void OnSurfaceChanged() {}

 private:
  std::unique_ptr<Surface> headless_;
  Surface* surface_;
};

}  // namespace zrqrybld
