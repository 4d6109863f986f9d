#include "zrqrybld/diagram/diagram_selection.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/diagram_scene.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_line.h"

namespace zrqrybld {
namespace {

bool IsInDiagram(const Ref<Object>& object) {
  if (const auto entity = std::dynamic_pointer_cast<qbEntity>(object)) return entity->EntityBox() != nullptr;
  const auto join = std::dynamic_pointer_cast<qbRelationship>(object);
  return join && join->Line();
}

// In the diagram of another pane.
bool IsForeign(const DiagramScene& scene, const Ref<Object>& object) {
  if (!IsInDiagram(object)) return false;
  const auto join = std::dynamic_pointer_cast<qbRelationship>(object);
  const Ref<qbEntity> entity = join ? join->Source() : std::dynamic_pointer_cast<qbEntity>(object);
  return entity && !scene.HasBox(*entity->EntityBox());
}

}  // namespace

void DiagramSelection::ShowSelectedLine() {
  const Ref<qbRelationship> join = selected_ == leaving_ ? nullptr : Join();
  scene_.SelectLine(join ? join->Line() : nullptr);
}

Ref<qbEntity> DiagramSelection::Entity() const { return std::dynamic_pointer_cast<qbEntity>(selected_); }

Ref<qbRelationship> DiagramSelection::Join() const { return std::dynamic_pointer_cast<qbRelationship>(selected_); }

std::vector<Ref<qbEntity>> DiagramSelection::Entities() const {
  std::vector<Ref<qbEntity>> entities;
  if (const Ref<qbEntity> first = Entity()) entities.push_back(first);
  entities.insert(entities.end(), others_.begin(), others_.end());
  return entities;
}

bool DiagramSelection::Contains(const Ref<Object>& object) const {
  return object && (object == selected_ || std::ranges::find(others_, object) != others_.end());
}

void DiagramSelection::Select(const Ref<Object>& object) {
  const Ref<Object> alive = site_.shared_from_this();  // a listener may let go of it
  if (IsForeign(scene_, object)) throw Error(ErrorInvalidCall, text::OtherDiagram);
  if (object == selected_) {
    if (!std::exchange(others_, {}).empty()) site_.Refresh();
    return;
  }
  Drop();
  // A listener has selected another object meanwhile, or removed this one.
  if ((selected_ && selected_ != leaving_) || !IsInDiagram(object)) return;
  selected_ = object;
  ++revision_;
  ShowSelectedLine();
  site_.Refresh();
  site_.ObjectActivate.Raise(object);
}

// A listener that is told of the end may itself end it, by removing the object or by selecting another.
void DiagramSelection::Drop() {
  if (!selected_ || selected_ == leaving_) return;
  const Ref<Object> alive = site_.shared_from_this();  // a listener may let go of the pane
  others_.clear();
  const Ref<Object> object = selected_;
  const ScopedValue leaving(leaving_, object);
  ShowSelectedLine();
  site_.Refresh();
  site_.ObjectDeactivate.Raise(object);
  if (selected_ == object) selected_ = nullptr;
}

void DiagramSelection::SelectGroup(std::vector<Ref<qbEntity>> group) {
  if (group.empty()) return Drop();
  const Ref<qbEntity> first = group.front();
  Select(first);
  if (selected_ != first) return;  // a listener has decided otherwise
  group.erase(group.begin());
  std::erase_if(group, [](const Ref<qbEntity>& entity) { return !entity->EntityBox(); });
  others_ = std::move(group);
  site_.Refresh();
}

void DiagramSelection::SelectAlso(const Ref<qbEntity>& entity) {
  std::vector<Ref<qbEntity>> group = Entities();
  std::erase(group, entity);
  group.insert(group.begin(), entity);
  SelectGroup(std::move(group));
}

void DiagramSelection::Toggle(const Ref<qbEntity>& entity) {
  if (!Contains(entity)) return SelectAlso(entity);
  std::vector<Ref<qbEntity>> group = Entities();
  std::erase(group, entity);
  SelectGroup(std::move(group));
}

void DiagramSelection::SelectAll(const qbEntities& entities) {
  std::vector<Ref<qbEntity>> group;
  for (const Ref<qbEntity>& entity : entities) group.push_back(entity);
  if (const auto selected = std::ranges::find(group, Entity()); selected != group.end()) {
    std::rotate(group.begin(), selected, selected + 1);
  }
  SelectGroup(std::move(group));
}

void DiagramSelection::ForgetRemoved() {
  std::erase_if(others_, [](const Ref<qbEntity>& entity) { return !entity->EntityBox(); });
}

Ref<Object> DiagramSelection::PutAside() { return std::exchange(selected_, nullptr); }

void DiagramSelection::PutBack(const Ref<Object>& object) {
  site_.Refresh();
  if (IsInDiagram(object)) selected_ = object;
  ShowSelectedLine();
  if (selected_) return;
  if (object) {
    others_.clear();
    site_.ObjectDeactivate.Raise(object);
  }
}

}  // namespace zrqrybld
