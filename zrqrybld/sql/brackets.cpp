#include "zrqrybld/sql/brackets.h"

#include <vector>

#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {

std::optional<std::pair<std::size_t, std::size_t>> MatchingBrackets(std::string_view text, std::size_t offset) {
  std::vector<std::size_t> open;
  Lexer lexer(text);
  for (Token token; lexer.Next(token);) {
    if (token.kind != TokenKind::Operator || token.length != 1) continue;
    const char sign = text[token.offset];
    if (sign == '(' || sign == '{') open.push_back(token.offset);
    if (sign != ')' && sign != '}') continue;
    if (open.empty() || text[open.back()] != (sign == ')' ? '(' : '{')) {
      if (token.offset >= offset) return std::nullopt;
      continue;
    }
    if (open.back() == offset) return std::pair(offset, token.offset);
    if (token.offset == offset) return std::pair(offset, open.back());
    open.pop_back();
  }
  return std::nullopt;
}

}  // namespace zrqrybld
