#include "diagram/join_line.h"

#include <algorithm>
#include <array>

#include "diagram/entity_item.h"
#include "diagram/routing.h"

namespace zrqrybld {
namespace {

constexpr Pixels kStub = 14_px;
constexpr Pixels kLaneWidth = 6_px;
constexpr Pixels kCaptionLane = 4_px;
constexpr std::array<double, 5> kCaptionLanes = {0, 1, -1, 2, -2};
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

const std::vector<PixelPoint>& qbLine::Points(const ScreenScale& scale) const {
  if (!points_.empty()) return points_;
  const Ref<qbRelationship> join = Relationship();
  const Ref<qbEntityList> source = source_.lock();
  const Ref<qbEntityList> target = target_.lock();
  if (!join || !source || !target) return points_;
  const Ref<qbEntityItem> sourceItem = join->SourceItem();
  const Ref<qbEntityItem> targetItem = join->TargetItem();
  if (!sourceItem || !targetItem) return points_;
  const auto sourceRow = static_cast<std::size_t>(sourceItem->Index());
  const auto targetRow = static_cast<std::size_t>(targetItem->Index());
  sourceAtRow_ = source->IsRowVisible(sourceRow);
  targetAtRow_ = target->IsRowVisible(targetRow);
  // Lines whose rows are out of sight all end at the caption: there their lanes keep them apart.
  const Pixels aside = kCaptionLane * kCaptionLanes[static_cast<std::size_t>(lane_) % kCaptionLanes.size()];
  points_ = RouteLine({scale.ToPixels(source->Bounds()), source->LineY(sourceRow) + (sourceAtRow_ ? 0_px : aside)},
                      {scale.ToPixels(target->Bounds()), target->LineY(targetRow) + (targetAtRow_ ? 0_px : aside)},
                      {kStub, kLaneWidth * lane_});
  return points_;
}

Pixels qbLine::DistanceTo(PixelPoint point, const ScreenScale& scale) const {
  return DistanceToLine(point, Points(scale));
}

void qbLine::Paint(Canvas& canvas, const ScreenScale& scale, bool selected, bool hover) const {
  const std::vector<PixelPoint>& points = Points(scale);
  if (points.empty()) return;
  const Ink ink = selected ? ColorRole::JoinSelected : hover ? ColorRole::JoinHover : ColorRole::Join;
  canvas.DrawPolyline(points, ink, selected ? 2.5_px : hover ? 2_px : 1.5_px, kBend);
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
