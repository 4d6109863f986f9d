#include "zrqrybld/diagram/whole_joins.h"

#include "zrqrybld/base/error.h"
#include "zrqrybld/diagram/diagram_scene.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entity.h"

namespace zrqrybld {

std::int32_t qbWholeJoins::Count() const {
  return site_.expired() ? 0 : static_cast<std::int32_t>(scene_->Wholes().Count());
}

Ref<qbWholeJoin> qbWholeJoins::Item(const Variant& index) const {
  const std::optional<double> position = index.Number();
  if (!position || !(*position >= 1 && *position <= Count())) ThrowNoSuchItem();
  return scene_->Wholes().At(static_cast<std::size_t>(*position));
}

Ref<qbWholeJoin> qbWholeJoins::Between(const Ref<qbEntity>& one, const Ref<qbEntity>& other) const {
  if (site_.expired() || !one || !other) return nullptr;
  return scene_->WholeBetween(one->EntityBox().get(), other->EntityBox().get());
}

}  // namespace zrqrybld
