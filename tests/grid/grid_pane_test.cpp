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
