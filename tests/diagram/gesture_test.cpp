// What a user does with the mouse in the diagram: joins, boxes and lists that are dragged.
#include <random>

#include "tests/diagram/diagram_fixture.h"

namespace zrqrybld {
namespace {

class Gesture : public test::DiagramTest {
 protected:
  // The two boxes of most cases, `b` to the right of `a`.
  Ref<qbEntity> a = Add("a");
  Ref<qbEntity> b = Add("b");
  PixelPoint empty{700_px, 500_px};  // a place of the pane without any box

  void SetUp() override { b->SetLeft(15 * 300); }
  std::string Joins() const {
    std::string text;
    for (const Ref<qbEntity>& entity : {a, b}) {
      for (std::int32_t i = 1; i <= entity->Relationships()->Count(); ++i) {
        const Ref<qbRelationship> join = entity->Relationships()->Item(i);
        text += (text.empty() ? "" : " ") + entity->Caption() + join->SourceItemIndex().Text() +
                join->Target()->Caption() + join->TargetItemIndex().Text();
      }
    }
    return text;
  }
  std::ptrdiff_t CountDrawn(std::string_view begin, std::string_view end) const {
    return std::ranges::count_if(
        Drawn(), [&](const std::string& line) { return line.starts_with(begin) && line.ends_with(end); });
  }
};

// --- A row that is dragged ---

TEST_F(Gesture, ARowDroppedOnARowDrawsOneJoin) {
  Down(OnRow(*a, 2));
  Move(OnRow(*a, 2) + PixelPoint{2_px, 1_px});
  EXPECT_EQ(CountDrawn("line ", " Join 2"), 0);  // a trembling hand draws nothing
  Move(empty);
  const std::string start = "line 136,58.5 ";  // the right edge of a, the middle of its second row
  EXPECT_EQ(CountDrawn(start + "688,488 ", " Join 2"), 1);
  EXPECT_TRUE(Surface().IsCaptured());
  Move(OnRow(*b, 3));
  EXPECT_EQ(CountDrawn(start, " JoinSelected 2"), 1);
  EXPECT_EQ(CountDrawn("frame 301,69 134x21 ", "JoinSelected"), 1);  // the row lights up
  Up(OnRow(*b, 3));
  EXPECT_EQ(Joins(), "a2b3");
  EXPECT_EQ(pane->SelectedObject(), a->Relationships()->Item(1));
  EXPECT_FALSE(Surface().IsCaptured());
  EXPECT_EQ(CountDrawn("line ", " 2"), 0);
  // The same pair again, from either side, adds nothing; another pair does.
  Drag(OnRow(*a, 2), OnRow(*b, 3));
  Drag(OnRow(*b, 3), OnRow(*a, 2));
  EXPECT_EQ(Joins(), "a2b3");
  Drag(OnRow(*b, 2), OnRow(*a, 2));
  EXPECT_EQ(Joins(), "a2b3 b2a2");
  // At the left of the box's middle the line leaves on the left.
  Down(OnRow(*b, 2));
  Move({250_px, 300_px});
  EXPECT_EQ(CountDrawn("line 300,58.5 238,288 ", " Join 2"), 1);
}

TEST_F(Gesture, ThePointerSaysWhereAJoinMayEnd) {
  const struct {
    const char* what;
    std::size_t fromRow;
    PixelPoint to;
    Cursor cursor;
    const char* joins;
  } cases[] = {
      {"a row", 2, OnRow(*b, 2), Cursor::Join, "a2b2"},
      {"a check box", 2, OnCheckBox(*b, 3), Cursor::Join, "a2b3"},
      {"all columns", 2, OnRow(*b, 1), Cursor::NoDrop, ""},
      {"the caption", 2, OnCaption(*b), Cursor::NoDrop, ""},
      {"its own box", 2, OnRow(*a, 3), Cursor::NoDrop, ""},
      {"the surface", 2, empty, Cursor::Arrow, ""},
      {"from all columns", 1, OnRow(*b, 2), Cursor::NoDrop, ""},
      {"from all columns over the surface", 1, empty, Cursor::Arrow, ""},
  };
  for (const auto& one : cases) {
    Down(OnRow(*a, one.fromRow));
    Move(OnRow(*b, 1));  // the sign is there only while the pointer is over such a place
    EXPECT_EQ(Surface().CurrentCursor(), Cursor::NoDrop);
    Move(one.to);
    EXPECT_EQ(Surface().CurrentCursor(), one.cursor) << one.what;
    Up(one.to);
    EXPECT_EQ(Joins(), one.joins) << one.what;
    a->Relationships()->Clear();
  }
}

TEST_F(Gesture, EscapeAndLosingTheKeyboardTakeADragBack) {
  for (const bool byKey : {true, false}) {
    const auto cancel = [&] { byKey ? void(Press(KeyCodeEscape)) : pane->OnFocusChanged(false); };
    Down(OnRow(*a, 2));
    Move(OnRow(*b, 2));
    cancel();
    EXPECT_FALSE(Surface().IsCaptured());
    EXPECT_FALSE(Surface().IsTicking());
    EXPECT_EQ(CountDrawn("line ", " JoinSelected 2"), 0);
    Up(OnRow(*b, 2));
    EXPECT_EQ(Joins(), "");
    for (const PixelPoint grip : {OnCaption(*a), OnPane({Place(*a).Right() - 1_px, 50_px})}) {
      const TwipsRect before = a->EntityBox()->Bounds();
      Down(grip);
      Move(grip + PixelPoint{70_px, 50_px});
      EXPECT_NE(a->EntityBox()->Bounds(), before);
      cancel();
      EXPECT_EQ(a->EntityBox()->Bounds(), before);
      Up(grip + PixelPoint{70_px, 50_px});
      EXPECT_EQ(a->EntityBox()->Bounds(), before);
      EXPECT_EQ(pane->SelectedObject(), a);  // the first Escape ends the drag, nothing else
    }
  }
}

TEST_F(Gesture, ARowThatLeavesThePaneIsATextForOthers) {
  for (const PixelPoint outside : {PixelPoint{-30_px, 50_px}, PixelPoint{300_px, 630_px}}) {
    Down(OnRow(*a, 3));
    Move({5_px, 5_px});
    EXPECT_EQ(Surface().DraggedText(), "");
    Move(outside);
    EXPECT_EQ(Surface().DraggedText(), "a.name");
    EXPECT_FALSE(Surface().IsCaptured());
    Move(OnRow(*b, 2));
    Up(OnRow(*b, 2));
    EXPECT_EQ(Joins(), "");
    pane->GetSurface().DragText("");
  }
}

TEST_F(Gesture, SurfaceAndListsScrollByThemselvesNearTheirEdges) {
  const Ref<qbEntity> far = Add("far", Columns(40));
  far->SetLeft(15 * 500);
  Add("corner")->SetTop(15 * 3000);
  pane->Entities()->Item("corner")->SetLeft(15 * 3000);
  const auto at = [&](Orientation orientation) { return Surface().ScrollBar(orientation).value; };
  const auto tick = [&](int times) {
    for (int i = 0; i < times; ++i) pane->OnTick();
  };
  tick(3);
  Down(OnRow(*a, 2));
  EXPECT_FALSE(Surface().IsTicking());
  Move({400_px, 300_px});
  EXPECT_TRUE(Surface().IsTicking());
  tick(3);
  EXPECT_EQ(at(Orientation::Vertical), 0);  // in the middle nothing scrolls
  const PixelRect list = Place(*far);
  // At any zoom the list scrolls by one row a tick, towards the edge that the pointer is near to.
  for (const double zoom : {1.0, 0.25, 2.0}) {
    SCOPED_TRACE(zoom);
    Up(empty);
    pane->SetZoom(zoom, {});
    far->EntityBox()->ScrollTo(1);
    Down(OnRow(*a, 2));
    const auto near = [&](PixelPoint surface) {
      Scroll(Orientation::Horizontal, static_cast<int>(((surface.x + 12_px) * zoom).Value()) - 300);
      Scroll(Orientation::Vertical, static_cast<int>(((surface.y + 12_px) * zoom).Value()) - 300);
      Move(OnPane(surface));
      tick(5);
    };
    near({list.CenterX(), list.Bottom() - 8_px});
    EXPECT_EQ(far->EntityBox()->FirstVisibleRow(), 6u);
    near({list.CenterX(), list.top + 34_px});
    EXPECT_EQ(far->EntityBox()->FirstVisibleRow(), 1u);
  }
  Up(empty);
  pane->SetZoom(1, {});
  Scroll(Orientation::Horizontal, 0);
  Scroll(Orientation::Vertical, 0);
  Down(OnRow(*a, 2));
  Move({790_px, 590_px});
  tick(10);
  EXPECT_EQ(at(Orientation::Vertical), 160);
  EXPECT_EQ(at(Orientation::Horizontal), 160);
  Move({400_px, 5_px});
  tick(4);
  EXPECT_EQ(at(Orientation::Vertical), 96);
  tick(100);
  EXPECT_EQ(at(Orientation::Vertical), 0);
  Up({400_px, 5_px});
  // A box that is carried scrolls the surface too, and stays under the pointer.
  Scroll(Orientation::Horizontal, 0);
  const PixelPoint grip = OnCaption(*a);
  Down(grip);
  Move({790_px, 300_px});
  tick(10);
  EXPECT_EQ(at(Orientation::Horizontal), 160);
  EXPECT_EQ(OnCaption(*a), (PixelPoint{790_px, 300_px}));
  Up({790_px, 300_px});
  EXPECT_FALSE(Surface().IsTicking());
}

// --- A box that is dragged ---

TEST_F(Gesture, ABoxDroppedOnARowDrawsAJoinAndGoesBack) {
  const struct {
    const char* what;
    std::size_t current;
    PixelPoint to;
    const char* joins;
    bool goesBack;
  } cases[] = {
      {"a row", 2, OnRow(*b, 3), "a2b3", true},
      {"again: this way does not ask whether there is one", 2, OnRow(*b, 3), "a2b3 a2b3", true},
      {"all columns", 2, OnRow(*b, 1), "", false},
      {"from all columns", 1, OnRow(*b, 3), "", false},
      {"without a current row", 0, OnRow(*b, 3), "", false},
      {"the caption", 2, OnCaption(*b), "", false},
      {"itself", 2, OnCaption(*a) + PixelPoint{10_px, 0_px}, "", false},
  };
  for (const auto& one : cases) {
    if (std::string_view(one.joins).empty()) a->Relationships()->Clear();
    a->EntityBox()->SetSelectedRow(one.current);
    const TwipsRect before = a->EntityBox()->Bounds();
    Drag(OnCaption(*a), one.to);
    EXPECT_EQ(Joins(), one.joins) << one.what;
    EXPECT_EQ(a->EntityBox()->Bounds() == before, one.goesBack) << one.what;
    a->EntityBox()->SetBounds(before);
  }
}

TEST_F(Gesture, EveryEdgeAndCornerResizesWithItsPointer) {
  const PixelRect start{200_px, 150_px, 160_px, 140_px};
  const struct {
    double x, y;  // the handle, as parts of width and height
    Cursor cursor;
    PixelRect moved;  // after 10 to the right and 20 down
    PixelRect smallest;
  } handles[] = {
      {0, .6, Cursor::SizeHorizontal, {210_px, 150_px, 150_px, 140_px}, {264_px, 150_px, 96_px, 140_px}},
      {1, .6, Cursor::SizeHorizontal, {200_px, 150_px, 170_px, 140_px}, {200_px, 150_px, 96_px, 140_px}},
      {.5, 0, Cursor::SizeVertical, {200_px, 170_px, 160_px, 120_px}, {200_px, 243_px, 160_px, 47_px}},
      {.5, 1, Cursor::SizeVertical, {200_px, 150_px, 160_px, 160_px}, {200_px, 150_px, 160_px, 47_px}},
      {0, 0, Cursor::SizeDiagonalDown, {210_px, 170_px, 150_px, 120_px}, {264_px, 243_px, 96_px, 47_px}},
      {1, 1, Cursor::SizeDiagonalDown, {200_px, 150_px, 170_px, 160_px}, {200_px, 150_px, 96_px, 47_px}},
      {1, 0, Cursor::SizeDiagonalUp, {200_px, 170_px, 170_px, 120_px}, {200_px, 243_px, 96_px, 47_px}},
      {0, 1, Cursor::SizeDiagonalUp, {210_px, 150_px, 150_px, 160_px}, {264_px, 150_px, 96_px, 47_px}},
  };
  b->SetTop(15 * 1000);
  for (const auto& handle : handles) {
    SCOPED_TRACE(testing::Message() << handle.x << "," << handle.y);
    // Just inside and just outside of the frame.
    for (const double inside : {1.0, -2.0}) {
      a->EntityBox()->SetBounds(ScreenScale{}.ToTwips(start));
      const auto along = [&](Pixels begin, Pixels length, double part) {
        return begin + length * part + Pixels(part == 0 ? inside : part == 1 ? -inside : 0);
      };
      const PixelPoint grip =
          OnPane({along(start.left, start.width, handle.x), along(start.top, start.height, handle.y)});
      Move(grip, ButtonNone);
      EXPECT_EQ(Surface().CurrentCursor(), handle.cursor);
      Down(grip);
      Move(grip + PixelPoint{10_px, 20_px});
      EXPECT_EQ(Place(*a), handle.moved);
      const double inward = 500;
      Move(grip + PixelPoint{Pixels(handle.x == 0 ? inward : -inward), Pixels(handle.y == 0 ? inward : -inward)});
      EXPECT_EQ(Place(*a), handle.smallest);
      Move(grip + PixelPoint{-900_px, -900_px});
      EXPECT_GE(Place(*a).left, 0_px);
      EXPECT_GE(Place(*a).top, 0_px);
      Up(grip);
    }
  }
}

TEST_F(Gesture, AMinimisedBoxIsItsCaptionAndLinesEndThere) {
  const Ref<qbRelationship> join = Join(a, 2, b, 3);
  const PixelRect before = Place(*a);
  const PixelPoint button = OnPane({before.Right() - 16_px, before.top + 14_px});
  const auto lineY = [&] { return join->Line()->Points({}).front().y; };
  EXPECT_EQ(lineY(), PlaceOfRow(*a, 2).CenterY());
  Click(button);
  EXPECT_EQ(Place(*a).height, 28_px);
  EXPECT_EQ(lineY(), before.top + 14_px);
  EXPECT_EQ(join->Line()->Points({}).back().y, PlaceOfRow(*b, 3).CenterY());
  Click(button);
  EXPECT_EQ(Place(*a), before);
  EXPECT_EQ(lineY(), PlaceOfRow(*a, 2).CenterY());
  // Two quick clicks on the button are two clicks; on the caption they restore and fit.
  Click(button);
  pane->OnDoubleClick({ButtonLeft, ShiftNone, button});
  EXPECT_EQ(Place(*a), before);
  Click(button);
  pane->OnDoubleClick({ButtonLeft, ShiftNone, OnCaption(*a)});
  EXPECT_FALSE(a->EntityBox()->Minimized());
  a->Items()->Add("a column with a long name");
  pane->OnDoubleClick({ButtonLeft, ShiftNone, OnCaption(*a)});
  EXPECT_GT(Place(*a).width, before.width);
  EXPECT_EQ(a->EntityBox()->VisibleRowCount(), 4u);
  a->Items()->Clear();
  pane->OnDoubleClick({ButtonLeft, ShiftNone, OnCaption(*a)});
  EXPECT_EQ(a->EntityBox()->VisibleRowCount(), 1u);  // room for a row even when there is none
  a->SetShowMinimizeButton(false);
  Click(button);
  EXPECT_FALSE(a->EntityBox()->Minimized());
}

TEST_F(Gesture, TheMarkOfALongListFollowsThePointer) {
  const Ref<qbEntity> list = Add("list", Columns(59));  // 60 rows, 14 of them visible
  const auto first = [&] { return list->EntityBox()->FirstVisibleRow(); };
  const PixelRect place = Place(*list);
  const Pixels track = place.top + 27_px;
  const auto onTrack = [&](Pixels down) { return OnPane({place.Right() - 5_px, track + down}); };
  const double rowsAPixel = 60 / (14 * 21.0);
  ASSERT_EQ(list->EntityBox()->VisibleRowCount(), 14u);
  Down(onTrack(30_px));  // the mark is 68 pixels high: it does not jump to the pointer
  EXPECT_EQ(first(), 1u);
  for (const double by : {10.0, 100.0, 37.0}) {
    Move(onTrack(30_px + Pixels(by)));
    EXPECT_NEAR(static_cast<double>(first()), 1 + by * rowsAPixel, 1) << by;
  }
  Move(onTrack(2000_px));
  EXPECT_EQ(first(), 47u);
  Move(onTrack(-2000_px));
  EXPECT_EQ(first(), 1u);
  Up(onTrack(0_px));
  EXPECT_FALSE(Surface().IsCaptured());
}

TEST_F(Gesture, MiddleButtonAndSpacePanAndSpaceTicksWhenNothingWasDragged) {
  Add("corner")->SetTop(15 * 3000);
  pane->Entities()->Item("corner")->SetLeft(15 * 3000);
  const auto at = [&] {
    return std::pair(Surface().ScrollBar(Orientation::Horizontal).value,
                     Surface().ScrollBar(Orientation::Vertical).value);
  };
  pane->SelectObject(a);
  a->EntityBox()->SetSelectedRow(2);
  const Ref<qbEntityItem> item = a->Items()->Item(2);
  Drag({400_px, 400_px}, {350_px, 380_px}, ButtonMiddle);
  EXPECT_EQ(at(), std::pair(50, 20));
  Drag({400_px, 400_px}, {900_px, 900_px}, ButtonMiddle);
  EXPECT_EQ(at(), std::pair(0, 0));
  pane->OnKeyDown({KeyCodeSpace});
  pane->OnKeyDown({KeyCodeSpace});  // it repeats while it is held
  EXPECT_FALSE(item->Checked());
  Drag(OnRow(*a, 3), OnRow(*a, 3) - PixelPoint{30_px, 0_px});
  EXPECT_EQ(at(), std::pair(30, 0));
  pane->OnKeyDown({KeyCodeSpace});
  pane->OnKeyUp({KeyCodeSpace});
  EXPECT_FALSE(item->Checked());
  Press(KeyCodeSpace);
  EXPECT_TRUE(item->Checked());
  pane->OnKeyDown({KeyCodeSpace});
  pane->OnFocusChanged(false);
  pane->OnKeyUp({KeyCodeSpace});
  EXPECT_TRUE(item->Checked());
  Press(KeyCodeSpace);
  EXPECT_FALSE(item->Checked());
  // A listener that takes the key away takes the tick, not the end of panning.
  const auto link = pane->KeyUp.Connect([](std::int32_t& key, std::int32_t) { key = 0; });
  Press(KeyCodeSpace);
  EXPECT_FALSE(item->Checked());
  Click(OnRow(*a, 3));
  EXPECT_EQ(a->EntityBox()->SelectedRow(), 3u);
  // During another drag it ticks nothing.
  Down(OnRow(*a, 3));
  Move(empty);
  Press(KeyCodeSpace);
  Up(empty);
  EXPECT_FALSE(a->Items()->Item(3)->Checked());
}

TEST_F(Gesture, AnotherButtonNeitherEndsNorReplacesADrag) {
  for (const std::int32_t other : {ButtonRight, ButtonMiddle}) {
    const PixelPoint start = OnCaption(*a);
    Down(start);
    Move(start + PixelPoint{40_px, 60_px});
    Click(start + PixelPoint{40_px, 60_px}, other);
    Move(start + PixelPoint{80_px, 60_px});
    EXPECT_EQ(OnCaption(*a), start + (PixelPoint{80_px, 60_px}));
    Up(start);
    EXPECT_FALSE(Surface().IsCaptured());
    EXPECT_TRUE(Surface().LastMenu().empty());
    a->EntityBox()->SetBounds({{}, {}, a->EntityBox()->Bounds().width, a->EntityBox()->Bounds().height});
  }
}

TEST_F(Gesture, EveryButtonIsReportedBeforeTheMenuOpens) {
  std::string heard;
  const auto add = [&heard](const char* what) {
    return [&heard, what](std::int32_t button, auto&&...) { heard += what + std::to_string(button) + " "; };
  };
  const auto onBox = pane->ObjectMouseUp.Connect(add("box"));
  const auto onSurface = pane->MouseUp.Connect(add("surface"));
  const auto menu = pane->BeforeContextMenu.Connect([&](const Ref<Object>&, Menu&) { heard += "menu "; });
  Click(OnRow(*a, 2));
  Click(OnRow(*a, 2), ButtonRight);
  Click(empty);
  Click(empty, ButtonRight);
  EXPECT_EQ(heard, "box1 box2 menu surface1 surface2 menu ");
}

// --- What is dragged may go at any time ---

TEST_F(Gesture, ARowMayGoWhileItIsDragged) {
  for (const bool toRow : {true, false}) {
    for (std::int32_t gone = 1; gone <= 3; ++gone) {
      pane->Clear();
      a = Add("a", {"x", "y"});
      b = Add("b", {"x", "y"});
      Down(OnRow(*a, 3));
      Move(OnRow(*b, 3));
      (toRow ? b : a)->Items()->Remove(gone);
      Drawn();
      // The column that was taken is joined, wherever it stands now; when it is gone, nothing is.
      Up(OnRow(*b, 3));
      const std::string expected = toRow ? "" : gone == 3 ? "" : "a2b3";
      EXPECT_EQ(Joins(), expected) << gone;
    }
  }
  Down(OnRow(*a, 2));
  Move(empty);
  a->Items()->Clear();
  Move({-90_px, 10_px});
  EXPECT_EQ(Surface().DraggedText(), "");
}

// Random input at random zoom, while listeners of every event remove, rename, join and clear.
TEST_F(Gesture, ListenersMayChangeAnythingDuringEveryGesture) {
  std::mt19937 random(12);
  const auto below = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  int next = 0;
  int changes = 0;
  const auto meddle = [&] {
    if (below(12) != 0) return;
    ++changes;
    const Ref<qbEntities> entities = pane->Entities();
    const Ref<qbEntity> one = entities->Item(1 + below(std::max(entities->Count(), 1)));
    if (!one) return;
    switch (below(6)) {
      case 0:
        return entities->Remove(one->Index());
      case 1:
        return one->Relationships()->Clear();
      case 2:
        return one->Items()->Clear();
      case 3:
        if (one->Items()->Count() > 0) one->Items()->Remove(1);
        return;
      case 4:
        return pane->SelectObject(one);
      default:
        if (below(6) == 0) pane->Clear();
    }
  };
  std::vector<EventConnection> links;
  const auto listen = [&](auto&... events) { (links.push_back(events.Connect([&](auto&&...) { meddle(); })), ...); };
  listen(pane->ObjectActivate, pane->ObjectDeactivate, pane->DblClick, pane->Click, pane->MouseUp, pane->MouseDown,
         pane->MouseMove, pane->ObjectMouseMove, pane->ObjectMouseDown, pane->ObjectMouseUp, pane->EntityItemClick,
         pane->EntityItemCheck, pane->EntityClick, pane->EntityDblClick, pane->BeforeDeleteObject, pane->KeyDown,
         pane->KeyUp, pane->KeyPress, pane->BeforeContextMenu);
  const auto point = [&]() -> PixelPoint {
    if (below(20) == 0) return {Pixels(below(1200) - 200.0), Pixels(below(900) - 150.0)};
    const Ref<qbEntity> one = pane->Entities()->Item(1 + below(std::max(pane->Entities()->Count(), 1)));
    if (!one) return {Pixels(below(800)), Pixels(below(600))};
    const PixelRect place = Place(*one).Inset(-2_px);
    return OnPane({place.left + place.width * (below(101) / 100.0), place.top + place.height * (below(101) / 100.0)});
  };
  const std::int32_t keys[] = {KeyCodeSpace, KeyCodeEscape, KeyCodeTab, KeyCodeDelete, KeyCodeEnter,
                               KeyCodeUp,    KeyCodeDown,   KeyCodeEnd, KeyCodeLeft,   93};
  const std::int32_t shifts[] = {0, 0, 0, ShiftAlt, ShiftCtrl | ShiftShift, ShiftShift};
  const std::int32_t buttons[] = {ButtonLeft, ButtonLeft, ButtonLeft, ButtonRight, ButtonMiddle};
  for (int step = 0; step < 4000; ++step) {
    if (pane->Entities()->Count() < 5) {
      const Ref<qbEntity> added = Add("t" + std::to_string(++next), Columns(below(40)));
      if (added && added->EntityBox() && added->Items()->Count() > 0) Join(added, 1, added, 1);
    }
    const std::int32_t button = buttons[below(5)];
    switch (below(12)) {
      case 0:
      case 1:
      case 2:
        Down(point(), button);
        break;
      case 3:
      case 4:
      case 5:
        Move(point(), button);
        break;
      case 6:
      case 7:
        Up(point(), button);
        break;
      case 8:
        pane->OnDoubleClick({button, ShiftNone, point()});
        break;
      case 9:
        pane->OnWheel({below(3) == 0 ? ShiftCtrl : ShiftNone, point(), 0, below(9) - 4.0});
        break;
      case 10:
        for (int i = below(4); i > 0; --i) pane->OnTick();
        if (!Surface().LastMenu().empty()) {
          const Menu menu = Surface().LastMenu();
          const MenuEntry& entry = menu[static_cast<std::size_t>(below(static_cast<int>(menu.size())))];
          if (entry.action && entry.enabled) entry.action();
        }
        break;
      default:
        Press(keys[below(10)], shifts[below(6)]);
    }
    if (step % 4 == 0) Drawn();
    pane->ToolTipAt(point());
    const auto entity = std::dynamic_pointer_cast<qbEntity>(pane->SelectedObject());
    const auto join = std::dynamic_pointer_cast<qbRelationship>(pane->SelectedObject());
    ASSERT_TRUE(!pane->SelectedObject() || (entity && entity->EntityBox()) || (join && join->Line())) << step;
    ASSERT_GE(pane->Zoom(), 0.25);
    ASSERT_LE(pane->Zoom(), 4);
  }
  for (const std::int32_t button : {ButtonLeft, ButtonRight, ButtonMiddle}) Up(empty, button);
  EXPECT_FALSE(Surface().IsCaptured());
  EXPECT_FALSE(Surface().IsTicking());
  EXPECT_GT(changes, 100);
}

}  // namespace
}  // namespace zrqrybld
