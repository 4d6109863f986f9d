#include "zrqrybld/base/units.h"

#include <gtest/gtest.h>

#include "zrqrybld/base/scoped_value.h"

namespace zrqrybld {
namespace {

TEST(Units, RectanglesThatOnlyTouchDoNotOverlap) {
  const PixelRect rect{10_px, 10_px, 20_px, 20_px};
  const std::pair<PixelRect, bool> cases[] = {{{30_px, 10_px, 5_px, 5_px}, false}, {{29_px, 29_px, 5_px, 5_px}, true},
                                              {{0_px, 0_px, 10_px, 50_px}, false}, {{15_px, 15_px, 1_px, 1_px}, true},
                                              {{0_px, 0_px, 90_px, 90_px}, true},  {{10_px, 30_px, 5_px, 5_px}, false}};
  for (const auto& [other, overlaps] : cases) {
    EXPECT_EQ(rect.Overlaps(other), overlaps) << other.left.Value();
    EXPECT_EQ(other.Overlaps(rect), overlaps) << other.left.Value();
  }
  EXPECT_TRUE(rect.Contains({10_px, 10_px}));
  EXPECT_FALSE(rect.Contains({30_px, 10_px}));  // right and bottom edges belong to the neighbour
  EXPECT_EQ(rect.Union({}), rect);
  EXPECT_EQ(PixelRect{}.Union(rect), rect);
  EXPECT_EQ(rect.Union({0_px, 50_px, 1_px, 1_px}), (PixelRect{0_px, 10_px, 30_px, 41_px}));
  EXPECT_TRUE(rect.Inset(10_px).Empty());
}

TEST(Units, ScreensConvertEachDirectionByItsOwnFactor) {
  const ScreenScale scale{15, 12};
  EXPECT_EQ(scale.ToTwips(PixelPoint{2_px, 3_px}), (TwipsPoint{30_twips, 36_twips}));
  const TwipsRect rect{150_twips, 120_twips, 300_twips, 240_twips};
  EXPECT_EQ(scale.ToPixels(rect), (PixelRect{10_px, 10_px, 20_px, 20_px}));
  EXPECT_EQ(scale.ToTwips(scale.ToPixels(rect)), rect);
}

TEST(Units, ColoursKeepBlueInTheHighByte) {
  EXPECT_EQ(Color::Rgb(1, 2, 3).value, 0x00030201u);
  EXPECT_FALSE(Color::Rgb(255, 255, 255).IsSystem());
  EXPECT_EQ(Color::System(15).value, 0x8000000Fu);
  EXPECT_EQ(Color::System(15).SystemNumber(), 15u);
}

TEST(ScopedValue, IsPutBackWhenAnErrorLeavesTheScope) {
  int state = 1;
  try {
    const ScopedValue outer(state, 2);
    const ScopedValue inner(state, 3);
    EXPECT_EQ(state, 3);
    throw 0;
  } catch (int) {
  }
  EXPECT_EQ(state, 1);
}

}  // namespace
}  // namespace zrqrybld
