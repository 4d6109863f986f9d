#include "zrqrybld/adapters/qt/text_colors.h"

#include <QTextLayout>
#include <algorithm>
#include <utility>

namespace zrqrybld {
namespace {

QTextCharFormat ToFormat(const TextSpan& span, const Theme& theme) {
  QTextCharFormat format;
  format.setForeground(theme.Of(span.role));
  if (span.bold) format.setFontWeight(QFont::Bold);
  if (span.role == ColorRole::Error) {
    format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
    format.setUnderlineColor(theme.Of(ColorRole::Error));
  }
  return format;
}

QList<QTextLayout::FormatRange> ToFormats(const QString& line, const std::vector<TextSpan>& spans, const Theme& theme) {
  QList<QTextLayout::FormatRange> formats;
  LinePlace place;
  for (const TextSpan& span : spans) {
    place.MoveTo(line, span.start);
    LinePlace end = place;
    end.MoveTo(line, span.start + span.length);
    formats.push_back(
        {static_cast<int>(place.units), static_cast<int>(end.units - place.units), ToFormat(span, theme)});
  }
  return formats;
}

}  // namespace

void ColorText(QTextDocument& document, std::vector<TextSpan> spans, const Theme& theme) {
  std::ranges::stable_sort(spans, {}, &TextSpan::start);
  std::size_t lineStart = 0;
  std::size_t first = 0;  // spans before this one end before the line
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
    LineFacts& facts = FactsOf(block);
    const std::size_t lineEnd = lineStart + facts.bytes;
    std::vector<TextSpan> inLine;
    while (first < spans.size() && spans[first].start + spans[first].length <= lineStart) ++first;
    for (std::size_t i = first; i < spans.size() && spans[i].start < lineEnd; ++i) {
      const std::size_t from = std::max(spans[i].start, lineStart);
      const std::size_t to = std::min(spans[i].start + spans[i].length, lineEnd);
      if (from < to) inLine.push_back({from - lineStart, to - from, spans[i].role, spans[i].bold});
    }
    QTextLayout& layout = *block.layout();
    // While an input method composes, the line holds its marks; the text is coloured when it is done.
    const bool isKnown = facts.colored == facts.measured && facts.spans == inLine;
    if (!isKnown && layout.preeditAreaText().isEmpty()) {
      const auto formats = ToFormats(block.text(), inLine, theme);
      if (layout.formats() != formats) {
        layout.setFormats(formats);
        document.markContentsDirty(block.position(), block.length());
      }
      facts.spans = std::move(inLine);
      facts.colored = facts.measured;
    }
    lineStart = lineEnd + kLineEnd;
  }
}

void ForgetColors(QTextDocument& document) {
  for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) FactsOf(block).colored = -1;
}

}  // namespace zrqrybld
