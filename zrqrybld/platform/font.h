// Fonts as the core names them, and the measuring of text.
#pragma once

#include <string>
#include <string_view>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/units.h"

namespace zrqrybld {

/// A font by name. An empty family and a size of 0 mean those of the surroundings.
struct Font {
  std::string family;
  double points = 0;
  bool bold = false;
  bool italic = false;
  friend bool operator==(const Font&, const Font&) = default;
};

/// Measures text as the surface will draw it.
class ZRQRYBLD_API TextMetrics {
 public:
  TextMetrics() = default;
  TextMetrics(const TextMetrics&) = delete;
  TextMetrics& operator=(const TextMetrics&) = delete;
  virtual ~TextMetrics() = default;

  /// The width of one line of text.
  virtual Pixels TextWidth(std::string_view text, const Font& font) const = 0;

  /// The height of a line, from the top of the highest letter to the bottom of the lowest.
  virtual Pixels LineHeight(const Font& font) const = 0;
};

}  // namespace zrqrybld
