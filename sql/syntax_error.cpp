#include "sql/syntax_error.h"

#include <algorithm>

#include "base/text.h"

namespace zrqrybld {

TextPlace PlaceIn(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, std::min(offset, text.size()));
  TextPlace place;
  std::size_t lineStart = 0;
  for (std::size_t i = 0; i < before.size(); ++i) {
    const bool ends = before[i] == '\n' || (before[i] == '\r' && !text.substr(i + 1).starts_with('\n'));
    if (!ends) continue;
    ++place.line;
    lineStart = i + 1;
  }
  place.column = CharacterCount(before.substr(lineStart)) + 1;
  return place;
}

SyntaxError::SyntaxError(std::string_view text, std::size_t offset, std::string message, std::string expected)
    : SyntaxError(PlaceIn(text, offset), offset, std::move(message), std::move(expected)) {}

SyntaxError::SyntaxError(TextPlace place, std::size_t offset, std::string message, std::string expected)
    : Error(ErrorParsingText,
            "Line " + std::to_string(place.line) + ", column " + std::to_string(place.column) + ": " + message, offset),
      place_(place),
      message_(std::move(message)),
      expected_(std::move(expected)) {}

}  // namespace zrqrybld
