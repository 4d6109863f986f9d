#include "zrqrybld/sql/same_words.h"

#include <algorithm>

#include "zrqrybld/base/text.h"

namespace zrqrybld {

std::vector<Token> WordsOf(std::string_view text) {
  std::vector<Token> words;
  Lexer lexer(text);
  for (Token token; lexer.Next(token);) {
    if (token.kind != TokenKind::Comment) words.push_back(token);
  }
  if (!words.empty() && text[words.back().offset] == ';') words.pop_back();
  return words;
}

bool SameWords(std::string_view text, const std::vector<Token>& words, std::string_view other,
               const std::vector<Token>& otherWords) {
  return std::ranges::equal(words, otherWords, [&](const Token& one, const Token& another) {
    return EqualsNoCase(text.substr(one.offset, one.length), other.substr(another.offset, another.length));
  });
}

bool SameWords(std::string_view text, std::string_view other) {
  return SameWords(text, WordsOf(text), other, WordsOf(other));
}

}  // namespace zrqrybld
