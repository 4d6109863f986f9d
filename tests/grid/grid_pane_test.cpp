// The grid pane in a designer: fields in and out, sorting, grouping, tables that come and go.
#include <algorithm>
#include <random>

#include "tests/hub_fixture.h"
#include "tests/stored_properties.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/grid/sort_order.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

class GridPane : public test::HubTest {
 protected:
  GridPane() {
    Use();
    hub->AddTable("Orders");
    hub->AddTable("Customers");
  }
};
using test::ErrorOf;

TEST(SortOrder, GapsAndDuplicatesClose) {
  using Orders = std::vector<std::int32_t>;
  for (const auto& [before, after] : std::vector<std::pair<Orders, Orders>>{{{}, {}},
                                                                            {{0, 0}, {0, 0}},
                                                                            {{3, 0, 1}, {2, 0, 1}},
                                                                            {{2, 2, 1, 2}, {2, 3, 1, 4}},
                                                                            {{2147483647, 5}, {2, 1}}}) {
    EXPECT_EQ(CloseSortGaps(before), after);
  }
}

// Whatever is edited in whatever order: exactly the rows that are sorted have a number, and the numbers are 1 to N.
TEST_F(GridPane, SortNumbersStayTheRunWhateverIsEdited) {
  std::mt19937 random(3);
  const auto below = [&random](std::int32_t n) {
    return static_cast<std::int32_t>(random() % static_cast<unsigned>(n));
  };
  const auto edit = [&](std::int32_t row, const char* column, const char* text) {
    grid->Grid()->GotoRowCol(row, column);
    ASSERT_TRUE(grid->Grid()->EditCell());
    static_cast<HeadlessSurface&>(grid->Grid()->GetSurface()).FocusedEditor()->Type(text);
    grid->Grid()->CommitEdit();
  };
  constexpr const char* kTypes[] = {"Ascending", "d", "asc", "Unsorted", "", "nonsense"};
  constexpr const char* kOrders[] = {"1", "2", "3", "99", "0", "-1", "2.0", "x", "", " 4 "};
  std::size_t most = 0;
  for (int step = 0; step < 1500; ++step) {
    const std::int32_t row = 1 + below(std::min(grid->RowCount(), 9));
    const auto rows = static_cast<std::size_t>(row);
    switch (below(9)) {
      case 0:
      case 1:
        edit(row, "sort_type", kTypes[below(6)]);
        break;
      case 2:
      case 3:
        edit(row, "sort_order", kOrders[below(10)]);
        break;
      case 4:
        grid->Grid()->SelectRows(rows, rows);
        if (below(4) == 0) grid->Grid()->DeleteSelectedRows();
        break;
      case 5:
        grid->Grid()->SelectRows(rows, rows + static_cast<std::size_t>(below(2)));
        grid->Grid()->MoveRows(below(2) == 0 ? 1 : -1);
        break;
      case 6:
        grid->SetFieldOutput("c" + std::to_string(below(9)), below(3) > 0, "Orders");
        break;
      case 7:
        grid->SortRow(row, below(3) > 0 ? "Descending" : "");
        break;
      default:
        if (below(50) == 0) grid->RemoveRowsOf("Orders");
    }
    std::vector<int> numbers;
    for (std::int32_t i = 1; i <= grid->RowCount(); ++i) {
      const std::string type = Cell(i, "sort_type");
      ASSERT_EQ(type == "Ascending" || type == "Descending", !Cell(i, "sort_order").empty()) << step << " " << Rows();
      if (!Cell(i, "sort_order").empty()) numbers.push_back(std::stoi(Cell(i, "sort_order")));
    }
    std::ranges::sort(numbers);
    for (std::size_t i = 0; i < numbers.size(); ++i) ASSERT_EQ(numbers[i], static_cast<int>(i) + 1) << step << Rows();
    ASSERT_EQ(grid->NextSortOrder(), static_cast<int>(numbers.size()) + 1) << step;
    most = std::max(most, numbers.size());
  }
  EXPECT_GT(most, 5U);
}

// --- Stored properties ---

TEST_F(GridPane, StoredPropertiesMakeTheRoundTrip) {
  const Font font{"Some Sans", 11, true, false};
  std::string told;
  const auto link = grid->PropertyChanged.Connect([&](std::string_view key) { told += std::string(key) + " "; });
  grid->SetDateFormat("yyyy/mm/dd");
  grid->SetDateFormatStyle(DateFormatEscapeSequence);
  grid->SetShowGroupBy(true);
  grid->SetShowGroupBy(false);
  grid->SetCustomContextMenu(true);
  grid->SetFont(font);
  EXPECT_EQ(told, "DateFormat DateFormatStyle ShowGroupBy ShowGroupBy CustomContextMenu Font ");
  const Ref<qbGridPane> pane = qbGridPane::Create();
  test::ExpectStored(grid, pane, {"DateFormat", "DateFormatStyle", "ShowGroupBy", "CustomContextMenu", "Font"});
  EXPECT_EQ(pane->Grid()->Columns()->Item("group_by")->Width(), 1200);  // the last one read was the default: it groups
  const Ref<zrGrid> control = zrGrid::Create();
  control->SetAllowColumnResize(false);
  control->SetAllowRowInsert(false);
  control->SetFont(font);
  test::ExpectStored(control, zrGrid::Create(), {"AllowColumnResize", "AllowRowInsert", "Font"});
  const Ref<zrSimpleCombo> combo = zrSimpleCombo::Create();
  combo->SetHideEdit(true);
  test::ExpectStored(combo, zrSimpleCombo::Create(), {"HideEdit"});
}

TEST_F(GridPane, ValueReadsTheCurrentCellOrNamesTheError) {
  const auto invalid = [&](const Variant& row, const Variant& column) {
    return ErrorOf([&] { grid->Value(row, column); });
  };
  const Variant none = Variant::Missing();
  EXPECT_EQ(invalid(none, none), ErrorInvalidCellReference);
  EXPECT_EQ(invalid(0, 1), ErrorInvalidCellReference);
  EXPECT_EQ(invalid(1, 0), ErrorInvalidCellReference);
  EXPECT_EQ(invalid(-1, "column"), ErrorInvalidCellReference);
  EXPECT_EQ(invalid(1, none), ErrorInvalidCellReference);
  EXPECT_EQ(invalid(1, "no such column"), ErrorNoSuchItem);
  EXPECT_EQ(invalid(99, 1), ErrorNoSuchItem);
  try {
    grid->Value();
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_EQ(error.Description(), "Invalid Cell Reference.");
  }
  Set(2, "alias", "x");
  grid->Grid()->GotoRowCol(2, "alias");
  EXPECT_EQ(grid->Value(), Variant("x"));
  EXPECT_EQ(grid->Value(none, "alias"), Variant("x"));
  EXPECT_EQ(grid->Row(), 2);
  grid->SetLockTables(true);
  EXPECT_TRUE(grid->LockTables());
  EXPECT_EQ(grid->Grid()->Columns()->Item("table")->Style(), 4);
  grid->SetLockTables(false);
  EXPECT_EQ(grid->Grid()->Columns()->Item("table")->Style(), 1);
}

TEST_F(GridPane, AliasesAreAsLongAsTheHubAllows) {
  hub->SetAliasMaxLen(12);
  Tick("Orders", "Total");
  for (int i = 0; i < 9; ++i) grid->SetFieldOutput("c" + std::to_string(i), true, "Orders");
  for (std::int32_t i = 1; i <= grid->RowCount(); ++i) {
    EXPECT_EQ(grid->Grid()->Rows()->Item(i)->MaxLen("alias"), 12) << i;
  }
  // By program and in a typed statement they may be longer; the statement cuts them, and says so.
  grid->SetValue(1, "alias", "\u00e9-twelve chars and more");
  EXPECT_NE(Sql().find("\u00e9-twelve cha"), std::string::npos) << Sql();
  EXPECT_EQ(Sql().find("and more"), std::string::npos) << Sql();
  const auto saysSo = [](const SQLDiagnostic& remark) { return remark.kind == DiagnosticAliasWritten; };
  EXPECT_EQ(std::ranges::count_if(sql->Diagnostics(), saysSo), 1);
  sql->ParseSQLStatement("SELECT Total AS twelve_characters FROM Orders");
  EXPECT_NE(Sql().find("AS twelve_chara"), std::string::npos) << Sql();
  EXPECT_EQ(Sql().find("AS twelve_charac"), std::string::npos) << Sql();
}

// --- Listeners that change what is being changed ---

TEST_F(GridPane, AListenerOfAfterChangeMayChangeCells) {
  Tick("Orders", "Total");
  int calls = 0;
  const auto link = grid->AfterChange.Connect([&](std::int32_t row, std::int32_t) {
    ++calls;
    Set(row, "alias", "a" + std::to_string(calls));
  });
  EXPECT_EQ(Changes([&] { Set(1, "alias", "x"); }), 1);
  EXPECT_EQ(calls, 1);
  EXPECT_TRUE(Sql().starts_with("SELECT Orders.Total AS a1FROM")) << Sql();
}

TEST_F(GridPane, AnEditIsWorkedOutWhateverElseAListenerChanges) {
  const auto link = grid->Grid()->AfterChange.Connect([&](std::int32_t row, std::int32_t column) {
    if (column == grid->Grid()->Columns()->Item("column")->Index()) {
      grid->Grid()->Rows()->Item(row)->SetValue("alias", "a");
    }
  });
  grid->Grid()->GotoRowCol(1, "column");
  ASSERT_TRUE(grid->Grid()->EditCell());
  static_cast<HeadlessSurface&>(grid->Grid()->GetSurface()).FocusedEditor()->Type("orders.total");
  grid->Grid()->CommitEdit();
  EXPECT_EQ(Cell(1, "table"), "Orders");
  EXPECT_TRUE(Sql().starts_with("SELECT Orders.Total AS aFROM")) << Sql();
}

}  // namespace
}  // namespace zrqrybld
