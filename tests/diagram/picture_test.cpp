// Arranging boxes, and pictures of the diagram.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <set>
#include <sstream>

#include "tests/diagram/diagram_fixture.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/arrange.h"
#include "zrqrybld/diagram/beside.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/icons.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/routing.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

// --- Arranging ---

constexpr ArrangeRules kRules{56_px, 24_px, {1400_px, 800_px}};

// A graph of a kind: "chain", "star", "clique", "forest", "random", "none".
std::vector<BoxLink> LinksOf(std::string_view kind, std::size_t count, std::mt19937& random) {
  std::vector<BoxLink> links;
  for (std::size_t i = 1; i < count; ++i) {
    if (kind == "chain") links.push_back({i - 1, i});
    if (kind == "star") links.push_back({i, 0});
    if (kind == "binary tree") links.push_back({i, (i + 1) / 2 - 1});
    if (kind == "random tree") links.push_back({i, random() % i});
    if (kind == "forest" && random() % 5 != 0) links.push_back({i, random() % i});
    if (kind == "random") links.push_back({random() % count, random() % count});  // loops and doubles too
    for (std::size_t j = 0; kind == "clique" && j < i; ++j) links.push_back({i, j});
  }
  return links;
}

std::vector<PixelSize> SizesFor(std::size_t count, std::mt19937& random) {
  std::vector<PixelSize> sizes;
  const auto length = [&] { return Pixels(40.0 + static_cast<double>(random() % 260)); };
  for (std::size_t i = 0; i < count; ++i) sizes.push_back({length(), length()});
  return sizes;
}

TEST(Arrange, BoxesDoNotTouchAndJoinedOnesStandInNeighbouringColumns) {
  std::mt19937 random(2);
  for (const char* kind : {"none", "chain", "star", "clique", "forest", "random"}) {
    for (const std::size_t count :
         {std::size_t{1}, std::size_t{2}, std::size_t{7}, std::size_t{60}, std::size_t{1000}}) {
      if (count == 1000 && std::string_view(kind) == "clique") continue;  // half a million joins
      SCOPED_TRACE(testing::Message() << kind << " " << count);
      const std::vector<PixelSize> sizes = SizesFor(count, random);
      const std::vector<BoxLink> links = LinksOf(kind, count, random);
      const std::vector<PixelPoint> places = ArrangeBoxes(sizes, links, kRules);
      ASSERT_EQ(places.size(), count);
      ASSERT_EQ(places, ArrangeBoxes(sizes, links, kRules));  // the same again
      const auto placeOf = [&](std::size_t i) {
        return PixelRect{places[i].x, places[i].y, sizes[i].width, sizes[i].height};
      };
      for (std::size_t i = 0; i < count; ++i) {
        ASSERT_GE(places[i].x, 0_px);
        ASSERT_GE(places[i].y, 0_px);
        const PixelRect around{places[i].x, places[i].y, sizes[i].width + kRules.columnGap,
                               sizes[i].height + kRules.rowGap};
        for (std::size_t j = 0; j < i; ++j) {
          const PixelRect other{places[j].x, places[j].y, sizes[j].width + kRules.columnGap,
                                sizes[j].height + kRules.rowGap};
          ASSERT_FALSE(around.Overlaps(other)) << i << " " << j;
        }
      }
      // Between two joined boxes in different columns no third column begins, unless there are very many.
      for (const BoxLink& link : links) {
        const auto [left, right] = std::minmax(places[link.from].x, places[link.to].x);
        for (std::size_t i = 0; i < count && count <= 7; ++i) {
          const bool between = places[i].x > left && places[i].x < right;
          const PixelRect band = placeOf(link.from).Union(placeOf(link.to));
          ASSERT_FALSE(between && band.Overlaps(placeOf(i)) && std::string_view(kind) != "none") << i;
        }
      }
    }
  }
  EXPECT_TRUE(ArrangeBoxes({}, {}, kRules).empty());
}

// Whether a line from one box to another runs under a third.
bool RunsUnderABox(const JoinPlace& join, const std::vector<PixelRect>& boxes) {
  const PixelRect& from = boxes[join.from];
  const PixelRect& to = boxes[join.to];
  const auto line = RouteLine({from, from.top + join.fromY}, {to, to.top + join.toY}, 14_px);
  return std::ranges::any_of(boxes, [&](const PixelRect& box) {
    if (&box == &from || &box == &to) return false;
    for (std::size_t i = 1; i < line.size(); ++i) {
      const auto [left, right] = std::minmax(line[i - 1].x, line[i].x);
      const auto [top, bottom] = std::minmax(line[i - 1].y, line[i].y);
      if (left < box.Right() && right > box.left && top < box.Bottom() && bottom > box.top) return true;
    }
    return false;
  });
}

// However many tables: 13 of 59 lines of the binary tree ran under boxes while columns were filled one after the other.
TEST(Arrange, NoLineOfATreeRunsUnderABoxAndBoxesStayLarge) {
  struct Case {
    const char* kind;
    std::size_t count;
    double mostShrunk;
  };
  for (const Case& one : {Case{"binary tree", 20, 1.7}, Case{"binary tree", 60, 2.6}, Case{"binary tree", 200, 4.6},
                          Case{"random tree", 60, 3.3}, Case{"chain", 60, 2.4}, Case{"star", 20, 2.1}}) {
    SCOPED_TRACE(testing::Message() << one.kind << " " << one.count);
    std::mt19937 random(5);
    std::vector<PixelSize> sizes;
    for (std::size_t i = 0; i < one.count; ++i) {
      sizes.push_back({Pixels(136.0 + static_cast<double>(random() % 130)),
                       Pixels(100.0 + 20.0 * static_cast<double>(random() % 10))});
    }
    const std::vector<BoxLink> links = LinksOf(one.kind, one.count, random);
    const std::vector<PixelPoint> places = ArrangeBoxes(sizes, links, kRules);
    std::vector<PixelRect> boxes;
    PixelRect whole;
    for (std::size_t i = 0; i < one.count; ++i) {
      boxes.push_back({places[i].x, places[i].y, sizes[i].width, sizes[i].height});
      whole = whole.Union(boxes.back());
    }
    for (const BoxLink& link : links) {
      EXPECT_FALSE(RunsUnderABox({link.from, link.to, 40_px, 60_px}, boxes)) << link.from << " " << link.to;
    }
    EXPECT_LE(std::max(whole.width / kRules.window.width, whole.height / kRules.window.height), one.mostShrunk);
  }
}

// Ten times the boxes may cost ten times the time and some more, not a hundred times.
TEST(Arrange, TakesTimeThatGrowsWithBoxesAndJoins) {
  std::mt19937 random(2);
  for (const char* kind : {"none", "chain", "star", "forest", "random"}) {
    const auto seconds = [&](std::size_t count) {
      const std::vector<PixelSize> sizes = SizesFor(count, random);
      const std::vector<BoxLink> links = LinksOf(kind, count, random);
      const auto begin = std::chrono::steady_clock::now();
      ArrangeBoxes(sizes, links, kRules);
      return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    // A machine that does other things at the same time may spoil a measurement, not all of them.
    bool fast = false;
    for (int attempt = 0; attempt < 10 && !fast; ++attempt) fast = seconds(20'000) < 40 * seconds(2'000);
    EXPECT_TRUE(fast) << kind;
  }
}

// New tables beside those that stand: with room, and neither under nor over a line where there is another place.
TEST(PlaceBeside, NewBoxesStandBesideTheirPartnersAndNoLineRunsUnderABox) {
  std::mt19937 random(8);
  const auto upTo = [&random](std::size_t n) { return static_cast<std::size_t>(random() % (n + 1)); };
  int crossed = 0;
  int lines = 0;
  for (int run = 0; run < 300; ++run) {
    const std::size_t count = 2 + upTo(8);
    std::vector<JoinPlace> joins;
    for (std::size_t i = 1; i < count; ++i) joins.push_back({i, upTo(i - 1), 40_px, 60_px});
    std::vector<PixelRect> boxes;
    // One after the other, two at a time, or all at once.
    const std::size_t atOnce = run % 3 == 2 ? count : static_cast<std::size_t>(run % 3) + 1;
    while (boxes.size() < count) {
      const std::vector<PixelRect> before = boxes;
      for (std::size_t i = 0; i < atOnce && boxes.size() < count; ++i) {
        boxes.push_back({0_px, 0_px, Pixels(136.0 + static_cast<double>(upTo(130))),
                         Pixels(100.0 + 20.0 * static_cast<double>(upTo(10)))});
      }
      std::vector<JoinPlace> known;
      std::ranges::copy_if(joins, std::back_inserter(known),
                           [&](const JoinPlace& join) { return join.from < boxes.size(); });
      PlaceBeside(boxes, before.size(), known, {56_px, 24_px, {1400_px, 800_px}});
      for (std::size_t i = 0; i < before.size(); ++i) ASSERT_EQ(boxes[i], before[i]) << run;
    }
    for (std::size_t i = 0; i < count; ++i) {
      ASSERT_GE(std::min(boxes[i].left, boxes[i].top), 0_px);
      for (std::size_t j = 0; j < i; ++j) ASSERT_FALSE(boxes[i].Inset(-11_px).Overlaps(boxes[j].Inset(-11_px))) << run;
    }
    for (const JoinPlace& join : joins) {
      crossed += RunsUnderABox(join, boxes) ? 1 : 0;
      ++lines;
    }
  }
  EXPECT_GT(lines, 1000);
  EXPECT_LT(crossed, lines / 100);  // where one box after the other has left no place without
}

TEST(PlaceBeside, WhatIsJoinedToNothingOrComesByTheHundredStandsBehindAll) {
  for (const std::size_t count : {std::size_t{1}, std::size_t{60}, std::size_t{1000}}) {
    std::vector<PixelRect> boxes(count + 1, {0_px, 0_px, 200_px, 200_px});
    std::vector<JoinPlace> joins;
    for (std::size_t i = 1; count > 1 && i < count; ++i) joins.push_back({i, i - 1, 40_px, 40_px});
    boxes.front() = {300_px, 100_px, 200_px, 200_px};
    PlaceBeside(boxes, 1, joins, {56_px, 24_px, {1400_px, 800_px}});
    EXPECT_EQ(boxes.front(), (PixelRect{300_px, 100_px, 200_px, 200_px}));
    for (std::size_t i = 1; i <= count; ++i) {
      ASSERT_TRUE(boxes[i].left >= 556_px || boxes[i].top >= 348_px) << i;
    }
  }
}

// --- Pictures ---

TEST(Icons, TellEveryKindApartWithinTheirPlace) {
  std::set<std::string> seen;
  const auto look = [&](const std::function<void(Canvas&, const PixelRect&)>& draw, const std::string& what) {
    RecordingCanvas canvas;
    draw(canvas, {0_px, 0_px, 16_px, 16_px});
    EXPECT_TRUE(seen.insert(canvas.Text()).second) << what << " looks like another";
    std::istringstream words(ReplaceAll(ReplaceAll(canvas.Text(), ",", " "), "x", " "));
    for (std::string word; words >> word;) {
      if (!IsDigit(word.front()) && word.front() != '-') continue;
      EXPECT_TRUE(std::stod(word) >= 0 && std::stod(word) <= 16) << what << " leaves its place: " << word;
    }
  };
  for (int icon = 0; icon <= static_cast<int>(Icon::Restore); ++icon) {
    look(
        [icon](Canvas& canvas, const PixelRect& at) { DrawIcon(canvas, static_cast<Icon>(icon), at, ColorRole::Text); },
        "icon " + std::to_string(icon));
  }
  for (int kind = 0; kind <= static_cast<int>(TypeKind::Other); ++kind) {
    look([kind](Canvas& canvas,
                const PixelRect& at) { DrawTypeIcon(canvas, static_cast<TypeKind>(kind), at, ColorRole::Text); },
         "type " + std::to_string(kind));
  }
}

class Picture : public test::DiagramTest {};

TEST_F(Picture, OfTheApplicationStandsWhereItIsNamed) {
  const Ref<qbEntity> a = Add("a");
  const Ref<qbEntity> b = Add("b");
  const auto images = std::make_shared<ImageList>();
  images->Add(std::make_shared<Image>(1, 1, std::vector<std::uint32_t>{1}), "one");
  pane->SetItemsImageList(images);
  const auto drawn = [&] {
    return std::ranges::count_if(Drawn(), [](const auto& l) { return l.starts_with("image "); });
  };
  for (const auto& [icon, kept, count] : std::vector<std::tuple<Variant, Variant, int>>{
           {"two", {}, 0}, {"ONE", "ONE", 1}, {2, "ONE", 1}, {1, 1, 1}, {{}, {}, 0}}) {
    a->Items()->Item(2)->SetSmallIcon(icon);
    EXPECT_EQ(a->Items()->Item(2)->SmallIcon(), kept) << icon.Text();
    EXPECT_EQ(drawn(), count) << icon.Text();
  }
  const Ref<qbRelationship> join = Join(a, 2, b, 2);
  join->SetLeftPicture(images->Item(1));
  EXPECT_EQ(drawn(), 0);
  join->SetLeftIndicator(IndicatorImage);
  EXPECT_EQ(drawn(), 1);
}

TEST_F(Picture, WritesTheSchemaOfACaptionInAQuieterTone) {
  for (const auto& [caption, schema, name, quiet] :
       std::vector<std::tuple<const char*, const char*, const char*, int>>{{"dbo.Orders", "dbo", "Orders", 4},
                                                                           {"db.dbo.Orders", "dbo", "Orders", 7},
                                                                           {"Orders", "dbo", "Orders", 0},
                                                                           {"o", "dbo", "Orders", 0},
                                                                           {"x.Orders", "dbo", "Orders", 0},
                                                                           {"a.b", "", "a.b", 0}}) {
    pane->Clear();
    const Ref<qbEntity> entity = Add(caption);
    entity->Properties()->Set("_ADO_SCHEMA_TABLE_SCHEMA", schema);
    entity->Properties()->Set("_ADO_SCHEMA_TABLE_NAME", name);
    const std::string text = " \"" + std::string(caption) + "\"";
    const std::vector<std::string> lines = Drawn();
    const auto line = std::ranges::find_if(lines, [&](const std::string& one) { return one.ends_with(text); });
    ASSERT_NE(line, lines.end()) << caption;
    const std::string expected =
        quiet == 0 ? " bold" + text : " bold quiet " + std::to_string(quiet) + " QuietText" + text;
    EXPECT_TRUE(line->ends_with(expected)) << *line;
  }
}

TEST_F(Picture, IsSavedAndCopied) {
  Add("a");
  const std::string path = testing::TempDir() + "ä diagram.SVG";
  pane->SavePicture(path);
  std::ifstream file(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), pane->PictureSvg());
  for (const char* bad : {"/nowhere/a.svg", "a.png"}) {
    EXPECT_EQ(test::ErrorOf([&] { pane->SavePicture(bad); }), ErrorFileAccess) << bad;
  }
  EXPECT_TRUE(pane->CopyPicture());
  RecordingCanvas copied, whole;
  Surface().CopiedPicture().paint(copied);
  pane->PaintPicture(whole);
  EXPECT_EQ(copied.Text(), whole.Text());
}

// Neither selection nor zoom nor scrolling is in the picture; all boxes and lines are.
TEST_F(Picture, HoldsTheSameBoxesAndLinesAsTheCanvas) {
  for (int i = 0; i < 12; ++i) Add("t" + std::to_string(i), Columns(i * 2));
  for (int i = 1; i < 12; ++i) {
    Join(pane->Entities()->Item(i), 1, pane->Entities()->Item(i + 1), 2)->SetItemData(i % 4);
  }
  const std::string plain = pane->PictureSvg();
  RecordingCanvas canvas;
  pane->PaintPicture(canvas);
  std::vector<std::string> recorded;
  for (const std::string& line : canvas.Lines()) {
    if (line.starts_with("line ") && line.ends_with(" Join 1.5"))
      recorded.push_back(line.substr(5, line.find(' ', 5) - 5));
    if (line.starts_with("frame ") && line.ends_with(" BoxFrame")) recorded.push_back("box");
  }
  EXPECT_EQ(std::ranges::count(recorded, "box"), 12);
  EXPECT_EQ(recorded.size(), 12u + 11u);
  std::vector<std::string> drawn;
  for (const std::string_view line : Split(plain, "\n")) {
    if (line.starts_with("<path d=\"M") && line.ends_with("stroke=\"#64748b\" stroke-width=\"1.5\"/>")) {
      std::string point(line.substr(10, line.find('L') - 10));
      std::ranges::replace(point, ' ', ',');
      drawn.push_back(point);
    }
    if (line.starts_with("<rect") && line.find("fill=\"none\" stroke=\"#8c949e\"") != line.npos)
      drawn.emplace_back("box");
  }
  EXPECT_EQ(drawn, recorded);
  pane->SelectObject(pane->Entities()->Item(3));
  pane->SetZoom(0.5, {});
  Scroll(Orientation::Vertical, 30);
  Move(OnRow(*pane->Entities()->Item(4), 1), ButtonNone);
  EXPECT_EQ(pane->PictureSvg(), plain);
}

}  // namespace
}  // namespace zrqrybld
