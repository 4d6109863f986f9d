// Any bytes as a criterion of a column: an error has its place; what was formatted formats as itself, and the condition
// made of it gives the criterion back.
#include <cstdlib>

#include "zrqrybld/base/error.h"
#include "zrqrybld/sql/criteria_formatter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace zrqrybld;
  constexpr std::int32_t kTypes[] = {0, 3, 200, 11, 133, 135, 72, 204};
  if (size == 0) return 0;
  CriteriaContext context;
  context.dataType = kTypes[data[0] % 8];
  context.dateFormatStyle = data[0] & 8 ? DateFormatEscapeSequence : DateFormatNative;
  if (context.dataType == 204) context.prefix = context.suffix = "'";
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  std::string formatted;
  try {
    formatted = FormatCriterion(text, context);
  } catch (const Error& error) {
    if (error.Number() != ErrorParsingText || !error.Offset() || *error.Offset() > text.size()) std::abort();
    return 0;
  }
  if (FormatCriterion(formatted, context) != formatted) std::abort();
  if (formatted.empty()) return 0;
  const std::string condition = FormatCondition("T.A", formatted, context);
  const auto isField = [](std::string_view left) { return left == "T.A"; };
  if (const std::optional<std::string> back = CriterionOf(condition, isField)) {
    if (FormatCondition("T.A", *back, context) != condition) std::abort();
  }
  return 0;
}
