// The SQL pane in a whole designer: what of grid and options reaches the statement, remarks, keys, stored options.
#include "zrqrybld/sql/sql_pane.h"
#include "tests/hub_fixture.h"
#include "tests/stored_properties.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/whole_join.h"
#include "zrqrybld/diagram/whole_joins.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/data_types.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

class SqlPane : public test::HubTest {
 protected:
  void SetUp() override {
    Use();
    hub->AddTable("Orders");
    sql->SetSQLSyntax(SQLSyntaxMSSQL);
    sql->AttachTextArea(&area);
  }
  void TearDown() override { sql->AttachTextArea(nullptr); }

  HeadlessTextArea area;
};

TEST_F(SqlPane, CriteriaAreWrittenByTheColumnsTypeAndTheOptions) {
  Tick("Orders", "Total");
  Item("Orders", "Total")->Properties()->Set("data_type", 133);
  Item("Orders", "Total")->Properties()->Set("is_long", true);
  hub->DataTypes()->Clear();
  hub->DataTypes()->Add("short", 133, "<", ">");
  hub->DataTypes()->Add("long", 133, "{", "}")->IsLong = true;
  grid->SetDateFormat("yyyy.mm.dd");
  Set(1, "criteria", "31 Jan 2020");
  Set(1, "or3", "like a");
  sql->SetLikeOperator("ILIKE");
  sql->Refresh();
  EXPECT_EQ(Sql(), "SELECT Orders.TotalFROM OrdersWHERE ((Orders.Total = {2020.01.31})) OR ((Orders.Total ILIKE 'a'))");
  // A condition in one statement is not one in the pane's.
  EXPECT_NE(sql->AddWhereClause("x = 1").find(" OR \r\n\tx = 1"), std::string::npos);
  EXPECT_EQ(Sql().find("x = 1"), std::string::npos);
}

TEST_F(SqlPane, ACriterionMovesIntoTheJoinWhoseRowsItDrops) {
  sql->ParseSQLStatement(
      "SELECT Name FROM Customers c LEFT JOIN Orders o ON o.CustomerID = c.CustomerID AND o.OrderID > c.CustomerID + 1 "
      "WHERE o.Total > 5");
  const std::string before = Sql();
  EXPECT_EQ(sql->Cures(), std::vector<std::string>{"Move to the Join"});
  EXPECT_TRUE(sql->CureRemark(1));
  EXPECT_EQ(Sql(),
            "SELECT c.NameFROM Customers AS cLEFT JOIN Orders AS o ON o.CustomerID = c.CustomerID AND "
            "o.OrderID > c.CustomerID + 1 AND o.Total > 5");
  EXPECT_TRUE(sql->Diagnostics().empty());
  EXPECT_TRUE(hub->Undo());
  EXPECT_EQ(Sql(), before);
}

TEST_F(SqlPane, ACriterionThatAsksATableBecomesAJoinWhereThatMeansTheSame) {
  source->Forget(SchemaKind::Columns);
  source->Column("Customers", "CustomerID", 1, {}, DataTypeCode::Integer, 0, false);
  source->Column("Customers", "Name", 2);
  source->Column("Orders", "CustomerID", 1, {}, DataTypeCode::Integer, 0, false);
  source->Column("Orders", "Total", 2);
  Use();
  constexpr const char* kMayBeNull = "may be Null";
  constexpr const char* kOtherwise = "No joined table asks the same";
  const struct {
    const char* from;
    const char* where;
    const char* asked;    // "" when it is refused
    const char* refused;  // a part of the reason
  } cases[] = {
      {"", "c.CustomerID IN (SELECT CustomerID FROM Orders)",
       "EXISTS (SELECT *FROM OrdersWHERE Orders.CustomerID = c.CustomerID)", ""},
      {"", "c.Name IN (SELECT o.Total FROM Orders o WHERE o.Total > 1 OR o.CustomerID = 2)",
       "EXISTS (SELECT *FROM Orders AS oWHERE o.Total = c.Name AND (o.Total > 1 OR o.CustomerID = 2))", ""},
      {"", "c.CustomerID NOT IN (SELECT o.CustomerID FROM Orders o WHERE o.Total > 1)",
       "NOT EXISTS (SELECT *FROM Orders AS oWHERE o.CustomerID = c.CustomerID AND o.Total > 1)", ""},
      {"", "c.CustomerID NOT IN (SELECT Total FROM Orders)", "", kMayBeNull},
      {"", "c.Name NOT IN (SELECT CustomerID FROM Orders)", "", kMayBeNull},
      {"RIGHT JOIN Orders p ON p.CustomerID = c.CustomerID", "c.CustomerID NOT IN (SELECT CustomerID FROM Orders)", "",
       kMayBeNull},
      {"", "c.CustomerID IN (SELECT CustomerID FROM Orders) OR c.Name = 'x'", "", kOtherwise},
      {"", "c.CustomerID IN (SELECT Name FROM Orders)", "", kOtherwise},
      {"", "c.CustomerID IN (SELECT CustomerID FROM Orders c)", "", "a table c already"},
      {"", "c.CustomerID IN (SELECT MAX(CustomerID) FROM Orders)", "", "Only a criterion IN"},
      {"", "c.CustomerID IN (SELECT CustomerID FROM Orders LIMIT 1)", "", "Only a criterion IN"},
      {"", "c.CustomerID IN (1, 2)", "", "Only a criterion IN"},
      {"", "c.CustomerID + 1 IN (SELECT CustomerID FROM Orders)", "", "Only a criterion IN"},
      {"", "(c.CustomerID IN (SELECT CustomerID FROM Orders) OR c.CustomerID = 9)", "", kOtherwise},
      {"", "c.CustomerID IN (SELECT CustomerID FROM Orders) AND c.CustomerID IN (SELECT Total FROM Orders)",
       "EXISTS (SELECT *FROM OrdersWHERE Orders.CustomerID = c.CustomerID)) AND (((c.CustomerID IN (SELECT Total FROM "
       "Orders)))",
       ""},
      {"LEFT JOIN Orders p ON p.CustomerID = c.CustomerID", "c.CustomerID NOT IN (SELECT CustomerID FROM Orders)", "",
       kMayBeNull},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.where);
    diagram->Clear();
    sql->ParseSQLStatement(std::string("SELECT Name FROM Customers c ") + one.from + " WHERE " + one.where);
    const std::string before = Sql();
    std::int32_t row = 1;
    while (Cell(row, "criteria").find("IN") == std::string::npos) ++row;
    std::string refusal;
    try {
      hub->AskAsJoin(row, "criteria");
    } catch (const Error& error) {
      refusal = error.what();
    }
    EXPECT_NE(refusal.find(one.refused), std::string::npos) << refusal;
    EXPECT_EQ(refusal.empty(), *one.refused == 0) << refusal;
    EXPECT_EQ(Sql(), *one.refused ? before : std::string("SELECT c.NameFROM Customers AS cWHERE(") + one.asked + ")");
    if (*one.refused) continue;
    EXPECT_TRUE(hub->Undo());
    EXPECT_EQ(Sql(), before);
  }
}

TEST_F(SqlPane, ANullBehindNotInIsToldAndLeftOut) {
  source->Forget(SchemaKind::Columns);
  source->Column("Customers", "CustomerID", 1, {}, DataTypeCode::Integer, 0, false);
  source->Column("Customers", "Name", 2);
  source->Column("Orders", "CustomerID", 1, {}, DataTypeCode::Integer, 0, false);
  source->Column("Orders", "Total", 2, {}, DataTypeCode::Integer, 0, true);
  Use();
  const struct {
    const char* where;
    const char* cured;  // what stands in the place of the list then; "" where nothing is told, "-" where it stays
  } cases[] = {
      {"Name NOT IN (SELECT Total FROM Orders)", "(SELECT Total FROM Orders WHERE Total IS NOT NULL)"},
      {"Name <> 'a' AND NOT (Name IN (SELECT o.Total FROM Orders o WHERE o.CustomerID = 1 OR o.CustomerID = 2))",
       "(SELECT o.Total FROM Orders o WHERE (o.CustomerID = 1 OR o.CustomerID = 2) AND o.Total IS NOT NULL)"},
      {"Name NOT IN (SELECT Total FROM Orders WHERE CustomerID > 1 ORDER BY Total)",
       "(SELECT Total FROM Orders WHERE CustomerID > 1 AND Total IS NOT NULL ORDER BY Total)"},
      {"LEN(Name) NOT IN (SELECT Total FROM Orders)", "(SELECT Total FROM Orders WHERE Total IS NOT NULL)"},
      {"(CustomerID = 1 OR Name > 'x' AND Name NOT IN (SELECT Total FROM Orders))",
       "(SELECT Total FROM Orders WHERE Total IS NOT NULL)"},
      {"Name NOT IN (SELECT Total FROM Orders GROUP BY Total)", "-"},
      {"Name NOT IN (SELECT CustomerID FROM Orders)", ""},
      {"Name NOT IN (SELECT Total FROM Orders WHERE Total > 5)", ""},
      {"Name IN (SELECT Total FROM Orders)", ""},
      {"NOT Name NOT IN (SELECT Total FROM Orders)", ""},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.where);
    diagram->Clear();
    sql->ParseSQLStatement(std::string("SELECT CustomerID FROM Customers WHERE ") + one.where);
    const std::string before = Sql();
    ASSERT_EQ(sql->Diagnostics().size(), *one.cured ? 1u : 0u) << before;
    if (!*one.cured) continue;
    EXPECT_EQ(sql->Diagnostics()[0].kind, DiagnosticNullInList);
    EXPECT_EQ(sql->CureRemark(1), *one.cured != '-');
    if (*one.cured == '-') continue;
    EXPECT_NE(Sql().find(one.cured), std::string::npos) << Sql();
    EXPECT_TRUE(sql->Diagnostics().empty());
    EXPECT_TRUE(hub->Undo());
    EXPECT_EQ(Sql(), before);
  }
}

// An empty row before it is none of the query's, and nothing else changes.
TEST_F(SqlPane, WhatARemarkIsAboutIsMendedInItsRow) {
  const struct {
    const char* statement;
    const char* cure;
    const char* after;
  } kCases[] = {
      {"SELECT Customers.CustomerID, Orders.CustomerID FROM Customers, Orders", "Add an Alias for CustomerID",
       "SELECT Customers.CustomerID, Orders.CustomerID AS CustomerID2FROM Customers, Orders"},
      {"SELECT Customers.CustomerID, Orders.CustomerID, Orders.Total AS CustomerID2 FROM Customers, Orders",
       "Add an Alias for CustomerID",
       "SELECT Customers.CustomerID, Orders.CustomerID AS CustomerID3, Orders.Total AS CustomerID2FROM Customers, "
       "Orders"},
      {"SELECT CustomerID, SUM(Total) FROM Orders GROUP BY OrderID", "Group by Orders.CustomerID",
       "SELECT Orders.CustomerID, SUM(Orders.Total)FROM OrdersGROUP BY Orders.CustomerID, Orders.OrderID"},
      {"SELECT Name FROM Customers LEFT JOIN Orders ON Orders.CustomerID = Customers.CustomerID WHERE Name = 'x' AND "
       "Total > 5",
       "Move to the Join",
       "SELECT Customers.NameFROM CustomersLEFT JOIN Orders ON Orders.CustomerID = Customers.CustomerID AND "
       "Orders.Total "
       "> 5WHERE ((Customers.Name = 'x'))"},
  };
  sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
  for (const auto& one : kCases) {
    SCOPED_TRACE(one.statement);
    diagram->Clear();
    sql->ParseSQLStatement(one.statement);
    grid->Grid()->Rows()->Add({}, 1);
    const std::string before = Sql();
    const std::vector<std::string> cures = sql->Cures();
    const auto cure = std::ranges::find(cures, one.cure);
    EXPECT_NE(cure, cures.end()) << (cures.empty() ? "" : cures.back());
    if (cure == cures.end()) continue;
    EXPECT_TRUE(sql->CureRemark(static_cast<std::int32_t>(cure - cures.begin()) + 1));
    EXPECT_EQ(Sql(), one.after);
    EXPECT_EQ(std::ranges::count(sql->Cures(), one.cure), 0);
    EXPECT_TRUE(hub->Undo());
    EXPECT_EQ(Sql(), before);
  }
}

TEST_F(SqlPane, ColumnsOfATableThatIsOnlyAskedAboutAreNotShownAndNotLost) {
  sql->ParseSQLStatement("SELECT Name, o.Total FROM Customers c INNER JOIN Orders o ON o.CustomerID = c.CustomerID");
  const Ref<qbWholeJoin> join = diagram->WholeJoins()->Item(1);
  const std::string shown = Sql();
  join->SetExistence(JoinTargetMissing);
  const std::string asked =
      "SELECT c.NameFROM Customers AS cWHERE(NOT EXISTS (SELECT *FROM Orders AS oWHERE o.CustomerID = c.CustomerID))";
  EXPECT_EQ(Sql(), asked);
  ASSERT_EQ(sql->Diagnostics().size(), 1u);
  EXPECT_EQ(sql->Diagnostics()[0].kind, DiagnosticColumnAsked);
  EXPECT_EQ(test::ErrorOf([&] { Item("o", "OrderID")->SetChecked(true); }), ErrorInvalidCall);
  EXPECT_EQ(Rows(), "c.Name o.Total");
  EXPECT_EQ(Ticked(), "c.Name o.Total");
  // A file holds it; whoever does not know the key reads a join of matching rows.
  const std::string file = hub->SaveQueryToText();
  EXPECT_NE(file.find("ItemData=0\r\n"), std::string::npos);
  Designer other;
  other.Use();
  other.hub->LoadQuery(file, true);
  EXPECT_EQ(other.Sql(), asked);
  EXPECT_EQ(other.Ticked(), "c.Name o.Total");
  join->SetItemData(0);
  EXPECT_EQ(Sql(), shown);
  EXPECT_TRUE(hub->Undo());
  EXPECT_EQ(Sql(), asked);
}

TEST_F(SqlPane, DatesFollowTheSourceUntilSomebodyChoosesAFormat) {
  source->Literal("SOURCE_NAME", "SQLite");
  Use();
  Tick("Orders", "Total");
  Item("Orders", "Total")->Properties()->Set("data_type", 133);
  const auto statement = [this](const std::string& typed) {
    Set(1, "criteria", typed);
    sql->Refresh();
    return Sql().substr(Sql().find("WHERE"));
  };
  const std::string iso = "WHERE ((Orders.Total = '2020-01-02'))";
  EXPECT_EQ(statement("2 Jan 2020"), iso);
  EXPECT_EQ(statement("'02-Jan-2020'"), iso);  // as it was written before the source was known
  grid->LoadDateFormat("dd-mmm-yyyy");
  EXPECT_EQ(statement("2 Jan 2020"), iso);
  EXPECT_TRUE(sql->Diagnostics().empty());
  const DateOptions before = grid->Dates();
  grid->SetDateFormat("dd-mmm-yyyy");
  EXPECT_EQ(statement("2 Jan 2020"), "WHERE ((Orders.Total = '02-Jan-2020'))");
  ASSERT_EQ(sql->Diagnostics().size(), 1u);
  EXPECT_EQ(sql->Diagnostics()[0].text,
            "Orders.Total: the source does not take '02-Jan-2020' for a date. It reads dates as '2020-01-31'.");
  // What is handed to a function is the function's; '1/2/2020' is no ISO date, whichever day it is.
  EXPECT_EQ((statement("IN (date('02-Jan-2020'), '2020-01-02')"), sql->Diagnostics().size()), 0u);
  EXPECT_EQ((statement("IN ('1/2/2020')"), sql->Diagnostics().size()), 1u);
  grid->RestoreDates(before);
  EXPECT_EQ(statement("2 Jan 2020"), iso);
}

TEST_F(SqlPane, KeysComeToTheApplicationBeforeTheText) {
  std::string heard;
  const auto down = sql->KeyDown.Connect([&](std::int32_t& key, std::int32_t shift) {
    heard += "down " + std::to_string(key) + "/" + std::to_string(shift) + " ";
    key = 0;
  });
  const auto up = sql->KeyUp.Connect([&](std::int32_t&, std::int32_t) { heard += "up "; });
  const auto press = sql->KeyPress.Connect([&](char32_t& character) { character = U'x'; });
  std::int32_t key = KeyCodeDelete;
  area.KeyDown.Raise(key, ShiftCtrl);
  EXPECT_EQ(key, 0);
  area.KeyUp.Raise(key, 0);
  char32_t typed = U'y';
  area.KeyPress.Raise(typed);
  EXPECT_EQ(typed, U'x');
  EXPECT_EQ(heard, "down 46/2 up ");
}

TEST_F(SqlPane, OptionsAreMarkedStoredAndReadBack) {
  std::string marked;
  const auto link = sql->PropertyChanged.Connect([&](std::string_view key) { marked += std::string(key) + " "; });
  MemoryPropertyStore store;
  qbSQLPane::Create()->WriteProperties(store);
  EXPECT_TRUE(store.Values().empty());
  sql->SetSQLSyntax(SQLSyntaxOracle);
  sql->SetLocked(true);
  sql->SetLikeOperator("REGEXP");
  EXPECT_EQ(marked, "SQLSyntax Locked LikeOperator ");
  const Ref<qbSQLPane> other = qbSQLPane::Create();
  test::ExpectStored(sql, other, {"SQLSyntax", "Locked", "LikeOperator"});
  sql->WriteProperties(store);
  other->ReadProperties(store);
  other->AttachTextArea(&area);
  EXPECT_TRUE(other->SQLSyntax() == SQLSyntaxOracle && other->Locked() && area.IsReadOnly());
  EXPECT_EQ(other->LikeOperator(), "REGEXP");
  other->SetSQLStatement("a\r\nb");  // locked for the user only
  EXPECT_EQ(area.Text(), "a\r\nb");
  store.Write("SQLSyntax", 99);
  store.Write("Locked", Variant("no"));
  store.Write("LikeOperator", " ");
  other->ReadProperties(store);
  EXPECT_TRUE(other->SQLSyntax() == SQLSyntaxGeneric && !other->Locked() && other->LikeOperator() == "LIKE");
  other->AttachTextArea(nullptr);
}

}  // namespace
}  // namespace zrqrybld
