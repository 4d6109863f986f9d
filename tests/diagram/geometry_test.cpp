// Placement and routing against the plainest code that says the same.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "zrqrybld/diagram/placement.h"
#include "zrqrybld/diagram/routing.h"

namespace zrqrybld {
namespace {

using Boxes = std::map<PlacedBoxes::Id, TwipsRect>;

// The rule word by word: every row, every box.
TwipsPoint PlainScan(TwipsSize size, const Boxes& boxes, const PlacementRules& rules, PlacedBoxes::Id itself) {
  for (Twips y; y <= rules.lowestRow; y += rules.rowStep) {
    for (Twips x; x <= rules.surfaceWidth - size.width;) {
      const TwipsRect place{x, y, size.width, size.height};
      const auto inTheWay = std::ranges::find_if(
          boxes, [&](const auto& box) { return box.first != itself && box.second.Overlaps(place); });
      if (inTheWay == boxes.end()) return {x, y};
      x = inTheWay->second.Right() + rules.gap;
    }
  }
  return {};
}

// Boxes come, move and go at random; what earlier searches have found full must never hide a place.
TEST(Placement, AnswersAsThePlainScanWhateverHappened) {
  std::mt19937 random(4);
  const auto upTo = [&random](unsigned n) { return Twips(static_cast<double>(random() % (n + 1))); };
  int placedElsewhere = 0;
  for (int run = 0; run < 400; ++run) {
    PlacementRules rules{upTo(9000), upTo(6000), upTo(300), Twips(1.0 + static_cast<double>(random() % 90))};
    const bool onGrid = run % 2 == 0;  // edges that touch exactly
    const auto length = [&](unsigned n) { return onGrid ? upTo(n / 240) * 240 : upTo(n); };
    const auto rect = [&] {
      return TwipsRect{length(8000) - 500_twips, length(6000) - 300_twips, length(3000), length(3000)};
    };
    const TwipsSize sizes[] = {{length(3000) + 1_twips, length(3000) + 1_twips}, {240_twips, 480_twips}};
    PlacedBoxes placed;
    Boxes boxes;
    for (int step = 0; step < 40; ++step) {
      const auto any = [&] { return std::next(boxes.begin(), static_cast<std::ptrdiff_t>(random() % boxes.size())); };
      const auto action = random() % 8;
      const auto box = boxes.empty() || action < 3 ? boxes.end() : any();
      if (box == boxes.end()) {
        const TwipsRect added = rect();
        boxes.emplace(placed.Add(added), added);
      } else if (action == 3) {
        placed.Remove(box->first);
        boxes.erase(box);
      } else if (action == 4) {
        placed.Move(box->first, box->second = rect());
      } else if (action == 5 && run % 3 == 0) {
        rules.surfaceWidth = upTo(9000);
      }
      const PlacedBoxes::Id itself = action == 6 && !boxes.empty() ? any()->first : 0;
      const TwipsSize size = sizes[random() % 2];
      const TwipsPoint place = placed.FindPlace(size, rules, itself);
      ASSERT_EQ(place, PlainScan(size, boxes, rules, itself)) << run << " " << step;
      placedElsewhere += place == TwipsPoint{} ? 0 : 1;
      if (itself == 0) continue;
      const bool covered = std::ranges::any_of(
          boxes, [&](const auto& other) { return other.first != itself && other.second.Overlaps(boxes.at(itself)); });
      ASSERT_EQ(placed.IsCovered(itself), covered) << run << " " << step;
    }
  }
  EXPECT_GT(placedElsewhere, 1000);
}

// Whether a piece of the line runs through the inside of the box.
bool RunsThrough(const std::vector<PixelPoint>& line, const PixelRect& box) {
  for (std::size_t i = 1; i < line.size(); ++i) {
    const PixelRect piece{std::min(line[i - 1].x, line[i].x), std::min(line[i - 1].y, line[i].y),
                          Pixels(std::fabs((line[i].x - line[i - 1].x).Value())),
                          Pixels(std::fabs((line[i].y - line[i - 1].y).Value()))};
    if (piece.left < box.Right() && box.left < piece.Right() && piece.top < box.Bottom() && box.top < piece.Bottom()) {
      return true;
    }
    const bool level = piece.height == 0_px && piece.top > box.top && piece.top < box.Bottom();
    if (level && piece.left < box.Right() && box.left < piece.Right()) return true;
    const bool upright = piece.width == 0_px && piece.left > box.left && piece.left < box.Right();
    if (upright && piece.top < box.Bottom() && box.top < piece.Bottom()) return true;
  }
  return false;
}

TEST(Routing, EndsAtTheBoxesAndRunsAroundThem) {
  std::mt19937 random(6);
  const auto upTo = [&random](unsigned n) { return Pixels(static_cast<double>(random() % (n + 1))); };
  for (int run = 0; run < 20'000; ++run) {
    const auto box = [&] { return PixelRect{upTo(400), upTo(400), 60_px + upTo(120), 40_px + upTo(120)}; };
    const PixelRect a = box();
    const PixelRect b = run % 7 == 0 ? a : box();
    const auto height = [&](const PixelRect& rect) { return rect.top + 1_px + upTo(38); };
    const LineEnd from{a, height(a)};
    const LineEnd to{b, height(b)};
    const std::vector<PixelPoint> line = RouteLine(from, to, 14_px);
    ASSERT_GE(line.size(), 2u);
    const auto atEdge = [](PixelPoint p, const LineEnd& end) {
      return p.y == end.y && (p.x == end.box.left || p.x == end.box.Right());
    };
    ASSERT_TRUE(atEdge(line.front(), from)) << run;
    ASSERT_TRUE(atEdge(line.back(), to)) << run;
    for (std::size_t i = 1; i < line.size(); ++i) {
      ASSERT_TRUE(line[i].x == line[i - 1].x || line[i].y == line[i - 1].y) << run;
    }
    if (a.Overlaps(b)) continue;  // then no way around may exist
    ASSERT_FALSE(RunsThrough(line, a)) << run;
    ASSERT_FALSE(RunsThrough(line, b)) << run;
  }
}

}  // namespace
}  // namespace zrqrybld
