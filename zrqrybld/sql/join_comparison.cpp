#include "zrqrybld/sql/join_comparison.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/statement_printer.h"

namespace zrqrybld {
namespace {

constexpr std::array<std::string_view, 8> kSigns = {"=", "<>", "<", "<=", ">", ">=", "LIKE", "IS NOT DISTINCT FROM"};

// Other ways in which servers write one of them.
struct OtherSign {
  std::string_view sign;
  JoinComparisonEnum comparison;
};
constexpr OtherSign kOtherSigns[] = {
    {"==", JoinEqual},       {"!=", JoinNotEqual}, {"^=", JoinNotEqual}, {"!<", JoinGreaterOrEqual},
    {"!>", JoinLessOrEqual}, {"<=>", JoinSame},    {"IS", JoinSame},
};

}  // namespace

std::string_view SignOf(JoinComparisonEnum comparison) {
  return kSigns[static_cast<std::size_t>(JoinComparisonAt(comparison))];
}

std::string_view SignOf(JoinComparisonEnum comparison, const Dialect& dialect) {
  return comparison == JoinSame ? dialect.sameValue : SignOf(comparison);
}

std::optional<JoinComparisonEnum> JoinComparisonOf(std::string_view sign) {
  const std::string one = OnOneLine(sign);
  const auto found = std::ranges::find_if(kSigns, [&](std::string_view known) { return EqualsNoCase(known, one); });
  if (found != kSigns.end()) return static_cast<JoinComparisonEnum>(found - kSigns.begin());
  const auto* other =
      std::ranges::find_if(kOtherSigns, [&](const OtherSign& row) { return EqualsNoCase(row.sign, one); });
  if (other == std::end(kOtherSigns)) return std::nullopt;
  return other->comparison;
}

}  // namespace zrqrybld
