// qbLine: the line that draws one join between the rows of its two boxes.
//
// Owned by its relationship; the pane paints it and asks it whether it is hit. It is routed again
// the next time it is needed after one of its boxes has moved.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "zrqrybld/base/object.h"
#include "zrqrybld/diagram/entity_box.h"
#include "zrqrybld/diagram/relationship.h"
#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

class qbLine final : public Object {
 public:
  /// `lane` tells lines between the same two boxes apart: 0 for the first.
  qbLine(const Ref<qbRelationship>& relationship, const Ref<qbEntityList>& source, const Ref<qbEntityList>& target,
         int lane)
      : relationship_(relationship), source_(source), target_(target), lane_(lane) {}
  std::string_view TypeName() const override { return "qbLine"; }

  /// The join that the line draws; nothing once it was removed.
  Ref<qbRelationship> Relationship() const { return relationship_.lock(); }

  /// The boxes at its ends; nothing once they are gone.
  Ref<qbEntityList> SourceBox() const { return source_.lock(); }
  Ref<qbEntityList> TargetBox() const { return target_.lock(); }
  int Lane() const { return lane_; }

  /// Tells joins of the same two rows apart: 0 for the first. Their lines end a little above and below one another.
  int Twin() const { return twin_; }
  void SetTwin(int twin);
  /// Whether the two columns are known to hold different kinds of data.
  bool JoinsDifferentTypes() const;

  /// Whether the line is drawn as the selected object; only the look, the pane knows what is selected.
  bool Selected() const { return selected_; }
  void SetSelected(bool selected) { selected_ = selected; }

  /// The join has changed. That a box has moved the line sees for itself.
  void Invalidate() { points_.clear(); }

  /// The bends, in pixels on the surface; none while the join is not complete.
  const std::vector<PixelPoint>& Points(const ScreenScale& scale) const;

  /// The smallest rectangle that holds all bends; empty and far away while the join is not complete.
  const PixelRect& Area(const ScreenScale& scale) const;

  /// How far the point lies from the line; infinitely far while the join is not complete.
  Pixels DistanceTo(PixelPoint point, const ScreenScale& scale) const;

  /// Draws the line.
  void Paint(Canvas& canvas, const ScreenScale& scale, bool selected, bool hover) const;

 private:
  void PaintSign(Canvas& canvas, JoinKind kind, const Ink& ink) const;

  WeakRef<qbRelationship> relationship_;
  WeakRef<qbEntityList> source_;
  WeakRef<qbEntityList> target_;
  int lane_;
  int twin_ = 0;
  bool selected_ = false;
  mutable std::vector<PixelPoint> points_;
  mutable std::pair<std::uint64_t, std::uint64_t> routedFor_;  // the layouts of the two boxes
  mutable PixelRect area_;
  mutable bool sourceAtRow_ = true;
  mutable bool targetAtRow_ = true;
};

}  // namespace zrqrybld
