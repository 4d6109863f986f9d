#include "zrqrybld/adapters/run/query_runner.h"

#include <utility>

#include "zrqrybld/adapters/run/error_place.h"
#include "zrqrybld/adapters/run/source_sql.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_run.h"
#include "zrqrybld/sql/dialect.h"

namespace zrqrybld {
namespace {

// The beginning of a text, at most so many bytes and nothing of a character that does not fit.
std::string_view WholeCharacters(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  constexpr unsigned char kContinuation = 0x80;  // the first two bits of a character's further bytes
  while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == kContinuation) --most;
  return text.substr(0, most);
}

}  // namespace

std::vector<std::string> QueryRunner::Execute(std::string_view sql, const Dialect& dialect) {
  const SourceMode mode = Mode();
  RequireOneSelect(sql, mode);
  RequireSpoken(sql, dialect, SourceName());
  try {
    return Start(StatementToSend(sql, mode));
  } catch (const Error& error) {
    if (error.Offset()) throw;
    throw Error(error.Number(), error.What(), FindErrorPlace(error.Description(), sql));
  }
}

bool QueryRunner::Fetch(std::size_t most, std::vector<ResultRow>& rows) {
  std::size_t bytes = 0;
  for (std::size_t i = 0; i < most && bytes < kBlockBytes; ++i) {
    RowBuilder row;
    if (!Next(row)) return false;
    rows.push_back(row.Take());
    bytes += BytesOf(rows.back());
  }
  return true;
}

void RowBuilder::Add(ResultValue value) {
  if (bytes_ > kLargeRow && value.text.size() > kShortText) {
    value.text = std::string(WholeCharacters(value.text, kShortText));
    value.cut = true;
  }
  bytes_ += value.text.size();
  row_.push_back(std::move(value));
}

std::size_t BytesOf(const ResultRow& row) {
  std::size_t bytes = sizeof row + row.capacity() * sizeof(ResultValue);
  for (const ResultValue& value : row) bytes += value.text.capacity();
  return bytes;
}

ResultValue TextValue(ResultKind kind, std::string_view text, bool cut) {
  const std::string_view shown = WholeCharacters(text, QueryRunner::kLongestText);
  return {kind, cut || shown.size() < text.size(), std::string(shown)};
}

ResultValue BinaryValue(std::string_view beginning, std::int64_t size) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  const std::string_view shown = beginning.substr(0, kShownBytes);
  const bool cut = size < 0 || static_cast<std::size_t>(size) > shown.size();
  std::string text = size < 0 ? "" : Phrase(size == 1 ? text::OneByte : text::Bytes, size).English();
  if (!shown.empty()) text += text.empty() ? "0x" : "  0x";
  for (const char c : shown) {
    const auto byte = static_cast<unsigned char>(c);
    text += {kHex[byte >> 4], kHex[byte & 15]};
  }
  if (cut) text += "\u2026";
  return {ResultKind::Binary, cut, std::move(text)};
}

}  // namespace zrqrybld
