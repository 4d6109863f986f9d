// SyntaxError: why a text could not be read, and where.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// A place in a text for a person: lines and columns from 1, columns counted in characters. Lines end in CR LF, LF or
/// CR.
struct TextPlace {
  std::size_t line = 1;
  std::size_t column = 1;
};

/// The place of the byte at `offset` (from 0; beyond the end counts as the end).
ZRQRYBLD_API TextPlace PlaceIn(std::string_view text, std::size_t offset);

/// Error 40002 with a place. Its description names line and column: "Line 2, column 8: ...".
class SyntaxError final : public Error {
 public:
  /// `message` is a sentence; `expected` says what could have stood there, "" when the text is understood but refused.
  SyntaxError(std::string_view text, std::size_t offset, Phrase message, Phrase expected = {});

  const TextPlace& Place() const { return place_; }
  /// What is wrong, without the place.
  const Phrase& Sentence() const { return sentence_; }
  /// The same in English.
  std::string Message() const { return sentence_.English(); }
  std::string Expected() const { return expected_.English(); }

 private:
  SyntaxError(TextPlace place, std::size_t offset, Phrase sentence, Phrase expected);

  TextPlace place_;
  Phrase sentence_;
  Phrase expected_;
};

}  // namespace zrqrybld
