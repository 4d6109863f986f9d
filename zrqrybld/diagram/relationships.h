// qbRelationships: the joins that start at one entity, by position from 1.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/diagram/diagram_state.h"
#include "zrqrybld/diagram/diagram_view.h"
#include "zrqrybld/diagram/relationship.h"

namespace zrqrybld {

class ZRQRYBLD_API qbRelationships final : public Object, private RelationshipOwner {
 public:
  /// `view` draws the joins; it must outlive the collection or be taken away by `Detach`.
  explicit qbRelationships(DiagramView* view) : view_(view) {}
  std::string_view TypeName() const override { return "qbRelationships"; }

  /// Adds a join to `target` at the end; set its two item indexes next. Error 91 when this entity or
  /// the target was removed from the diagram, 5 when the target is in another one.
  Ref<qbRelationship> Add(const Ref<qbEntity>& target);

  /// Removes all joins that start here.
  void Clear();

  /// How many there are; positions run from 1 to it, in the order of adding.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.Count()); }
  /// Walks them in that order, for a range-based loop.
  CollectionIterator<qbRelationships> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }

  /// Whether a join between column `index1` of `entity1` and column `index2` of `entity2` is in the
  /// diagram, whichever way round it was drawn and whichever collection is asked.
  bool Exists(const Ref<qbEntity>& entity1, const Ref<qbEntity>& entity2, const Variant& index1,
              const Variant& index2) const;

  /// The join at a position from 1. Error 9 when there is none.
  Ref<qbRelationship> Item(const Variant& index) const { return *items_.At(RequirePosition(items_, index)); }

  /// Removes the join at a position from 1. Error 9 when there is none.
  void Remove(const Variant& index);

  // --- For the model ---

  /// Removes the joins that are not among these; makes the joins these. Their targets are in the diagram.
  void Drop(const std::vector<JoinState>& staying);
  void Restore(const std::vector<JoinState>& joins);
  /// The entity that the joins start at; held weakly.
  void SetParentEntity(const Ref<qbEntity>& entity) { parent_ = entity; }
  /// The entity leaves the diagram.
  void Detach();

 private:
  std::size_t PositionOf(const qbRelationship& relationship) const override;
  Ref<qbRelationship> Make(const Ref<qbEntity>& source, const Ref<qbEntity>& target);
  void Append(const Ref<qbRelationship>& relationship);
  void Touch() const;

  DiagramView* view_;
  WeakRef<qbEntity> parent_;
  KeyedList<Ref<qbRelationship>> items_;
};

}  // namespace zrqrybld
