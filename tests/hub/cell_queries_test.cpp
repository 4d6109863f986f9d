// Queries in cells of the grid and in conditions of joins: opened as designs, written back, named, undone.
#include <algorithm>
#include <sstream>

#include "tests/data_table.h"
#include "tests/error_of.h"
#include "tests/hub/queries_fixture.h"
#include "tests/menus.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/relationship.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/query_menus.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/outer_queries.h"
#include "zrqrybld/sql/statement_printer.h"

namespace zrqrybld {
namespace {

using test::QueriesTest;

class CellQueries : public QueriesTest {
 protected:
  void Parse(const std::string& statement, const std::string& dialect = "PostgreSQL") {
    sql->SetSQLSyntax(FindDialect(dialect)->syntax);
    hub->Queries()->Item(1)->Open();
    sql->ParseSQLStatement(statement);
  }
  std::string OnLine(const std::string& text) const { return std::string(TrimWhite(OnOneLine(text))); }
};

TEST_F(CellQueries, AreShownAsDesigns) {
  for (const test::Row& row : test::ReadRows("cell_queries.txt")) {
    SCOPED_TRACE(row.place);
    const bool isCell = !StartsWithNoCase(row[1], "SELECT") && !StartsWithNoCase(row[1], "WITH");
    Parse(isCell ? "SELECT a.CustomerID FROM Customers a, Customers b" : row[1], row[0]);
    if (isCell) Set(1, "criteria", row[1]);
    const std::string statement = sql->SQLStatement();
    const std::string file = hub->SaveQueryToText();
    std::istringstream cell(row[2]);
    std::int32_t at = 0, number = 0;
    std::string column;
    cell >> at >> column >> number;
    try {
      const Ref<qbQuery> query = hub->Queries()->OpenInCell(at, column, number);
      EXPECT_EQ(query->Kind(), QueryInCell);
      EXPECT_EQ(Captions(), row[3]);
      std::string named;
      for (const std::string& table : OuterTablesNamed(hub->Snapshot())) named += (named.empty() ? "" : " ") + table;
      EXPECT_EQ(named, row[4]);
      EXPECT_EQ(OnLine(query->SQLStatement()), row[5]);
      EXPECT_EQ(hub->SaveQueryToText(), file);
    } catch (const Error& error) {
      EXPECT_EQ("! " + error.Cause().English(), row[3]);
    }
    EXPECT_EQ(sql->SQLStatement(), statement) << "showing changes nothing";
    EXPECT_FALSE(hub->CanRedo());
    for (int i = 0; i < 4 && hub->Queries()->Current()->Kind() != QueryMain; ++i)
      hub->Queries()->Current()->Parent()->Open();
    EXPECT_EQ(sql->SQLStatement(), statement);
    EXPECT_EQ(Tree().find(":cell"), std::string::npos) << "who leaves it leaves the text";
  }
}

TEST_F(CellQueries, WhatIsChangedIsWrittenIntoTheCellAndUndone) {
  const std::string typed = "SELECT Name FROM Customers WHERE CustomerID IN (select CustomerID from Orders)";
  Parse(typed);
  const std::string cell = Cell(2, "criteria");
  const std::string before = sql->SQLStatement();
  const std::string undoes = hub->UndoText();
  hub->Queries()->OpenInCell(2, "criteria");
  EXPECT_EQ(hub->UndoText(), undoes) << "showing is no step";
  Set(2, "column", "Orders.Total");
  Set(2, "criteria", "> 5");
  hub->Queries()->Item(1)->Open();
  EXPECT_EQ(Cell(2, "criteria"), "IN (SELECT Orders.CustomerID FROM Orders WHERE ((Orders.Total > 5)))");
  const std::string after = sql->SQLStatement();
  EXPECT_TRUE(hub->Undo());
  EXPECT_EQ(hub->Queries()->Current()->Kind(), QueryInCell) << "a step is undone where it was made";
  while (hub->UndoText() != undoes && hub->Undo()) {
  }
  hub->Queries()->Item(1)->Open();
  EXPECT_EQ(sql->SQLStatement(), before);
  EXPECT_EQ(Cell(2, "criteria"), cell) << "every character as it was typed";
  while (hub->Redo()) {
  }
  hub->Queries()->Item(1)->Open();
  EXPECT_EQ(sql->SQLStatement(), after);
}

TEST_F(CellQueries, AreMadeNestedAndShownAgainWhereTheyStood) {
  Parse("SELECT Name, CustomerID FROM Customers");
  const std::string before = sql->SQLStatement();
  EXPECT_EQ(test::ErrorOf([&] { hub->Queries()->AddInCell(3, "criteria"); }), ErrorNoSuchItem);
  EXPECT_EQ(test::ErrorOf([&] { hub->Queries()->AddInCell(1, "alias"); }), ErrorNoSuchItem);
  const Ref<qbQuery> query = hub->Queries()->AddInCell(2, "criteria");
  EXPECT_EQ(sql->SQLStatement(), before) << "it says nothing yet";
  hub->AddTable("Orders");
  EXPECT_EQ(sql->SQLStatement(), before) << "and nothing that a server would take";
  Tick("Orders", "CustomerID");
  Set(2, "column", "Orders.Total");
  Set(2, "criteria",
      "= (SELECT MAX(Total) FROM Orders o WHERE o.CustomerID = Customers.CustomerID AND o.OrderID < Orders.OrderID)");
  diagram->Entities()->Item("Orders")->SetLeft(4000);
  hub->Queries()->OpenInCell(2, "criteria");
  EXPECT_EQ(Tree(), "main, member:cell main, member:cell member");
  EXPECT_EQ(OuterTablesNamed(hub->Snapshot()), (std::vector<std::string>{"Customers", "Orders"}));
  Set(2, "output", true);
  const std::string whole = "IN (SELECT Orders.CustomerID FROM Orders WHERE ((Orders.Total = (";
  EXPECT_EQ(test::ErrorOf([&] { query->Remove(); }), ErrorInvalidPropertyValue);
  EXPECT_EQ(test::ErrorOf([&] { query->SetKind(QueryCommonTable); }), ErrorInvalidPropertyValue);
  EXPECT_EQ(test::ErrorOf([&] { query->SetName("q"); }), ErrorInvalidPropertyValue);
  hub->Queries()->Item(1)->Open();
  EXPECT_EQ(test::ErrorOf([&] { query->Open(); }), ErrorObjectRemoved) << "the cell's text is left of it";
  EXPECT_EQ(Cell(2, "criteria").substr(0, whole.size()), whole);
  hub->Queries()->OpenInCell(2, "criteria");
  EXPECT_EQ(diagram->Entities()->Item("Orders")->Left(), 4000) << "its boxes stand where they stood";
  diagram->Clear();
  EXPECT_EQ(sql->Remarks(), std::vector<std::string>{"This query cannot be written now: the cell keeps what it had."});
  sql->ParseSQLStatement("SELECT Total FROM Orders");
  EXPECT_EQ(Tree(), "main") << "a typed statement is that of all queries";
  int steps = 0;
  for (; hub->CanUndo() && sql->SQLStatement() != before; ++steps) hub->Undo();
  EXPECT_EQ(sql->SQLStatement(), before);
  for (; steps > 0; --steps) hub->Redo();
  EXPECT_EQ(Written(), "SELECT Orders.Total FROM Orders");
}

// A table that comes into a query takes no name away from the queries around it.
TEST_F(CellQueries, KeepTheirNamesOfTablesAroundWhenATableComes) {
  source->Table("Parts", {});
  source->Column("Parts", "Total", 1);
  source->Column("Parts", "Weight", 2);
  Use();
  const struct {
    const char* inside;  // of a query over Orders
    const char* table;
    const char* after;
  } kCases[] = {
      {"SELECT Name FROM Customers c WHERE c.CustomerID = Orders.CustomerID", "Orders",
       "SELECT c.Name FROM Customers AS c, Orders AS Orders1 WHERE ((c.CustomerID = Orders.CustomerID))"},
      {"SELECT Name FROM Customers WHERE Customers.CustomerID > Total", "Parts",
       "SELECT Customers.Name FROM Customers, Parts WHERE ((Customers.CustomerID > Orders.Total))"},
      {"SELECT Name, Total + 1 AS t FROM Customers WHERE Total * 2 > \"Total\" - 'Total' /* Total */", "Parts",
       "SELECT Customers.Name, Orders.Total + 1 AS t FROM Customers, Parts WHERE "
       "((Orders.Total * 2 > Orders.\"Total\" - 'Total'))"},
      {"SELECT Customers.Name FROM Customers LEFT JOIN Customers d ON Customers.Name = d.Name AND Total > 3", "Parts",
       "SELECT Customers.Name FROM Customers LEFT JOIN Customers AS d ON d.Name = Customers.Name AND "
       "Orders.Total > 3, Parts"},
      // What the new table has not stays as it is.
      {"SELECT Name FROM Customers WHERE CustomerID > Total AND Name = 'Total'", "Customers",
       "SELECT Customers.Name FROM Customers, Customers AS Customers1 WHERE ((Customers.Name = 'Total') AND "
       "(Customers.CustomerID > Total))"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.inside);
    Parse(std::string("SELECT OrderID FROM Orders WHERE OrderID IN (") + c.inside + ")");
    const Ref<qbQuery> query = hub->Queries()->OpenInCell(1, "criteria");
    const std::string before = query->SQLStatement();
    hub->AddTable(c.table);
    EXPECT_EQ(OnLine(query->SQLStatement()), c.after);
    hub->Undo();
    EXPECT_EQ(query->SQLStatement(), before);
  }
  Parse("SELECT Total * 2 AS t FROM Orders");
  hub->AddTable("Parts");
  EXPECT_EQ(Written(), "SELECT Total * 2 AS t FROM Orders, Parts") << "nothing is around";
}

// Wherever it is named: in FROM, in conditions of joins, in cells, in queries within; a name that a table has already
// stays with that table.
TEST_F(CellQueries, ARenamedQueryIsNamedSoEverywhere) {
  const struct {
    const char* statement;
    const char* after;  // r is called s
  } kCases[] = {
      {"WITH r AS (SELECT CustomerID AS c FROM Orders) SELECT Customers.Name FROM Customers LEFT JOIN Orders ON "
       "Orders.CustomerID = Customers.CustomerID AND Orders.Total > (SELECT MAX(r.c) FROM r)",
       "WITH s AS ( SELECT Orders.CustomerID AS c FROM Orders ) SELECT Customers.Name FROM Customers LEFT JOIN Orders "
       "ON Orders.CustomerID = Customers.CustomerID AND Orders.Total > (SELECT MAX(s.c) FROM s)"},
      {"WITH r AS (SELECT CustomerID AS c FROM Orders) SELECT r.c FROM r, Customers s WHERE s.CustomerID > r.c + 1",
       "WITH s AS ( SELECT Orders.CustomerID AS c FROM Orders ) SELECT r.c FROM s AS r, Customers AS s WHERE "
       "((s.CustomerID > r.c + 1))"},
      {"WITH r AS (SELECT CustomerID AS c FROM Orders) SELECT x.c FROM r x INNER JOIN r ON r.c = x.c AND r.c > x.c + 1",
       "WITH s AS ( SELECT Orders.CustomerID AS c FROM Orders ) SELECT x.c FROM s AS x INNER JOIN s ON s.c = x.c WHERE "
       "((s.c > x.c + 1))"},
      {"SELECT d.c FROM (SELECT CustomerID AS c FROM Orders) d, (SELECT CustomerID AS c FROM Customers) r WHERE r.c > "
       "d.c",
       "SELECT d.c FROM ( SELECT Orders.CustomerID AS c FROM Orders ) AS d, ( SELECT Customers.CustomerID AS c FROM "
       "Customers ) AS s WHERE ((s.c > d.c))"},
      {"WITH r AS (SELECT CustomerID AS c FROM Orders) SELECT d.c FROM (SELECT r.c FROM r) d UNION SELECT c FROM r",
       "WITH s AS ( SELECT Orders.CustomerID AS c FROM Orders ) SELECT d.c FROM ( SELECT s.c FROM s ) AS d UNION "
       "SELECT "
       "s.c FROM s"},
  };
  for (const auto& one : kCases) {
    SCOPED_TRACE(one.statement);
    Parse("SELECT Name FROM Customers");
    Parse(one.statement);
    const std::string before = sql->SQLStatement();
    hub->Queries()->Item("r")->SetName("s");
    EXPECT_EQ(Written(), one.after);
    hub->Undo();
    EXPECT_EQ(sql->SQLStatement(), before);
  }
}

TEST_F(CellQueries, FiftyAreShownAgainWhereTheyStood) {
  Parse("SELECT Name FROM Customers WHERE CustomerID = 1");
  const auto open = [&](int number) {
    Set(2, "criteria", "IN (SELECT OrderID FROM Orders WHERE Total > " + std::to_string(number) + ")");
    hub->Queries()->OpenInCell(2, "criteria");
    return diagram->Entities()->Item("Orders");
  };
  for (int number = 0; number <= 50; ++number) {
    open(number)->SetLeft(4000);
    hub->Queries()->Item(1)->Open();
  }
  EXPECT_EQ(open(50)->Left(), 4000);
  hub->Queries()->Item(1)->Open();
  EXPECT_NE(open(0)->Left(), 4000) << "the one that was left first is forgotten";
}

// By the menus of cells, joins and boxes, and by their keys.
TEST_F(CellQueries, AreOpenedWhereTheyStand) {
  Parse(
      "SELECT Customers.Name FROM Customers LEFT JOIN Orders ON Orders.CustomerID = Customers.CustomerID AND "
      "Orders.Total > (SELECT AVG(o.Total) FROM Orders o), (SELECT Name FROM Customers) q "
      "WHERE Customers.CustomerID = 1");
  Set(2, "criteria", "> (SELECT MIN(i.Total) FROM Orders i) AND < (SELECT MAX(a.CustomerID) FROM Customers a)");
  const std::string before = sql->SQLStatement();
  const auto back = [&] {
    EXPECT_TRUE(LeaveQuery(*hub));
    EXPECT_FALSE(LeaveQuery(*hub)) << "nothing is around the outermost one";
    EXPECT_EQ(sql->SQLStatement(), before);
  };
  Menu menu = MenuOfQueriesInCell(*hub, 2, kColumnCriteria);
  ASSERT_EQ(menu.size(), 2u);
  EXPECT_EQ(menu[1].text, "Open Query (SELECT Customers\u2026)");
  menu[1].action();
  EXPECT_EQ(Captions(), "a");
  back();
  EXPECT_EQ(grid->Grid()->Row(), 2);
  EXPECT_EQ(test::Enabled(MenuOfQueriesInCell(*hub, 2, kColumnCriteria + 1)), "New Subquery");
  EXPECT_EQ(test::Enabled(MenuOfQueriesInCell(*hub, 1, kColumnColumn)), "") << "no criterion";
  // Over one table they are told by their beginnings.
  Set(2, "or1",
      "> (SELECT MIN(i.Total & 7) FROM Orders i) OR < (SELECT MAX(a.Total) FROM Orders a WHERE a.Total < 999)");
  menu = MenuOfQueriesInCell(*hub, 2, kColumnCriteria + 1);
  ASSERT_EQ(menu.size(), 2u);
  EXPECT_EQ(menu[0].text, "Open Query (SELECT MIN(i.Total && 7) FROM Orders i)");
  EXPECT_EQ(menu[1].text, "Open Query (SELECT MAX(a.Total) FROM Orders a WHERE\u2026)");
  Set(2, "or1", "");
  const std::pair<std::int32_t, std::int32_t> kNowhere[] = {
      {0, kColumnCriteria}, {99, kColumnCriteria}, {1, kColumnAlias}, {4, kColumnCriteria}};
  for (const auto& [row, column] : kNowhere) {
    EXPECT_TRUE(MenuOfQueriesInCell(*hub, row, column).empty()) << row << " " << column;
    EXPECT_FALSE(OpenQueryInCell(*hub, row, column)) << row << " " << column;
  }
  EXPECT_FALSE(OpenQueryInCell(*hub, 1, 99));
  grid->Grid()->GotoRowCol(2, "criteria");
  grid->Grid()->OnKeyDown({KeyCodeF1 + 11, ShiftNone});
  EXPECT_EQ(Captions(), "i");
  back();
  // Of the join and of the box; what has none goes nowhere.
  const auto select = [&](const std::function<bool(const qbRelationship&)>& is) {
    for (const Ref<qbEntity>& table : *diagram->Entities()) {
      for (const Ref<qbRelationship>& join : *table->Relationships()) {
        if (is(*join)) diagram->SelectObject(join);
      }
    }
  };
  const KeyEvent open{KeyCodeF1 + 11, ShiftNone};
  diagram->SelectObject(nullptr);
  EXPECT_FALSE(diagram->OnKeyDown(open));
  diagram->SelectObject(diagram->Entities()->Item("Orders"));
  EXPECT_FALSE(diagram->OnKeyDown(open));
  select([](const qbRelationship& join) { return !join.Condition().empty(); });
  EXPECT_EQ(
      test::Enabled(MenuOfQueriesInJoin(*hub, std::dynamic_pointer_cast<qbRelationship>(diagram->SelectedObject()))),
      "Open Query");
  EXPECT_TRUE(diagram->OnKeyDown(open));
  EXPECT_EQ(Captions(), "o");
  back();
  EXPECT_NE(std::dynamic_pointer_cast<qbRelationship>(diagram->SelectedObject()), nullptr) << "where one came from";
  for (const KeyEvent& key : {open, KeyEvent{KeyCodeEnter, ShiftNone}}) {
    diagram->SelectObject(diagram->Entities()->Item("q"));
    EXPECT_TRUE(diagram->OnKeyDown(key));
    EXPECT_EQ(Shown(), "q: Customers");
    EXPECT_TRUE(diagram->OnKeyDown({KeyCodeLeft, ShiftAlt}));
    EXPECT_FALSE(diagram->OnKeyDown({KeyCodeLeft, ShiftAlt})) << "a key for the window";
  }
  EXPECT_FALSE(OpenQueryNamed(*hub, "nosuch"));
  Parse("SELECT Name FROM Customers");
  EXPECT_FALSE(OpenQueryNamed(*hub, "Customers"));
}

TEST_F(CellQueries, FollowARenamedQueryAndALostCell) {
  Parse(
      "WITH r AS (SELECT CustomerID c FROM Orders) SELECT Name FROM Customers WHERE CustomerID IN (SELECT c FROM r) OR "
      "CustomerID IN (SELECT r.c FROM r)");
  hub->Queries()->OpenInCell(2, "criteria");
  hub->Queries()->Item("r")->SetName("s");
  EXPECT_EQ(Tree(), "main, s:with main, member:cell main");
  hub->Queries()->Item(1)->Open();
  EXPECT_EQ(Cell(2, "criteria"), "IN (SELECT s.c FROM s)");
  EXPECT_EQ(Cell(2, "or1"), "IN (SELECT s.c FROM s)") << "one that is not shown follows, too";
  EXPECT_EQ(Written().find(" r"), std::string::npos) << Written();
  hub->Undo();
  hub->Queries()->Item(1)->Open();
  EXPECT_EQ(Cell(2, "criteria"), "IN (SELECT c FROM r)");
  EXPECT_EQ(Cell(2, "or1"), "IN (SELECT r.c FROM r)");
}

// A query in ON is shown from its join, and what is changed there is written into the condition.
TEST_F(CellQueries, StandInConditionsOfJoins) {
  Parse(
      "SELECT Name FROM Customers LEFT JOIN Orders ON Customers.CustomerID = Orders.CustomerID AND "
      "Orders.Total > (SELECT AVG(o.Total) FROM Orders o WHERE o.CustomerID = Customers.CustomerID)");
  const std::string before = sql->SQLStatement();
  const std::string file = hub->SaveQueryToText();
  const auto join = [&] {
    for (const Ref<qbEntity>& table : *diagram->Entities()) {
      if (table->Relationships()->Count() > 0) return table->Relationships()->Item(1);
    }
    return Ref<qbRelationship>();
  };
  const std::string condition = join()->Condition();
  EXPECT_EQ(test::ErrorOf([&] { hub->Queries()->OpenInJoin(nullptr); }), ErrorObjectRemoved);
  EXPECT_EQ(test::ErrorOf([&] { hub->Queries()->OpenInJoin(join(), 2); }), ErrorNoSuchItem);
  const Ref<qbQuery> query = hub->Queries()->OpenInJoin(join());
  EXPECT_EQ(Captions(), "o");
  EXPECT_EQ(query->Kind(), QueryInCell);
  EXPECT_EQ(OuterTablesNamed(hub->Snapshot()), std::vector<std::string>{"Customers"});
  EXPECT_EQ(hub->SaveQueryToText(), file);
  EXPECT_EQ(sql->SQLStatement(), before) << "showing changes nothing";
  const std::string undoes = hub->UndoText();
  Set(2, "criteria", "= Customers.CustomerID AND o.OrderID > 7");
  const std::string after = sql->SQLStatement();
  EXPECT_NE(OnLine(after).find("o.OrderID > 7"), std::string::npos) << after;
  EXPECT_NE(hub->SaveQueryToText().find("OrderID > 7"), std::string::npos);
  hub->Queries()->Item(1)->Open();
  EXPECT_NE(join()->Condition().find("o.OrderID > 7"), std::string::npos) << join()->Condition();
  EXPECT_EQ(sql->SQLStatement(), after);
  while (hub->UndoText() != undoes && hub->Undo()) {
  }
  hub->Queries()->Item(1)->Open();
  EXPECT_EQ(join()->Condition(), condition);
  EXPECT_EQ(sql->SQLStatement(), before);
  hub->Redo();
  EXPECT_EQ(sql->SQLStatement(), after);
  // The join goes while its query is shown.
  hub->Queries()->Item(1)->Open();
  hub->Queries()->OpenInJoin(join());
  hub->Queries()->Item(1)->Open();
  join()->SetCondition("");
  EXPECT_EQ(test::ErrorOf([&] { hub->Queries()->OpenInJoin(join()); }), ErrorNoSuchItem);
}

// A text whose caret a test puts somewhere.
struct AreaWithCaret : TextArea {
  std::string Text() const override { return text; }
  void SetText(std::string_view shown) override { text = shown; }
  std::size_t Caret() const override { return caret; }
  void SetReadOnly(bool) override {}
  void SetRemarks(const std::vector<std::string>&) override {}
  void SetFault(std::size_t, std::size_t) override {}
  void SetCommands(std::vector<TextCommand>) override {}
  std::string text;
  std::size_t caret = 0;
};

// From a place in the statement to the query that stands there, through all that it stands in.
TEST_F(CellQueries, AreFoundAtAPlaceOfTheStatement) {
  const struct {
    std::string statement, at, captions;
    int depth;
  } kCases[] = {
      {"SELECT Name FROM Customers WHERE CustomerID IN (SELECT CustomerID FROM Orders)", "FROM Orders", "Orders", 1},
      {"SELECT Name FROM Customers WHERE CustomerID IN (SELECT CustomerID FROM Orders)", "Name", "", 0},
      {"SELECT Name, (SELECT MAX(Total) FROM Orders o WHERE o.CustomerID = Customers.CustomerID) m FROM Customers",
       "MAX", "o", 1},
      {"SELECT Name FROM Customers WHERE CustomerID IN (SELECT o.CustomerID FROM Orders o WHERE o.Total > "
       "(SELECT AVG(p.Total) FROM Orders p))",
       "p.Total", "p", 2},
      {"SELECT c.Name FROM Customers c JOIN Orders o ON c.CustomerID = o.CustomerID AND o.Total > (SELECT "
       "AVG(q.Total) FROM Orders q)",
       "q.Total", "q", 1},
      {"SELECT d.Name FROM (SELECT Name FROM Customers WHERE CustomerID IN (SELECT z.CustomerID FROM Orders z)) d",
       "z.CustomerID", "z", 2},
      {"SELECT Name FROM Customers WHERE CustomerID = 1 UNION SELECT OrderID FROM Orders WHERE CustomerID IN "
       "(SELECT y.CustomerID FROM Customers y)",
       "y.CustomerID", "y", 2},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.statement);
    Parse(c.statement);
    const std::string written = sql->SQLStatement();
    AreaWithCaret area;
    sql->AttachTextArea(&area);
    area.caret = written.find(c.at);
    EXPECT_EQ(sql->OpenQueryAtCaret(), c.depth > 0);
    EXPECT_TRUE(c.depth == 0 || Captions() == c.captions) << Captions();
    EXPECT_EQ(sql->SQLStatement(), written);
    EXPECT_FALSE(sql->OpenQueryAtCaret()) << "it is shown already";
    int depth = 0;
    for (; hub->Queries()->Current()->Kind() != QueryMain; ++depth) hub->Queries()->Current()->Parent()->Open();
    EXPECT_EQ(depth, c.depth);
    sql->AttachTextArea(nullptr);
  }
}

TEST_F(CellQueries, KnowTheNamesOfTheQueriesAround) {
  Parse("SELECT Name FROM Customers WHERE CustomerID IN (SELECT OrderID FROM Orders)");
  hub->Queries()->OpenInCell(2, "criteria");
  std::string tables;
  hub->Schema()->Refresh();
  for (const QueryTableFacts& table : hub->Schema()->QueryTables()) {
    tables += table.qualifier + (table.outer ? " outer " : " ") + std::to_string(table.facts->columns.size()) + ", ";
  }
  EXPECT_EQ(tables, "Orders 3, Customers outer 2, ");
  const auto type = [&](const std::string& text) {
    const Ref<zrGrid> cells = grid->Grid();
    cells->GotoRowCol(1, "criteria");
    cells->EditCell();
    static_cast<HeadlessSurface&>(cells->GetSurface()).FocusedEditor()->Type(text);
    cells->CommitEdit();
    return Cell(1, "criteria") + " " + grid->Grid()->Rows()->Item(1)->Hint("criteria");
  };
  EXPECT_EQ(type("= Customers.Name"), "= Customers.Name ");
  EXPECT_EQ(type("> Name"), "> Name ");
  EXPECT_EQ(type("= Customers.Nme"), "= Customers.Nme This is no number, nor a column of the query. (character 3)");
}

}  // namespace
}  // namespace zrqrybld
