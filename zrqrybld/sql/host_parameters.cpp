#include "zrqrybld/sql/host_parameters.h"

#include <cstddef>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

// The end of the parameter that begins at `at`; `at` when none does. "::" is a cast, "@@" a server's variable, "a[1:n]"
// a piece of an array.
std::size_t EndOfParameter(std::string_view sql, std::size_t at, std::string_view signs) {
  const char sign = sql[at];
  if (signs.find(sign) == std::string_view::npos) return at;
  std::size_t end = at + 1;
  while (end < sql.size() && IsWordByte(sql[end])) ++end;
  const char before = at == 0 ? ' ' : sql[at - 1];
  if (IsWordByte(before) || before == sign || before == ']') return at;
  if (sign == '?')
    return sql.substr(at + 1, end - at - 1).find_first_not_of("0123456789") == std::string_view::npos ? end : at;
  return end == at + 1 || (sign == '@' && IsDigit(sql[at + 1])) ? at : end;
}

}  // namespace

std::string WithParameterMarkers(std::string_view sql, std::string_view signs) {
  std::string text;
  std::size_t written = 0;
  int number = 0;
  Lexer lexer(sql);
  for (Token token; !signs.empty() && lexer.Next(token);) {
    if (token.kind != TokenKind::Operator && token.kind != TokenKind::Word) continue;
    const std::size_t end = EndOfParameter(sql, token.offset, signs);
    if (end == token.offset) continue;
    std::string name(sql.substr(token.offset, end - token.offset));
    if (name == "?") name += std::to_string(++number);
    text += sql.substr(written, token.offset - written);
    text.append("?PARAM(\"").append(name).append("\",,\"").append(name).append("\")");
    written = end;
    lexer.SetPosition(end);
  }
  text += sql.substr(written);
  return text;
}

}  // namespace zrqrybld
