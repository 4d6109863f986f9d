// How a join line runs between two boxes. Pure.
#pragma once

#include <vector>

#include "zrqrybld/base/units.h"

namespace zrqrybld {

/// One end of a line: the box, and the height at which the line leaves it.
struct LineEnd {
  PixelRect box;
  Pixels y;
};

/// The bends of an orthogonal line from the first end to the second, both ends included: four points.
/// The line runs through the gap between boxes that stand side by side, and bends half-way or, in a wide gap, in front
/// of the right one. Beside boxes that stand one above the other it runs on the side that makes it shorter, `stub` away
/// from both, of two that are as short at the left. A line from a box to itself is a loop at its right side.
std::vector<PixelPoint> RouteLine(const LineEnd& from, const LineEnd& to, Pixels stub);

/// The distance of a point from a line.
Pixels DistanceToLine(PixelPoint point, const std::vector<PixelPoint>& line);

}  // namespace zrqrybld
