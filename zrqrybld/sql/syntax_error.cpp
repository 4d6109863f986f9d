#include "zrqrybld/sql/syntax_error.h"

#include <algorithm>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"

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

SyntaxError::SyntaxError(std::string_view text, std::size_t offset, Phrase message, Phrase expected)
    : SyntaxError(PlaceIn(text, offset), offset, std::move(message), std::move(expected)) {}

SyntaxError::SyntaxError(TextPlace place, std::size_t offset, Phrase sentence, Phrase expected)
    : Error(ErrorParsingText, Phrase(text::LineAndColumn, place.line, place.column, sentence), offset),
      place_(place),
      sentence_(std::move(sentence)),
      expected_(std::move(expected)) {}

}  // namespace zrqrybld
