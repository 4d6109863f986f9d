#include "zrqrybld/adapters/run/error_place.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

using Place = std::optional<std::size_t>;

// The number that follows `word`, and where the text goes on behind it.
std::optional<std::size_t> NumberAfter(std::string_view text, std::string_view word, std::size_t& behind) {
  const std::size_t at = FindNoCase(text, word);
  if (at == std::string_view::npos) return std::nullopt;
  std::size_t number = 0;
  const char* begin = text.data() + at + word.size();
  const auto [end, failure] = std::from_chars(begin, text.data() + text.size(), number);
  if (failure != std::errc() || number == 0) return std::nullopt;
  behind = static_cast<std::size_t>(end - text.data());
  return number;
}

// Where a line begins, from 1; none behind the last.
Place StartOfLine(std::string_view text, std::size_t line) {
  std::size_t at = 0;
  for (std::size_t i = 1; i < line; ++i) {
    at = text.find('\n', at);
    if (at == std::string_view::npos) return std::nullopt;
    ++at;
  }
  return at;
}

// The bytes of the first characters of a text.
std::size_t BytesOf(std::string_view text, std::size_t characters) { return FirstCharacters(text, characters).size(); }

// "LINE 2: WHERE Naem = 1" and a mark below the place. Of a long line only a part is told, between dots.
Place FromMarkedLine(std::string_view message, std::string_view sql) {
  std::size_t colon = 0;
  const auto number = NumberAfter(message, "LINE ", colon);
  if (!number || colon >= message.size() || message[colon] != ':') return std::nullopt;
  const std::size_t told = colon + 2;
  const std::size_t end = std::min(message.find('\n', told), message.size());
  const std::size_t mark = message.find('^', end);
  const Place start = StartOfLine(sql, *number);
  if (told > end || mark == std::string_view::npos || !start) return std::nullopt;

  // The mark stands in the same column of its line, which is counted in characters.
  const std::size_t lineStart = message.rfind('\n', mark) + 1;
  const std::size_t toldLineStart =
      message.rfind('\n', told) == std::string_view::npos ? 0 : message.rfind('\n', told) + 1;
  const std::size_t column = CharacterCount(message.substr(lineStart, mark - lineStart));
  const std::size_t before = CharacterCount(message.substr(toldLineStart, told - toldLineStart));
  if (column < before) return std::nullopt;
  std::string_view excerpt = message.substr(told, end - told);
  const std::size_t inExcerpt = BytesOf(excerpt, column - before);
  constexpr std::string_view kDots = "...";
  std::size_t skipped = 0;
  if (excerpt.starts_with(kDots)) {
    excerpt.remove_prefix(kDots.size());
    skipped = kDots.size();
  }
  if (excerpt.ends_with(kDots)) excerpt.remove_suffix(kDots.size());
  while (excerpt.ends_with('\r')) excerpt.remove_suffix(1);
  const std::size_t at = sql.find(excerpt, *start);
  if (at == std::string_view::npos || inExcerpt < skipped) return std::nullopt;
  return at + (inExcerpt - skipped);
}

Place FromCharacterNumber(std::string_view message, std::string_view sql) {
  for (const std::string_view word : {"at character ", "at position ", "Position: "}) {
    std::size_t behind = 0;
    const auto number = NumberAfter(message, word, behind);
    if (number && *number <= CharacterCount(sql) + 1) return BytesOf(sql, *number - 1);
  }
  return std::nullopt;
}

// "near 'rest of the text' at line 2", of which only so much is told.
Place FromRestOfText(std::string_view message, std::string_view sql) {
  constexpr std::string_view kNear = "near '";
  constexpr std::string_view kEnd = "' at line ";
  const std::size_t near = message.find(kNear);
  const std::size_t end = message.rfind(kEnd);
  if (near == std::string_view::npos || end == std::string_view::npos || end < near + kNear.size()) return std::nullopt;
  const std::string_view rest = message.substr(near + kNear.size(), end - near - kNear.size());
  std::size_t behind = 0;
  const auto line = NumberAfter(message.substr(end), kEnd, behind);
  const Place start = line ? StartOfLine(sql, *line) : std::nullopt;
  if (!start) return std::nullopt;
  if (rest.empty()) return sql.size();
  const std::size_t at = sql.find(rest, *start);
  return at == std::string_view::npos ? Place() : Place(at);
}

// The one place where the statement's code holds the text.
Place OnlyPlaceOf(std::string_view text, std::string_view sql) {
  Place found;
  Lexer lexer(sql);
  for (Token token; lexer.Next(token);) {
    if (token.kind == TokenKind::String || token.kind == TokenKind::Comment) continue;
    const std::string_view word = sql.substr(token.offset, token.length);
    const bool quoted = token.kind == TokenKind::QuotedIdentifier && word.size() >= 2;
    if (!EqualsNoCase(word, text) && !(quoted && EqualsNoCase(word.substr(1, word.size() - 2), text))) continue;
    if (found) return std::nullopt;
    found = token.offset;
  }
  return found;
}

// The word may have quotes of its own, which some servers neither double nor escape.
Place FromQuotedWord(std::string_view message, std::string_view sql) {
  constexpr int kMostClosings = 3;
  for (std::size_t open = message.find_first_of("\"'"); open != std::string_view::npos;
       open = message.find_first_of("\"'", open + 1)) {
    std::size_t close = open;
    for (int i = 0; i < kMostClosings; ++i) {
      close = message.find(message[open], close + 1);
      if (close == std::string_view::npos) break;
      std::string_view text = message.substr(open + 1, close - open - 1);
      text = text.substr(text.rfind('.') + 1);  // of a qualified name the column
      if (const Place place = OnlyPlaceOf(text, sql)) return place;
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::size_t> FindErrorPlace(std::string_view message, std::string_view sql) {
  for (const auto read : {FromMarkedLine, FromCharacterNumber, FromRestOfText, FromQuotedWord}) {
    if (const Place place = read(message, sql)) return place;
  }
  return std::nullopt;
}

}  // namespace zrqrybld
