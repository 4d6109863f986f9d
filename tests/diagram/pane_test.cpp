// The diagram pane under mouse and keyboard, on its headless surface.
#include "tests/diagram/diagram_fixture.h"

namespace zrqrybld {
namespace {

class DiagramPane : public test::DiagramTest {};

TEST_F(DiagramPane, AClickOnTheCheckBoxTicksTheColumn) {
  const Ref<qbEntity> a = Add("a");
  std::string heard;
  const auto click = pane->EntityItemClick.Connect(
      [&](const Ref<qbEntity>&, const Ref<qbEntityItem>& item) { heard += "click " + item->Text() + " "; });
  const auto check = pane->EntityItemCheck.Connect([&](const Ref<qbEntity>& entity, const Ref<qbEntityItem>& item) {
    heard += entity->Caption() + "." + item->Text() + (item->Checked() ? " on " : " off ");
  });
  Click(OnCheckBox(*a, 2));
  EXPECT_EQ(std::exchange(heard, ""), "click id a.id on ");
  pane->OnDoubleClick({ButtonLeft, ShiftNone, OnCheckBox(*a, 2)});  // the second of two quick clicks counts too
  EXPECT_EQ(std::exchange(heard, ""), "click id a.id off ");
  Click(OnRow(*a, 3));
  EXPECT_EQ(std::exchange(heard, ""), "click name ");
  EXPECT_EQ(a->SelectedItem()->Text(), "name");
  Click(OnCheckBox(*a, 2), ButtonRight);
  EXPECT_EQ(heard, "");
  a->SetSelectedItem(a->Items()->Item(3));
  EXPECT_EQ(a->SelectedItem()->Text(), "id");  // the row under the pointer, for its menu
}

TEST_F(DiagramPane, SelectsBoxesAndJoinsOneAtATime) {
  const Ref<qbEntity> a = Add("a");
  const Ref<qbEntity> b = Add("b");
  b->SetLeft(5000);
  const Ref<qbRelationship> join = Join(a, 2, b, 3);
  std::string heard;
  const auto name = [](const Ref<Object>& object) {
    const auto entity = std::dynamic_pointer_cast<qbEntity>(object);
    return entity ? entity->Caption() : "join";
  };
  const auto on = pane->ObjectActivate.Connect([&](const Ref<Object>& object) { heard += "+" + name(object); });
  const auto off = pane->ObjectDeactivate.Connect([&](const Ref<Object>& object) { heard += "-" + name(object); });
  Click(OnCaption(*a));
  Click(OnCaption(*a));
  EXPECT_EQ(std::exchange(heard, ""), "+a");
  Click(OnLine(*join));
  EXPECT_EQ(pane->SelectedObject(), join);
  EXPECT_TRUE(join->Line()->Selected());
  Click({790_px, 590_px});
  EXPECT_EQ(std::exchange(heard, ""), "-a+join-join");
  EXPECT_FALSE(join->Line()->Selected());
  EXPECT_EQ(pane->SelectedObject(), nullptr);
  int opened = 0;
  const auto twice = pane->DblClick.Connect([&] { opened += pane->SelectedObject() == join ? 1 : 0; });
  pane->OnDoubleClick({ButtonLeft, ShiftNone, OnLine(*join)});
  EXPECT_EQ(opened, 1);
}

TEST_F(DiagramPane, DeletesWhatIsSelectedUnlessAListenerKeepsIt) {
  const Ref<qbEntity> a = Add("a");
  const Ref<qbEntity> b = Add("b");
  const Ref<qbRelationship> join = Join(a, 2, b, 3);
  bool keep = true;
  const auto before = pane->BeforeDeleteObject.Connect([&](const Ref<Object>&, bool& cancel) { cancel = keep; });
  EXPECT_FALSE(Press(KeyCodeDelete));
  for (const Ref<Object>& object : {Ref<Object>(join), Ref<Object>(b)}) {
    keep = true;
    pane->SelectObject(object);
    EXPECT_TRUE(Press(KeyCodeDelete));
    EXPECT_EQ(pane->SelectedObject(), object);
    EXPECT_FALSE(Press(KeyCodeDelete, ShiftCtrl));
    keep = false;
    EXPECT_TRUE(Press(KeyCodeDelete));
    EXPECT_EQ(pane->SelectedObject(), nullptr);
  }
  EXPECT_EQ(a->Relationships()->Count(), 0);
  EXPECT_EQ(Captions(), "a");
  // A listener does it itself.
  const auto itself = pane->BeforeDeleteObject.Connect([&](const Ref<Object>&, bool&) { pane->Clear(); });
  pane->SelectObject(a);
  EXPECT_TRUE(Press(KeyCodeDelete));
  EXPECT_EQ(Captions(), "");
}

TEST_F(DiagramPane, AltMovesTheSelectedBoxAndShiftAltScrolls) {
  const Ref<qbEntity> a = Add("a");
  EXPECT_FALSE(Press(KeyCodeRight, ShiftAlt));  // nothing is selected
  pane->SelectObject(a);
  const int step = Surface().ScrollBar(Orientation::Horizontal).step;
  ASSERT_GT(step, 0);
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(Press(KeyCodeUp, ShiftAlt));
  EXPECT_EQ(a->Top(), 0);  // never off the surface
  const auto scrolled = [&](Orientation orientation) { return Surface().ScrollBar(orientation).value; };
  EXPECT_TRUE(Press(KeyCodeDown, ShiftShift | ShiftAlt));
  EXPECT_EQ(scrolled(Orientation::Vertical), 0);  // there is nothing to scroll to
  a->SetTop(15 * 2000);
  EXPECT_TRUE(Press(KeyCodeDown, ShiftShift | ShiftAlt));
  EXPECT_TRUE(Press(KeyCodeDown, ShiftShift | ShiftAlt));
  EXPECT_TRUE(Press(KeyCodeUp, ShiftShift | ShiftAlt));
  EXPECT_TRUE(Press(KeyCodeRight, ShiftShift | ShiftAlt));
  EXPECT_EQ(scrolled(Orientation::Vertical), step);
  EXPECT_EQ(scrolled(Orientation::Horizontal), 0);
  EXPECT_EQ(a->Top(), 15 * 2000);
  // A listener takes the key away.
  const auto link = pane->KeyDown.Connect([](std::int32_t& key, std::int32_t) { key = 0; });
  EXPECT_FALSE(Press(KeyCodeDown, ShiftShift | ShiftAlt));
  EXPECT_EQ(scrolled(Orientation::Vertical), step);
}

TEST_F(DiagramPane, TheWheelScrollsALongListElseTheSurface) {
  const Ref<qbEntity> a = Add("a", std::vector<std::string>(40, ""));
  const Ref<qbEntity> b = Add("b");
  const auto wheel = [&](const qbEntity& over, double lines, std::int32_t shift = ShiftNone) {
    pane->OnWheel({shift, OnCaption(over), 0, lines});
  };
  const auto& box = *a->EntityBox();
  wheel(*a, 3);
  EXPECT_EQ(box.FirstVisibleRow(), 4u);
  wheel(*a, 1000);
  EXPECT_EQ(box.FirstVisibleRow() + box.VisibleRowCount() - 1, box.Rows().Count());
  wheel(*a, -1000);
  EXPECT_EQ(box.FirstVisibleRow(), 1u);
  a->SetTop(15 * 1000);
  a->SetLeft(15 * 1000);
  wheel(*b, 2);
  EXPECT_EQ(Surface().ScrollBar(Orientation::Vertical).value, 2 * Surface().ScrollBar(Orientation::Vertical).step);
  EXPECT_EQ(Surface().ScrollBar(Orientation::Horizontal).value, 0);
  pane->OnScroll(Orientation::Vertical, 0);
  wheel(*b, 2, ShiftShift);
  EXPECT_GT(Surface().ScrollBar(Orientation::Horizontal).value, 0);
}

// A list that was scrolled down and then became shorter must not stay empty.
TEST_F(DiagramPane, AListThatBecomesShorterShowsWhatIsLeft) {
  const Ref<qbEntity> a = Add("a", std::vector<std::string>(40, ""));
  a->EntityBox()->ScrollTo(20);
  a->Items()->Clear();
  a->Items()->Add("x", "x");
  EXPECT_TRUE(a->EntityBox()->IsRowVisible(1));
  Click(OnCheckBox(*a, 1));
  EXPECT_TRUE(a->Items()->Item(1)->Checked());
}

TEST_F(DiagramPane, NewBoxesStandSideBySideAndLookAsThePaneSays) {
  pane->SetEntityBackColor(Color::Rgb(1, 2, 3));
  pane->SetEntityMinimizeButton(false);
  const Ref<qbEntity> a = Add("a");
  const Ref<qbEntity> b = Add("b");
  EXPECT_EQ(b->Left(), a->Width() + 16 * 15);
  EXPECT_EQ(b->Top(), 0);
  EXPECT_EQ(a->BackColor(), Color::Rgb(1, 2, 3));
  EXPECT_FALSE(a->ShowMinimizeButton());
  pane->SetEntityMinimizeButton(true);
  EXPECT_FALSE(a->ShowMinimizeButton());
  EXPECT_EQ(pane->ToolTipAt(OnRow(*b, 2)), "id");
}

}  // namespace
}  // namespace zrqrybld
