// What the user types into the SQL pane: applied on request or on leaving, never lost, its fault shown beside it.
#include "tests/hub/hub_fixture.h"

namespace zrqrybld {
namespace {

class TypedSql : public test::HubTest {
 protected:
  void SetUp() override {
    Use();
    hub->AddTable("Orders");
    sql->SetSQLSyntax(SQLSyntaxMSSQL);
    sql->AttachTextArea(&area);
    Tick("Orders", "Total");
  }
  void TearDown() override { sql->AttachTextArea(nullptr); }
  void PressCtrlEnter() {
    std::int32_t key = KeyCodeEnter;
    area.KeyDown.Raise(key, ShiftCtrl);
    EXPECT_EQ(key, 0);
  }

  HeadlessTextArea area;
};

TEST_F(TypedSql, IsAppliedByTheKeyByTheButtonAndOnLeaving) {
  const std::function<void()> ways[] = {[&] { PressCtrlEnter(); }, [&] { area.Commands().at(0).run(); },
                                        [&] { area.Left.Raise(); }};
  for (const auto& apply : ways) {
    area.Type("select OrderID from Orders");
    EXPECT_TRUE(sql->IsEdited());
    EXPECT_EQ(area.Remarks().at(0), "Edited, not applied. Ctrl+Enter applies the text.");
    EXPECT_EQ(Rows(), "Orders.Total") << "nothing happens under the caret";
    apply();
    EXPECT_FALSE(sql->IsEdited());
    EXPECT_EQ(Rows(), "Orders.OrderID");
    EXPECT_EQ(Sql(), "SELECT Orders.OrderIDFROM Orders");
    EXPECT_TRUE(area.Remarks().empty());
    EXPECT_TRUE(area.Commands().empty());
    Tick("Orders", "OrderID", false);
    Tick("Orders", "Total");
  }
}

TEST_F(TypedSql, StaysWithItsFaultUnderlinedWhenItCannotBeRead) {
  const std::string own = sql->SQLStatement();
  for (const auto& [text, fault, remark] :
       {std::tuple{"select Totl from Orders", "Totl", "Line 1, column 8: No table in FROM has a column \"Totl\"."},
        std::tuple{"select Total from Orders where", "where",
                   "Line 1, column 31: An expression is expected at the end of the text."}}) {
    area.Type(text);
    area.Left.Raise();
    EXPECT_TRUE(sql->IsEdited());
    EXPECT_EQ(sql->SQLStatement(), text);
    EXPECT_EQ(area.Fault(), fault);
    EXPECT_EQ(area.Remarks().at(0), remark);
    EXPECT_EQ(hub->state(), InfoDone);
  }
  EXPECT_EQ(Rows(), "Orders.Total");
  area.Type("select Total from Orders wher");
  EXPECT_EQ(area.Fault(), "") << "a change takes the mark away";
  area.Commands().at(1).run();
  EXPECT_EQ(sql->SQLStatement(), own);
  EXPECT_FALSE(sql->IsEdited());
}

TEST_F(TypedSql, StaysWhenTheQueryIsChangedMeanwhile) {
  const std::string own = sql->SQLStatement();
  area.Type("select Name from Customers");
  int changes = 0;
  const auto link = sql->SQLChanged.Connect([&] { ++changes; });
  Tick("Orders", "OrderID");
  EXPECT_EQ(area.Text(), "select Name from Customers");
  EXPECT_EQ(area.Remarks().at(0), "Edited, not applied. The query has changed meanwhile; Ctrl+Enter replaces it.");
  EXPECT_EQ(changes, 1);
  area.Type(own);
  EXPECT_TRUE(sql->IsEdited()) << "the designer's own text is another one now";
  area.Type("select");
  area.Left.Raise();
  Tick("Orders", "CustomerID");
  EXPECT_EQ(area.Text(), "select");
  EXPECT_TRUE(area.Remarks().at(0).starts_with("Line 1, column 7")) << area.Remarks().at(0);
  area.Commands().at(1).run();
  EXPECT_EQ(Sql(), "SELECT Orders.Total, Orders.OrderID, Orders.CustomerIDFROM Orders");
  area.Type("select Name from Customers");
  PressCtrlEnter();
  EXPECT_EQ(Rows(), "Customers.Name");
  EXPECT_FALSE(sql->IsEdited());
  EXPECT_TRUE(hub->Undo());
  EXPECT_EQ(Sql(), "SELECT Orders.Total, Orders.OrderID, Orders.CustomerIDFROM Orders") << "as before it was applied";
}

}  // namespace
}  // namespace zrqrybld
