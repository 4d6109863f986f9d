#include "adapters/run/query_runner.h"

#include <utility>

#include "adapters/run/error_place.h"
#include "adapters/run/source_sql.h"
#include "base/error.h"

namespace zrqrybld {

std::vector<std::string> QueryRunner::Execute(std::string_view sql, const Dialect& dialect) {
  const std::string source = SourceName();
  RequireOneSelect(sql, FamilyOf(source));
  RequireSpoken(sql, dialect, source);
  try {
    return Start(sql);
  } catch (const Error& error) {
    if (error.Offset()) throw;
    throw Error(error.Number(), error.Description(), FindErrorPlace(error.Description(), sql));
  }
}

ResultValue TextValue(ResultKind kind, std::string_view text, bool cut) {
  constexpr unsigned char kContinuation = 0x80;  // the first two bits of a character's further bytes
  if (text.size() > QueryRunner::kLongestText) {
    std::size_t end = QueryRunner::kLongestText;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == kContinuation) --end;
    text = text.substr(0, end);
    cut = true;
  }
  return {kind, cut, std::string(text)};
}

ResultValue BinaryValue(std::string_view beginning, std::int64_t size) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  const std::string_view shown = beginning.substr(0, kShownBytes);
  const bool cut = size < 0 || static_cast<std::size_t>(size) > shown.size();
  std::string text = size < 0 ? "" : std::to_string(size) + (size == 1 ? " byte" : " bytes");
  if (!shown.empty()) text += text.empty() ? "0x" : "  0x";
  for (const char c : shown) {
    const auto byte = static_cast<unsigned char>(c);
    text += {kHex[byte >> 4], kHex[byte & 15]};
  }
  if (cut) text += "\u2026";
  return {ResultKind::Binary, cut, std::move(text)};
}

}  // namespace zrqrybld
