#include "zrqrybld/sql/missing_words.h"

#include <algorithm>
#include <string>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

// The words are names as well: each is meant only behind a call, or before what follows it.
struct Word {
  std::string_view word;
  bool behindCall = false;
  std::string_view next;
  std::string_view said;
};
constexpr Word kWords[] = {
    {"FILTER", true, "(", "FILTER"},
    {"WITHIN", true, "GROUP", "WITHIN GROUP"},
    {"OVER", true, "(", "OVER"},
    {"GROUPING", false, "SETS", "GROUPING SETS"},
    {"ROLLUP", false, "(", "ROLLUP ( ... )"},
    {"CUBE", false, "(", "CUBE ( ... )"},
};

}  // namespace

bool Misses(const Dialect& dialect, std::string_view word) {
  return dialect.missingWords.find(" " + std::string(word) + " ") != std::string_view::npos;
}

std::vector<std::string_view> MissingWordsIn(std::string_view text, const Dialect& dialect) {
  std::vector<std::string_view> found;
  if (dialect.missingWords.size() < 2 || text.find('(') == std::string_view::npos) return found;
  std::string_view before, last;  // the two tokens that came last
  Lexer lexer(text);
  for (Token token; lexer.Next(token);) {
    if (token.kind == TokenKind::Comment) continue;
    const std::string_view now = text.substr(token.offset, token.length);
    for (const Word& word : kWords) {
      if (!EqualsNoCase(last, word.word) || !EqualsNoCase(now, word.next) || (word.behindCall && before != ")"))
        continue;
      if (Misses(dialect, word.word) && std::ranges::find(found, word.said) == found.end()) found.push_back(word.said);
    }
    before = std::exchange(last, now);
  }
  return found;
}

}  // namespace zrqrybld
