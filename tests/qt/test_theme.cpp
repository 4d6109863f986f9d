#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <algorithm>

#include "tests/qt/palettes.h"
#include "zrqrybld/adapters/qt/qt_canvas.h"
#include "zrqrybld/adapters/qt/theme.h"

namespace zrqrybld {
namespace {

// A palette that Qt's rules cannot make legible must not stop the designer from being so.
TEST(Theme, EveryInkIsLegibleOnItsGroundsWhateverThePalette) {
  for (const auto& [name, palette] : TestPalettes()) {
    ExpectLegible(Theme(palette), name);
    ExpectLegible(Theme::ForWindow(palette), name + ", on a window");
  }
}

TEST(Theme, EveryRoleIsAGroundATextOrALine) {
  std::size_t grounds = 0;
  for (int role = 0; role <= static_cast<int>(ColorRole::Identifier); ++role) {
    if (Theme::GroundsOf(static_cast<ColorRole>(role)).empty()) ++grounds;
  }
  EXPECT_EQ(grounds + std::size(kTexts) + std::size(kLines), static_cast<std::size_t>(ColorRole::Identifier) + 1);
}

// The style mixes the outline itself, so it is measured where it is painted.
TEST(Theme, AnEmptyCheckBoxIsSeenOnEveryRow) {
  for (const auto& [name, palette] : TestPalettes()) {
    const Theme theme(palette);
    const QtMetrics metrics(QApplication::font());
    for (const ColorRole ground : {ColorRole::Box, ColorRole::RowHover, ColorRole::RowSelected}) {
      QImage image(30, 30, QImage::Format_RGB32);
      {
        QPainter painter(&image);
        QtCanvas canvas(painter, theme, metrics);
        canvas.FillRect({0_px, 0_px, 30_px, 30_px}, ground);
        canvas.DrawPart(ThemedPart::CheckBox, {7_px, 7_px, 16_px, 16_px}, {});
      }
      double strongest = 1;
      for (int x = 5; x < 12; ++x) {
        strongest = std::max(strongest, Theme::Contrast(image.pixelColor(x, 15), theme.Of(ground)));
      }
      EXPECT_GE(strongest, 3.0) << name << " ground " << static_cast<int>(ground);
    }
  }
}

TEST(Theme, ContrastIsMeasuredAsByTheUsualFormula) {
  EXPECT_DOUBLE_EQ(Theme::Contrast(Qt::black, Qt::white), 21.0);
  EXPECT_DOUBLE_EQ(Theme::Contrast(Qt::red, Qt::red), 1.0);
  EXPECT_NEAR(Theme::Contrast(QColor(0x777777), Qt::white), 4.48, 0.01);
}

// States that differ only in their ground must differ to the eye.
TEST(Theme, SelectedRowsAndActiveCaptionsStandOut) {
  for (const auto& [name, palette] : TestPalettes()) {
    if (name != "light" && name != "dark") continue;
    const Theme theme(palette);
    EXPECT_NE(theme.Of(ColorRole::Surface), theme.Of(ColorRole::Box)) << name;
    EXPECT_GE(Theme::Contrast(theme.Of(ColorRole::RowSelected), theme.Of(ColorRole::Box)), 1.15) << name;
    EXPECT_NE(theme.Of(ColorRole::RowHover), theme.Of(ColorRole::RowSelected)) << name;
    EXPECT_NE(theme.Of(ColorRole::CaptionActive), theme.Of(ColorRole::CaptionInactive)) << name;
    EXPECT_EQ(theme.IsDark(), name == "dark");
  }
}

TEST(Theme, ApplicationColoursAreDrawnAsTheyAre) {
  const QPalette palette = TestPalettes()[1].palette;
  const Theme theme(palette);
  EXPECT_EQ(theme.Of(Color{0x00332211}), QColor(0x11, 0x22, 0x33));  // blue is the high byte
  const std::pair<std::uint32_t, QPalette::ColorRole> systemColors[] = {
      {5, QPalette::Base},    {8, QPalette::Text},  {13, QPalette::Highlight}, {14, QPalette::HighlightedText},
      {15, QPalette::Button}, {16, QPalette::Dark}, {18, QPalette::ButtonText}};
  for (const auto& [number, role] : systemColors) {
    EXPECT_EQ(theme.Of(Color::System(number)), palette.color(role)) << number;
  }
  EXPECT_EQ(theme.Of(Color::System(17)), palette.color(QPalette::Disabled, QPalette::Text));
  EXPECT_EQ(theme.Of(Color::System(200)), theme.Of(ColorRole::Text)) << "a number that nobody knows is still legible";
}

// The style mixes the header's colour itself, so it is measured where it is painted.
TEST(Theme, TextIsLegibleOnThemedHeaders) {
  for (const auto& [name, palette] : TestPalettes()) {
    const Theme theme(palette);
    const QtMetrics metrics(QApplication::font());
    for (const ThemedPart part : {ThemedPart::ColumnHeader, ThemedPart::RowHeader}) {
      for (const PartState& state : {PartState{}, PartState{.hover = true}, PartState{.pressed = true}}) {
        QImage image(60, 24, QImage::Format_RGB32);
        {
          QPainter painter(&image);
          QtCanvas(painter, theme, metrics).DrawPart(part, {0_px, 0_px, 60_px, 24_px}, state);
        }
        for (const int y : {3, 12, 20}) {
          EXPECT_GE(Theme::Contrast(theme.Of(ColorRole::Text), image.pixelColor(20, y)), 4.5)
              << name << " part " << static_cast<int>(part) << " row " << y << " hover " << state.hover;
        }
      }
    }
  }
}

}  // namespace
}  // namespace zrqrybld
