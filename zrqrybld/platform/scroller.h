// Scroller: the two scroll bars of a control and where its view stands.
//
// The control says how long its picture is; the scroller keeps the values inside their ranges and shows the bars.
#pragma once

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/surface.h"

namespace zrqrybld {

/// Where the view of a control stands.
class ZRQRYBLD_API Scroller {
 public:
  /// A bar as it is.
  const ScrollState& Bar(Orientation orientation) const {
    return orientation == Orientation::Horizontal ? horizontal_ : vertical_;
  }
  /// The place in the picture that stands at the view's top left corner.
  PixelPoint Offset() const { return {Pixels(horizontal_.value), Pixels(vertical_.value)}; }

  /// So many pixels of the whole are visible, and `step` is one click on an arrow. The view stays where it is, as far
  /// as the picture is long; the bar is shown.
  void SetRange(Surface& surface, Orientation orientation, Pixels visible, Pixels whole, int step);
  /// Moves the view, as far as the picture is long. The bar is not shown anew: it may be what has moved. Returns
  /// whether the view stands elsewhere now.
  bool ScrollTo(Orientation orientation, int value);
  /// Shows a bar as it is.
  void Show(Surface& surface, Orientation orientation) const { surface.SetScrollBar(orientation, Bar(orientation)); }

  /// Moves the view by `step` towards a pointer that is before `begin` or behind `end`. Returns whether the view has
  /// moved.
  bool ScrollTowards(Orientation orientation, Pixels pointer, Pixels begin, Pixels end, int step);

 private:
  ScrollState& At(Orientation orientation) { return orientation == Orientation::Horizontal ? horizontal_ : vertical_; }

  ScrollState horizontal_;
  ScrollState vertical_;
};

}  // namespace zrqrybld
