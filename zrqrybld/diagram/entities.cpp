#include "zrqrybld/diagram/entities.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/entity_state.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {

Ref<qbEntity> qbEntities::Add(const std::string& key) {
  const Ref<Object> alive = shared_from_this();  // a listener may let go of the pane
  bool cancel = false;
  BeforeAdd.Raise(key, cancel);
  if (cancel) return nullptr;
  if (!view_) ThrowObjectRemoved();
  RequireFree(key, nullptr);

  const Ref<QueryContext> context = view_->Context();
  std::optional<BusyPointer> busy;
  if (context) busy.emplace(context->source.GetToolkit());
  Ref<qbEntity> entity;
  {
    const StepScope step(context, kStepAddTable, key);
    WholeOrNothing(context, [&] {
      entity = Make(key);
      Announce(entity, key, context);
    });
  }
  return entity;  // behind the step, whose end may be an error
}

void qbEntities::Announce(const Ref<qbEntity>& entity, const std::string& key, const Ref<QueryContext>& context) {
  try {
    EntityAdd.Raise(key);
    if (context) context->steps.RaiseInfo(InfoTableAdded, Ref<Object>(entity));
  } catch (...) {
    TakeBack(entity);
    throw;
  }
  if (!context) return;
  context->steps.EntitiesChanged(Count());
  context->steps.QueryChanged();
}

// A caption names one table in the statement, where letter case does not count, and none is no name.
void qbEntities::RequireFree(const std::string& caption, const qbEntity* owner) const {
  if (caption.empty()) throw Error(ErrorInvalidCall, text::CaptionNeeded);
  const Ref<qbEntity>* other = items_.Find(caption);
  if (other && other->get() != owner) ThrowDuplicateKey(caption);
}

Ref<qbEntity> qbEntities::Make(const std::string& key) {
  const Ref<qbEntityList> box = view_->LoadBox();
  try {
    return MakeFor(box, key);
  } catch (...) {
    view_->UnloadBox(box);
    throw;
  }
}

Ref<qbEntity> qbEntities::MakeFor(const Ref<qbEntityList>& box, const std::string& key) {
  const auto relationships = std::make_shared<qbRelationships>(view_);
  const std::shared_ptr<EntityOwner> owner(shared_from_this(), this);
  const Ref<qbEntity> entity(new qbEntity(box, owner, relationships));
  relationships->SetParentEntity(entity);
  box->SetEntity(entity);
  box->SetCaption(key);
  entity->SetTagVariant(key);
  entity->SetShowMinimizeButton(view_->EntityMinimizeButton());
  box->onTouched = [list = WeakRef<qbEntities>(RefTo(*this)), touched = WeakRef<qbEntity>(entity)] {
    const Ref<qbEntities> entities = list.lock();
    const Ref<qbEntity> one = touched.lock();
    if (entities && one) entities->Touch(*one);
  };
  view_->ShowBox(box);
  items_.Insert(entity, key);  // the last that needs memory
  untouched_.Touch(items_.Count() - 1, 0);
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
  const Ref<Object> alive = shared_from_this();  // a listener may let go of the pane
  const Ref<qbEntity> entity = Item(index);
  if (!entity) return;
  bool cancel = false;
  const std::string caption = entity->Caption();  // the box may go while it is told of
  BeforeRemove.Raise(caption, cancel);
  if (!cancel) Drop(entity);
}

void qbEntities::Drop(const Ref<qbEntity>& entity) {
  const Ref<Object> alive = shared_from_this();
  if (!view_ || !entity->EntityBox()) return;  // a listener has removed it
  const Ref<QueryContext> context = view_->Context();
  const std::string key = entity->Caption();
  const StepScope step(context, kStepRemoveTable, key);
  WholeOrNothing(context, [&] { RemoveWithJoins(entity, context, key); });
}

void qbEntities::RemoveWithJoins(const Ref<qbEntity>& entity, const Ref<QueryContext>& context,
                                 const std::string& key) {
  RemoveJoinsOf(entity);
  if (view_ && view_->SelectedObject() == entity) view_->DropSelection();
  RemoveJoinsOf(entity);  // which a listener of the selection's end has drawn
  const std::size_t position = PositionOf(*entity);
  if (position == items_.kNone) return;           // a handler has removed it meanwhile
  const std::string caption = entity->Caption();  // a listener may have renamed it
  TakeOut(entity);

  EntityRemove.Raise(key);
  if (context) {
    context->reports.EntityRemoved(caption);
    context->steps.EntitiesChanged(static_cast<std::int32_t>(position));
    context->steps.QueryChanged();
  }
}

void qbEntities::TakeBack(const Ref<qbEntity>& entity) {
  try {
    Drop(entity);
  } catch (const std::exception&) {
    // The first failure is the one to tell; the table is gone all the same.
  }
}

void qbEntities::TakeOut(const Ref<qbEntity>& entity) {
  const std::size_t position = PositionOf(*entity);
  const Ref<qbEntityList> box = entity->EntityBox();
  entity->Relationships()->Detach();
  entity->Detach();
  items_.RemoveAt(position);
  untouched_.Touch(position - 1, items_.Count() - (position - 1));
  view_->UnloadBox(box);
}

// --- What undo remembers ---

void qbEntities::Touch(const qbEntity& entity) {
  const std::size_t position = PositionOf(entity);
  untouched_.Touch(position == items_.kNone ? 0 : position - 1,
                   position == items_.kNone ? 0 : items_.Count() - position);
}

void qbEntities::Remembered() {
  const Untouched untouched = untouched_.Within(items_.Count());
  for (std::size_t i = untouched.before + 1; i <= items_.Count() - untouched.behind; ++i) {
    (*items_.At(i))->EntityBox()->Remembered();
  }
  untouched_ = {items_.Count(), items_.Count()};
}

DiagramState qbEntities::State(const DiagramState& known, const Untouched& untouched, bool withTicks) const {
  DiagramState state;
  const std::size_t end = known.size() - untouched.behind;
  std::unordered_map<const EntityIdentity*, const std::shared_ptr<const EntityState>*> byIdentity;
  const auto knownAs = [&](const EntityIdentity* identity) -> std::shared_ptr<const EntityState> {
    const std::size_t place = untouched.before + state.size();
    if (place < end && known[place]->identity.get() == identity) return known[place];
    if (byIdentity.empty()) {  // only when the order has changed
      for (std::size_t i = untouched.before; i < end; ++i) byIdentity.emplace(known[i]->identity.get(), &known[i]);
    }
    const auto found = byIdentity.find(identity);
    return found == byIdentity.end() ? nullptr : *found->second;
  };
  for (std::size_t i = untouched.before + 1; i <= items_.Count() - untouched.behind; ++i) {
    qbEntity& entity = **items_.At(i);
    state.push_back(StateOf(entity, knownAs(entity.Identity().get()), withTicks));
  }
  return state;
}

void qbEntities::RemoveOthers(const DiagramState& staying) {
  std::unordered_map<const EntityIdentity*, const EntityState*> wanted;
  for (const auto& state : staying) wanted.emplace(state->identity.get(), state.get());
  std::vector<Ref<qbEntity>> leaving;
  for (std::size_t i = 1; i <= items_.Count(); ++i) {
    const Ref<qbEntity>& entity = *items_.At(i);
    const auto found = wanted.find(entity->Identity().get());
    if (found == wanted.end()) leaving.push_back(entity);
    entity->Relationships()->Drop(found == wanted.end() ? std::vector<JoinState>() : found->second->joins);
  }
  for (const Ref<qbEntity>& entity : leaving) TakeOut(entity);
}

// Tables may exchange their captions, so those that change first take one that nobody has.
void qbEntities::RenameTo(const DiagramState& then) {
  std::vector<std::pair<Ref<qbEntity>, const std::string*>> changing;
  for (const auto& state : then) {
    const Ref<qbEntity> entity = state->identity->live.lock();
    if (entity && entity->EntityBox() && entity->Caption() != state->facts.caption) {
      changing.emplace_back(entity, &state->facts.caption);
    }
  }
  std::vector<std::size_t> places;
  places.reserve(changing.size());
  for (const auto& [entity, caption] : changing) places.push_back(PositionOf(*entity));
  for (const std::size_t place : places) items_.Rekey(place, "\x01" + std::to_string(place));
  for (std::size_t i = 0; i < changing.size(); ++i) {
    items_.Rekey(places[i], *changing[i].second);
    changing[i].first->EntityBox()->SetCaption(*changing[i].second);
  }
}

// The table as it was when it was removed, as another object.
Ref<qbEntity> qbEntities::Return(const EntityState& state) {
  const Ref<qbEntity> entity = Make(state.facts.caption);
  entity->identity_ = state.identity;
  state.identity->live = entity;
  state.identity->rowsSeen = UINT64_MAX;
  return entity;
}

void qbEntities::Restore(const DiagramState& now, const DiagramState& then) {
  if (!view_) ThrowObjectRemoved();
  std::unordered_set<const EntityState*> unchanged;
  for (const auto& state : now) unchanged.insert(state.get());
  RemoveOthers(then);
  RenameTo(then);
  std::vector<Ref<qbEntity>> order;
  for (const auto& state : then) {
    const Ref<qbEntity> live = state->identity->live.lock();
    order.push_back(live && live->EntityBox() ? live : Return(*state));
  }
  Arrange(order);
  for (std::size_t i = 0; i < then.size(); ++i) {
    if (unchanged.contains(then[i].get())) continue;
    order[i]->Items()->Restore(*then[i]->items);
    order[i]->EntityBox()->Rows().SetTicks(then[i]->ticks);
    order[i]->Restore(then[i]->facts);
  }
  // When all columns are there.
  for (std::size_t i = 0; i < then.size(); ++i) {
    if (!unchanged.contains(then[i].get())) order[i]->Relationships()->Restore(then[i]->joins);
  }
}

void qbEntities::Arrange(const std::vector<Ref<qbEntity>>& order) {
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (*items_.At(i + 1) == order[i]) continue;
    const std::size_t from = PositionOf(*order[i]);
    if (from == items_.kNone) ThrowObjectRemoved();
    items_.Move(from, i + 1);
    untouched_.Touch(i, items_.Count() - from);
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
  untouched_ = {};
}

std::size_t qbEntities::PositionOf(const qbEntity& entity) const {
  const auto isAt = [&](std::size_t position) {
    return position != items_.kNone && items_.At(position)->get() == &entity;
  };
  if (!entity.EntityBox()) return items_.kNone;
  const std::size_t position = items_.PositionOf(entity.EntityBox()->Caption());
  return isAt(position) ? position : items_.kNone;
}

void qbEntities::Rename(qbEntity& entity, const std::string& caption) {
  const std::string before = entity.Caption();
  if (before == caption) return;
  RequireFree(caption, &entity);
  const StepScope step(view_ ? view_->Context() : nullptr, kStepRenameTable, before);
  const std::size_t position = PositionOf(entity);
  items_.Rekey(position, caption);
  entity.EntityBox()->SetCaption(caption);
  if (!view_) return;
  if (const Ref<QueryContext> context = view_->Context()) {
    context->reports.EntityRenamed(before, caption);
    context->steps.EntitiesChanged(static_cast<std::int32_t>(position));
    context->steps.QueryChanged();
  }
}

std::vector<Ref<qbRelationship>> qbEntities::AskingJoins() {
  std::vector<Ref<qbRelationship>> joins;
  std::unordered_set<const qbRelationship*> found;  // one may have begun to ask several times
  for (const WeakRef<qbRelationship>& one : std::exchange(asking_, {})) {
    const Ref<qbRelationship> join = one.lock();
    if (join && join->Line() && join->Facts().AsksMore() && found.insert(join.get()).second) joins.push_back(join);
  }
  asking_.assign(joins.begin(), joins.end());
  return joins;
}

}  // namespace zrqrybld
