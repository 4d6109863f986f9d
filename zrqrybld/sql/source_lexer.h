// SourceLexer: a statement as its data source cuts it, which differs from source to source and with a server's mode.
//
// Pure. It never fails: what is not finished runs to the end of the text. The designer itself reads SQL through the
// lexer (sql/lexer.h); this is for whoever must know where the source sees a literal end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/text_reading.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {

enum class SourcePart : std::uint8_t {
  Code,         ///< a word, or one sign
  Text,         ///< a literal in quotes, with the letters before it that change how it is read
  Raw,          ///< a literal in which nothing stands for anything else: $tag$...$tag$, q'[...]'
  Name,         ///< a name in quotes
  Date,         ///< #...#
  Comment,      ///< without its line end
  CodeComment,  ///< the beginning of a comment that some versions run: /*!50000
};

struct SourceToken {
  SourcePart part = SourcePart::Code;
  std::size_t begin = 0;
  std::size_t end = 0;
  char closing = '\0';      ///< of a text or a name: what ends it, and is doubled inside
  bool escapes = false;     ///< of a text or a name: "\" takes the meaning of what is behind it, or "\\" means "\"
  bool unicode = false;     ///< U&'...': what escapes may be told behind it
  bool unfinished = false;  ///< its end is missing
  friend bool operator==(const SourceToken&, const SourceToken&) = default;
};

class ZRQRYBLD_API SourceLexer {
 public:
  /// The text must outlive the lexer. Reading begins `from` bytes behind the text's first.
  SourceLexer(std::string_view text, const TextReading& reading, std::size_t from = 0)
      : text_(text), reading_(reading), at_(from) {}

  /// Reads the next token. Returns false at the end of the text.
  bool Next(SourceToken& token);

 private:
  bool Ahead(std::string_view word) const { return text_.substr(at_).starts_with(word); }
  bool AtDashes() const;
  bool SkipComment(SourceToken& token);
  void SkipLine();
  void SkipBlock();
  void ReadQuoted(SourceToken& token, SourcePart part, char closing, bool escapes);
  void SkipQuoted(SourceToken& token);
  bool SkipToJoined();
  bool ReadDollars(SourceToken& token);
  bool ReadDate(SourceToken& token);
  void ReadWord(SourceToken& token);
  void ReadDelimited(SourceToken& token);

  std::string_view text_;
  TextReading reading_;
  std::size_t at_;
};

/// Whether the source sees the token, a string literal of the designer's lexer in the text, end where the lexer does.
bool ReadsAlike(std::string_view text, const Token& literal, const TextReading& reading);
/// The text with blanks in the place of comments that begin with "#", where the source has such; every other character
/// stands where it stood.
std::string WithoutHashComments(std::string_view text, const TextReading& reading);
/// The text with each quote doubled that a backslash escapes within a literal, where the source reads it so: that means
/// the same and ends where the lexer sees it end. Every character stands where it stood.
std::string WithDoubledQuotes(std::string_view text, const TextReading& reading);
/// Where the first literal begins that the source sees end elsewhere; none when there is none.
std::optional<std::size_t> FirstReadOtherwise(std::string_view text, const TextReading& reading);
/// Where the first comment begins that only one of the two sees, or that ends elsewhere for the source, or that it may
/// run; none when there is none.
std::optional<std::size_t> FirstCommentReadOtherwise(std::string_view text, const TextReading& reading);

}  // namespace zrqrybld
