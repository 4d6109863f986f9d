#include "zrqrybld/diagram/join_line.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

#include "zrqrybld/diagram/entity_item.h"
#include "zrqrybld/diagram/join_properties.h"
#include "zrqrybld/diagram/routing.h"

namespace zrqrybld {
namespace {

constexpr Pixels kStub = 14_px;
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
constexpr double kComparisonPoints = 8;
constexpr Pixels kComparisonAir = 3_px;

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

// The sign of a join that only asks: "there is", and with a stroke through it "there is none".
void DrawQuestion(Canvas& canvas, PixelPoint middle, bool forNone, const Ink& ink) {
  const auto stroke = [&](double x1, double y1, double x2, double y2) {
    const std::array<PixelPoint, 2> ends{PixelPoint{middle.x + Pixels(x1), middle.y + Pixels(y1)},
                                         PixelPoint{middle.x + Pixels(x2), middle.y + Pixels(y2)}};
    canvas.DrawPolyline(ends, ink, 1.25_px);
  };
  stroke(3, -5.5, 3, 5.5);
  for (const double y : {-5.0, 0.0, 5.0}) stroke(-3.5, y, 3, y);
  if (forNone) stroke(6, -7, -6, 7);
}

// The table at this end is only asked about: a hollow circle.
void DrawAskedEnd(Canvas& canvas, PixelPoint end, bool boxIsRight, const Ink& ink) {
  const PixelPoint middle{boxIsRight ? end.x - kEndMark : end.x + kEndMark, end.y};
  FillCircle(canvas, middle, kEndMark, ColorRole::Surface);
  StrokeCircle(canvas, middle, kEndMark, ink);
}

void DrawInequality(Canvas& canvas, PixelPoint middle) {
  for (const auto& [x1, y1, x2, y2] :
       {std::array{-4.0, -2.0, 4.0, -2.0}, {-4.0, 2.0, 4.0, 2.0}, {3.0, -5.0, -3.0, 5.0}}) {
    const std::array<PixelPoint, 2> stroke{PixelPoint{middle.x + Pixels(x1), middle.y + Pixels(y1)},
                                           PixelPoint{middle.x + Pixels(x2), middle.y + Pixels(y2)}};
    canvas.DrawPolyline(stroke, ColorRole::Warning, 1.5_px);
  }
}

// A condition besides the columns: a funnel.
void DrawFunnel(Canvas& canvas, PixelPoint middle, const Ink& ink) {
  std::vector<PixelPoint> points;
  for (const auto& [x, y] : {std::array{-5.0, -4.5}, {5.0, -4.5}, {1.3, 0.3}, {1.3, 5.0}, {-1.3, 3.6}, {-1.3, 0.3}}) {
    points.push_back({middle.x + Pixels(x), middle.y + Pixels(y)});
  }
  canvas.FillPolygon(points, ink);
}

// A comparison as it is written on a line, in the few characters that there is room for.
std::string_view ShortSign(JoinComparisonEnum comparison) { return comparison == JoinSame ? "IS" : SignOf(comparison); }

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

Ref<qbWholeJoin> WholeOf(const qbRelationship& join) { return join.Line() ? join.Line()->Whole() : nullptr; }

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
  const bool byCaptions = IsConditionAlone(*join) && whole_->Count() == 1;
  if (!byCaptions && (!sourceItem || !targetItem)) return points_;
  const auto sourceRow = sourceItem ? static_cast<std::size_t>(sourceItem->Index()) : 0;
  const auto targetRow = targetItem ? static_cast<std::size_t>(targetItem->Index()) : 0;
  sourceAtRow_ = byCaptions || source->IsRowVisible(sourceRow);
  targetAtRow_ = byCaptions || target->IsRowVisible(targetRow);
  const Pixels apart = Pixels(kTwinOffsets[static_cast<std::size_t>(twin_) % kTwinOffsets.size()]);
  points_ =
      RouteLine({scale.ToPixels(source->Bounds()), source->LineY(sourceRow) + (sourceAtRow_ ? apart : 0_px)},
                {scale.ToPixels(target->Bounds()), target->LineY(targetRow) + (targetAtRow_ ? apart : 0_px)}, kStub);
  area_ = {points_.front().x, points_.front().y, 1_px, 1_px};
  for (const PixelPoint& point : points_) area_ = area_.Union({point.x, point.y, 1_px, 1_px});
  // Wherever the whole has its trunk, that begins and ends beside the two boxes.
  const PixelRect boxes = scale.ToPixels(source->Bounds()).Union(scale.ToPixels(target->Bounds()));
  area_ = area_.Union({points_[points_.size() / 2].x, boxes.top, 1_px, boxes.height});
  return points_;
}

// The last one that is complete: so its sign lies on all of them.
bool qbLine::DrawsTrunk(const ScreenScale& scale) const {
  const qbWholeJoin::Members& members = whole_->Drawn();
  if (members.Count() <= 1) return true;
  for (auto link = members.rbegin(); link != members.rend(); ++link) {
    const Ref<qbRelationship> join = link->lock();
    if (join && join->Line() && !join->Line()->Points(scale).empty()) return join->Line().get() == this;
  }
  return false;
}

qbLine::Trunk qbLine::FindTrunk(const ScreenScale& scale) const {
  const std::vector<PixelPoint>& points = Points(scale);
  const std::size_t bend = points.size() / 2;
  Trunk trunk{points[bend - 1], points[bend]};
  if (trunk.top.x != trunk.bottom.x || whole_->Count() == 1) return trunk;
  if (trunk.top.y > trunk.bottom.y) std::swap(trunk.top, trunk.bottom);
  trunk.topBend = trunk.bottomBend = trunk.top.y < trunk.bottom.y ? kBend : 0_px;
  for (const WeakRef<qbRelationship>& link : whole_->Drawn()) {
    const Ref<qbRelationship> join = link.lock();
    if (!join || !join->Line()) continue;
    const std::vector<PixelPoint>& others = join->Line()->Points(scale);
    if (others.size() != points.size() || others[bend].x != trunk.top.x) continue;
    const auto [upper, lower] = std::minmax(others[bend - 1].y, others[bend].y);
    const Pixels bends = upper == lower ? 0_px : kBend;
    if (upper < trunk.top.y || (upper == trunk.top.y && bends == 0_px)) trunk.topBend = bends;
    if (lower > trunk.bottom.y || (lower == trunk.bottom.y && bends == 0_px)) trunk.bottomBend = bends;
    trunk.top.y = std::min(trunk.top.y, upper);
    trunk.bottom.y = std::max(trunk.bottom.y, lower);
  }
  return trunk;
}

PixelRect qbLine::Area(const ScreenScale& scale) const {
  if (Points(scale).empty()) return {Pixels(-1e12), Pixels(-1e12), 0_px, 0_px};
  return area_;
}

Pixels qbLine::DistanceTo(PixelPoint point, const ScreenScale& scale) const {
  const Pixels own = DistanceToLine(point, Points(scale));
  if (points_.empty() || whole_->Count() == 1 || !DrawsTrunk(scale)) return own;
  const Trunk trunk = FindTrunk(scale);
  return std::min(own, DistanceToLine(point, {trunk.top, trunk.bottom}));
}

void qbLine::Paint(Canvas& canvas, const ScreenScale& scale, const TextMetrics& metrics, bool selected,
                   bool hover) const {
  const std::vector<PixelPoint>& points = Points(scale);
  if (points.empty()) return;
  const Ink ink = selected ? ColorRole::JoinSelected : hover ? ColorRole::JoinHover : ColorRole::Join;
  const Pixels width = selected ? 2.5_px : hover ? 2_px : 1.5_px;
  canvas.DrawPolyline(points, ink, width, kBend);
  const Ref<qbRelationship> join = Relationship();
  const JoinKind kind = join ? join->Kind() : JoinKind();
  const PixelPoint first = points.front();
  const PixelPoint last = points.back();
  const bool sourceIsRight = points[1].x < first.x;
  const bool targetIsRight = points[points.size() - 2].x < last.x;
  const auto paintEnd = [&](PixelPoint end, bool boxIsRight, bool all, bool asked, bool atRow,
                            const Ref<Image>& picture) {
    if (picture) {
      DrawEndPicture(canvas, end, boxIsRight, *picture);
    } else if (asked) {
      DrawAskedEnd(canvas, end, boxIsRight, ink);
    } else if (all) {
      DrawArrow(canvas, end, boxIsRight, ink);
    } else {
      DrawTie(canvas, end, boxIsRight, atRow, ink);
    }
  };
  const auto pictureAt = [](RelationshipIndicatorStyle style, const Ref<Image>& picture) {
    return style == IndicatorImage ? picture : nullptr;
  };
  paintEnd(first, sourceIsRight, kind.allOfSource, kind.Asks() && !kind.AsksTarget(), sourceAtRow_,
           join ? pictureAt(join->LeftIndicator(), join->LeftPicture()) : nullptr);
  paintEnd(last, targetIsRight, kind.allOfTarget, kind.AsksTarget(), targetAtRow_,
           join ? pictureAt(join->RightIndicator(), join->RightPicture()) : nullptr);
  PaintComparison(canvas, metrics);
  if (!DrawsTrunk(scale)) return;
  const Trunk trunk = FindTrunk(scale);
  if (whole_->Count() > 1) {
    const std::array ends{PixelPoint{trunk.top.x, trunk.top.y + trunk.topBend},
                          PixelPoint{trunk.bottom.x, trunk.bottom.y - trunk.bottomBend}};
    canvas.DrawPolyline(ends, ink, width);
  }
  PaintSign(canvas, trunk, ink);
}

// What is no equality stands on the line where reading begins: beside the left box or, where both ends are at one side,
// the upper one; from there on it reads as the columns stand. Where that piece is too short it goes to the bend.
void qbLine::PaintComparison(Canvas& canvas, const TextMetrics& metrics) const {
  const Ref<qbRelationship> join = Relationship();
  if (!join || join->Comparison() == JoinEqual || IsConditionAlone(*join)) return;
  const PixelPoint first = points_.front();
  const PixelPoint last = points_.back();
  const bool oneSide = (points_[1].x < first.x) == (points_[points_.size() - 2].x < last.x);
  const bool fromSource = oneSide ? first.y <= last.y : first.x <= last.x;
  const JoinComparisonEnum comparison =
      fromSource ? join->Comparison() : Mirrored(join->Comparison()).value_or(join->Comparison());
  const PixelPoint end = fromSource ? first : last;
  const PixelPoint bend = fromSource ? points_[1] : points_[points_.size() - 2];
  Font font;
  font.points = kComparisonPoints;
  const std::string_view sign = ShortSign(comparison);
  const PixelSize size{metrics.TextWidth(sign, font) + kComparisonAir * 2, metrics.LineHeight(font)};
  // The mark at the line's end stays free.
  const Pixels begin = end.x + (bend.x > end.x ? kArrow : -kArrow);
  const bool fits = Pixels(std::fabs((bend.x - begin).Value())) >= size.width;
  PixelPoint middle{(begin + bend.x) / 2, end.y};
  if (!fits) middle = {bend.x, end.y + (whole_->Count() == 1 ? kCircle + kSignAir + size.height / 2 : 0_px)};
  const PixelRect ground{middle.x - size.width / 2, middle.y - size.height / 2, size.width, size.height};
  canvas.FillRect(ground, ColorRole::Surface, kComparisonAir);
  canvas.DrawText(ground, sign, {ColorRole::SurfaceText, font, TextAlignment::Center});
}

// In the middle of the trunk, on a ground of its own: the circle of the table that stands further left is the left one;
// of a join that only asks, its own sign.
// Columns of different types have a sign of inequality behind it, and a condition a funnel. In a narrow gap there is no
// room for circles: there the ends alone tell the kind.
void qbLine::PaintSign(Canvas& canvas, const Trunk& trunk, const Ink& ink) const {
  const auto beside = [&](PixelPoint end) { return Pixels(std::fabs((trunk.top.x - end.x).Value())); };
  const bool roomy = std::min(beside(points_.front()), beside(points_.back())) >= kSignRoom;
  bool differs = false;
  bool asks = false;
  for (const WeakRef<qbRelationship>& link : whole_->Drawn()) {
    const Ref<qbRelationship> join = link.lock();
    if (!join || !join->Line()) continue;
    differs = differs || join->Line()->JoinsDifferentTypes();
    asks = asks || !join->Condition().empty();
  }
  if (!roomy && !differs && !asks) return;
  const Pixels circles = roomy ? (kOverlap + kCircle) * 2 + kSignAir : 0_px;
  const Pixels mark = kCircle * 2 + kSignAir;
  const Pixels width = circles + kSignAir + (differs ? mark : 0_px) + (asks ? mark : 0_px);
  const PixelRect ground{(trunk.top.x + trunk.bottom.x) / 2 - width / 2,
                         (trunk.top.y + trunk.bottom.y) / 2 - kCircle - kSignAir, width, (kCircle + kSignAir) * 2};
  canvas.FillRect(ground, ColorRole::Surface, kCircle + kSignAir);
  const Ref<qbRelationship> own = Relationship();
  const JoinKind kind = own ? whole_->KindFor(*own) : JoinKind();
  const bool sourceIsLeft = points_.front().x <= points_.back().x;
  const bool allOfLeft = sourceIsLeft ? kind.allOfSource : kind.allOfTarget;
  const bool allOfRight = sourceIsLeft ? kind.allOfTarget : kind.allOfSource;
  const Pixels middle = ground.left + kSignAir + kCircle + kOverlap;
  if (roomy && kind.Asks()) {
    DrawQuestion(canvas, {middle, ground.CenterY()}, kind.AsksForNone(), ink);
  } else if (roomy) {
    DrawKind(canvas, {middle, ground.CenterY()}, allOfLeft, allOfRight, ink);
  }
  Pixels at = ground.Right() - kSignAir - kCircle;
  if (asks) {
    DrawFunnel(canvas, {at, ground.CenterY()}, ink);
    at = at - mark;
  }
  if (differs) DrawInequality(canvas, {at, ground.CenterY()});
}

}  // namespace zrqrybld
