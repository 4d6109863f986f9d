// DiagramMouse: what the mouse does on a diagram: pressing, pointing, the wheel, and what listeners hear of it.
//
// What goes on while a button is held is a gesture.
#pragma once

#include <cstdint>
#include <string>

#include "zrqrybld/base/object.h"
#include "zrqrybld/base/units.h"
#include "zrqrybld/diagram/diagram_menus.h"
#include "zrqrybld/diagram/diagram_scene.h"

namespace zrqrybld {

class DiagramGestures;
struct MouseEvent;
struct WheelEvent;

class DiagramMouse {
 public:
  DiagramMouse(DiagramScene& scene, DiagramGestures& gestures, const DiagramMenuTargets& targets)
      : site_(targets.site),
        scene_(scene),
        selection_(targets.selection),
        camera_(targets.camera),
        keyJoin_(targets.keyJoin),
        edits_(targets.edits),
        gestures_(gestures),
        targets_(targets) {}

  // --- Window events ---

  void Down(const MouseEvent& event);
  void Move(const MouseEvent& event);
  void Up(const MouseEvent& event);
  void DoubleClick(const MouseEvent& event);
  void Leave() { SetHover({}); }
  void Wheel(const WheelEvent& event);
  std::string ToolTipAt(PixelPoint point) const;

  // --- The Space key, with which the left button pans ---

  void HoldSpace();
  /// Returns whether it was held and has not panned meanwhile.
  bool ReleaseSpace();
  /// The pane has lost the keyboard.
  void ForgetSpace() { spaceHeld_ = false; }

  // --- What the pointer is over ---

  const DiagramHit& Hover() const { return hover_; }
  /// The box or line goes away.
  void Forget(const Ref<qbEntityList>& box);
  void Forget(const Ref<qbLine>& line);

 private:
  void PressBox(const DiagramHit& hit, const MouseEvent& event);
  void PressRow(const DiagramHit& hit, const MouseEvent& event, const Ref<qbEntity>& entity);
  void PressSurface(const MouseEvent& event);
  void DoubleClickBox(const DiagramHit& hit, const MouseEvent& event);
  void OutputRow(const qbEntityList& box, std::size_t position);
  void SetHover(const DiagramHit& hit);

  DiagramSite& site_;
  DiagramScene& scene_;
  DiagramSelection& selection_;
  DiagramCamera& camera_;
  KeyJoin& keyJoin_;
  DiagramEdits& edits_;
  DiagramGestures& gestures_;
  const DiagramMenuTargets& targets_;
  DiagramHit hover_;
  bool spaceHeld_ = false;  // it pans while it is held, and ticks when it is let go
  bool spaceWasUsed_ = false;
  bool inMinimap_ = false;  // the button is held that was pressed there
};

}  // namespace zrqrybld
