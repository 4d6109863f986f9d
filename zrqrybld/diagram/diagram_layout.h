// DiagramLayout: where boxes go of which nobody says where: when all are arranged, and when tables are added.
#pragma once

#include <unordered_map>
#include <vector>

#include "zrqrybld/base/units.h"
#include "zrqrybld/diagram/beside.h"
#include "zrqrybld/diagram/entity_box.h"

namespace zrqrybld {

class DiagramCamera;
class DiagramSite;
class qbEntities;

class DiagramLayout {
 public:
  DiagramLayout(DiagramSite& site, qbEntities& entities, DiagramCamera& camera)
      : site_(site), entities_(entities), camera_(camera) {}

  /// Lays all boxes out along their joins and shows them all; a step.
  void Arrange();

  /// Whether new boxes go beside those they are joined to; false at first, as it is for those that are there already.
  bool PlacesByJoins() const { return placesByJoins_; }
  void SetPlacesByJoins(bool places);

  /// A box is new, at the place that it has now.
  void Added(const Ref<qbEntityList>& box);
  /// The pane itself has moved a box, which may be a new one.
  void Moved(const qbEntityList& box);
  /// The new boxes stay where they are.
  void KeepAdded() { added_.clear(); }
  /// The step is complete in which boxes were added: those that nobody has moved since go beside their partners.
  void PlaceAdded();

 private:
  struct Boxes {
    std::vector<Ref<qbEntityList>> all;
    std::vector<PixelRect> places;
    std::vector<JoinPlace> joins;
    std::size_t firstNew = 0;
  };

  Boxes AllBoxes(bool newOnesLast) const;
  bool IsNew(const qbEntityList& box) const;
  BesideRules Rules() const;

  DiagramSite& site_;
  qbEntities& entities_;
  DiagramCamera& camera_;
  bool placesByJoins_ = false;
  std::unordered_map<const qbEntityList*, std::pair<WeakRef<qbEntityList>, TwipsPoint>> added_;
};

}  // namespace zrqrybld
