#include "zrqrybld/adapters/qt/text_places.h"

namespace zrqrybld {
namespace {

// Moves `position` behind the next character of the line and returns its size: a lone half of a surrogate pair is
// written as U+FFFD, and a line separator, which Shift+Enter makes, as CR LF.
std::size_t NextSize(QStringView line, qsizetype& position) {
  const QChar c = line[position++];
  if (c.isHighSurrogate() && position < line.size() && line[position].isLowSurrogate()) {
    ++position;
    return 4;
  }
  if (c == QChar::LineSeparator) return kLineEnd;
  return c.unicode() < 0x80 ? 1 : c.unicode() < 0x800 ? 2 : 3;
}

std::size_t SizeOf(QStringView line) {
  std::size_t bytes = 0;
  for (qsizetype position = 0; position < line.size();) bytes += NextSize(line, position);
  return bytes;
}

}  // namespace

LineFacts& FactsOf(QTextBlock block) {
  auto* facts = static_cast<LineFacts*>(block.userData());
  if (!facts) block.setUserData(facts = new LineFacts);
  if (facts->measured != block.revision()) {
    facts->bytes = SizeOf(block.text());
    facts->measured = block.revision();
  }
  return *facts;
}

std::size_t OffsetOf(const QTextDocument& document, int position) {
  std::size_t offset = 0;
  const QTextBlock last = document.findBlock(position);
  for (QTextBlock block = document.begin(); block != last; block = block.next()) {
    offset += FactsOf(block).bytes + kLineEnd;
  }
  const QString line = last.text();
  return offset + SizeOf(QStringView(line).left(position - last.position()));
}

int PositionOf(const QTextDocument& document, std::size_t offset) {
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    const std::size_t size = FactsOf(block).bytes + kLineEnd;
    if (offset < size) {
      LinePlace place;
      place.MoveTo(block.text(), offset);
      return block.position() + static_cast<int>(place.units);
    }
    offset -= size;
  }
  return document.characterCount() - 1;
}

void LinePlace::MoveTo(QStringView line, std::size_t target) {
  while (bytes < target && units < line.size()) bytes += NextSize(line, units);
}

}  // namespace zrqrybld
