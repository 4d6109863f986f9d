// qbWholeJoins: the whole joins of a diagram, by position from 1 in the order of their drawing.
#pragma once

#include <cstdint>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/diagram/whole_join.h"

namespace zrqrybld {

class DiagramScene;

class ZRQRYBLD_API qbWholeJoins final : public Object {
 public:
  explicit qbWholeJoins(WeakRef<DiagramSite> site, const DiagramScene* scene) : site_(std::move(site)), scene_(scene) {}
  std::string_view TypeName() const override { return "qbWholeJoins"; }

  /// How many there are; none once the diagram is gone.
  std::int32_t Count() const;
  /// The join at a position from 1. Error 9 when there is none.
  Ref<qbWholeJoin> Item(const Variant& index) const;
  /// Walks them in that order, for a range-based loop.
  CollectionIterator<qbWholeJoins> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }
  /// The join between two entities, whichever way round; nothing when there is none.
  Ref<qbWholeJoin> Between(const Ref<qbEntity>& one, const Ref<qbEntity>& other) const;

 private:
  WeakRef<DiagramSite> site_;  // the scene lives as long
  const DiagramScene* scene_;
};

}  // namespace zrqrybld
