// The diagram's view and keyboard: zoom, selection by keys, lines, menus, stored properties.
#include <cmath>
#include <random>

#include "tests/diagram/diagram_fixture.h"
#include "tests/player.h"
#include "tests/stored_properties.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/routing.h"
#include "zrqrybld/platform/accessible.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

class View : public test::DiagramTest {
 protected:
  int Scrolled(Orientation orientation) const { return Surface().ScrollBar(orientation).value; }
  PixelPoint Unseen(PixelPoint onPane) const {
    return {(onPane.x + Pixels(Scrolled(Orientation::Horizontal))) / pane->Zoom() - 12_px,
            (onPane.y + Pixels(Scrolled(Orientation::Vertical))) / pane->Zoom() - 12_px};
  }
  // So many boxes in rows of ten that do not touch.
  std::vector<Ref<qbEntity>> AddMany(int count) {
    std::vector<Ref<qbEntity>> boxes;
    for (int i = 0; i < count; ++i) {
      boxes.push_back(Add("t" + std::to_string(i), Columns(i % 25)));
      boxes.back()->SetLeft(static_cast<float>(15 * 300 * (i % 10)));
      boxes.back()->SetTop(static_cast<float>(15 * 400 * (i / 10)));
    }
    return boxes;
  }
};

// --- Zoom ---

TEST_F(View, ZoomKeepsThePointUnderThePointer) {
  AddMany(60);
  std::mt19937 random(3);
  const auto upTo = [&random](double n) { return static_cast<double>(random() % 1001) / 1000 * n; };
  int held = 0;
  for (int run = 0; run < 2000; ++run) {
    if (run % 10 == 0) {
      Scroll(Orientation::Horizontal, static_cast<int>(upTo(9000)));
      Scroll(Orientation::Vertical, static_cast<int>(upTo(9000)));
    }
    const PixelPoint at{Pixels(upTo(800)), Pixels(upTo(600))};
    const PixelPoint before = Unseen(at);
    if (run % 2 == 0) {
      pane->OnWheel({ShiftCtrl, at, 0, upTo(16) - 8});
    } else {
      pane->SetZoom(upTo(5), at);
    }
    ASSERT_GE(pane->Zoom(), 0.25);
    ASSERT_LE(pane->Zoom(), 4);
    const PixelPoint after = OnPane(before);
    const auto stays = [&](Orientation orientation, Pixels was, Pixels is) {
      const ScrollState& bar = Surface().ScrollBar(orientation);
      ASSERT_GE(bar.value, 0);
      ASSERT_LE(bar.value, bar.maximum);
      if (bar.value == 0 || bar.value == bar.maximum) return;  // it cannot scroll as far
      ASSERT_NEAR(was.Value(), is.Value(), 0.51) << run;
      ++held;
    };
    stays(Orientation::Horizontal, at.x, after.x);
    stays(Orientation::Vertical, at.y, after.y);
  }
  EXPECT_GT(held, 1000);
  for (const double bad : {-1.0, 0.0, std::nan("")}) {
    pane->SetZoom(bad, {});
    EXPECT_EQ(pane->Zoom(), 0.25);
  }
  pane->SetZoom(HUGE_VAL, {});
  EXPECT_EQ(pane->Zoom(), 4);
  // The keys zoom about the middle.
  pane->SetZoom(1, {});
  Scroll(Orientation::Horizontal, 500);
  const PixelPoint middle{400_px, 300_px};
  const PixelPoint held2 = Unseen(middle);
  for (const auto& [key, text, zoom] : std::vector<std::tuple<std::int32_t, const char*, double>>{
           {187, "+", 1.25}, {107, "", 1.5625}, {189, "-", 1.25}, {109, "", 1}, {187, "=", 1.25}, {'0', "0", 1}}) {
    EXPECT_TRUE(pane->OnKeyDown({key, ShiftCtrl, text}));
    EXPECT_DOUBLE_EQ(pane->Zoom(), zoom);
    EXPECT_NEAR(OnPane(held2).x.Value(), 400, 2);
  }
}

TEST_F(View, WhatIsSeenIsWhatIsHitAtAnyZoomAndScroll) {
  const std::vector<Ref<qbEntity>> boxes = AddMany(60);
  std::mt19937 random(5);
  const auto below = [&random](std::size_t n) { return static_cast<int>(random() % n); };
  for (int run = 0; run < 1000; ++run) {
    pane->SetZoom(0.5 + below(351) / 100.0, {});
    Scroll(Orientation::Horizontal, below(12000));
    Scroll(Orientation::Vertical, below(8000));
    const qbEntity& entity = *boxes[static_cast<std::size_t>(below(boxes.size()))];
    qbEntityList& box = *entity.EntityBox();
    box.ScrollTo(static_cast<std::size_t>(below(30)));
    const auto row =
        box.FirstVisibleRow() + static_cast<std::size_t>(below(std::min(box.Rows().Count(), box.VisibleRowCount())));
    const Ref<qbEntityItem> item = entity.Items()->Item(static_cast<std::int32_t>(row));
    const bool before = item->Checked();
    Click(OnCheckBox(entity, row));
    ASSERT_NE(item->Checked(), before) << run;
    Click(OnRow(entity, row));
    ASSERT_EQ(entity.SelectedItem(), item) << run;
    ASSERT_EQ(pane->ToolTipAt(OnCaption(entity)), entity.Caption()) << run;
  }
}

TEST_F(View, FitShowsEveryBoxAndNeverEnlarges) {
  Add("a");
  pane->SetZoom(2, {});
  pane->ZoomToFit();
  EXPECT_EQ(pane->Zoom(), 1);
  const std::vector<Ref<qbEntity>> boxes = AddMany(20);
  Scroll(Orientation::Horizontal, 700);
  pane->ZoomToFit();
  EXPECT_LT(pane->Zoom(), 1);
  for (const Ref<qbEntity>& box : boxes) {
    const PixelPoint corner = OnPane({Place(*box).Right(), Place(*box).Bottom()});
    EXPECT_LE(corner.x, 800_px);
    EXPECT_LE(corner.y, 600_px);
  }
  EXPECT_EQ(Scrolled(Orientation::Horizontal), 0);
}

TEST_F(View, ScrollBarsFollowTheExtentHoweverItChanges) {
  std::mt19937 random(9);
  const auto below = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  for (int run = 0; run < 600; ++run) {
    const std::int32_t count = pane->Entities()->Count();
    const Ref<qbEntity> any = pane->Entities()->Item(1 + below(std::max(count, 1)));
    if (!any || (below(4) == 0 && count < 12)) {
      Add("t" + std::to_string(run));
    } else if (below(6) == 0) {
      pane->Entities()->Remove(any->Index());
    } else if (below(6) == 0) {
      pane->SetMinimized(*any, below(2) == 0);
    } else {
      any->SetLeft(static_cast<float>(15 * below(3000)));
      any->SetHeight(static_cast<float>(15 * below(3000)));
    }
    if (below(9) == 0) pane->SetZoom(below(5), {});
    PixelPoint corner{};
    for (std::int32_t i = 1; i <= pane->Entities()->Count(); ++i) {
      const PixelRect place = Place(*pane->Entities()->Item(i));
      corner = {std::max(corner.x, place.Right() + 24_px), std::max(corner.y, place.Bottom() + 24_px)};
    }
    const auto maximum = [&](Pixels whole, Pixels visible) {
      return std::max(0, static_cast<int>(std::ceil((whole * pane->Zoom() - visible).Value())));
    };
    ASSERT_EQ(Surface().ScrollBar(Orientation::Horizontal).maximum, maximum(corner.x, 800_px)) << run;
    ASSERT_EQ(Surface().ScrollBar(Orientation::Vertical).maximum, maximum(corner.y, 600_px)) << run;
  }
}

TEST_F(View, ABoxThatIsSentAnywhereCanStillBeReached) {
  const Ref<qbEntity> a = Add("a");
  const PixelRect before = Place(*a);
  for (const float bad : {std::nanf(""), HUGE_VALF, -HUGE_VALF}) {
    a->SetLeft(bad);
    a->SetTop(bad);
    a->SetWidth(bad);
    a->SetHeight(bad);
    EXPECT_EQ(Place(*a), before) << bad;
  }
  for (const float far : {1e30F, -1e30F}) {
    a->SetLeft(far);
    pane->SetZoom(4, {});
    EXPECT_EQ(Surface().ScrollBar(Orientation::Horizontal).maximum > 1'000'000, far > 0);
    Add("b" + std::to_string(far));
    Drawn();
    pane->Arrange();
    EXPECT_EQ(Place(*a).left, 0_px);
  }
}

// --- Lines ---

TEST_F(View, LinesBetweenTheSameBoxesShareATrunkAndHaveEndsOfTheirOwn) {
  const Ref<qbEntity> a = Add("a", Columns(30));
  const Ref<qbEntity> b = Add("b", Columns(30));
  std::vector<Ref<qbRelationship>> joins;
  for (std::int32_t i = 0; i < 4; ++i) joins.push_back(Join(i % 2 == 0 ? a : b, 2 + i, i % 2 == 0 ? b : a, 5 - i));
  for (const bool fromA : {true, false}) joins.push_back(fromA ? Join(a, 9, b, 9) : Join(b, 9, a, 9));  // the same rows
  const struct {
    const char* what;
    float left, top;
  } cases[] = {{"side by side", 300, 0}, {"close", 160, 40}, {"below", 20, 500}};
  for (const auto& one : cases) {
    b->SetLeft(one.left * 15);
    b->SetTop(one.top * 15);
    for (std::size_t i = 0; i < joins.size(); ++i) {
      EXPECT_EQ(joins[i]->Line()->Points({})[1].x, joins[0]->Line()->Points({})[1].x) << one.what << i;
      for (std::size_t j = 0; j < i; ++j) {
        // Somewhere each is at least two pixels away from the other.
        const auto apart = [&](const qbRelationship& line, const qbRelationship& other) {
          return std::ranges::any_of(line.Line()->Points({}), [&](PixelPoint point) {
            return DistanceToLine(point, other.Line()->Points({})) >= 2_px;
          });
        };
        EXPECT_TRUE(apart(*joins[i], *joins[j])) << one.what << i << j;
      }
    }
  }
}

// --- Names from afar ---

// Where rows can no longer be read the names of the boxes stand over them, in lines that follow each other and lose
// nothing.
TEST_F(View, NamesFromAfarAreWhole) {
  const char* const kNames[] = {"a",
                                "CustomerOrdersOfTheLastYear",
                                "a very long name of a table",
                                "withoutanyplacetobreak",
                                "Kundenaufträge_der_letzten_Jahre",
                                "ÄÖÜ"};
  for (const char* name : kNames) Add(name, Columns(20));
  pane->Arrange();
  int broken = 0;
  for (const double zoom : {0.25, 0.3, 0.4}) {
    pane->SetZoom(zoom, {0_px, 0_px});
    std::vector<std::string> pieces;
    for (const std::string& call : Drawn()) {
      const std::size_t open = call.find('"');
      if (call.starts_with("text") && open != std::string::npos)
        pieces.push_back(call.substr(open + 1, call.rfind('"') - open - 1));
    }
    for (const std::string name : kNames) {
      bool found = false;
      for (std::size_t first = 0; first < pieces.size() && !found; ++first) {
        std::string whole;
        std::size_t at = first;
        while (at < pieces.size() && whole.size() < name.size()) whole += pieces[at++];
        found = whole == name;
        broken += found && at > first + 1;
      }
      EXPECT_TRUE(found) << name << " at " << zoom;
    }
  }
  EXPECT_GT(broken, 0);
}

// --- The minimap ---

TEST_F(View, APressInTheMinimapGoesThereAndADragFollows) {
  AddMany(60);
  const auto place = [this]() -> PixelRect {
    AccessibleTree& tree = *pane->Accessible();
    for (std::size_t i = 0; i < tree.ChildCount({}); ++i) {
      const AccessibleInfo info = tree.Describe(tree.ChildAt({}, i));
      if (info.role == AccessibleRole::Minimap) return info.bounds;
    }
    return {};
  };
  EXPECT_EQ(place(), PixelRect());
  EXPECT_TRUE(pane->OnKeyDown(test::ReadKey("F8")));
  EXPECT_TRUE(pane->ShowMinimap());
  const PixelRect map = place();
  ASSERT_GT(map.width, 20_px);
  EXPECT_GT(map.left, 400_px);
  const auto at = [&](double x, double y) { return PixelPoint{map.left + map.width * x, map.top + map.height * y}; };
  Down(at(0.5, 0.5), ButtonRight);
  Up(at(0.5, 0.5), ButtonRight);
  EXPECT_EQ(Scrolled(Orientation::Horizontal), 0);
  Down(at(0.5, 0.5));
  EXPECT_TRUE(Surface().IsCaptured());
  const int half = Scrolled(Orientation::Horizontal);
  const ScrollState bar = Surface().ScrollBar(Orientation::Horizontal);
  EXPECT_NEAR(half, bar.maximum / 2, bar.maximum / 20 + 2);
  Move(at(0.95, 0.95));
  EXPECT_GT(Scrolled(Orientation::Horizontal), half);
  const int far = Scrolled(Orientation::Vertical);
  Up(at(0.95, 0.95));
  EXPECT_FALSE(Surface().IsCaptured());
  Move(at(0.1, 0.1), ButtonNone);
  EXPECT_EQ(Scrolled(Orientation::Vertical), far) << "the button is up";
  EXPECT_EQ(pane->SelectedObject(), nullptr) << "nothing below it was pressed";
  EXPECT_TRUE(pane->OnKeyDown(test::ReadKey("F8")));
  EXPECT_EQ(place(), PixelRect());
}

// --- Keys in a box ---

TEST_F(View, KeysGoThroughTheRowsOfABox) {
  const Ref<qbEntity> box = Add("a", Columns(40));
  pane->SelectObject(box);
  const auto rowAfter = [&](const char* key) {
    pane->OnKeyDown(test::ReadKey(key));
    return box->EntityBox()->SelectedRow();
  };
  const std::size_t page = box->EntityBox()->VisibleRowCount();
  EXPECT_EQ(rowAfter("Home"), 1u);
  EXPECT_EQ(rowAfter("PageDown"), 1 + page);
  EXPECT_EQ(rowAfter("PageDown"), std::min<std::size_t>(1 + 2 * page, 41));
  EXPECT_EQ(rowAfter("End"), 41u);
  EXPECT_EQ(rowAfter("PageDown"), 41u);
  EXPECT_EQ(rowAfter("PageUp"), 41 - page);
  EXPECT_EQ(rowAfter("Home"), 1u);
  // Letters find rows, one after another; the backspace key takes the last one back.
  EXPECT_EQ(rowAfter("c"), 2u);
  EXPECT_EQ(rowAfter("1"), 2u);
  EXPECT_EQ(rowAfter("2"), 13u) << "c12";
  EXPECT_EQ(rowAfter("Back"), 2u) << "c1";
  EXPECT_EQ(rowAfter("9"), 20u) << "c19";
  EXPECT_EQ(rowAfter("Down"), 21u);
}

// --- Menus ---

TEST_F(View, AListenerChangesTheMenuAndAnEmptyOneIsNotShown) {
  const Ref<qbEntity> a = Add("a");
  a->SetTop(15 * 200);
  Ref<Object> asked;
  int called = 0;
  auto link = pane->BeforeContextMenu.Connect([&](const Ref<Object>& object, Menu& menu) {
    asked = object;
    menu.erase(menu.begin());
    menu.push_back({"Mine", "", [&] { ++called; }});
  });
  Click(OnRow(*a, 2), ButtonRight);
  EXPECT_EQ(asked, a->Items()->Item(2));
  EXPECT_EQ(pane->SelectedObject(), a);
  EXPECT_EQ(Surface().LastMenu().front().text, "&Sort");
  Surface().LastMenu().back().action();
  EXPECT_EQ(called, 1);
  for (const auto& [key, shift] : {std::pair{93, 0}, std::pair{121, 1}}) {
    asked = nullptr;
    EXPECT_TRUE(Press(key, shift));
    EXPECT_EQ(asked, a->Items()->Item(2));
    // By key it opens at the selected object.
    EXPECT_TRUE(Place(*a).Moved(12_px, 12_px).Contains(Surface().MenuPlace()));
  }
  link = pane->BeforeContextMenu.Connect([&](const Ref<Object>&, Menu& menu) { menu.clear(); });
  pane->GetSurface().ShowMenu({}, {});
  Click(OnCaption(*a), ButtonRight);
  Click({790_px, 590_px}, ButtonRight);
  EXPECT_EQ(Surface().MenuPlace(), PixelPoint{});
  // What goes when it is selected has no menu.
  link = pane->ObjectActivate.Connect([&](const Ref<Object>&) { pane->Clear(); });
  Click(OnCaption(*a), ButtonRight);
  EXPECT_EQ(Captions(), "");
}

// --- Stored properties ---

TEST_F(View, NewBoxesLookAsThePaneSaysThen) {
  pane->SetEntityBackColor(Color::Rgb(1, 2, 3));
  pane->SetEntityMinimizeButton(false);
  const Ref<qbEntity> a = Add("a");
  pane->SetEntityMinimizeButton(true);
  EXPECT_EQ(a->BackColor(), Color::Rgb(1, 2, 3));
  EXPECT_FALSE(a->ShowMinimizeButton());
}

TEST_F(View, StoredPropertiesMakeTheRoundTrip) {
  MemoryPropertyStore store;
  pane->WriteProperties(store);
  EXPECT_EQ(store.Values().size(), 6u);  // colours and fonts always
  EXPECT_EQ(store.Read("BackColor", 0), Variant(std::int64_t{0x8000000C}));
  std::string changed;
  const auto link = pane->PropertyChanged.Connect([&](std::string_view key) { changed += std::string(key) + " "; });
  pane->SetEntityMinimizeButton(false);
  pane->SetOLEDropMode(OLEDropManual);
  pane->SetEntityBackColor(Color::Rgb(255, 254, 253));
  pane->SetEntityForeColor(Color::System(18));
  pane->SetEntityFrameColor(Color::Rgb(0, 0, 0));
  pane->SetBackColor({0xFFFFFFFF});
  EXPECT_EQ(changed, "EntityMinimizeButton OLEDropMode EntityBackColor EntityForeColor EntityFrameColor BackColor ");
  for (const Font& font :
       {Font{"Sans; bold;3", 10.5, true, false}, Font{"", 0, false, true}, Font{"bold", 8, false, false},
        Font{"Ünï", 200, true, true}, Font{"a;italic", 1, false, false}}) {
    pane->SetEntityFont(font);
    pane->SetEntityCaptionFont(font);
    const Ref<qbDiagramPane> other = qbDiagramPane::Create();
    test::ExpectStored(pane, other,
                       {"EntityMinimizeButton", "OLEDropMode", "EntityBackColor", "EntityForeColor", "EntityFrameColor",
                        "BackColor", "EntityFont", "EntityCaptionFont"});
    MemoryPropertyStore written;
    pane->WriteProperties(written);
    other->ReadProperties(written);
    EXPECT_EQ(other->EntityFont(), font) << font.family;
  }
}

// What only looks like a value of the kind.
TEST_F(View, StoredValuesOutOfBoundsAreTheDefaults) {
  for (const Variant& value : {Variant("x"), Variant(1e300), Variant(-1e300), Variant(std::nan(""))}) {
    MemoryPropertyStore store;
    for (const char* key : {"OLEDropMode", "EntityBackColor", "BackColor"}) store.Write(key, value);
    store.Write("EntityFont", "\xFF;-5;bold");
    pane->ReadProperties(store);
    EXPECT_EQ(pane->OLEDropMode(), OLEDropNone) << value.Text();
    EXPECT_EQ(pane->EntityBackColor(), Color::System(5)) << value.Text();
    EXPECT_EQ(pane->BackColor(), Color::System(12)) << value.Text();
    EXPECT_GE(pane->EntityFont().points, 0);
    Drawn();
  }
}

}  // namespace
}  // namespace zrqrybld
