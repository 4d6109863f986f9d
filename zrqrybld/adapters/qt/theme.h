// Theme: the colours of the designer, derived from a system palette.
//
// Every text colour has a contrast of 4.5 : 1 or more to every ground it may stand on, every line
// colour one of 3 : 1 or more, whatever the palette: a colour that the palette suggests is moved
// towards black or white until that holds, and a ground is tinted only as far as it leaves room.
#pragma once

#include <QColor>
#include <QPalette>
#include <array>
#include <cstdint>
#include <span>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

class ZRQRYBLD_API Theme {
 public:
  /// The least contrast of text, and of lines, to what they stand on.
  static constexpr double kTextContrast = 4.5;
  static constexpr double kLineContrast = 3.0;
  /// For lines that only make a picture calmer to read.
  static constexpr double kDecorationContrast = 1.25;

  explicit Theme(const QPalette& palette);

  /// The theme for what stands on a window's own ground: there `Box` is the window's colour.
  static Theme ForWindow(const QPalette& palette);

  /// The colour of a role.
  QColor Of(ColorRole role) const { return colors_[static_cast<std::size_t>(role)]; }

  /// The colour of an ink: by role, a system colour or one that the application has chosen.
  QColor Of(const Ink& ink) const;

  /// The colour of a system colour number, from the palette; an unknown number gives the text colour.
  QColor SystemColor(std::uint32_t number) const;

  /// Whether light text stands on a dark ground.
  bool IsDark() const { return dark_; }

  /// The palette for parts that a style draws, in the colours of this theme.
  const QPalette& PartPalette() const { return partPalette_; }

  /// The roles that a text or a line of the role may stand on. Grounds themselves stand on nothing.
  static std::span<const ColorRole> GroundsOf(ColorRole ink);

  /// The contrast of two opaque colours, 1 (equal) to 21 (black and white).
  static double Contrast(const QColor& a, const QColor& b);

 private:
  void Set(ColorRole role, const QColor& color) { colors_[static_cast<std::size_t>(role)] = color; }

  QPalette palette_;
  QPalette partPalette_;
  std::array<QColor, static_cast<std::size_t>(ColorRole::Identifier) + 1> colors_;
  bool dark_ = false;
};

}  // namespace zrqrybld
