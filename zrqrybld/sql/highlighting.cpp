#include "zrqrybld/sql/highlighting.h"

#include <algorithm>
#include <optional>

#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

std::optional<ColorRole> RoleOf(const Token& token) {
  if (token.unfinished) return ColorRole::Error;
  switch (token.kind) {
    case TokenKind::Word:
      if (token.keyword != Keyword::None) return ColorRole::Keyword;
      return std::nullopt;
    case TokenKind::QuotedIdentifier:
      return ColorRole::Identifier;
    case TokenKind::String:
    case TokenKind::Date:
    case TokenKind::Number:
    case TokenKind::Parameter:
      return ColorRole::Literal;
    case TokenKind::Comment:
      return ColorRole::Comment;
    case TokenKind::Operator:
      return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace

std::vector<TextSpan> HighlightSql(std::string_view text) {
  std::vector<TextSpan> spans;
  Lexer lexer(text);
  for (Token token; lexer.Next(token);) {
    if (const std::optional<ColorRole> role = RoleOf(token)) {
      spans.push_back({token.offset, token.length, *role, *role == ColorRole::Keyword});
    }
  }
  return spans;
}

std::vector<TextSpan> HighlightWithFault(std::string_view text, std::optional<std::size_t> faultAt) {
  std::vector<TextSpan> spans = HighlightSql(text);
  if (!faultAt || *faultAt >= text.size()) return spans;
  const std::size_t end = std::min(text.find_first_of(" \t\r\n", *faultAt + 1), text.size());
  spans.push_back({*faultAt, end - *faultAt, ColorRole::Error});
  return spans;
}

}  // namespace zrqrybld
