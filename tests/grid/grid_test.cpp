// The grid control alone: the scenarios of tests/data/grid_alone.txt, and the layout.
#include "zrqrybld/grid/grid.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/fakes/paint_watch.h"
#include "tests/player.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/tab_text.h"
#include "zrqrybld/platform/accessible.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

class GridScene : public test::Player {
 public:
  GridScene() {
    for (const char* key : {"a", "b", "c", "d"}) grid_->Columns()->Add(key, key)->SetWidth(900);
    grid_->Columns()->Item("b")->SetHidden(true);
    grid_->Columns()->Item("c")->SetStyle(GridColumnCheckBox);
    for (int i = 1; i <= 5; ++i) grid_->Rows()->Add()->SetValue("a", i);
    const auto place = [this](std::int32_t row, std::int32_t column) {
      return std::to_string(row) + "," + std::to_string(column) + Cell(row, column).Text();
    };
    links_.push_back(grid_->BeforeChange.Connect([=, this](std::int32_t row, std::int32_t column, bool& cancel) {
      Note("?" + place(row, column));
      cancel = refused_;
      if (removing_) grid_->Rows()->Remove(row);
    }));
    links_.push_back(grid_->AfterChange.Connect(
        [=, this](std::int32_t row, std::int32_t column) { Note("!" + place(row, column)); }));
    links_.push_back(grid_->RowColChange.Connect([this](std::int32_t, std::int32_t) {
      Note(Current());
      if (clearing_) grid_->Rows()->Clear();
    }));
    KnowActions();
    KnowAnswers();
  }

 private:
  void CheckAlways() override { watch_.Check(); }
  void Note(const std::string& entry) { heard_ += (heard_.empty() ? "" : " ") + entry; }
  std::string Current() const { return std::to_string(grid_->Row()) + "," + std::to_string(grid_->Column()); }
  Variant Cell(std::int32_t row, const Variant& column) const { return grid_->Rows()->Item(row)->Value(column); }
  static Variant Value(const std::string& word) {
    if (word == "null") return Variant::Null();
    if (word == "empty") return {};
    if (word == "yes") return true;
    const std::optional<double> number = Variant(word).Number();
    return number ? Variant(*number) : Variant(OrNone(word));
  }
  Ref<zrGridRow> Row(const std::string& name) const {
    return name == "kept" ? kept_ : grid_->Rows()->Item(IsDigit(name[0]) ? Variant(std::stoi(name)) : Variant(name));
  }
  MouseEvent On(const Words& w) const {
    const PixelRect cell = grid_->GetRowColumnXY(std::stoi(w[1]), w[2]);
    return {w.size() > 3 ? ButtonRight : ButtonLeft, ShiftNone, {cell.CenterX(), cell.CenterY()}};
  }

  void KnowActions() {
    actions["set"] = [this](const Words& w) { Row(w[1])->SetValue(w[2], Value(w[3])); };
    actions["tag"] = [this](const Words& w) { Row(w[1])->SetTagVariant(w[2], Value(w[3])); };
    actions["keep"] = [this](const Words& w) { kept_ = Row(w[1]); };
    actions["lock"] = [this](const Words& w) { Row(w[1])->SetLocked(true); };
    actions["addrow"] = [this](const Words& w) { grid_->Rows()->Add(w[1], std::stoi(w[2]))->SetValue("a", w[1]); };
    actions["addafter"] = [this](const Words& w) {
      grid_->Rows()->Add({}, Variant::Missing(), w[1])->SetValue("a", w[2]);
    };
    actions["moverow"] = [this](const Words& w) { grid_->Rows()->Move(std::stoi(w[1]), std::stoi(w[2])); };
    actions["norow"] = [this](const Words& w) { grid_->Rows()->Remove(Row(w[1])->Index()); };
    actions["norows"] = [this](auto&) { grid_->Rows()->Clear(); };
    actions["nocolumn"] = [this](const Words& w) { grid_->Columns()->Remove(w[1]); };
    actions["nocolumns"] = [this](auto&) { grid_->Columns()->Clear(); };
    actions["column"] = [this](const Words& w) { grid_->Columns()->Add(w[1]); };
    actions["goto"] = [this](const Words& w) { grid_->GotoRowCol(std::stoi(w[1]), w[2]); };
    actions["click"] = [this](const Words& w) {
      const MouseEvent at = On(w);  // the row may be gone when the button goes up
      grid_->OnMouseDown(at);
      grid_->OnMouseUp(at);
    };
    actions["double"] = [this](const Words& w) { grid_->OnDoubleClick(On(w)); };
    actions["key"] = [this](const Words& w) {
      for (auto key = w.begin() + 1; key != w.end(); ++key) {
        // The text box has the keyboard while it is there.
        HeadlessTextEditor* editor = static_cast<HeadlessSurface&>(grid_->GetSurface()).FocusedEditor();
        used_ = false;
        if (editor) editor->KeyDown.Raise(test::ReadKey(*key), used_);
        if (!editor) used_ = grid_->OnKeyDown(test::ReadKey(*key));
      }
    };
    actions["focus"] = [this](auto&) { grid_->OnFocusChanged(true); };
    actions["rowkeys"] = [this](auto&) { grid_->SetRowKeysTakeCurrent(true); };
    actions["high"] = [this](const Words& w) {
      auto& surface = static_cast<HeadlessSurface&>(grid_->GetSurface());
      surface.SetViewSize({500_px, Pixels(std::stod(w[1]))});
    };
    actions["share"] = [this](const Words& w) {
      grid_->SetFillsWidth(true);
      grid_->Columns()->Item(w[1])->SetShare(std::stof(w[2]));
    };
    actions["button"] = [this](const Words& w) {
      grid_->SetHasCellButtons(true);
      grid_->Columns()->Item(w[1])->SetHasButton(true);
      KnowWanted();
    };
    actions["wanted"] = [this](auto&) { KnowWanted(); };
    actions["press"] = [this](const Words& w) {
      const PixelRect cell = grid_->GetRowColumnXY(std::stoi(w[1]), w[2]);
      grid_->OnMouseDown({ButtonLeft, ShiftNone, {cell.Right() - 10_px, cell.CenterY()}});
    };
    actions["refuse"] = [this](const Words& w) { refused_ = w[1] == "yes"; };
    actions["removing"] = [this](auto&) { removing_ = true; };
    actions["clearing"] = [this](auto&) { clearing_ = true; };
  }

  void KnowWanted() {
    links_.push_back(grid_->BuilderWanted.Connect([this] { Note("builder"); }));
    links_.push_back(grid_->ZoomWanted.Connect([this] { Note("zoom"); }));
  }

  void KnowAnswers() {
    answers["heard"] = [this](auto&) { return std::exchange(heard_, ""); };
    answers["current"] = [this](auto&) { return Current(); };
    answers["used"] = [this](auto&) { return std::string(used_ ? "yes" : "no"); };
    answers["selected"] = [this](auto&) {
      const RowRange rows = grid_->Selection();
      return rows.Empty() ? std::string("-") : std::to_string(rows.first) + "-" + std::to_string(rows.last);
    };
    answers["editing"] = [this](auto&) { return std::string(grid_->IsEditing() ? "yes" : "no"); };
    answers["told"] = [this](auto&) {
      AccessibleTree& tree = *grid_->Accessible();
      const auto place = tree.PlaceOf(tree.Current());
      return place ? std::to_string(place->row + 1) + "," + std::to_string(place->column + 1) : std::string();
    };
    answers["width"] = [this](const std::string& of) {
      return Variant(grid_->GetRowColumnXY(1, of).width.Value()).Text() + "/" +
             Variant(grid_->Columns()->Item(of)->Width()).Text();
    };
    answers["column"] = [this](const std::string& of) {
      std::string text;
      for (std::int32_t i = 1; i <= grid_->Rows()->Count(); ++i) text += Cell(i, of).Text();
      return text;
    };
    answers["cell"] = [this](const std::string& of) { return Cell(of[0] - '0', of.substr(2)).Text(); };
    answers["boolean"] = [this](const std::string& of) {
      return Variant(Cell(of[0] - '0', of.substr(2)).Type() == VariantType::Boolean).Text();
    };
    answers["tag"] = [this](const std::string& of) { return Row(of.substr(0, 1))->TagVariant(of[2] - '0').Text(); };
    answers["row"] = [this](const std::string& of) { return std::to_string(Row(of)->Index()); };
    answers["place"] = [this](const std::string& of) { return std::to_string(grid_->Columns()->Item(of)->Index()); };
  }

  Ref<zrGrid> grid_ = zrGrid::Create();
  test::PaintWatch watch_{*grid_};
  std::vector<EventConnection> links_;
  Ref<zrGridRow> kept_;
  std::string heard_;
  bool refused_ = false, removing_ = false, clearing_ = false, used_ = false;
};

[[maybe_unused]] const bool kScenarios = test::RegisterScenarios<GridScene>("GridAloneScenario", "grid_alone.txt");

// --- Rows that are dragged ---

TEST(GridRows, FollowThePointerThatDragsThem) {
  const Ref<zrGrid> grid = zrGrid::Create();
  grid->Columns()->Add("a", "a")->SetWidth(900);
  for (int i = 1; i <= 8; ++i) grid->Rows()->Add()->SetValue("a", i);
  auto& surface = static_cast<HeadlessSurface&>(grid->GetSurface());
  const auto onRow = [&](std::int32_t row, double part) {
    const PixelRect cell = grid->GetRowColumnXY(row, 1);
    return PixelPoint{2_px, cell.top + cell.height * part};
  };
  const auto values = [&] {
    std::string text;
    for (const Ref<zrGridRow>& row : *grid->Rows()) text += row->Value("a").Text();
    return text;
  };
  const auto press = [&](std::int32_t row, std::int32_t shift = ShiftNone) {
    grid->OnMouseDown({ButtonLeft, shift, onRow(row, 0.5)});
  };
  const auto let = [&](std::int32_t row, double part) {
    grid->OnMouseMove({ButtonLeft, ShiftNone, onRow(row, part)});
    const Cursor cursor = surface.CurrentCursor();
    grid->OnMouseUp({ButtonLeft, ShiftNone, onRow(row, part)});
    return cursor;
  };
  press(2);
  grid->OnMouseUp({ButtonLeft, ShiftNone, onRow(2, 0.5)});
  press(3, ShiftShift);
  grid->OnMouseUp({ButtonLeft, ShiftNone, onRow(3, 0.5)});
  EXPECT_EQ(grid->Selection().first, 2u);
  EXPECT_EQ(grid->Selection().last, 3u);
  // They go before the row under the pointer, below all of them to the end.
  press(2);
  EXPECT_EQ(let(6, 0.2), Cursor::Move);
  EXPECT_EQ(values(), "14523678");
  EXPECT_EQ(grid->Selection().first, 4u);
  EXPECT_EQ(grid->Selection().last, 5u);
  press(5);
  EXPECT_EQ(let(8, 0.9), Cursor::Move);
  EXPECT_EQ(values(), "14567238");
  press(6);
  EXPECT_EQ(let(8, 1.5), Cursor::Move);
  EXPECT_EQ(values(), "14567823");
  press(8);
  EXPECT_EQ(let(1, 0.1), Cursor::Move);
  EXPECT_EQ(values(), "23145678");
  press(1);
  EXPECT_EQ(let(2, 0.4), Cursor::Move) << "within the rows themselves";
  EXPECT_EQ(values(), "23145678");
  EXPECT_EQ(surface.CurrentCursor(), Cursor::Arrow);
  EXPECT_FALSE(surface.IsCaptured());
}

// --- Cells as text ---

TEST(TabText, WhatIsWrittenIsReadAgain) {
  std::mt19937 random(4);
  constexpr std::string_view kPieces[] = {"", "a", "\t", "\r\n", "\n", "\"", "\"\"", " ", "ä", "\r"};
  for (int run = 0; run < 3000; ++run) {
    std::vector<std::vector<std::string>> cells(1 + random() % 3);
    for (std::vector<std::string>& line : cells) {
      line.resize(1 + random() % 3);
      for (std::string& cell : line) {
        for (auto pieces = random() % 4; pieces > 0; --pieces) cell += kPieces[random() % std::size(kPieces)];
      }
    }
    const std::string text = WriteTabText(cells);
    EXPECT_EQ(ReadTabText(text), cells) << text;
  }
  const auto lines = [](const std::string& text) {
    std::string read;
    for (const std::vector<std::string>& line : ReadTabText(text)) {
      for (const std::string& cell : line) read += "<" + cell + ">";
      read += "/";
    }
    return read;
  };
  // What others write: quotes that are none stay.
  EXPECT_EQ(lines("\"a\"b\tc"), "<\"a\"b><c>/");
  EXPECT_EQ(lines("\"a\tb"), "<\"a><b>/");
  EXPECT_EQ(lines("\"a\"\t\"b\nc\"\rd\r\ne"), "<a><b\nc>/<d>/<e>/");
  EXPECT_EQ(lines("a\"b\n"), "<a\"b>/");
  EXPECT_EQ(lines(""), "");
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
    // What is painted are columns that there are, and all that are seen.
    const GridLayout::Range painted = layout.VisibleColumns(500_px);
    ASSERT_GE(painted.first, 1U);
    ASSERT_LE(painted.last, widths.size());
    for (std::size_t column = 1; column <= widths.size(); ++column) {
      const PixelRect header = layout.ColumnHeaderRect(column);
      const bool seen = header.width > 0_px && header.Right() > layout.RowHeaderWidth() && header.left < 500_px;
      ASSERT_TRUE(!seen || (painted.first <= column && column <= painted.last));
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

}  // namespace
}  // namespace zrqrybld
