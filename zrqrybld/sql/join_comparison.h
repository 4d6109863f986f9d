// How a join compares its two columns.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

struct Dialect;

/// What a join asks of its two columns, read from the source's to the target's: "source < target".
enum JoinComparisonEnum : std::int32_t {
  JoinEqual = 0,
  JoinNotEqual = 1,
  JoinLess = 2,
  JoinLessOrEqual = 3,
  JoinGreater = 4,
  JoinGreaterOrEqual = 5,
  JoinLike = 6,  ///< the target's column holds the pattern
  JoinSame = 7,  ///< equal, or both missing: "IS NOT DISTINCT FROM"
};

/// The sign or word that the dialect writes between the columns; "" for a comparison that it does not have.
ZRQRYBLD_API std::string_view SignOf(JoinComparisonEnum comparison, const Dialect& dialect);

/// The comparison as people read it, whatever the dialect: "=", "<", "LIKE", "IS NOT DISTINCT FROM".
ZRQRYBLD_API std::string_view SignOf(JoinComparisonEnum comparison);

/// The comparison that a sign of any dialect names, in any letter case; none for every other text.
std::optional<JoinComparisonEnum> JoinComparisonOf(std::string_view sign);

/// The comparison of the number; equality for one that has none.
constexpr JoinComparisonEnum JoinComparisonAt(std::int32_t number) {
  return number >= JoinEqual && number <= JoinSame ? static_cast<JoinComparisonEnum>(number) : JoinEqual;
}

/// The same comparison with its columns exchanged; none for LIKE, whose sides are not alike.
constexpr std::optional<JoinComparisonEnum> Mirrored(JoinComparisonEnum comparison) {
  switch (comparison) {
    case JoinLess:
      return JoinGreater;
    case JoinLessOrEqual:
      return JoinGreaterOrEqual;
    case JoinGreater:
      return JoinLess;
    case JoinGreaterOrEqual:
      return JoinLessOrEqual;
    case JoinLike:
      return std::nullopt;
    default:
      return comparison;
  }
}

/// Whether the comparison holds for no row in which one of the columns is missing.
constexpr bool NeedsValues(JoinComparisonEnum comparison) { return comparison != JoinSame; }

}  // namespace zrqrybld
