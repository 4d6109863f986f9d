// The edges of a box, and gestures while everything changes under them.
#include <random>

#include "tests/diagram/diagram_fixture.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

class Gesture : public test::DiagramTest {
 protected:
  // The two boxes of most cases, `b` to the right of `a`.
  Ref<qbEntity> a = Add("a");
  Ref<qbEntity> b = Add("b");
  PixelPoint empty{700_px, 500_px};  // a place of the pane without any box

  void SetUp() override { b->SetLeft(15 * 300); }
};

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
