// TextDrop: texts that are dragged over a control from outside, and dropped there.
//
// It remembers what is over the control, so that the listeners hear once that a drag comes and once that it leaves.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/units.h"

namespace zrqrybld {

struct MouseEvent;

/// Tells the listeners of a control of drags over it.
class ZRQRYBLD_API TextDrop {
 public:
  /// The text, the effect, `MouseButton` and `ShiftMask` bits, the place in pixels, a `DragOverStateEnum`.
  using OverEvent = Event<const std::string&, std::int32_t&, std::int32_t, std::int32_t, float, float, std::int32_t>;
  /// The same without the state.
  using DropEvent = Event<const std::string&, std::int32_t&, std::int32_t, std::int32_t, float, float>;

  /// The events are the control's, which owns this.
  TextDrop(const OverEvent& over, const DropEvent& drop) : over_(over), drop_(drop) {}

  /// The drag is over the control. Returns whether the listeners let it be dropped there; `effect` is what they are
  /// asked with.
  bool Over(const std::string& text, const MouseEvent& event, std::int32_t effect);
  /// The drag has left or was given up: nothing is over the control any more. Listeners hear of it when `tell` says so.
  void Leave(bool tell);
  /// The text was dropped on the control.
  void Drop(const std::string& text, const MouseEvent& event) const;

 private:
  const OverEvent& over_;
  const DropEvent& drop_;
  std::optional<std::string> text_;  // what is over the control, and where it was last
  PixelPoint at_{};
};

}  // namespace zrqrybld
