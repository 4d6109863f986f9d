// The lexer: SQL text as tokens with their places. The whole library reads SQL through it.
//
// It never fails: what is not finished is a token that says so, and what has no meaning is a token
// of one character. White space lies between tokens; comments are tokens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/sql/keywords.h"

namespace zrqrybld {

enum class TokenKind : std::uint8_t {
  Word,              ///< a keyword or a plain name
  QuotedIdentifier,  ///< "name", [name] or `name`
  String,            ///< 'text', with N, X or B before it where it has one
  Date,              ///< #1/31/2020#
  Number,            ///< 12, 1.5e-3, 0x1F
  Operator,          ///< <>, ||, (, ), ",", ;, {, ... and any other sign
  Parameter,         ///< ?PARAM(...)
  Comment,           ///< -- to the end of the line, or /* ... */
};

/// The bytes of the blank beyond ASCII that stands at `at`, as texts from web pages and word processors hold them
/// (U+00A0, U+2000 to U+200B, U+202F, U+2060, U+3000, U+FEFF); 0 when none does. It lies between tokens as any other.
constexpr std::size_t UnicodeBlankAt(std::string_view text, std::size_t at) {
  constexpr std::string_view kLongest[] = {"\xE2\x80\xAF", "\xE2\x81\xA0", "\xE3\x80\x80", "\xEF\xBB\xBF"};
  const std::string_view three = text.substr(at, 3);
  if (three.starts_with("\xC2\xA0")) return 2;
  for (const std::string_view blank : kLongest) {
    if (three == blank) return 3;
  }
  const bool isSpace = three.starts_with("\xE2\x80") && three >= "\xE2\x80\x80" && three <= "\xE2\x80\x8B";
  return isSpace ? 3 : 0;
}

/// A token: `length` bytes from `offset` of the text.
struct Token {
  TokenKind kind = TokenKind::Operator;
  bool unfinished = false;  ///< its end is missing; it runs to the end of the text
  std::size_t offset = 0;
  std::size_t length = 0;
  Keyword keyword = Keyword::None;  ///< of a word
};

class ZRQRYBLD_API Lexer {
 public:
  /// The text must outlive the lexer.
  explicit Lexer(std::string_view text) : text_(text) {}

  /// Reads the next token. Returns false at the end of the text.
  bool Next(Token& token);

  /// Where the next token is looked for, in bytes from 0. Going back to an earlier place reads on from there.
  std::size_t Position() const { return at_; }
  void SetPosition(std::size_t position) { at_ = position; }

 private:
  void Take(Token& token, TokenKind kind, std::size_t end);
  void TakeQuoted(Token& token, TokenKind kind, std::size_t open, char closing);
  void TakeWord(Token& token);
  void TakeOperator(Token& token);
  std::size_t EndOfNumber() const;
  std::size_t EndOfDate() const;
  std::size_t EndOfMarker();

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t unclosedFrom_ = std::string_view::npos;  // no ")" stands there or behind it
};

/// Whether a word begins as a date between "#" does. With the "#" of another line behind it on the same one, it would
/// be one: such a name has to stand in quotes.
constexpr bool BeginsAsDate(std::string_view word) {
  return word.size() > 1 && word[0] == '#' && word[1] >= '0' && word[1] <= '9';
}

/// Writes tokens of a text on one line: as they stand, with one blank for the white space and comments between them.
class OneLine {
 public:
  /// Appends to `line`; both must outlive this.
  OneLine(std::string_view text, std::string& line) : text_(text), line_(line) {}
  /// Appends the token; comments are left out. Tokens come in their order.
  void Add(const Token& token) { Add(token, text_.substr(token.offset, token.length)); }
  /// Appends another text in the token's place.
  void Add(const Token& token, std::string_view instead);

 private:
  std::string_view text_;
  std::string& line_;
  std::size_t end_ = 0;  // of the token added last
  bool first_ = true;
};

/// All tokens of a text.
ZRQRYBLD_API std::vector<Token> Tokenize(std::string_view text);

}  // namespace zrqrybld
