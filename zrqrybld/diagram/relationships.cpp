#include "zrqrybld/diagram/relationships.h"

#include <unordered_set>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/entity.h"

namespace zrqrybld {

Ref<qbRelationship> qbRelationships::Add(const Ref<qbEntity>& target) {
  const Ref<qbEntity> source = parent_.lock();
  if (!view_ || !source || !target || !target->EntityBox()) ThrowObjectRemoved();
  if (!view_->HasBox(*target->EntityBox())) throw Error(ErrorInvalidCall, text::TableInOtherDiagram);
  const Ref<qbRelationship> relationship = Make(source, target);
  Append(relationship);
  Touch();
  source->EntityBox()->Notify("relationshipadd", Ref<Object>(relationship));
  return relationship;
}

Ref<qbRelationship> qbRelationships::Make(const Ref<qbEntity>& source, const Ref<qbEntity>& target) {
  // The list shares this collection's life, so it may serve as the owner's handle.
  const std::shared_ptr<RelationshipOwner> owner(shared_from_this(), this);
  const Ref<qbRelationship> relationship(new qbRelationship(source, target, owner));
  relationship->line_ = view_->LoadLine(relationship, source->EntityBox(), target->EntityBox());
  return relationship;
}

void qbRelationships::Append(const Ref<qbRelationship>& relationship) {
  items_.Insert(relationship);
  relationship->mark_ = items_.MarkAt(items_.Count());
}

// Joins are remembered with the entity that they start at.
void qbRelationships::Touch() const {
  const Ref<qbEntity> source = parent_.lock();
  if (source && source->EntityBox()) source->EntityBox()->Touch();
}

void qbRelationships::Drop(const std::vector<JoinState>& staying) {
  std::unordered_set<const JoinIdentity*> kept;
  for (const JoinState& join : staying) kept.insert(join.identity.get());
  for (std::int32_t i = Count(); i >= 1; --i) {
    if (!kept.contains(Item(i)->Identity().get())) Remove(i);
  }
}

void qbRelationships::Restore(const std::vector<JoinState>& joins) {
  const Ref<qbEntity> source = parent_.lock();
  if (!view_ || !source) ThrowObjectRemoved();
  const KeyedList<Ref<qbRelationship>> before = std::exchange(items_, {});  // they live on: most of them come back
  Touch();
  for (const JoinState& state : joins) {
    Ref<qbRelationship> join = state.identity->live.lock();
    const bool isThere = join && join->Line();
    if (!isThere) {
      const Ref<qbEntity> target = state.target->live.lock();
      if (!target || !target->EntityBox()) continue;
      join = Make(source, target);
      join->identity_ = state.identity;
      state.identity->live = join;
    }
    Append(join);
    join->Restore(state.facts);
  }
}

void qbRelationships::Clear() {
  while (Count() > 0) Remove(1);
}

bool qbRelationships::Exists(const Ref<qbEntity>& entity1, const Ref<qbEntity>& entity2, const Variant& index1,
                             const Variant& index2) const {
  const auto drawnFrom = [&](const Ref<qbEntity>& from, const Ref<qbEntity>& to) {
    if (!from || !to) return false;
    const qbRelationships& joins = *from->Relationships();
    for (std::size_t i = 1; i <= joins.items_.Count(); ++i) {
      const qbRelationship& join = **joins.items_.At(i);
      if (join.Target() != to) continue;
      const Variant& a = join.SourceItemIndex();
      const Variant& b = join.TargetItemIndex();
      if ((a == index1 && b == index2) || (b == index1 && a == index2)) return true;
    }
    return false;
  };
  return drawnFrom(entity1, entity2) || drawnFrom(entity2, entity1);
}

void qbRelationships::Remove(const Variant& index) {
  const Ref<qbRelationship> relationship = Item(index);
  const Ref<qbEntity> source = parent_.lock();
  if (view_ && view_->SelectedObject() == relationship) view_->DropSelection();
  // A listener of the selection's end may have removed it already, or the whole entity.
  const std::size_t position = PositionOf(*relationship);
  if (position == items_.kNone) return;
  if (view_) view_->UnloadLine(relationship->Line());
  items_.RemoveAt(position);
  Touch();
  relationship->Detach();
  if (source && source->EntityBox()) source->EntityBox()->Notify("relationshipremove", Ref<Object>(relationship));
}

void qbRelationships::Detach() {
  for (std::size_t i = 1; i <= items_.Count(); ++i) (*items_.At(i))->Detach();
  items_.Clear();
  parent_.reset();
  view_ = nullptr;
}

// A removed one has no owner any more.
std::size_t qbRelationships::PositionOf(const qbRelationship& relationship) const {
  const bool here = relationship.mark_ && relationship.owner_.lock().get() == this;
  return here ? items_.PositionOf(relationship.mark_) : items_.kNone;
}

}  // namespace zrqrybld
