#include "diagram/entities.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "base/error.h"
#include "diagram/join_line.h"
#include "diagram/relationships.h"
#include "host/query_context.h"

namespace zrqrybld {

Ref<qbEntity> qbEntities::Add(const std::string& key) {
  bool cancel = false;
  BeforeAdd.Raise(key, cancel);
  if (cancel) return nullptr;
  if (!view_) ThrowObjectRemoved();
  if (items_.HasExactly(key)) ThrowDuplicateKey(key);

  const Ref<QueryContext> context = view_->Context();
  std::optional<BusyPointer> busy;
  if (context) busy.emplace(context->GetToolkit());
  const StepScope step(context, "Add table");

  const Ref<qbEntityList> box = view_->LoadBox();
  const auto relationships = std::make_shared<qbRelationships>(view_);
  const std::shared_ptr<EntityOwner> owner(shared_from_this(), this);
  const Ref<qbEntity> entity(new qbEntity(box, owner, relationships));
  relationships->SetParentEntity(entity);
  box->SetEntity(entity);
  box->SetCaption(key);
  entity->SetTagVariant(key);
  entity->SetShowMinimizeButton(view_->EntityMinimizeButton());
  items_.Insert(entity, key);
  view_->ShowBox(box);

  EntityAdd.Raise(key);
  if (context) {
    context->RaiseInfo(InfoTableAdded, Ref<Object>(entity));
    context->EntitiesChanged(Count());
    context->QueryChanged();
  }
  return entity;
}

// Joins that start here, then joins of others that end here, in the order of the diagram. The view knows them without a
// walk through all entities.
void qbEntities::RemoveJoinsOf(const Ref<qbEntity>& entity) {
  entity->Relationships()->Clear();
  if (!view_ || !entity->EntityBox()) return;
  std::vector<std::pair<std::pair<std::int32_t, std::int32_t>, Ref<qbRelationship>>> ending;
  for (const Ref<qbLine>& line : view_->LinesAt(*entity->EntityBox())) {
    const Ref<qbRelationship> join = line->Relationship();
    const Ref<qbEntity> source = join ? join->Source() : nullptr;
    if (source && source->EntityBox()) ending.push_back({{source->Index(), join->Index()}, join});
  }
  std::ranges::sort(ending, {}, [](const auto& one) { return one.first; });
  for (const auto& [place, join] : ending) {
    const Ref<qbEntity> source = join->Source();  // nothing when a listener has removed the join
    if (source) source->Relationships()->Remove(join->Index());
  }
}

void qbEntities::Remove(const Variant& index) {
  const Ref<qbEntity> entity = Item(index);
  if (!entity || !view_) return;
  const Ref<QueryContext> context = view_->Context();
  const std::string key = entity->Caption();
  const StepScope step(context, "Remove table");

  RemoveJoinsOf(entity);
  if (view_->SelectedObject() == entity) view_->DropSelection();
  RemoveJoinsOf(entity);  // which a listener of the selection's end has drawn
  const std::size_t position = PositionOf(*entity);
  if (position == items_.kNone) return;  // a handler has removed it meanwhile
  const Ref<qbEntityList> box = entity->EntityBox();
  const std::string caption = entity->Caption();  // a listener may have renamed it
  entity->Relationships()->Detach();
  entity->Detach();
  items_.RemoveAt(position);
  view_->UnloadBox(box);

  EntityRemove.Raise(key);
  if (context) {
    context->EntityRemoved(caption);
    context->EntitiesChanged(static_cast<std::int32_t>(position));
    context->QueryChanged();
  }
}

void qbEntities::Arrange(const std::vector<Ref<qbEntity>>& order) {
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (*items_.At(i + 1) != order[i]) items_.Move(items_.PositionOf(order[i]->Caption()), i + 1);
  }
}

void qbEntities::Detach() {
  view_ = nullptr;
  for (std::size_t i = 1; i <= items_.Count(); ++i) {
    const Ref<qbEntity>& entity = *items_.At(i);
    entity->Relationships()->Detach();
    entity->Detach();
  }
  items_.Clear();
}

std::size_t qbEntities::PositionOf(const qbEntity& entity) const {
  const auto isAt = [&](std::size_t position) {
    return position != items_.kNone && items_.At(position)->get() == &entity;
  };
  if (!entity.EntityBox()) return items_.kNone;
  const std::string& caption = entity.EntityBox()->Caption();
  if (const std::size_t position = items_.PositionOf(caption); isAt(position)) return position;
  if (!caption.empty()) return items_.kNone;
  for (std::size_t i = 1; i <= items_.Count(); ++i) {
    if (isAt(i)) return i;  // an empty caption is no key
  }
  return items_.kNone;
}

void qbEntities::Rename(qbEntity& entity, const std::string& caption) {
  const std::string before = entity.Caption();
  if (before == caption) return;
  const std::size_t position = PositionOf(entity);
  items_.Rekey(position, caption);
  entity.EntityBox()->SetCaption(caption);
  if (!view_) return;
  if (const Ref<QueryContext> context = view_->Context()) {
    const StepScope step(context, "Rename table");
    context->EntityRenamed(before, caption);
    context->EntitiesChanged(static_cast<std::int32_t>(position));
    context->QueryChanged();
  }
}

}  // namespace zrqrybld
