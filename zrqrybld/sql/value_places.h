// Where the markers of a statement stand, and how a value is written there so that it stays a value.
//
// Pure. Without a source the designer's lexer says what a marker stands in; otherwise the source's own reading does,
// and what was put together is read once more: nothing but the values may have changed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/platform/text_reading.h"
#include "zrqrybld/sql/parameters.h"

namespace zrqrybld {

/// What stands in the place of one marker.
struct PlacedText {
  std::string bare;      ///< inside quotes or a comment that are there already
  std::string literal;   ///< where none are
  std::string standIn;   ///< a literal written as the other, of a value that is harmless anywhere
  bool escapes = false;  ///< of the literal: whether a backslash in it is meant as an escape
  bool anyText = false;  ///< whether it is a literal that may hold any character
  bool given = true;     ///< without it the marker stays
};

/// A statement with its values, and what is wrong.
struct PlacedStatement {
  std::string text;
  /// By marker: why the value cannot stand there, as a sentence; nothing when it can.
  std::vector<Phrase> problems;
};

/// The statement as the designer's lexer reads it, for who knows no source: quotes that would end what a value stands
/// in are doubled, signs that would end a comment become blanks.
PlacedStatement PlaceTexts(std::string_view sql, const std::vector<MarkerPlace>& markers,
                           const std::vector<PlacedText>& texts);

/// The statement for a source that reads in this way. What cannot be written so that it stays what it is has a problem.
PlacedStatement PlaceTexts(std::string_view sql, const std::vector<MarkerPlace>& markers,
                           const std::vector<PlacedText>& texts, const TextReading& reading);

}  // namespace zrqrybld
