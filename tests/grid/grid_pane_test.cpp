// The grid pane in a designer: fields in and out, sorting, grouping, tables that come and go.
#include "grid/sort_order.h"
#include "tests/hub/hub_fixture.h"

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

TEST_F(GridPane, TickingAFieldPutsItIntoTheFirstEmptyRow) {
  Tick("Orders", "OrderID");
  Tick("Customers", "Name");
  Tick("Orders", "*");
  EXPECT_EQ(Rows(), "Orders.OrderID Customers.Name Orders.*");
  EXPECT_EQ(Sql(), "SELECT Orders.OrderID, Customers.Name, Orders.*FROM Orders,Customers");
  Tick("Customers", "Name", false);
  EXPECT_EQ(Rows(), "Orders.OrderID Orders.*");
  // The other way round: the grid ticks the box.
  EXPECT_EQ(grid->SetFieldOutput("Total", true, "Orders", {.before = 1}), 1);
  EXPECT_EQ(grid->SetFieldOutput("Total", true, "Orders"), 1);  // it has a row already
  EXPECT_TRUE(Item("Orders", "Total")->Checked());
  EXPECT_EQ(Rows(), "Orders.Total Orders.OrderID Orders.*");
  EXPECT_EQ(grid->SetFieldOutput("f(1)", true, "nowhere"), 4);
  EXPECT_EQ(Rows(), "Orders.Total Orders.OrderID Orders.* nowhere.f(1)");
  for (int i = 0; i < 20; ++i) {
    grid->SetFieldOutput("c" + std::to_string(i), true, "Orders");
    EXPECT_TRUE(LastRowIsEmpty());
  }
}

TEST_F(GridPane, UntickingKeepsRowsWithContent) {
  for (const char* key : {"sort_type", "sort_order", "criteria", "or1", "or2", "or3"}) {
    SCOPED_TRACE(key);
    Tick("Orders", "Total");
    Set(1, "alias", "gone");
    Set(1, key, "1");
    Tick("Orders", "Total", false);
    EXPECT_TRUE(Rows().starts_with("-Orders.Total")) << Rows();
    EXPECT_EQ(Cell(1, "alias"), "gone");
    Tick("Orders", "Total");
    EXPECT_TRUE(Rows().starts_with("Orders.Total")) << Rows();
    Set(1, key, "");
    Tick("Orders", "Total", false);
    EXPECT_EQ(Rows(), "");
  }
}

TEST_F(GridPane, SeveralRowsOfOneFieldShareOneTick) {
  Tick("Orders", "Total");
  EXPECT_EQ(grid->SetFieldOutput("Total", true, "Orders", {.skipSearch = true}), 2);
  EXPECT_EQ(grid->SetFieldOutput("Total", true, "Orders", {.skipSearch = true}), 3);
  Set(3, "criteria", "> 1");
  Set(1, "output", false);
  EXPECT_TRUE(Item("Orders", "Total")->Checked());
  Set(1, "output", true);
  Tick("Orders", "Total", false);
  EXPECT_EQ(Rows(), "-Orders.Total");
  EXPECT_EQ(Cell(1, "criteria"), "> 1");
  // The same field name in another table is another field.
  Tick("Orders", "CustomerID");
  Tick("Customers", "CustomerID");
  Tick("Orders", "CustomerID", false);
  EXPECT_EQ(Rows(), "-Orders.Total Customers.CustomerID");
}

TEST_F(GridPane, ARowThatNamesAnotherFieldGivesUpTheOldOne) {
  Tick("Orders", "Total");
  Set(1, "column", "OrderID");
  EXPECT_FALSE(Item("Orders", "Total")->Checked());
  EXPECT_TRUE(Item("Orders", "OrderID")->Checked());
  Set(1, "column", "CustomerID");
  grid->SetFieldOutput("CustomerID", true, "Orders", {.skipSearch = true});
  Set(1, "table", "Customers");
  EXPECT_TRUE(Item("Orders", "CustomerID")->Checked());  // the other row still has it
  EXPECT_TRUE(Item("Customers", "CustomerID")->Checked());
  EXPECT_FALSE(Item("Orders", "OrderID")->Checked());
}

TEST_F(GridPane, DeletedRowsUntickTheirBoxesAndCloseTheSortRun) {
  for (const char* column : {"OrderID", "CustomerID", "Total"}) {
    Tick("Orders", column);
    const std::int32_t row = grid->NextSortOrder();
    Set(row, "sort_type", "Ascending");
    Set(row, "sort_order", row);
  }
  EXPECT_EQ(Rows(), "Orders.OrderID:1 Orders.CustomerID:2 Orders.Total:3");
  EXPECT_EQ(grid->NextSortOrder(), 4);
  EXPECT_EQ(grid->NextSortOrder(2), 3);
  const PixelRect cell = grid->Grid()->GetRowColumnXY(2, 1);
  grid->Grid()->OnMouseDown({ButtonLeft, ShiftNone, {2_px, cell.CenterY()}});
  EXPECT_EQ(Changes([&] { grid->Grid()->OnKeyDown({KeyCodeDelete, ShiftNone}); }), 1);
  EXPECT_EQ(Rows(), "Orders.OrderID:1 Orders.Total:2");
  EXPECT_FALSE(Item("Orders", "CustomerID")->Checked());
  EXPECT_TRUE(Item("Orders", "Total")->Checked());
  EXPECT_TRUE(LastRowIsEmpty());
}

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

TEST_F(GridPane, GroupingShowsItsColumnAndFillsIt) {
  const Ref<zrGridColumn> column = grid->Grid()->Columns()->Item("group_by");
  Tick("Orders", "Total");
  Tick("Orders", "*");
  Set(3, "table", "Orders");  // no column: left alone
  const auto groups = [&] {
    std::string text;
    for (std::int32_t i = 1; i <= 3; ++i) {
      text += Cell(i, "group_by") + "/" + grid->Grid()->Rows()->Item(i)->TagVariant("group_by").Text() + " ";
    }
    return text;
  };
  EXPECT_EQ(column->Width(), 0);
  EXPECT_EQ(groups(), "/ / / ");
  EXPECT_EQ(Changes([&] { grid->SetShowGroupBy(true); }), 1);
  EXPECT_EQ(column->Width(), 1200);
  EXPECT_EQ(groups(), "Group By/GROUP BY Count/COUNT / ");
  EXPECT_EQ(Sql(), "SELECT Orders.Total, COUNT(*)FROM Orders,CustomersGROUP BY Orders.Total");
  column->SetWidth(777);
  for (const bool show : {false, false, true, true}) grid->SetShowGroupBy(show);
  EXPECT_EQ(column->Width(), 777);
  Tick("Customers", "Name");
  EXPECT_EQ(Cell(4, "group_by"), "Group By");
  EXPECT_EQ(Changes([&] { grid->SetGroupByFunction(1, *hub->DBFunctions()->Find("Average")); }), 1);
  EXPECT_EQ(groups(), "Average/AVG(@field) Count/COUNT / ");
  EXPECT_TRUE(Sql().starts_with("SELECT AVG(Orders.Total), COUNT(*), Customers.Name")) << Sql();
  Set(1, "group_by", "no such function");
  EXPECT_TRUE(Sql().starts_with("SELECT Orders.Total,")) << Sql();
  grid->SetShowGroupBy(false);
  EXPECT_EQ(groups(), "/ / / ");
  EXPECT_EQ(ErrorOf([&] { grid->SetGroupByFunction(99, *hub->DBFunctions()->Find("Sum")); }), ErrorNoSuchItem);
}

TEST_F(GridPane, FollowsTablesThatAreRenamedAndRemoved) {
  Tick("Orders", "Total");
  Set(1, "sort_type", "Ascending");
  Set(1, "sort_order", 1);
  Tick("Customers", "Name");
  Set(2, "sort_type", "Descending");
  Set(2, "sort_order", 2);
  Set(3, "column", "1 + 1");  // an expression belongs to no table
  const auto tables = [&] {
    std::string text;
    const Ref<zrGridComboItems>& list = grid->Grid()->Columns()->Item("table")->ComboItems();
    for (std::int32_t i = 1; i <= list->Count(); ++i) text += list->Item(i)->Text() + " ";
    return text;
  };
  EXPECT_EQ(tables(), "Orders Customers ");
  int told = 0;
  const auto link = grid->AfterChange.Connect([&](std::int32_t, std::int32_t) { ++told; });
  EXPECT_EQ(Changes([&] { diagram->Entities()->Item("Orders")->SetCaption("o"); }), 1);
  EXPECT_EQ(Rows(), "o.Total:1 Customers.Name:2 -.1 + 1");
  EXPECT_EQ(tables(), "o Customers ");
  EXPECT_EQ(Changes([&] { diagram->Entities()->Remove("o"); }), 1);
  EXPECT_EQ(Rows(), "Customers.Name:1 -.1 + 1");
  EXPECT_EQ(tables(), "Customers ");
  EXPECT_EQ(told, 0);
  Set(3, "table", "nowhere");
  EXPECT_TRUE(LastRowIsEmpty());
  grid->RefreshTables();
  EXPECT_EQ(Rows(), "Customers.Name:1 -.1 + 1");
  diagram->Clear();
  EXPECT_EQ(Rows(), "");
  EXPECT_EQ(grid->RowCount(), 7);
  EXPECT_EQ(tables(), "");
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

TEST_F(GridPane, ListenersMayTakeTheTableAway) {
  Tick("Orders", "Total");
  {
    const auto link = grid->AfterChange.Connect([&](std::int32_t, std::int32_t) { diagram->Clear(); });
    Set(1, "alias", "x");
    EXPECT_EQ(Rows(), "");
  }
  for (const bool clear : {false, true}) {
    diagram->Clear();
    hub->AddTable("Orders");
    Tick("Orders", "Total");
    const auto link = diagram->EntityItemCheck.Connect([&](const Ref<qbEntity>& entity, const Ref<qbEntityItem>&) {
      if (clear) diagram->Clear();
      if (!clear) entity->SetCaption("renamed");
    });
    Tick("Orders", "OrderID");
    EXPECT_EQ(Rows(), clear ? "" : "renamed.Total renamed.OrderID");
  }
  // Rows that go while others are being removed.
  hub->AddTable("Customers");
  for (int i = 0; i < 12; ++i) grid->SetFieldOutput("c" + std::to_string(i), true, "Customers");
  grid->Grid()->GotoRowCol(12, 1);
  const auto link = grid->RowColChange.Connect([&](std::int32_t, std::int32_t) { grid->ResetRows(); });
  diagram->Entities()->Remove("Customers");
  EXPECT_EQ(Rows(), "");
  EXPECT_TRUE(LastRowIsEmpty());
}

TEST_F(GridPane, AListenerMayTakeATickBack) {
  const auto link = diagram->EntityItemCheck.Connect([&](const Ref<qbEntity>&, const Ref<qbEntityItem>& item) {
    if (item->Checked()) item->SetChecked(false);
  });
  Tick("Orders", "Total");
  EXPECT_FALSE(Item("Orders", "Total")->Checked());
  EXPECT_EQ(Rows(), "");
}

}  // namespace
}  // namespace zrqrybld
