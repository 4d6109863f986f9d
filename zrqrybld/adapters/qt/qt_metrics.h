// QtMetrics: measures text with Qt's fonts, and turns the core's fonts into Qt's.
#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <utility>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/font.h"

namespace zrqrybld {

class ZRQRYBLD_API QtMetrics final : public TextMetrics {
 public:
  /// `base` gives what a font leaves open: its family and its size.
  explicit QtMetrics(const QFont& base) : base_(base) {}

  /// Replaces the base font.
  void SetBaseFont(const QFont& base);

  /// The font in Qt's terms.
  const QFont& ToQFont(const Font& font) const { return Find(font).font; }

  /// The metrics of the font.
  const QFontMetricsF& MetricsOf(const Font& font) const { return Find(font).metrics; }

  Pixels TextWidth(std::string_view text, const Font& font) const override;
  Pixels LineHeight(const Font& font) const override;

 private:
  struct Entry {
    Font key;
    QFont font;
    QFontMetricsF metrics;
  };
  const Entry& Find(const Font& font) const;

  QFont base_;
  // A designer uses a handful of fonts: looking through them beats hashing. Making metrics anew for each text
  // would cost more than measuring it.
  mutable std::vector<Entry> entries_;
};

}  // namespace zrqrybld
