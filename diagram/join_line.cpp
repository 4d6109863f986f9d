#include "diagram/join_line.h"

#include <algorithm>
#include <array>

#include "diagram/entity_item.h"
#include "diagram/routing.h"

namespace zrqrybld {
namespace {

constexpr Pixels kStub = 14_px;
constexpr Pixels kHitDistance = 6_px;
constexpr Pixels kBend = 5_px;
constexpr Pixels kEndMark = 4_px;
constexpr Pixels kArrow = 8_px;

// All rows of the table at this end: an arrow that points into its box.
void DrawArrow(Canvas& canvas, PixelPoint tip, bool pointsRight, const Ink& ink) {
  const Pixels back = pointsRight ? -kArrow : kArrow;
  const std::array<PixelPoint, 3> triangle{tip, PixelPoint{tip.x + back, tip.y - kArrow / 2},
                                           PixelPoint{tip.x + back, tip.y + kArrow / 2}};
  canvas.FillPolygon(triangle, ink);
}

// A small square ties the line to its row; it is hollow when the row is scrolled away.
void DrawTie(Canvas& canvas, PixelPoint end, bool boxIsRight, bool atRow, const Ink& ink) {
  const PixelRect square{boxIsRight ? end.x - kEndMark : end.x, end.y - kEndMark / 2, kEndMark, kEndMark};
  if (atRow) {
    canvas.FillRect(square, ink);
  } else {
    canvas.StrokeRect(square.Inset(-1_px), ink, 1_px);
  }
}

}  // namespace

// A line ends at its row; at the caption when the row is scrolled away.
qbLine::End qbLine::EndAt(const qbEntityList& box, std::size_t row, const ScreenScale& scale) {
  const PixelRect place = scale.ToPixels(box.Bounds());
  const bool visible = box.IsRowVisible(row);
  const PixelRect target =
      visible ? scale.ToPixels(box.ItemBounds(row)) : PixelRect{place.left, place.top, place.width, 26_px};
  return {place, target.CenterY(), visible};
}

const std::vector<PixelPoint>& qbLine::Points(const ScreenScale& scale) const {
  if (!points_.empty()) return points_;
  const Ref<qbRelationship> join = Relationship();
  const Ref<qbEntityList> source = source_.lock();
  const Ref<qbEntityList> target = target_.lock();
  if (!join || !source || !target) return points_;
  const Ref<qbEntityItem> sourceItem = join->SourceItem();
  const Ref<qbEntityItem> targetItem = join->TargetItem();
  if (!sourceItem || !targetItem) return points_;
  const End from = EndAt(*source, static_cast<std::size_t>(sourceItem->Index()), scale);
  const End to = EndAt(*target, static_cast<std::size_t>(targetItem->Index()), scale);
  sourceAtRow_ = from.atRow;
  targetAtRow_ = to.atRow;
  points_ = RouteLine({from.box, from.y}, {to.box, to.y}, kStub);
  return points_;
}

bool qbLine::HitTest(PixelPoint point, const ScreenScale& scale) const {
  return DistanceToLine(point, Points(scale)) <= kHitDistance;
}

void qbLine::Paint(Canvas& canvas, const ScreenScale& scale, PixelPoint offset, bool hover) const {
  std::vector<PixelPoint> points = Points(scale);
  if (points.empty()) return;
  for (PixelPoint& point : points) point = point + offset;
  const Ink ink = selected_ ? ColorRole::JoinSelected : hover ? ColorRole::JoinHover : ColorRole::Join;
  canvas.DrawPolyline(points, ink, selected_ ? 2.5_px : 1.5_px, kBend);
  const Ref<qbRelationship> join = Relationship();
  const std::int32_t kind = join ? join->Kind() : 0;
  const PixelPoint first = points.front();
  const PixelPoint last = points.back();
  const bool sourceIsRight = points[1].x < first.x;
  const bool targetIsRight = points[points.size() - 2].x < last.x;
  if ((kind & JoinAllOfSource) != 0) {
    DrawArrow(canvas, first, sourceIsRight, ink);
  } else {
    DrawTie(canvas, first, sourceIsRight, sourceAtRow_, ink);
  }
  if ((kind & JoinAllOfTarget) != 0) {
    DrawArrow(canvas, last, targetIsRight, ink);
  } else {
    DrawTie(canvas, last, targetIsRight, targetAtRow_, ink);
  }
}

}  // namespace zrqrybld
