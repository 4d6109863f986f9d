// TokenReader: the tokens of a statement one by one, comments left out, and the errors that name their place.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {

class TokenReader {
 public:
  /// The text must outlive the reader. SyntaxError when a literal, a quoted name or a comment is never closed; so does
  /// `Advance`.
  explicit TokenReader(std::string_view text) : text_(text), lexer_(text) { Advance(); }

  /// The token that is read next; at the end an operator of no length behind the text.
  const Token& Current() const { return token_; }
  bool AtEnd() const { return token_.length == 0; }
  std::size_t Offset() const { return token_.offset; }
  std::string_view CurrentText() const { return text_.substr(token_.offset, token_.length); }
  /// The text, of which offsets are places.
  std::string_view All() const { return text_; }
  /// Everything from the current token on.
  std::string_view Rest() const { return text_.substr(token_.offset); }
  /// Whether nothing stands between the current token and the one before.
  bool Adjoins() const { return previousEnd_ == token_.offset; }
  /// The text from `start` to the end of the token before the current one.
  std::string_view TextFrom(std::size_t start) const { return text_.substr(start, previousEnd_ - start); }

  void Advance() {
    previousEnd_ = token_.offset + token_.length;
    do {
      if (!lexer_.Next(token_)) token_ = Token{.offset = text_.size()};
    } while (token_.kind == TokenKind::Comment && !token_.unfinished);
    if (token_.unfinished || IsOpenMarker()) FailUnfinished();
    if (token_.kind == TokenKind::Word && BeginsAsDate(CurrentText())) FailAsDate();
  }

  bool Is(TokenKind kind) const { return token_.kind == kind && token_.length != 0; }
  bool Is(Keyword keyword) const { return token_.keyword == keyword; }
  bool IsSign(char sign) const {
    return token_.kind == TokenKind::Operator && token_.length == 1 && text_[token_.offset] == sign;
  }
  /// Whether the current token is a word, in any letter case, that is no keyword.
  bool IsWord(std::string_view word) const;

  /// Whether the current token is the wanted one; it is then passed.
  bool Take(Keyword keyword) { return Is(keyword) && (Advance(), true); }
  bool TakeSign(char sign) { return IsSign(sign) && (Advance(), true); }

  /// Passes the wanted token. SyntaxError when another stands there.
  void Expect(Keyword keyword);
  void ExpectSign(char sign);

  /// The token behind the current one.
  Token Peek() const;
  bool NextIsSign(char sign) const;

  /// Passes everything up to the sign that closes what was opened before the current token; it is not passed.
  /// Parentheses and braces inside are matched. SyntaxError when it is missing.
  void SkipTo(char closing);

  /// What stands here is not what could be read: `expected` is a noun ("a table name").
  [[noreturn]] void FailExpected(const Phrase& expected) const;
  /// The same inside of a parenthesis that is open at `open`, which is said, too.
  [[noreturn]] void FailOpen(std::size_t open, const Phrase& expected) const;
  /// The text is understood or not, but it cannot be taken: `message` is a sentence.
  [[noreturn]] void Refuse(std::size_t offset, Phrase message) const;

 private:
  Phrase Unexpected(const Phrase& expected) const;
  // A marker whose "(" is never closed is the word alone; a ")" that is written behind it later would close it.
  bool IsOpenMarker() const { return token_.kind == TokenKind::Parameter && token_.length == 6 && NextIsSign('('); }
  [[noreturn]] void FailUnfinished() const;
  [[noreturn]] void FailAsDate() const;

  std::string_view text_;
  Lexer lexer_;
  Token token_;
  std::size_t previousEnd_ = 0;
};

}  // namespace zrqrybld
