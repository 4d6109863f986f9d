#include "diagram/entity_item.h"

#include "base/error.h"

namespace zrqrybld {

BoxRow& qbEntityItem::Row() const {
  if (!row_) ThrowObjectRemoved();
  return *row_;
}

void qbEntityItem::SetKey(std::string key) {
  BoxRow& row = Row();
  list_->Rekey(row.Index(), key);
  row.SetKey(std::move(key));
}

}  // namespace zrqrybld
