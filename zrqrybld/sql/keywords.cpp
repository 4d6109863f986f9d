#include "zrqrybld/sql/keywords.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kNames[] = {
    "",          "ALL",      "AND",    "ANY",    "AS",       "ASC",         "BETWEEN", "BY",     "CASE",   "CAST",
    "COLLATE",   "CONNECT",  "CROSS",  "DESC",   "DISTINCT", "DISTINCTROW", "ELSE",    "END",    "ESCAPE", "EXCEPT",
    "EXISTS",    "FALSE",    "FETCH",  "FOR",    "FROM",     "FULL",        "GROUP",   "HAVING", "IN",     "INNER",
    "INTERSECT", "INTERVAL", "INTO",   "IS",     "JOIN",     "LEFT",        "LIKE",    "LIMIT",  "MINUS",  "NATURAL",
    "NOT",       "NULL",     "OFFSET", "ON",     "OPTION",   "OR",          "ORDER",   "OUTER",  "OVER",   "PERCENT",
    "RIGHT",     "ROWNUM",   "ROWS",   "SELECT", "SOME",     "START",       "THEN",    "TO",     "TOP",    "TRUE",
    "UNION",     "UP",       "USING",  "WHEN",   "WHERE",    "WINDOW",      "WITH"};
static_assert(std::size(kNames) == static_cast<std::size_t>(Keyword::With) + 1);
static_assert(std::ranges::is_sorted(kNames));
static_assert(std::ranges::max(kNames, {}, &std::string_view::size).size() == 11);
constexpr std::size_t kLongest = 11;

// A table of 256 places with linear probing: every word of a statement is looked up.
constexpr std::size_t HashOf(std::string_view word) {
  const auto letter = [word](std::size_t i) { return static_cast<std::size_t>(UpperAscii(word[i])); };
  return (letter(0) * 9 + letter(1) * 31 + letter(word.size() - 1) * 5 + word.size() * 17) % 256;
}

constexpr std::array<std::uint8_t, 256> kPlaces = [] {
  std::array<std::uint8_t, 256> places{};
  for (std::size_t i = 1; i < std::size(kNames); ++i) {
    std::size_t place = HashOf(kNames[i]);
    while (places[place] != 0) place = (place + 1) % places.size();
    places[place] = static_cast<std::uint8_t>(i);
  }
  return places;
}();

constexpr bool IsWord(std::string_view word, std::string_view name) {
  if (word.size() != name.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (UpperAscii(word[i]) != name[i]) return false;
  }
  return true;
}

}  // namespace

Keyword KeywordOf(std::string_view word) {
  if (word.size() < 2 || word.size() > kLongest) return Keyword::None;
  for (std::size_t place = HashOf(word); kPlaces[place] != 0; place = (place + 1) % kPlaces.size()) {
    if (IsWord(word, kNames[kPlaces[place]])) return static_cast<Keyword>(kPlaces[place]);
  }
  return Keyword::None;
}

std::string_view NameOf(Keyword keyword) { return kNames[static_cast<std::size_t>(keyword)]; }

bool IsReserved(Keyword keyword) {
  switch (keyword) {
    case Keyword::None:
    case Keyword::All:
    case Keyword::Any:
    case Keyword::Cast:
    case Keyword::Connect:
    case Keyword::End:
    case Keyword::Escape:
    case Keyword::Exists:
    case Keyword::False:
    case Keyword::Fetch:
    case Keyword::Limit:
    case Keyword::Option:
    case Keyword::Interval:
    case Keyword::Minus:
    case Keyword::Null:
    case Keyword::Offset:
    case Keyword::Over:
    case Keyword::Percent:
    case Keyword::Rownum:
    case Keyword::Rows:
    case Keyword::Some:
    case Keyword::Start:
    case Keyword::To:
    case Keyword::Top:
    case Keyword::True:
    case Keyword::Up:
    case Keyword::Window:
      return false;
    default:
      return true;
  }
}

bool BeginsTableClause(std::string_view word) {
  constexpr std::string_view kWords[] = {"PIVOT", "UNPIVOT", "TABLESAMPLE", "APPLY", "LATERAL", "MODEL"};
  return std::ranges::any_of(kWords, [word](std::string_view other) { return IsWord(word, other); });
}

bool CanBeCalled(Keyword keyword) {
  switch (keyword) {
    case Keyword::Left:
    case Keyword::Right:
      return true;
    case Keyword::Exists:
    case Keyword::False:
    case Keyword::Null:
    case Keyword::True:
      return false;
    default:
      return !IsReserved(keyword);
  }
}

bool IsReservedName(std::string_view word) {
  const Keyword keyword = KeywordOf(word);
  const bool isValue = keyword == Keyword::Null || keyword == Keyword::True || keyword == Keyword::False;
  return IsReserved(keyword) || isValue || IsWord(word, "LATERAL");
}

}  // namespace zrqrybld
