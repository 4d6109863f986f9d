#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QStyleFactory>
#include <functional>
#include <memory>

#include "tests/qt/palettes.h"
#include "zrqrybld/adapters/qt/qt_canvas.h"
#include "zrqrybld/adapters/qt/qt_text.h"

namespace zrqrybld {
namespace {

constexpr Color kRed = Color::Rgb(255, 0, 0);
constexpr Color kBlue = Color::Rgb(0, 0, 255);

// A picture of 100 by 60 logical pixels, white, painted by `paint`.
QImage Picture(const std::function<void(QtCanvas&)>& paint, qreal ratio = 1) {
  QImage image(QSize(100, 60) * ratio, QImage::Format_RGB32);
  image.setDevicePixelRatio(ratio);
  image.fill(Qt::white);
  const Theme theme(TestPalettes().front().palette);
  const QtMetrics metrics(QApplication::font());
  QPainter painter(&image);
  QtCanvas canvas(painter, theme, metrics);
  paint(canvas);
  return image;
}

// The part of the picture that is not white.
QRect Painted(const QImage& image) {
  QRect area;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (image.pixel(x, y) != 0xffffffffu) area |= QRect(x, y, 1, 1);
    }
  }
  return area;
}

bool OnlyPureColors(const QImage& image, QRgb color) {
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QRgb pixel = image.pixel(x, y);
      if (pixel != 0xffffffffu && pixel != color) return false;
    }
  }
  return true;
}

TEST(QtCanvas, StraightLinesAndRectanglesCoverWholePixelsAtEveryScale) {
  const PixelPoint horizontal[] = {{10_px, 20_px}, {60_px, 20_px}};
  const PixelPoint vertical[] = {{10_px, 5_px}, {10_px, 50_px}};
  const PixelPoint between[] = {{10.3_px, 5_px}, {10.3_px, 50_px}};
  const struct {
    const char* what;
    std::function<void(QtCanvas&)> paint;
  } cases[] = {
      {"thin horizontal", [&](QtCanvas& c) { c.DrawPolyline(horizontal, kRed, 1_px); }},
      {"thick horizontal", [&](QtCanvas& c) { c.DrawPolyline(horizontal, kRed, 2_px); }},
      {"thin vertical", [&](QtCanvas& c) { c.DrawPolyline(vertical, kRed, 1_px); }},
      {"three wide", [&](QtCanvas& c) { c.DrawPolyline(vertical, kRed, 3_px); }},
      {"between pixels", [&](QtCanvas& c) { c.DrawPolyline(between, kRed, 1_px); }},
      {"frame",
       [&](QtCanvas& c) {
         c.StrokeRect({5_px, 5_px, 40_px, 30_px}, kRed, 1_px);
       }},
      {"frame between pixels",
       [&](QtCanvas& c) {
         c.StrokeRect({5.4_px, 5.6_px, 40_px, 30_px}, kRed, 1_px);
       }},
      {"fill between pixels",
       [&](QtCanvas& c) {
         c.FillRect({5.4_px, 5.6_px, 40.3_px, 30_px}, kRed);
       }},
  };
  for (const auto& [what, paint] : cases) {
    for (const qreal ratio : {1.0, 2.0, 3.0}) {
      const QImage image = Picture(paint, ratio);
      EXPECT_TRUE(OnlyPureColors(image, 0xffff0000u)) << what << " at " << ratio;
      EXPECT_FALSE(Painted(image).isEmpty()) << what << " at " << ratio;
    }
  }
}

TEST(QtCanvas, AFrameLiesInsideItsRectangle) {
  EXPECT_EQ(Painted(Picture([](QtCanvas& c) {
              c.StrokeRect({10_px, 10_px, 20_px, 15_px}, kRed, 1_px);
            })),
            QRect(10, 10, 20, 15));
  EXPECT_EQ(Painted(Picture([](QtCanvas& c) {
              c.StrokeRect({10_px, 10_px, 20_px, 15_px}, kRed, 3_px, 4_px);
            })),
            QRect(10, 10, 20, 15));
}

TEST(QtCanvas, BendsAreRoundedAndShortPiecesDoNotOvershoot) {
  const PixelPoint bend[] = {{10_px, 10_px}, {50_px, 10_px}, {50_px, 50_px}};
  const QImage sharp = Picture([&](QtCanvas& c) { c.DrawPolyline(bend, kRed, 1_px); });
  const QImage round = Picture([&](QtCanvas& c) { c.DrawPolyline(bend, kRed, 1_px, 8_px); });
  EXPECT_NE(sharp.pixel(50, 10), 0xffffffffu);
  EXPECT_EQ(round.pixel(50, 10), 0xffffffffu) << "the corner is cut";
  EXPECT_EQ(round.pixel(20, 10), 0xffff0000u) << "the pieces stay where they were";

  const PixelPoint step[] = {{10_px, 10_px}, {30_px, 10_px}, {30_px, 13_px}, {60_px, 13_px}, {60_px, 13_px}};
  const QRect area = Painted(Picture([&](QtCanvas& c) { c.DrawPolyline(step, kRed, 1_px, 20_px); }));
  EXPECT_TRUE(QRect(9, 9, 53, 6).contains(area))
      << area.x() << "," << area.y() << " " << area.width() << "x" << area.height();
}

TEST(QtCanvas, TextStaysInItsRectangleAndIsNeverElidedAtItsOwnWidth) {
  const QtMetrics metrics(QApplication::font());
  Font bold;
  bold.bold = true;
  for (const std::string text : {"Order Details", "Größe", "W", "fi ffi", "数量"}) {
    const Pixels width = metrics.TextWidth(text, bold);
    EXPECT_EQ(metrics.MetricsOf(bold).elidedText(ToQString(text), Qt::ElideRight, width.Value() + 0.01),
              ToQString(text));
  }
  const QString longText = QStringLiteral("a name that is much too long to fit");
  const QImage image = Picture([&](QtCanvas& c) {
    c.DrawText({10_px, 10_px, 60_px, 30_px}, ToUtf8(longText), {.ink = kBlue});
  });
  const QRect area = Painted(image);
  EXPECT_TRUE(QRect(9, 10, 62, 30).contains(area));
  EXPECT_GT(area.width(), 40);
  EXPECT_NEAR(area.center().y(), 25, 4) << "vertically centred";

  const auto left = [&](TextAlignment alignment) {
    return Painted(Picture([&](QtCanvas& c) {
             c.DrawText({0_px, 0_px, 100_px, 30_px}, "ab", {.ink = kBlue, .alignment = alignment});
           }))
        .left();
  };
  EXPECT_LT(left(TextAlignment::Left), left(TextAlignment::Center));
  EXPECT_LT(left(TextAlignment::Center), left(TextAlignment::Right));
}

// Some styles reset the clip to nothing: a part must show, keep to its place, and leave the painter as it was.
TEST(QtCanvas, PartsShowAndLeaveThePainterAlone) {
  for (const char* styleName : {"Fusion", "Windows"}) {
    QApplication::setStyle(QStyleFactory::create(QString::fromLatin1(styleName)));
    for (const ThemedPart part : {ThemedPart::CheckBox, ThemedPart::ColumnHeader, ThemedPart::RowHeader,
                                  ThemedPart::DropButton, ThemedPart::FocusRectangle}) {
      for (const bool clipped : {false, true}) {
        const auto name = testing::Message() << styleName << " part " << static_cast<int>(part) << " clip " << clipped;
        const QImage image = Picture([&](QtCanvas& c) {
          std::unique_ptr<ClipScope> clip;
          if (clipped) clip = std::make_unique<ClipScope>(c, PixelRect{0_px, 0_px, 100_px, 50_px});
          c.DrawPart(part, {20_px, 15_px, 30_px, 20_px}, {.checked = true, .hover = true});
          c.FillRect({90_px, 2_px, 5_px, 5_px}, kRed);   // must still appear
          c.FillRect({90_px, 52_px, 5_px, 5_px}, kRed);  // is beyond the clip
        });
        EXPECT_FALSE(Painted(image.copy(20, 15, 30, 20)).isEmpty()) << name;
        EXPECT_EQ(image.pixel(92, 4), 0xffff0000u) << name;
        EXPECT_EQ(image.pixel(92, 54), clipped ? 0xffffffffu : 0xffff0000u) << name;
        EXPECT_TRUE(Painted(image.copy(0, 0, 20, 60)).isEmpty()) << name << ": painted outside its place";
      }
    }
  }
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

TEST(QtCanvas, ACheckShowsItsState) {
  const auto check = [](PartState state) {
    return Picture([&](QtCanvas& c) { c.DrawPart(ThemedPart::CheckBox, {10_px, 10_px, 16_px, 16_px}, state); });
  };
  EXPECT_NE(check({.checked = true}), check({}));
  EXPECT_NE(check({.checked = true, .disabled = true}), check({.checked = true}));
}

TEST(QtCanvas, ClipsNestAndEnd) {
  const QImage image = Picture([](QtCanvas& c) {
    {
      const ClipScope outer(c, {0_px, 0_px, 50_px, 60_px});
      const ClipScope inner(c, {40_px, 0_px, 50_px, 20_px});
      c.FillRect({0_px, 0_px, 100_px, 60_px}, kRed);
    }
    c.FillRect({99_px, 59_px, 1_px, 1_px}, kRed);
  });
  EXPECT_EQ(Painted(image), QRect(40, 0, 60, 60));
  EXPECT_EQ(Painted(image.copy(0, 0, 90, 50)), QRect(40, 0, 10, 20));
}

TEST(QtCanvas, ImagesKeepTheirTransparency) {
  const Image image(2, 1, {0xff00ff00u, 0x00000000u});
  const QImage picture = Picture([&](QtCanvas& c) {
    c.FillRect({0_px, 0_px, 100_px, 60_px}, kRed);
    c.DrawImage({10_px, 10_px, 40_px, 20_px}, image);
    c.DrawImage({60_px, 10_px, 40_px, 20_px}, Image(0, 0, {}));
  });
  EXPECT_EQ(picture.pixel(13, 20), 0xff00ff00u);
  EXPECT_EQ(picture.pixel(48, 20), 0xffff0000u);
}

}  // namespace
}  // namespace zrqrybld
