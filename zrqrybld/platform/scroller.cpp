#include "zrqrybld/platform/scroller.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zrqrybld {

void Scroller::SetRange(Surface& surface, Orientation orientation, Pixels visible, Pixels whole, int step) {
  ScrollState& bar = At(orientation);
  bar.page = std::max(0, static_cast<int>(visible.Value()));
  bar.step = step;
  bar.maximum = std::max(0, static_cast<int>(std::ceil((whole - visible).Value())));
  bar.value = std::clamp(bar.value, 0, bar.maximum);
  surface.SetScrollBar(orientation, bar);
}

bool Scroller::ScrollTo(Orientation orientation, int value) {
  ScrollState& bar = At(orientation);
  const int now = std::clamp(value, 0, bar.maximum);
  return std::exchange(bar.value, now) != now;
}

bool Scroller::ScrollTowards(Orientation orientation, Pixels pointer, Pixels begin, Pixels end, int step) {
  bool moved = false;
  if (pointer < begin) moved = ScrollTo(orientation, Bar(orientation).value - step);
  if (pointer > end) moved = ScrollTo(orientation, Bar(orientation).value + step) || moved;
  return moved;
}

}  // namespace zrqrybld
