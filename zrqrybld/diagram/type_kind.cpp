#include "zrqrybld/diagram/type_kind.h"

#include "zrqrybld/platform/schema_fields.h"

namespace zrqrybld {

TypeKind KindOfType(std::int32_t code) {
  switch (ValueKindOf(code)) {
    case ValueKind::Number:
      return TypeKind::Number;
    case ValueKind::Text:
      return TypeKind::Text;
    case ValueKind::Date:
      return TypeKind::Date;
    case ValueKind::Boolean:
      return TypeKind::YesNo;
    case ValueKind::Binary:
      return TypeKind::Binary;
    case ValueKind::Guid:
    case ValueKind::Unknown:
      break;
  }
  return TypeKind::Other;
}

}  // namespace zrqrybld
