// What a column's type shows in its box.
#pragma once

#include <cstdint>

#include "zrqrybld/diagram/box_rows.h"

namespace zrqrybld {

/// What a column of this type shows in its box; `code` is a `DataTypeCode`.
TypeKind KindOfType(std::int32_t code);

}  // namespace zrqrybld
