// What a column's declared type means: SQLite lets a declaration say anything, so this reads the
// names in common use and falls back to SQLite's own rules.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "zrqrybld/platform/schema_fields.h"

namespace zrqrybld::sqlite {

/// One type of the provider. No two have the same code and long flag.
struct ProviderType {
  std::string_view name;
  DataTypeCode code;
  bool isLong = false;
  bool fixedLength = false;
  std::int32_t size = 0;         ///< digits or characters; 0 when only SQLite's longest value limits it
  std::string_view prefix = {};  ///< put before a literal; "" for none
  std::string_view suffix = {};  ///< put behind a literal; "" for none
};

/// Every type that `ReadDeclaredType` yields.
std::span<const ProviderType> ProviderTypes();

/// A column's type as it was declared.
struct DeclaredType {
  const ProviderType* type;            ///< never null
  std::optional<std::int32_t> length;  ///< characters or bytes, of text and binary types
  std::optional<std::int32_t> precision;
  std::optional<std::int32_t> scale;
};

/// Reads a declaration such as "NVARCHAR(40)" or "decimal(10, 2)". No declaration, and one that means
/// nothing known, is text without a length: a literal in quotes compares well with whatever such a column
/// holds, where a bare word would not even be valid.
DeclaredType ReadDeclaredType(std::string_view declaration);

}  // namespace zrqrybld::sqlite
