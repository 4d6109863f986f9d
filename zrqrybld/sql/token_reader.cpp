#include "zrqrybld/sql/token_reader.h"

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_sql.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

std::string Quoted(std::string_view text) {
  constexpr std::size_t kLongest = 40;
  const bool tooLong = CharacterCount(text) > kLongest;
  return '"' + std::string(tooLong ? FirstCharacters(text, kLongest) : text) + (tooLong ? "...\"" : "\"");
}

}  // namespace

bool TokenReader::IsWord(std::string_view word) const {
  return token_.kind == TokenKind::Word && EqualsNoCase(CurrentText(), word);
}

void TokenReader::Expect(Keyword keyword) {
  if (!Take(keyword)) FailExpected(NameOf(keyword));
}

void TokenReader::ExpectSign(char sign) {
  if (!TakeSign(sign)) FailExpected(std::string{'"', sign, '"'});
}

Token TokenReader::Peek() const {
  Lexer ahead = lexer_;
  Token token;
  do {
    if (!ahead.Next(token)) return Token{.offset = text_.size()};
  } while (token.kind == TokenKind::Comment);
  return token;
}

bool TokenReader::NextIsSign(char sign) const {
  const Token next = Peek();
  return next.kind == TokenKind::Operator && next.length == 1 && text_[next.offset] == sign;
}

void TokenReader::SkipTo(char closing) {
  const char opening = closing == ')' ? '(' : '{';
  for (std::size_t depth = 0; !AtEnd(); Advance()) {
    if (IsSign(opening)) ++depth;
    if (!IsSign(closing)) continue;
    if (depth == 0) return;
    --depth;
  }
  FailExpected(std::string{'"', closing, '"'});
}

Phrase TokenReader::Unexpected(const Phrase& expected) const {
  return AtEnd() ? Phrase(text::ExpectedAtEnd, expected)
                 : Phrase(text::ExpectedInstead, expected, Quoted(CurrentText()));
}

void TokenReader::FailExpected(const Phrase& expected) const {
  throw SyntaxError(text_, token_.offset, Unexpected(expected), expected);
}

void TokenReader::FailOpen(std::size_t open, const Phrase& expected) const {
  const TextPlace place = PlaceIn(text_, open);
  throw SyntaxError(text_, token_.offset, {text::ParenthesisOpen, Unexpected(expected), place.line, place.column},
                    expected);
}

void TokenReader::FailAsDate() const { Refuse(token_.offset, text::BeginsAsDate); }

void TokenReader::Refuse(std::size_t offset, Phrase message) const {
  throw SyntaxError(text_, offset, std::move(message));
}

void TokenReader::FailUnfinished() const {
  const TextId what = token_.kind == TokenKind::Comment     ? text::CommentOpen
                      : token_.kind == TokenKind::String    ? text::TextOpen
                      : token_.kind == TokenKind::Parameter ? text::ParameterOpen
                                                            : text::NameOpen;
  Refuse(token_.offset, what);
}

}  // namespace zrqrybld
