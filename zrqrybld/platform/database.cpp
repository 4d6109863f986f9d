#include "zrqrybld/platform/database.h"

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {

std::optional<std::size_t> RowSet::FindField(std::string_view name) const {
  for (std::size_t i = 0; i < FieldCount(); ++i) {
    if (EqualsNoCase(FieldName(i), name)) return i;
  }
  return std::nullopt;
}

Variant RowSet::Value(std::string_view name) const {
  const std::optional<std::size_t> index = FindField(name);
  if (!index) ThrowNoSuchItem();
  return Value(*index);
}

}  // namespace zrqrybld
