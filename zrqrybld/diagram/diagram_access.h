// DiagramAccess: what the diagram pane tells assistive technology.
//
// Below the pane stand its boxes in their order and then its joins, as the Tab key goes through them; below a box stand
// its rows. An id's object is the entity or the whole join, its part the row. The minimap comes last.
#pragma once

#include "zrqrybld/diagram/diagram_menus.h"
#include "zrqrybld/diagram/diagram_scene.h"
#include "zrqrybld/platform/accessible.h"

namespace zrqrybld {

class DiagramWalk;

class DiagramAccess final : public AccessibleTree {
 public:
  DiagramAccess(DiagramScene& scene, DiagramWalk& walk, const DiagramMenuTargets& targets)
      : site_(targets.site),
        entities_(targets.entities),
        scene_(scene),
        selection_(targets.selection),
        camera_(targets.camera),
        walk_(walk),
        targets_(targets) {}

  bool Contains(const AccessibleId& id) const override;
  std::size_t ChildCount(const AccessibleId& id) const override;
  AccessibleId ChildAt(const AccessibleId& id, std::size_t index) const override;
  AccessibleId ParentOf(const AccessibleId& id) const override;
  std::optional<std::size_t> IndexOf(const AccessibleId& id) const override;
  AccessibleInfo Describe(const AccessibleId& id) const override;
  AccessibleId ObjectAt(PixelPoint point) const override;
  AccessibleId Current() const override;
  bool Perform(const AccessibleId& id, AccessibleAction action) override;

 private:
  std::string Say(const Phrase& phrase) const;
  AccessibleInfo DescribePane() const;
  AccessibleInfo DescribeMinimap() const;
  AccessibleInfo DescribeBox(const Ref<qbEntity>& entity) const;
  AccessibleInfo DescribeRow(const qbEntityList& box, const Ref<BoxRow>& row) const;
  AccessibleInfo DescribeJoin(const Ref<qbWholeJoin>& join) const;
  std::string FactsOf(const BoxRow& row) const;
  bool IsSeen(const PixelRect& onPane) const;
  bool IsMinimap(const AccessibleId& id) const;
  void GoTo(const qbEntity& entity, std::size_t row);

  DiagramSite& site_;
  qbEntities& entities_;
  DiagramScene& scene_;
  DiagramSelection& selection_;
  DiagramCamera& camera_;
  DiagramWalk& walk_;
  const DiagramMenuTargets& targets_;
};

}  // namespace zrqrybld
