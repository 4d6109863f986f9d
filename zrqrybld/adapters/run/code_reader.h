// The words and signs of a text that a server would act on: literals and names are one piece each, comments none.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/text_reading.h"
#include "zrqrybld/sql/source_lexer.h"

namespace zrqrybld {

struct Piece {
  std::size_t offset = 0;
  std::string_view text;  ///< a word, one sign, or a literal or name with its quotes
};

/// Error 40002 with the place.
[[noreturn]] void RefuseStatement(Phrase reason, std::size_t offset);

/// Reads a text in one way. What cannot be told in that way, or means code where it looks like none, is error 40002
/// with its place: comments that are run, names and literals that only the server can unwrap, control characters.
class CodeReader {
 public:
  /// The text must outlive the reader.
  CodeReader(std::string_view text, const KnownReading& reading);

  /// False at the end of the text.
  bool Next(Piece& piece);

 private:
  void RequireClear(const SourceToken& token) const;
  void RequireClearCode(std::size_t begin) const;
  bool MakesComment(const SourceToken& token) const;
  bool IsLongVariable(std::size_t begin) const;
  std::size_t EndOfNumber(std::size_t begin) const;

  std::string_view text_;
  SourceFamily family_;
  TextReading reading_;
  std::size_t at_ = 0;
};

}  // namespace zrqrybld
