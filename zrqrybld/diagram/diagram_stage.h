// DiagramStage: where the model puts its tables and joins: it makes their boxes and lines, and tells the designer what
// becomes of them.
#pragma once

#include <vector>

#include "zrqrybld/diagram/diagram_scene.h"
#include "zrqrybld/diagram/diagram_view.h"

namespace zrqrybld {

class DiagramCamera;
class DiagramGestures;
class DiagramLayout;
class DiagramMouse;
class DiagramSelection;
class DiagramSite;
class KeyJoin;
struct DiagramProperties;

class DiagramStage final : public DiagramView {
 public:
  DiagramStage(DiagramSite& site, const DiagramProperties& properties, DiagramScene& scene, DiagramSelection& selection,
               DiagramCamera& camera, DiagramLayout& layout, KeyJoin& keyJoin, DiagramGestures& gestures,
               DiagramMouse& mouse)
      : site_(site),
        properties_(properties),
        scene_(scene),
        selection_(selection),
        camera_(camera),
        layout_(layout),
        keyJoin_(keyJoin),
        gestures_(gestures),
        mouse_(mouse) {}

  Ref<qbEntityList> LoadBox() override;
  bool HasBox(const qbEntityList& box) const override { return scene_.HasBox(box); }
  void ShowBox(const Ref<qbEntityList>& box) override;
  void UnloadBox(const Ref<qbEntityList>& box) override;
  Ref<qbLine> LoadLine(const Ref<qbRelationship>& relationship, const Ref<qbEntityList>& source,
                       const Ref<qbEntityList>& target) override;
  void UnloadLine(const Ref<qbLine>& line) override;
  std::vector<Ref<qbLine>> LinesAt(const qbEntityList& box) const override { return scene_.LinesAt(box); }
  void FitBox(const Ref<qbEntityList>& box) override;
  Ref<Object> SelectedObject() const override;
  void DropSelection() override;
  bool EntityMinimizeButton() const override;
  Ref<QueryContext> Context() const override;

 private:
  PlacementRules RulesOfPlacement() const;
  std::vector<EventConnection> Follow(qbEntityList& box);
  void ReportTicks(const Ref<qbEntityList>& box);
  void RowChecked(const qbEntityList& box, const Ref<BoxRow>& row);
  void JoinChanged(const Ref<Object>& relationship);
  void JoinRemoved();

  DiagramSite& site_;
  const DiagramProperties& properties_;
  DiagramScene& scene_;
  DiagramSelection& selection_;
  DiagramCamera& camera_;
  DiagramLayout& layout_;
  KeyJoin& keyJoin_;
  DiagramGestures& gestures_;
  DiagramMouse& mouse_;
};

}  // namespace zrqrybld
