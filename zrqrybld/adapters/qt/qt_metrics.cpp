#include "zrqrybld/adapters/qt/qt_metrics.h"

#include <algorithm>
#include <cmath>

#include "zrqrybld/adapters/qt/qt_text.h"

namespace zrqrybld {

void QtMetrics::SetBaseFont(const QFont& base) {
  base_ = base;
  entries_.clear();
}

const QtMetrics::Entry& QtMetrics::Find(const Font& font) const {
  const auto known = std::ranges::find(entries_, font, &Entry::key);
  if (known != entries_.end()) return *known;
  constexpr std::size_t kMostEntries = 64;  // an application that makes up fonts without end must not fill the memory
  if (entries_.size() >= kMostEntries) entries_.clear();
  QFont made = base_;
  if (!font.family.empty()) made.setFamilies({ToQString(font.family)});
  if (font.points > 0) made.setPointSizeF(font.points);
  if (font.bold) made.setBold(true);
  if (font.italic) made.setItalic(true);
  return entries_.emplace_back(Entry{font, made, QFontMetricsF(made)});
}

// Rounded up, so that a text drawn into a rectangle of its own width is never elided.
Pixels QtMetrics::TextWidth(std::string_view text, const Font& font) const {
  return Pixels(std::ceil(MetricsOf(font).horizontalAdvance(ToQString(text))));
}

Pixels QtMetrics::LineHeight(const Font& font) const { return Pixels(std::ceil(MetricsOf(font).height())); }

}  // namespace zrqrybld
