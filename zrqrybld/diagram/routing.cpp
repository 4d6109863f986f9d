#include "zrqrybld/diagram/routing.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zrqrybld {
namespace {

constexpr Pixels kLeastGap = 8_px;
constexpr Pixels kBendReach = 28_px;  // from the bend to the box at the right

Pixels Distance(Pixels a, Pixels b) { return Pixels(std::fabs((a - b).Value())); }

Pixels DistanceToSegment(PixelPoint p, PixelPoint a, PixelPoint b) {
  const double dx = (b.x - a.x).Value();
  const double dy = (b.y - a.y).Value();
  const double length2 = dx * dx + dy * dy;
  const double along = length2 == 0 ? 0 : (((p.x - a.x).Value() * dx + (p.y - a.y).Value() * dy) / length2);
  const double t = std::clamp(along, 0.0, 1.0);
  return Pixels(std::hypot((p.x - a.x).Value() - t * dx, (p.y - a.y).Value() - t * dy));
}

}  // namespace

std::vector<PixelPoint> RouteLine(const LineEnd& from, const LineEnd& to, Pixels stub) {
  const auto path = [&](Pixels start, Pixels middle, Pixels end) {
    return std::vector<PixelPoint>{{start, from.y}, {middle, from.y}, {middle, to.y}, {end, to.y}};
  };
  // Boxes side by side: across the gap, with the bend half-way. Boxes that overlap in height have no other way, however
  // small the gap: a way around would lead through one of them.
  const bool level = from.box.top < to.box.Bottom() && to.box.top < from.box.Bottom();
  const auto standBeside = [level](const PixelRect& left, const PixelRect& right) {
    const Pixels gap = right.left - left.Right();
    return gap >= kLeastGap || (level && gap >= 0_px);
  };
  // In a wide gap the bend is near the right box: boxes in a column begin side by side, but end where they will.
  const auto across = [](Pixels left, Pixels right) { return std::max((left + right) / 2, right - kBendReach); };
  if (standBeside(from.box, to.box)) {
    return path(from.box.Right(), across(from.box.Right(), to.box.left), to.box.left);
  }
  if (standBeside(to.box, from.box)) {
    return path(from.box.left, across(to.box.Right(), from.box.left), to.box.Right());
  }
  // Boxes above one another, or one box: both ends on the side that makes the shorter way.
  const Pixels right = std::max(from.box.Right(), to.box.Right()) + stub;
  const Pixels left = std::min(from.box.left, to.box.left) - stub;
  const Pixels byRight = Distance(right, from.box.Right()) + Distance(right, to.box.Right());
  const Pixels byLeft = Distance(left, from.box.left) + Distance(left, to.box.left);
  if (from.box != to.box && byLeft <= byRight && left >= 0_px) return path(from.box.left, left, to.box.left);
  return path(from.box.Right(), right, to.box.Right());
}

Pixels DistanceToLine(PixelPoint point, const std::vector<PixelPoint>& line) {
  Pixels nearest(std::numeric_limits<double>::infinity());
  for (std::size_t i = 1; i < line.size(); ++i) {
    nearest = std::min(nearest, DistanceToSegment(point, line[i - 1], line[i]));
  }
  return nearest;
}

}  // namespace zrqrybld
