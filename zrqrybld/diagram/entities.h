// qbEntities: the tables of the diagram, by position from 1 or by caption.
//
// Owned by the pane that shows them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/untouched.h"
#include "zrqrybld/diagram/diagram_view.h"
#include "zrqrybld/diagram/entity.h"

namespace zrqrybld {

class ZRQRYBLD_API qbEntities final : public Object, private EntityOwner {
 public:
  /// `view` shows the entities; it must outlive the collection or be taken away by `Detach`.
  explicit qbEntities(DiagramView* view) : view_(view) {}
  std::string_view TypeName() const override { return "qbEntities"; }

  /// An entity has been added under this key.
  Event<const std::string&> EntityAdd;
  /// The entity with this key has been removed.
  Event<const std::string&> EntityRemove;
  /// An entity is about to be added; the second argument set to true prevents it.
  Event<const std::string&, bool&> BeforeAdd;

  /// The entity with this key is about to be removed, by the user or by `Remove`; the second argument set to true keeps
  /// it. Nobody is asked where a whole query gives way to another, by undo, or when adding a table has failed.
  Event<const std::string&, bool&> BeforeRemove;

  /// Adds an entity with the caption `key`. Nothing when a handler of `BeforeAdd` cancels it; error 457
  /// when another entity has the caption, in any letter case; error 5 for an empty one.
  Ref<qbEntity> Add(const std::string& key);

  /// How many there are; positions run from 1 to it, in the order of adding.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.Count()); }
  /// Walks them in that order, for a range-based loop.
  CollectionIterator<qbEntities> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }

  /// The entity at a position from 1 or with this caption, or nothing.
  Ref<qbEntity> Item(const Variant& index) const { return ItemOrNothing(items_, index); }

  /// Removes an entity with its columns and all joins at it, unless a handler of `BeforeRemove` keeps it. A missing one
  /// is no error.
  void Remove(const Variant& index);

  // --- For the model, the pane and the hub ---

  /// The joins that ask more than how two columns compare, in no order.
  std::vector<Ref<qbRelationship>> AskingJoins();

  /// The entity with exactly this caption, or nothing.
  Ref<qbEntity> FindExactly(std::string_view caption) const {
    return items_.HasExactly(caption) ? *items_.Find(caption) : nullptr;
  }

  /// Gives the entity's box the size that fits its columns.
  void Fit(const qbEntity& entity) {
    if (view_ && entity.EntityBox()) view_->FitBox(entity.EntityBox());
  }

  /// Removes an entity whatever handlers of `BeforeRemove` say.
  void Drop(const Ref<qbEntity>& entity);
  /// Removes an entity that a listener has refused by an error, whatever listeners say to that.
  void TakeBack(const Ref<qbEntity>& entity);

  /// Puts the entities into this order, which is that of the tables in the statement. All of them must be named.
  void Arrange(const std::vector<Ref<qbEntity>>& order);

  /// Which tables may be others, or other in what is theirs, than when they were last remembered. A join is its
  /// source's.
  const Untouched& SinceRemembered() const { return untouched_; }
  /// All tables are remembered as they are now.
  void Remembered();
  /// What the tables between the untouched ones are now, sharing what is as it was in `known`, which names all tables
  /// of then; see `StateOf` for the ticks. No more may be untouched than both lists have.
  DiagramState State(const DiagramState& known, const Untouched& untouched, bool withTicks) const;
  /// Makes the tables and joins, which are as `now` says, what `then` says. No listener is asked or told, and nothing
  /// is looked up in the data source.
  void Restore(const DiagramState& now, const DiagramState& then);

  /// The pane goes away: removes all entities without a word.
  void Detach();

 private:
  std::size_t PositionOf(const qbEntity& entity) const override;
  void Rename(qbEntity& entity, const std::string& caption) override;
  void NoteAsking(const Ref<qbRelationship>& join) override { asking_.emplace_back(join); }
  void RequireFree(const std::string& caption, const qbEntity* owner) const;
  void RemoveJoinsOf(const Ref<qbEntity>& entity);
  Ref<qbEntity> Make(const std::string& key);
  Ref<qbEntity> MakeFor(const Ref<qbEntityList>& box, const std::string& key);
  void RemoveWithJoins(const Ref<qbEntity>& entity, const Ref<QueryContext>& context, const std::string& key);
  void Announce(const Ref<qbEntity>& entity, const std::string& key, const Ref<QueryContext>& context);
  void Touch(const qbEntity& entity);
  void TakeOut(const Ref<qbEntity>& entity);
  void RemoveOthers(const DiagramState& staying);
  void RenameTo(const DiagramState& then);
  Ref<qbEntity> Return(const EntityState& state);

  DiagramView* view_;
  Untouched untouched_;
  KeyedList<Ref<qbEntity>> items_;
  std::vector<WeakRef<qbRelationship>> asking_;  // and some that do no more
};

}  // namespace zrqrybld
