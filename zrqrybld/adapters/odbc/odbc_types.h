// What ODBC's types are called in the library's own codes.
#pragma once

#include <cstdint>

#include "zrqrybld/platform/schema_fields.h"

namespace zrqrybld::odbc {

struct TypeFacts {
  std::int16_t odbcType;
  DataTypeCode code;
  bool isLong = false;
  bool fixedLength = false;
  bool hasLength = false;     ///< the column's size is a number of characters or bytes
  bool hasPrecision = false;  ///< the column's size is a number of digits, and there is a scale
};

/// A type that is not known is text: a literal in quotes compares well with most values, where a bare word would
/// not even be valid.
const TypeFacts& FactsOf(std::int32_t odbcType);

/// The code of the type; one byte without sign has a code of its own.
DataTypeCode CodeOf(const TypeFacts& facts, bool isUnsigned);

}  // namespace zrqrybld::odbc
