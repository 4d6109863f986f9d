// The words and signs of a text that a server would act on: literals and names are one piece each, comments none.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "adapters/run/source_mode.h"

namespace zrqrybld {

struct Piece {
  std::size_t offset = 0;
  std::string_view text;  ///< a word, one sign, or a literal or name with its quotes
};

/// Error 40002 with the place.
[[noreturn]] void RefuseStatement(std::string reason, std::size_t offset);

/// Reads a text in one way. What cannot be told in that way, or means code where it looks like none, is error 40002
/// with its place: comments that are run, names and literals that only the server can unwrap, control characters.
class CodeReader {
 public:
  /// Both must outlive the reader.
  CodeReader(std::string_view text, const Reading& reading) : text_(text), reading_(reading) {}

  /// False at the end of the text.
  bool Next(Piece& piece);

 private:
  bool Ahead(std::string_view word) const { return text_.substr(at_).starts_with(word); }
  char Here() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  bool AtLineComment() const;
  bool AtLongVariable() const;
  bool SkipWhiteOrComment();
  void SkipLineComment();
  void SkipComment();
  void SkipNumber();
  void SkipWord();
  void SkipPrefixed(std::string_view word);
  bool SkipQuoted();
  void SkipText(bool backslashes);
  void SkipToClosing(char closing, bool backslashes, bool doubled = true);
  bool SkipToNextLinesLiteral();
  bool SkipDollarLiteral();

  std::string_view text_;
  const Reading& reading_;
  std::size_t at_ = 0;
};

}  // namespace zrqrybld
