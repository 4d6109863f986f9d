// Designs over the sample database: the statements run, and give the rows that a join written in this test gives.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/flow/headless_designer.h"
#include "tests/flow/store_rows.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

using test::Design;
using test::ForSqlite;
using test::HeadlessDesigner;
using test::Row;
using test::Store;
using test::ToText;

constexpr SQLSyntaxEnum kAllSyntaxes[] = {SQLSyntaxGeneric, SQLSyntaxMSSQL, SQLSyntaxOracle, SQLSyntaxAccess,
                                          SQLSyntaxOpenSQL};

std::vector<Row> Sorted(std::vector<Row> rows) {
  std::ranges::sort(rows);
  return rows;
}

// The first difference, so that a failure says more than "not equal" about thousands of rows.
void ExpectSameRows(const std::vector<Row>& actual, const std::vector<Row>& expected, const std::string& statement) {
  EXPECT_EQ(actual.size(), expected.size()) << statement;
  for (std::size_t i = 0; i < std::min(actual.size(), expected.size()); ++i) {
    if (actual[i] == expected[i]) continue;
    ADD_FAILURE() << "row " << i << " is " << ToText(actual[i]) << "\ninstead of " << ToText(expected[i]) << "\n"
                  << statement;
    return;
  }
}

// Makes the design by ticks, and gives what a join by its foreign keys makes of it.
Design Make(HeadlessDesigner& designer, const std::vector<std::string>& tables,
            const std::vector<std::pair<const char*, const char*>>& ticks) {
  Design design;
  design.tables = test::WithCaptions(tables);
  design.joins = test::JoinsByForeignKeys(design.tables);
  designer.AddTables(tables);
  for (const auto& [caption, column] : ticks) {
    designer.Tick(caption, column);
    const auto table = std::ranges::find(design.tables, caption, &Design::Table::caption);
    design.fields.push_back({static_cast<std::size_t>(table - design.tables.begin()), column});
  }
  return design;
}

TEST(TickedColumns, GiveTheRowsOfTheJoinedTables) {
  const struct {
    const char* what;
    std::vector<std::string> tables;
    std::vector<std::pair<const char*, const char*>> ticks;
    std::size_t rows;  // 0: as many as the join gives
  } cases[] = {
      {"four tables, a reserved word and a blank among their names",
       {"Customers", "Order", "Order Lines", "Products"},
       {{"Customers", "CompanyName"}, {"Order", "OrderDate"}, {"Products", "ProductName"}, {"Order Lines", "Quantity"}},
       2970},
      {"the tables in another order",
       {"Products", "Order Lines", "Customers", "Order"},
       {{"Customers", "CompanyName"}, {"Order", "OrderID"}, {"Products", "ProductID"}},
       2970},
      {"columns of three of four tables: the one between them still joins",
       {"Customers", "Order", "Order Lines", "Products"},
       {{"Customers", "CustomerID"}, {"Products", "Unit Price"}, {"Order Lines", "Unit Price"}},
       2970},
      {"a foreign key of two columns",
       {"Shipments", "Order Lines"},
       {{"Shipments", "ShipmentID"}, {"Order Lines", "ProductID"}, {"Order Lines", "Quantity"}},
       3312},
      {"two ways between two tables: by the order and by its lines",
       {"Order", "Order Lines", "Shipments", "carriers"},
       {{"carriers", "carrier_name"}, {"Order", "Freight"}, {"Shipments", "Quantity"}},
       0},
      {"names beyond ASCII",
       {"Customers", "Währungen"},
       {{"Customers", "Währung"}, {"Währungen", "Kürzel"}, {"Währungen", "Kurs in €"}},
       150},
      {"a table and its copy: employees and whom they report to",
       {"Employees", "Employees"},
       {{"Employees", "LastName"}, {"Employees1", "LastName"}},
       11},
      {"a parent with two copies",
       {"Order", "Employees", "Order Lines", "Order Lines"},
       {{"Order", "OrderID"}, {"Employees", "LastName"}, {"Order Lines", "LineNo"}, {"Order Lines1", "LineNo"}},
       0},
      {"a star stands for all columns", {"Suppliers", "Products"}, {{"Products", "*"}, {"Suppliers", "City"}}, 0},
      {"one table alone", {"Categories"}, {{"Categories", "Group"}}, 9},
      {"a view", {"OrderTotals"}, {{"OrderTotals", "OrderID"}, {"OrderTotals", "Total"}}, 1000},
  };
  Store store;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    HeadlessDesigner designer;
    const Design design = Make(designer, c.tables, c.ticks);
    const std::vector<Row> expected = Sorted(test::Evaluate(store, design).value());
    EXPECT_FALSE(expected.empty());
    EXPECT_TRUE(c.rows == 0 || c.rows == expected.size()) << expected.size();
    for (const SQLSyntaxEnum syntax : kAllSyntaxes) {
      const std::string statement = designer.Statement(syntax);
      ExpectSameRows(Sorted(store.Run(ForSqlite(statement, syntax))), expected, statement);
      EXPECT_FALSE(designer.Hub().SQLPane()->Cartesian());
    }
  }
}

// Generic, MSSQL and Access write inner joins that SQLite takes word for word.
TEST(TickedColumns, TheTextsWithoutARowLimitRunUnchanged) {
  Store store;
  HeadlessDesigner designer;
  Make(designer, {"Customers", "Order", "Order Lines"}, {{"Customers", "City"}, {"Order Lines", "Quantity"}});
  for (const SQLSyntaxEnum syntax : {SQLSyntaxGeneric, SQLSyntaxMSSQL, SQLSyntaxAccess}) {
    const std::string statement = designer.Statement(syntax);
    EXPECT_EQ(ForSqlite(statement, syntax), statement);
    EXPECT_EQ(store.Run(statement).size(), 2970u) << statement;
  }
}

TEST(TickedColumns, AForeignKeyOfTwoColumnsIsOneJoinWithTwoConditions) {
  HeadlessDesigner designer;
  Make(designer, {"Shipments", "Order Lines"}, {{"Shipments", "ShipmentID"}});
  const std::string statement = designer.Statement(SQLSyntaxMSSQL);
  const std::size_t on = statement.find(" ON ");
  ASSERT_NE(on, std::string::npos) << statement;
  EXPECT_EQ(statement.find(" ON ", on + 1), std::string::npos) << statement;
  EXPECT_NE(statement.find("OrderID", on), std::string::npos) << statement;
  EXPECT_NE(statement.find("LineNo", on), std::string::npos) << statement;
}

TEST(TickedColumns, UntickingLeavesTheStatementOfTheOthers) {
  HeadlessDesigner designer;
  Make(designer, {"Customers", "Order"}, {{"Customers", "City"}, {"Order", "OrderDate"}});
  const std::string before = designer.Statement(SQLSyntaxMSSQL);
  designer.Tick("Order", "Freight");
  EXPECT_NE(designer.Statement(SQLSyntaxMSSQL), before);
  designer.SetTick("Order", "Freight", false);
  EXPECT_THROW(designer.RowOf("Order", "Freight"), std::runtime_error) << "its row is still in the grid";
  EXPECT_EQ(designer.Statement(SQLSyntaxMSSQL), before);
}

TEST(JoinsByHand, AViewJoinsATable) {
  Store store;
  HeadlessDesigner designer;
  Design design =
      Make(designer, {"Customers", "OrderTotals"}, {{"Customers", "CompanyName"}, {"OrderTotals", "Total"}});
  EXPECT_TRUE(design.joins.empty());
  designer.Join("OrderTotals", "CustomerID", "Customers", "CustomerID");
  design.joins.push_back({1, "CustomerID", 0, "CustomerID"});
  const std::vector<Row> expected = Sorted(test::Evaluate(store, design).value());
  ASSERT_EQ(expected.size(), 1000u);
  for (const SQLSyntaxEnum syntax : kAllSyntaxes) {
    const std::string statement = designer.Statement(syntax);
    ExpectSameRows(Sorted(store.Run(ForSqlite(statement, syntax))), expected, statement);
  }
}

TEST(Options, SortingPutsTheRowsInThisOrder) {
  Store store;
  HeadlessDesigner designer;
  const Design design = Make(designer, {"Customers", "Order", "Order Lines"},
                             {{"Order Lines", "LineNo"}, {"Customers", "Country"}, {"Order", "OrderID"}});
  designer.Sort("Customers", "Country", "Descending", 1);
  designer.Sort("Order", "OrderID", "Ascending", 2);
  designer.Sort("Order Lines", "LineNo", "Descending", 3);
  std::vector<Row> expected = test::Evaluate(store, design).value();
  std::ranges::sort(expected, [](const Row& a, const Row& b) {
    if (a[1] != b[1]) return b[1] < a[1];
    if (a[2] != b[2]) return a[2] < b[2];
    return b[0] < a[0];
  });
  for (const SQLSyntaxEnum syntax : kAllSyntaxes) {
    const std::string statement = designer.Statement(syntax);
    ExpectSameRows(store.Run(ForSqlite(statement, syntax)), expected, statement);
  }

  designer.Hub().SetSelectTopRecords("25");
  expected.resize(25);
  for (const SQLSyntaxEnum syntax : {SQLSyntaxGeneric, SQLSyntaxMSSQL, SQLSyntaxAccess, SQLSyntaxOpenSQL}) {
    const std::string statement = designer.Statement(syntax);
    ExpectSameRows(store.Run(ForSqlite(statement, syntax)), expected, statement);
  }
}

TEST(Options, DistinctGivesEachRowOnce) {
  Store store;
  HeadlessDesigner designer;
  const Design design = Make(designer, {"Customers", "Order", "Order Lines", "Products"},
                             {{"Customers", "Country"}, {"Products", "CategoryID"}});
  const std::size_t all = test::Evaluate(store, design).value().size();
  designer.Hub().SetDistinctRecords(true);
  std::vector<Row> expected = Sorted(test::Evaluate(store, design).value());
  expected.erase(std::unique(expected.begin(), expected.end()), expected.end());
  ASSERT_LT(expected.size(), all);
  for (const SQLSyntaxEnum syntax : kAllSyntaxes) {
    const std::string statement = designer.Statement(syntax);
    ExpectSameRows(Sorted(store.Run(ForSqlite(statement, syntax))), expected, statement);
  }
}

TEST(Options, AnAliasNamesTheColumnOfTheResult) {
  HeadlessDesigner designer;
  Make(designer, {"Customers", "Order"}, {{"Customers", "CompanyName"}, {"Order", "OrderDate"}});
  for (const char* alias : {"Day", "day of order", "Order", "Tag der Währung"}) {
    designer.Hub().GridPane()->SetValue(designer.RowOf("Order", "OrderDate"), "alias", alias);
    for (const SQLSyntaxEnum syntax : kAllSyntaxes) {
      const std::string statement = ForSqlite(designer.Statement(syntax), syntax);
      Store store;
      // SQLite tells the names of a result through a table made of it.
      const std::vector<Row> rows =
          store.Run("SELECT count(*) FROM (" + statement + ") WHERE \"" + alias + "\" >= '2000'");
      EXPECT_EQ(ToText(rows.at(0)), "1000") << statement;
    }
  }
}

}  // namespace
}  // namespace zrqrybld
