// The palettes that the tests paint with: usual ones and ones that leave little room.
#pragma once

#include <gtest/gtest.h>

#include <QPalette>
#include <string>
#include <vector>

#include "zrqrybld/adapters/qt/theme.h"

namespace zrqrybld {

inline constexpr ColorRole kTexts[] = {ColorRole::SurfaceText,
                                       ColorRole::CaptionActiveText,
                                       ColorRole::CaptionInactiveText,
                                       ColorRole::Text,
                                       ColorRole::QuietText,
                                       ColorRole::RowSelectedText,
                                       ColorRole::Disabled,
                                       ColorRole::Error,
                                       ColorRole::Warning,
                                       ColorRole::Keyword,
                                       ColorRole::Literal,
                                       ColorRole::Comment,
                                       ColorRole::Identifier};
inline constexpr ColorRole kLines[] = {ColorRole::BoxFrame,  ColorRole::GridLine,     ColorRole::Join,
                                       ColorRole::JoinHover, ColorRole::JoinSelected, ColorRole::KeyIcon,
                                       ColorRole::Focus};

/// Every ink of a theme is legible on every ground that it may stand on.
inline void ExpectLegible(const Theme& theme, const std::string& name) {
  const auto check = [&](ColorRole ink, double least) {
    ASSERT_FALSE(Theme::GroundsOf(ink).empty());
    for (const ColorRole ground : Theme::GroundsOf(ink)) {
      EXPECT_GE(Theme::Contrast(theme.Of(ink), theme.Of(ground)), least)
          << name << ": ink " << static_cast<int>(ink) << " on ground " << static_cast<int>(ground);
    }
  };
  for (const ColorRole ink : kTexts) check(ink, 4.5);
  for (const ColorRole ink : kLines) check(ink, ink == ColorRole::GridLine ? 1.25 : 3.0);
}

struct NamedPalette {
  std::string name;
  QPalette palette;
};

inline QPalette MakePalette(QRgb window, QRgb base, QRgb text, QRgb button, QRgb highlight, QRgb highlightedText) {
  QPalette palette{QColor(button), QColor(window)};
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(role, QColor(text));
  }
  palette.setColor(QPalette::Base, QColor(base));
  palette.setColor(QPalette::Highlight, QColor(highlight));
  palette.setColor(QPalette::HighlightedText, QColor(highlightedText));
  return palette;
}

inline std::vector<NamedPalette> TestPalettes() {
  return {
      {"light", MakePalette(0xefefef, 0xffffff, 0x000000, 0xefefef, 0x308cc6, 0xffffff)},
      {"dark", MakePalette(0x353535, 0x232629, 0xf0f0f0, 0x353535, 0x2a82da, 0xffffff)},
      {"high contrast black", MakePalette(0x000000, 0x000000, 0xffff00, 0x000000, 0x00ff00, 0x000000)},
      {"high contrast white", MakePalette(0xffffff, 0xffffff, 0x000000, 0xffffff, 0x000000, 0xffffff)},
      {"middle gray", MakePalette(0x808080, 0x777777, 0x555555, 0x808080, 0x7a7a7a, 0x707070)},
      {"dark window, light base", MakePalette(0x202020, 0xfafafa, 0xeeeeee, 0x202020, 0xffee88, 0x000000)},
      {"text on its own colour", MakePalette(0xffffff, 0xffffff, 0xffffff, 0xffffff, 0xffffff, 0xffffff)},
  };
}

}  // namespace zrqrybld
