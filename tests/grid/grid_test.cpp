// The grid control alone: columns, rows, layout, input.
#include "grid/grid.h"

#include <gtest/gtest.h>

#include <random>

#include "platform/headless.h"
#include "tests/error_of.h"

namespace zrqrybld {
namespace {

using test::ErrorOf;

// Columns "a" (text), "b" (hidden), "c" (check box) and "d" (text) of 60 pixels, and rows of which each
// holds its number in "a".
class Grid : public testing::Test {
 protected:
  Grid() {
    for (const char* key : {"a", "b", "c", "d"}) grid->Columns()->Add(key, key)->SetWidth(900);
    grid->Columns()->Item("b")->SetHidden(true);
    grid->Columns()->Item("c")->SetStyle(GridColumnCheckBox);
    for (int i = 1; i <= 5; ++i) grid->Rows()->Add()->SetValue("a", i);
  }
  PixelPoint OnCell(std::int32_t row, const char* column) const {
    const PixelRect cell = grid->GetRowColumnXY(row, column);
    return {cell.CenterX(), cell.CenterY()};
  }
  void Press(PixelPoint at, std::int32_t shift = ShiftNone, std::int32_t button = ButtonLeft) {
    grid->OnMouseDown({button, shift, at});
    grid->OnMouseUp({button, shift, at});
  }
  bool Key(std::int32_t key) { return grid->OnKeyDown({key, ShiftNone}); }
  std::string Column(const char* key) const {
    std::string text;
    for (std::int32_t i = 1; i <= grid->Rows()->Count(); ++i) text += grid->Rows()->Item(i)->Value(key).Text();
    return text;
  }
  std::string Current() const { return std::to_string(grid->Row()) + "," + std::to_string(grid->Column()); }

  Ref<zrGrid> grid = zrGrid::Create();
};

TEST_F(Grid, RowsAreRenumberedWhenTheyComeMoveAndGo) {
  const Ref<zrGridRows>& rows = grid->Rows();
  const Ref<zrGridRow> third = rows->Item(3);
  rows->Add("k", 3)->SetValue("a", "x");
  EXPECT_EQ(third->Index(), 4);
  rows->Add({}, Variant::Missing(), "k")->SetValue("a", "y");
  EXPECT_EQ(Column("a"), "12xy345");
  rows->Move(6, 1);
  EXPECT_EQ(Column("a"), "412xy35");
  EXPECT_EQ(rows->Item("k")->Index(), 4);
  rows->Remove("k");
  EXPECT_EQ(third->Index(), 5);
  EXPECT_EQ(ErrorOf([&] { rows->Add("j", 99); }), ErrorNoSuchItem);
  EXPECT_EQ(ErrorOf([&] { rows->Item("k"); }), ErrorNoSuchItem);
  rows->Clear();
  EXPECT_EQ(third->Index(), 0);
  EXPECT_EQ(ErrorOf([&] { third->SetValue("a", 1); }), ErrorObjectRemoved);
}

TEST_F(Grid, CellsStayWithTheirColumns) {
  const Ref<zrGridRow> row = grid->Rows()->Item(1);
  row->SetValue("d", "last");
  row->SetTagVariant("d", 7);
  grid->Columns()->Remove("b");
  EXPECT_EQ(row->Value("d"), Variant("last"));
  EXPECT_EQ(row->TagVariant(3), Variant(7));
  EXPECT_EQ(grid->Columns()->Item("d")->Index(), 3);
  EXPECT_EQ(ErrorOf([&] { row->Value("b"); }), ErrorNoSuchItem);
  grid->Columns()->Clear();
  grid->Columns()->Add("n");
  EXPECT_TRUE(row->Value("n").IsEmpty());
}

TEST_F(Grid, SettingAValueAsksThenStoresThenTells) {
  std::string heard;
  bool refuse = false;
  const Ref<zrGridRow> row = grid->Rows()->Item(2);
  const auto place = [](std::int32_t r, std::int32_t c) { return std::to_string(r) + "," + std::to_string(c); };
  const auto before = grid->BeforeChange.Connect([&](std::int32_t r, std::int32_t c, bool& cancel) {
    heard += "?" + place(r, c) + row->Value("d").Text();
    cancel = refuse;
  });
  const auto after = grid->AfterChange.Connect(
      [&](std::int32_t r, std::int32_t c) { heard += "!" + place(r, c) + row->Value("d").Text(); });
  row->SetValue("d", "x");
  EXPECT_EQ(std::exchange(heard, ""), "?2,4!2,4x");
  row->SetValue(4, "x");
  EXPECT_EQ(heard, "");
  refuse = true;
  row->SetValue("d", "y");
  EXPECT_EQ(std::exchange(heard, ""), "?2,4x");
  EXPECT_EQ(row->Value("d"), Variant("x"));
  row->SetTagVariant("d", 1);
  EXPECT_EQ(heard, "");
  // A listener may remove the row.
  refuse = false;
  const auto remove = grid->BeforeChange.Connect([&](std::int32_t r, std::int32_t, bool&) { grid->Rows()->Remove(r); });
  row->SetValue("d", "z");
  EXPECT_EQ(row->Index(), 0);
  EXPECT_EQ(heard.find('!'), std::string::npos);
}

TEST_F(Grid, ACheckBoxTakesTruthOnly) {
  const Ref<zrGridRow> row = grid->Rows()->Item(1);
  struct {
    Variant value;
    bool expected;
  } const good[] = {{true, true}, {"FALSE", false}, {"true", true}, {0, false}, {-1, true}, {0.0, false}, {7, true}};
  for (const auto& test : good) {
    row->SetValue("c", test.value);
    EXPECT_EQ(row->Value("c").Type(), VariantType::Boolean) << test.value.Text();
    EXPECT_EQ(row->Value("c"), Variant(test.expected)) << test.value.Text();
  }
  for (const Variant& bad : {Variant("yes"), Variant(""), Variant("1 x"), Variant::Null(), Variant()}) {
    try {
      row->SetValue("c", bad);
      ADD_FAILURE() << "taken: " << bad.Text();
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorInvalidPropertyValue);
      EXPECT_EQ(error.Description(), "Invalid property value. Boolean value expected.");
    }
  }
  EXPECT_EQ(row->Value("c"), Variant(true));
}

// --- Layout ---

TEST(GridLayout, APointIsInTheCellThatIsDrawnThere) {
  std::mt19937 random(9);
  const auto upTo = [&random](unsigned n) { return Pixels(static_cast<double>(random() % (n + 1))); };
  for (int run = 0; run < 200; ++run) {
    std::vector<Pixels> widths(random() % 8);
    for (Pixels& width : widths) width = random() % 3 == 0 ? 0_px : upTo(120);
    const std::size_t rows = random() % 12;
    GridLayout layout(widths, 10_px + upTo(20), 8_px + upTo(20), upTo(30), rows);
    const PixelPoint offset{upTo(150), upTo(100)};
    layout.SetOffset(offset);
    for (int i = 0; i < 100; ++i) {
      const PixelPoint point{upTo(500), upTo(300)};
      const GridHit hit = layout.HitTest(point);
      const bool inBody = point.x >= layout.RowHeaderWidth() && point.y >= layout.HeaderHeight();
      GridHit plain;
      for (std::size_t row = 1; inBody && row <= rows; ++row) {
        for (std::size_t column = 1; column <= widths.size(); ++column) {
          if (layout.CellRect(row, column).Contains(point)) plain = {GridPart::Cell, row, column};
        }
      }
      ASSERT_EQ(hit.part == GridPart::Cell, plain.part == GridPart::Cell);
      if (hit.part == GridPart::Cell || hit.part == GridPart::RowHeader) {
        ASSERT_EQ(hit.column, plain.column);
        const PixelRect row = layout.RowHeaderRect(hit.row);
        ASSERT_TRUE(point.y >= row.top && point.y < row.Bottom());
      }
      if (hit.part == GridPart::ColumnEdge) {
        const Pixels right = layout.ColumnHeaderRect(hit.column).Right();
        ASSERT_LE(std::fabs((right - point.x).Value()), 4);
        ASSERT_GT(widths[hit.column - 1], 0_px);  // a hidden column has no edge to grasp
      }
      ASSERT_TRUE(hit.part != GridPart::ColumnHeader || layout.ColumnHeaderRect(hit.column).Contains(point));
    }
    if (rows == 0 || widths.empty()) continue;
    // Scrolled there, a cell that fits is wholly visible.
    const PixelSize view{300_px, 150_px};
    const std::size_t row = 1 + random() % rows;
    const std::size_t column = 1 + random() % widths.size();
    layout.SetOffset(layout.OffsetToShow(row, column, view));
    const PixelRect cell = layout.CellRect(row, column);
    ASSERT_TRUE(cell.left >= layout.RowHeaderWidth() && cell.Right() <= view.width);
    ASSERT_TRUE(cell.top >= layout.HeaderHeight() && cell.Bottom() <= view.height);
    const GridLayout::Range visible = layout.VisibleRows(view.height);
    ASSERT_TRUE(visible.first <= row && row <= visible.last);
  }
}

// --- Input ---

TEST_F(Grid, ArrowsSkipHiddenColumnsAndStopAtTheEdges) {
  EXPECT_EQ(Current(), "0,0");
  struct {
    std::int32_t key;
    const char* expected;
  } const steps[] = {{KeyCodeDown, "1,1"},  {KeyCodeRight, "1,3"}, {KeyCodeEnter, "1,4"},
                     {KeyCodeRight, "1,4"}, {KeyCodeLeft, "1,3"},  {KeyCodeLeft, "1,1"},
                     {KeyCodeLeft, "1,1"},  {KeyCodeUp, "1,1"},    {KeyCodeDown, "2,1"}};
  for (const auto& step : steps) {
    EXPECT_TRUE(Key(step.key));
    EXPECT_EQ(Current(), step.expected);
  }
  for (int i = 0; i < 9; ++i) Key(KeyCodeDown);
  EXPECT_EQ(Current(), "5,1");
  EXPECT_EQ(ErrorOf([&] { grid->GotoRowCol(6, 1); }), ErrorNoSuchItem);
  EXPECT_EQ(ErrorOf([&] { grid->GotoRowCol(1, "x"); }), ErrorNoSuchItem);
  // The current cell goes with its row or column.
  std::string heard;
  const auto link = grid->RowColChange.Connect([&](std::int32_t, std::int32_t) { heard += Current() + " "; });
  grid->Rows()->Remove(5);
  grid->Columns()->Clear();
  EXPECT_EQ(heard, "4,1 0,0 ");
}

TEST_F(Grid, AClickTicksACheckBoxUnlessTheRowIsLocked) {
  const auto ticked = [&] { return grid->Rows()->Item(2)->Value("c") == Variant(true); };
  Press(OnCell(2, "c"));
  EXPECT_TRUE(ticked());
  EXPECT_EQ(Current(), "2,3");
  Press(OnCell(2, "c"), ShiftNone, ButtonRight);
  EXPECT_TRUE(ticked());
  grid->OnDoubleClick({ButtonRight, ShiftNone, OnCell(2, "c")});
  EXPECT_TRUE(ticked());
  grid->OnDoubleClick({ButtonLeft, ShiftNone, OnCell(2, "c")});
  EXPECT_FALSE(ticked());
  Key(KeyCodeSpace);
  EXPECT_TRUE(ticked());
  grid->Rows()->Item(2)->SetLocked(true);
  Press(OnCell(2, "c"));
  EXPECT_TRUE(ticked());
  // A listener may remove what was clicked.
  const auto link = grid->RowColChange.Connect([&](std::int32_t, std::int32_t) { grid->Rows()->Clear(); });
  Press(OnCell(5, "c"));
  EXPECT_EQ(Current(), "0,0");
}

}  // namespace
}  // namespace zrqrybld
