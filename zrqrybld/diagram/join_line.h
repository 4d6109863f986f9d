// qbLine: the line that draws one relationship between the rows of its two boxes.
//
// Owned by its relationship; the pane paints it and asks it whether it is hit. It is routed again
// the next time it is needed after one of its boxes has moved. The lines between the same two boxes share a trunk, with
// one sign of the join's kind, which the last of them draws.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "zrqrybld/base/object.h"
#include "zrqrybld/diagram/entity_box.h"
#include "zrqrybld/diagram/relationship.h"
#include "zrqrybld/diagram/whole_join.h"
#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

/// The join that the relationship is a part of; nothing once it was removed.
Ref<qbWholeJoin> WholeOf(const qbRelationship& join);

class qbLine final : public Object {
 public:
  qbLine(const Ref<qbRelationship>& relationship, const Ref<qbEntityList>& source, const Ref<qbEntityList>& target,
         Ref<qbWholeJoin> whole)
      : relationship_(relationship), source_(source), target_(target), whole_(std::move(whole)) {}
  std::string_view TypeName() const override { return "qbLine"; }

  /// The join that the line draws; nothing once it was removed.
  Ref<qbRelationship> Relationship() const { return relationship_.lock(); }

  /// The boxes at its ends; nothing once they are gone.
  Ref<qbEntityList> SourceBox() const { return source_.lock(); }
  Ref<qbEntityList> TargetBox() const { return target_.lock(); }

  /// The join that it is a part of; never nothing.
  const Ref<qbWholeJoin>& Whole() const { return whole_; }

  /// Tells joins of the same two rows apart: 0 for the first. Their lines end a little above and below one another.
  int Twin() const { return twin_; }
  void SetTwin(int twin);
  /// Whether the two columns are known to hold different kinds of data.
  bool JoinsDifferentTypes() const;

  /// The join has changed. That a box has moved the line sees for itself.
  void Invalidate() { points_.clear(); }

  /// The bends, in pixels on the surface; none while the join is not complete. One that asks a condition and has no
  /// columns runs between the captions, where it is the only one of its whole.
  const std::vector<PixelPoint>& Points(const ScreenScale& scale) const;

  /// A rectangle that holds all that it draws, hardly larger than that; empty and far away while the join is not
  /// complete.
  PixelRect Area(const ScreenScale& scale) const;

  /// How far the point lies from what it draws; infinitely far while the join is not complete.
  Pixels DistanceTo(PixelPoint point, const ScreenScale& scale) const;

  /// Draws the line.
  void Paint(Canvas& canvas, const ScreenScale& scale, const TextMetrics& metrics, bool selected, bool hover) const;

 private:
  /// What the lines of a whole share, between its highest and its lowest bend.
  struct Trunk {
    PixelPoint top;
    PixelPoint bottom;
    Pixels topBend = {};  // how much of it a line draws that bends there
    Pixels bottomBend = {};
  };
  bool DrawsTrunk(const ScreenScale& scale) const;
  /// Of a line that has points.
  Trunk FindTrunk(const ScreenScale& scale) const;
  void PaintComparison(Canvas& canvas, const TextMetrics& metrics) const;
  void PaintSign(Canvas& canvas, const Trunk& trunk, const Ink& ink) const;

  WeakRef<qbRelationship> relationship_;
  WeakRef<qbEntityList> source_;
  WeakRef<qbEntityList> target_;
  Ref<qbWholeJoin> whole_;
  int twin_ = 0;
  mutable std::vector<PixelPoint> points_;
  mutable std::pair<std::uint64_t, std::uint64_t> routedFor_;  // the layouts of the two boxes
  mutable PixelRect area_;
  mutable bool sourceAtRow_ = true;
  mutable bool targetAtRow_ = true;
};

}  // namespace zrqrybld
