// The tokens of a criterion: those of the lexer, with apostrophes inside words told from quotes, and every opening
// sign with its partner.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/sql/criteria_context.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {

/// The failure to read `text` at a byte of it: error 40002 with the message and the character's number from 1.
[[noreturn]] void ThrowCriterionError(std::string_view text, std::size_t offset, const Phrase& message);

class CriterionTokens {
 public:
  /// The end of all tokens, and the partner of what has none.
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  /// Reads the whole text, which must outlive this. An apostrophe directly behind a word or a figure (O'Brien, 5'6") is
  /// a sign of its own, unless the word is a keyword or `literalWord`, which begins a literal as in N'text'. With
  /// a `dateFormat` a date between two "#" is one however it is written. Error 40002 for parentheses and braces without
  /// a partner, and for more than 200 within each other. The context, which must outlive this too, says how the source
  /// quotes names and reads literals.
  CriterionTokens(std::string_view text, std::string_view literalWord, const std::string* dateFormat,
                  const CriteriaContext& context);

  std::size_t Count() const { return tokens_.size(); }
  const Token& operator[](std::size_t index) const { return tokens_[index]; }
  std::string_view Text(std::size_t index) const { return text_.substr(tokens_[index].offset, tokens_[index].length); }
  std::string_view All() const { return text_; }

  /// Where the token begins; the end of the text behind the last one.
  std::size_t Offset(std::size_t index) const { return index < Count() ? tokens_[index].offset : text_.size(); }
  /// The text from one token up to another, which is not in it, without the white space behind it.
  std::string_view Slice(std::size_t from, std::size_t to) const;

  /// Whether the token is this sign.
  bool Is(std::size_t index, char sign) const;
  /// Whether the token is a word, and this one in any letter case. Beyond the end there is none.
  bool IsWord(std::size_t index, std::string_view word) const;
  /// Whether nothing lies between the token and the one before it.
  bool Adjoins(std::size_t index) const;
  /// Whether the word or figure before this quote makes an apostrophe of it.
  bool IsApostrophe(std::size_t index) const;

  /// The token that closes this opening parenthesis, brace or CASE; `kNone` for any other token.
  std::size_t Partner(std::size_t index) const { return partners_[index]; }
  /// The token behind this one, or behind its partner.
  std::size_t After(std::size_t index) const { return (partners_[index] == kNone ? index : partners_[index]) + 1; }

  /// The tokens as they stand, with one blank for white space and comments between them; where no columns are
  /// known, names in brackets get the quotes of a source that has other ones. Error 40002 for a text or a
  /// name that is never closed, or that the source reads otherwise.
  std::string Kept(std::size_t from, std::size_t to) const;

  /// Fails at the first text, name or comment of a range that is never closed.
  void RequireFinished(std::size_t from, std::size_t to) const;

 private:
  void Read(std::string_view literalWord, const std::string* dateFormat);
  void FindPartners();
  std::size_t EndOfEscaped(std::size_t index, const Token& literal) const;
  std::string Doubled(std::size_t index) const;
  std::string Requoted(std::size_t index, std::size_t from) const;

  std::string_view text_;
  const CriteriaContext& context_;
  std::vector<Token> tokens_;
  std::vector<std::size_t> partners_;
};

/// Whether a text between two "#" is a date, if an ambiguous one: in any form that `ReadDateTime` takes.
bool IsHashDate(std::string_view written, const std::string& dateFormat);

/// Whether the word begins a literal when a text in quotes follows it, as in DATE '2020-01-31'.
bool IsLiteralWord(std::string_view word);

}  // namespace zrqrybld
