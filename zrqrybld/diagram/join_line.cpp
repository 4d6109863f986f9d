#include "zrqrybld/diagram/join_line.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "zrqrybld/diagram/entity_item.h"
#include "zrqrybld/diagram/routing.h"

namespace zrqrybld {
namespace {

constexpr Pixels kStub = 14_px;
constexpr Pixels kLaneWidth = 6_px;
constexpr Pixels kCaptionLane = 4_px;
constexpr std::array<double, 7> kCaptionLanes = {0, 1, -1, 2, -2, 3, -3};
constexpr Pixels kBend = 5_px;
constexpr Pixels kEndMark = 4_px;
constexpr Pixels kArrow = 8_px;
constexpr Pixels kPicture = 14_px;
// How far the ends of lines of the same two rows lie apart: inside the row's height, above and below by turns.
constexpr std::array<double, 5> kTwinOffsets = {0, 5, -5, 9, -9};
// The sign of a join's kind: two circles that overlap, those rows filled that come back.
constexpr Pixels kCircle = 5_px;   // radius
constexpr Pixels kOverlap = 3_px;  // from each circle's middle to that of the sign
constexpr Pixels kSignAir = 3_px;
constexpr Pixels kSignRoom = 12_px;  // beside it, to each box

// All rows of the table at this end: an arrow that points into its box.
void DrawArrow(Canvas& canvas, PixelPoint tip, bool pointsRight, const Ink& ink) {
  const Pixels back = pointsRight ? -kArrow : kArrow;
  const std::array<PixelPoint, 3> triangle{tip, PixelPoint{tip.x + back, tip.y - kArrow / 2},
                                           PixelPoint{tip.x + back, tip.y + kArrow / 2}};
  canvas.FillPolygon(triangle, ink);
}

// The picture that the application has given to this end, beside its box.
void DrawEndPicture(Canvas& canvas, PixelPoint end, bool boxIsRight, const Image& picture) {
  canvas.DrawImage({boxIsRight ? end.x - kPicture : end.x, end.y - kPicture / 2, kPicture, kPicture}, picture);
}

void FillCircle(Canvas& canvas, PixelPoint middle, Pixels radius, const Ink& ink) {
  canvas.FillRect({middle.x - radius, middle.y - radius, radius * 2, radius * 2}, ink, radius);
}

void StrokeCircle(Canvas& canvas, PixelPoint middle, Pixels radius, const Ink& ink) {
  canvas.StrokeRect({middle.x - radius, middle.y - radius, radius * 2, radius * 2}, ink, 1_px, radius);
}

// What two circles share whose middles lie `kOverlap` to the left and to the right.
std::vector<PixelPoint> Lens(PixelPoint middle) {
  constexpr int kSteps = 6;
  const double half = std::acos(kOverlap / kCircle);
  std::vector<PixelPoint> points;
  for (const double side : {1.0, -1.0}) {
    for (int i = 0; i <= kSteps; ++i) {
      const double angle = half * (2.0 * i / kSteps - 1);
      points.push_back(
          {middle.x + (kCircle * std::cos(angle) - kOverlap) * side, middle.y + kCircle * std::sin(angle) * side});
    }
  }
  return points;
}

// The sign of a join's kind: what is filled comes back.
void DrawKind(Canvas& canvas, PixelPoint middle, bool allOfLeft, bool allOfRight, const Ink& ink) {
  const PixelPoint left{middle.x - kOverlap, middle.y};
  const PixelPoint right{middle.x + kOverlap, middle.y};
  if (allOfLeft) FillCircle(canvas, left, kCircle, ink);
  if (allOfRight) FillCircle(canvas, right, kCircle, ink);
  canvas.FillPolygon(Lens(middle), ink);
  StrokeCircle(canvas, left, kCircle, ink);
  StrokeCircle(canvas, right, kCircle, ink);
}

void DrawInequality(Canvas& canvas, PixelPoint middle) {
  for (const auto& [x1, y1, x2, y2] :
       {std::array{-4.0, -2.0, 4.0, -2.0}, {-4.0, 2.0, 4.0, 2.0}, {3.0, -5.0, -3.0, 5.0}}) {
    const std::array<PixelPoint, 2> stroke{PixelPoint{middle.x + Pixels(x1), middle.y + Pixels(y1)},
                                           PixelPoint{middle.x + Pixels(x2), middle.y + Pixels(y2)}};
    canvas.DrawPolyline(stroke, ColorRole::Warning, 1.5_px);
  }
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

void qbLine::SetTwin(int twin) {
  if (twin == twin_) return;
  twin_ = twin;
  Invalidate();
}

bool qbLine::JoinsDifferentTypes() const {
  const Ref<qbRelationship> join = Relationship();
  const Ref<qbEntityItem> source = join ? join->SourceItem() : nullptr;
  const Ref<qbEntityItem> target = join ? join->TargetItem() : nullptr;
  if (!source || !target || source->Kind() == TypeKind::None || target->Kind() == TypeKind::None) return false;
  return source->Kind() != target->Kind();
}

const std::vector<PixelPoint>& qbLine::Points(const ScreenScale& scale) const {
  const Ref<qbEntityList> source = source_.lock();
  const Ref<qbEntityList> target = target_.lock();
  if (!source || !target) return points_;
  const std::pair layouts(source->Layout(), target->Layout());
  if (!points_.empty() && routedFor_ == layouts) return points_;
  points_.clear();
  routedFor_ = layouts;
  const Ref<qbRelationship> join = Relationship();
  if (!join) return points_;
  const Ref<qbEntityItem> sourceItem = join->SourceItem();
  const Ref<qbEntityItem> targetItem = join->TargetItem();
  if (!sourceItem || !targetItem) return points_;
  const auto sourceRow = static_cast<std::size_t>(sourceItem->Index());
  const auto targetRow = static_cast<std::size_t>(targetItem->Index());
  sourceAtRow_ = source->IsRowVisible(sourceRow);
  targetAtRow_ = target->IsRowVisible(targetRow);
  // Lines whose rows are out of sight all end at the caption: there their lanes keep them apart.
  const Pixels aside = kCaptionLane * kCaptionLanes[static_cast<std::size_t>(lane_) % kCaptionLanes.size()];
  const Pixels apart = Pixels(kTwinOffsets[static_cast<std::size_t>(twin_) % kTwinOffsets.size()]);
  points_ = RouteLine({scale.ToPixels(source->Bounds()), source->LineY(sourceRow) + (sourceAtRow_ ? apart : aside)},
                      {scale.ToPixels(target->Bounds()), target->LineY(targetRow) + (targetAtRow_ ? apart : aside)},
                      {kStub, kLaneWidth * lane_});
  area_ = {points_.front().x, points_.front().y, 1_px, 1_px};
  for (const PixelPoint& point : points_) area_ = area_.Union({point.x, point.y, 1_px, 1_px});
  return points_;
}

const PixelRect& qbLine::Area(const ScreenScale& scale) const {
  static const PixelRect kNowhere{Pixels(-1e12), Pixels(-1e12), 0_px, 0_px};
  return Points(scale).empty() ? kNowhere : area_;
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
  const JoinKind kind = join ? join->Kind() : JoinKind();
  const PixelPoint first = points.front();
  const PixelPoint last = points.back();
  const bool sourceIsRight = points[1].x < first.x;
  const bool targetIsRight = points[points.size() - 2].x < last.x;
  const auto paintEnd = [&](PixelPoint end, bool boxIsRight, bool all, bool atRow, const Ref<Image>& picture) {
    if (picture) {
      DrawEndPicture(canvas, end, boxIsRight, *picture);
    } else if (all) {
      DrawArrow(canvas, end, boxIsRight, ink);
    } else {
      DrawTie(canvas, end, boxIsRight, atRow, ink);
    }
  };
  const auto pictureAt = [](RelationshipIndicatorStyle style, const Ref<Image>& picture) {
    return style == IndicatorImage ? picture : nullptr;
  };
  paintEnd(first, sourceIsRight, kind.allOfSource, sourceAtRow_,
           join ? pictureAt(join->LeftIndicator(), join->LeftPicture()) : nullptr);
  paintEnd(last, targetIsRight, kind.allOfTarget, targetAtRow_,
           join ? pictureAt(join->RightIndicator(), join->RightPicture()) : nullptr);
  PaintSign(canvas, kind, ink);
}

// In the middle of the line, on a ground of its own: the circle of the table that stands further left is the left one.
// Columns of different types have a sign of inequality behind it. In a narrow gap there is no room for circles: there
// the ends alone tell the kind.
void qbLine::PaintSign(Canvas& canvas, JoinKind kind, const Ink& ink) const {
  const std::size_t bend = points_.size() / 2;
  const PixelPoint a = points_[bend - 1];
  const PixelPoint b = points_[bend];
  const auto beside = [](PixelPoint end, PixelPoint at) { return Pixels(std::fabs((at.x - end.x).Value())); };
  const bool roomy = std::min(beside(points_.front(), a), beside(points_.back(), b)) >= kSignRoom;
  const bool differs = JoinsDifferentTypes();
  if (!roomy && !differs) return;
  const Pixels circles = roomy ? (kOverlap + kCircle) * 2 + kSignAir : 0_px;
  const Pixels width = circles + kSignAir + (differs ? kCircle * 2 + kSignAir : 0_px);
  const PixelRect ground{(a.x + b.x) / 2 - width / 2, (a.y + b.y) / 2 - kCircle - kSignAir, width,
                         (kCircle + kSignAir) * 2};
  canvas.FillRect(ground, ColorRole::Surface, kCircle + kSignAir);
  const bool sourceIsLeft = points_.front().x <= points_.back().x;
  const bool allOfLeft = sourceIsLeft ? kind.allOfSource : kind.allOfTarget;
  const bool allOfRight = sourceIsLeft ? kind.allOfTarget : kind.allOfSource;
  const Pixels middle = ground.left + kSignAir + kCircle + kOverlap;
  if (roomy) DrawKind(canvas, {middle, ground.CenterY()}, allOfLeft, allOfRight, ink);
  if (differs) DrawInequality(canvas, {ground.Right() - kSignAir - kCircle, ground.CenterY()});
}

}  // namespace zrqrybld
