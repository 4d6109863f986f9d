// DiagramKeys: what the keys do on a diagram.
#pragma once

#include <cstdint>

#include "zrqrybld/diagram/diagram_menus.h"

namespace zrqrybld {

class DiagramFinder;
class DiagramGestures;
class DiagramMouse;
class DiagramWalk;
struct KeyEvent;

class DiagramKeys {
 public:
  DiagramKeys(DiagramWalk& walk, DiagramFinder& finder, DiagramGestures& gestures, DiagramMouse& mouse,
              const DiagramMenuTargets& targets)
      : site_(targets.site),
        selection_(targets.selection),
        camera_(targets.camera),
        keyJoin_(targets.keyJoin),
        edits_(targets.edits),
        walk_(walk),
        finder_(finder),
        gestures_(gestures),
        mouse_(mouse),
        targets_(targets) {}

  /// Returns whether the key was used.
  bool Down(const KeyEvent& event);
  void Up(const KeyEvent& event);

  /// Opens the menu of what is selected.
  bool ShowMenu();

 private:
  bool OnCharacters(std::int32_t keyCode, const KeyEvent& event);
  bool OnPlainKey(std::int32_t keyCode);
  bool OnControlKey(std::int32_t keyCode, const KeyEvent& event);
  bool Scroll(std::int32_t keyCode);
  bool NudgeSelected(std::int32_t keyCode);
  bool StretchSelected(std::int32_t keyCode);
  bool LeaveQuery();
  bool OpenQuery();
  bool ToggleMinimized();
  bool Escape();
  bool Zoom(double factor);

  DiagramSite& site_;
  DiagramSelection& selection_;
  DiagramCamera& camera_;
  KeyJoin& keyJoin_;
  DiagramEdits& edits_;
  DiagramWalk& walk_;
  DiagramFinder& finder_;
  DiagramGestures& gestures_;
  DiagramMouse& mouse_;
  const DiagramMenuTargets& targets_;
  int stretchStep_ = 0;  // grows while the key is held
};

}  // namespace zrqrybld
