// Places in a document of Qt as the library counts them: in bytes of the UTF-8 text whose lines end in CR LF.
//
// Each line keeps its size beside it, so that only lines which were changed are walked again.
#pragma once

#include <QStringView>
#include <QTextBlock>
#include <QTextBlockUserData>
#include <QTextDocument>
#include <cstddef>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/sql/highlighting.h"

namespace zrqrybld {

/// What is known of a line.
struct LineFacts final : QTextBlockUserData {
  int measured = -1;            // the line's revision then
  std::size_t bytes = 0;        // without its end
  int colored = -1;             // the line's revision then
  std::vector<TextSpan> spans;  // what it was coloured for; places are in the line
};

constexpr std::size_t kLineEnd = 2;  // CR LF

/// What is known of the line, measured as it is now.
LineFacts& FactsOf(QTextBlock block);

/// The place in bytes of a position in the document, and the position of such a place; a byte inside a character counts
/// all of it, and one behind the text is at its end.
ZRQRYBLD_API std::size_t OffsetOf(const QTextDocument& document, int position);
ZRQRYBLD_API int PositionOf(const QTextDocument& document, std::size_t offset);

/// A place in a line, in bytes and in units of Qt. It only moves on, so that a long line is walked once.
struct LinePlace {
  std::size_t bytes = 0;
  qsizetype units = 0;

  /// Moves to `target`; a byte inside a character counts all of it.
  void MoveTo(QStringView line, std::size_t target);
};

}  // namespace zrqrybld
