// Queries within queries: what a typed statement makes of them, and how they are shown, changed, undone, saved.
#include <algorithm>

#include "tests/data_table.h"
#include "tests/error_of.h"
#include "tests/hub/queries_fixture.h"
#include "tests/link_panes.h"
#include "tests/menus.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/query_menus.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/hub/statement_loader.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/dialect.h"

namespace zrqrybld {
namespace {

using test::QueriesTest;

TEST_F(QueriesTest, AStatementBecomesItsQueriesAndIsWrittenAnew) {
  for (const test::Row& row : test::ReadRows("queries.txt")) {
    SCOPED_TRACE(row.place);
    sql->SetSQLSyntax(FindDialect(row[0])->syntax);
    hub->Queries()->Item(1)->Open();
    sql->ParseSQLStatement("SELECT Name FROM Customers");
    try {
      const std::string meaning = MeaningOf(*hub, row[1]);
      sql->ParseSQLStatement(row[1]);
      EXPECT_EQ(meaning, sql->SQLStatement());
    } catch (const Error& error) {
      hub->SetState(InfoDone);
      EXPECT_EQ(Tree(), row[2]) << "something was changed";
      EXPECT_EQ("! " + error.Cause().English(), row[3]);
      continue;
    }
    EXPECT_EQ(Tree(), row[2]);
    EXPECT_EQ(Written(), row[3]);
    const std::string written = sql->SQLStatement();
    sql->ParseSQLStatement(written);
    EXPECT_EQ(sql->SQLStatement(), written);
  }
}

TEST_F(QueriesTest, NamesOfColumnsStandForThoseInTheirPlaces) {
  sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
  sql->ParseSQLStatement(
      "WITH r (n, t, u, v) AS (SELECT Total + 1, Total, Total, OrderID FROM Orders) SELECT n FROM r");
  const auto columns = [&] { return *hub->QueriesNow().FindNamed(0, "r")->columns; };
  const std::vector<QueryColumn> read = columns();
  std::string names;
  for (const QueryColumn& column : read) names += column.name + (column.type == 0 ? "? " : " ");
  EXPECT_EQ(names, "n? t u v ");
  hub->Queries()->Item("r")->Open();
  hub->Queries()->Item(1)->Open();
  EXPECT_EQ(columns(), read);
}

constexpr const char* kThree =
    "WITH r AS (SELECT CustomerID, COUNT(*) AS n FROM Orders GROUP BY CustomerID) SELECT Name, r.n, d.Total FROM "
    "Customers JOIN r ON r.CustomerID = Customers.CustomerID JOIN (SELECT CustomerID, Total FROM Orders) d ON "
    "d.CustomerID = r.CustomerID WHERE r.n > 3";

class ThreeQueries : public QueriesTest {
 protected:
  ThreeQueries() {
    sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
    sql->ParseSQLStatement(kThree);
    statement = sql->SQLStatement();
  }
  Ref<qbQuery> Query(const std::string& name) const { return hub->Queries()->Item(name); }
  bool Holds(const std::string& part) const { return Written().find(part) != std::string::npos; }
  void ExpectAsBefore() const { EXPECT_EQ(sql->SQLStatement(), statement); }

  std::string statement;
};

TEST_F(ThreeQueries, OneIsShownAndChangedAndUndoneWhereItWasMade) {
  int told = 0;
  const EventConnection link = hub->QueriesChanged.Connect([&] { ++told; });
  Query("r")->Open();
  EXPECT_EQ(told, 1);
  EXPECT_EQ(Shown(), "r: Orders");
  ExpectAsBefore();
  Set(2, "alias", "number");
  EXPECT_TRUE(Holds("COUNT(*) AS number FROM")) << Written();
  EXPECT_TRUE(Holds("r.number, d.Total")) << "who names the column follows";
  EXPECT_TRUE(Holds("((r.number > 3))"));
  hub->Queries()->Item(1)->Open();
  EXPECT_EQ(Items(*diagram->Entities()->Item("r")), "* CustomerID number");
  EXPECT_EQ(Cell(2, "column"), "number");
  const std::string renamed = sql->SQLStatement();
  EXPECT_TRUE(hub->Undo());
  EXPECT_EQ(Shown(), "r: Orders") << "a step is undone where it was made";
  ExpectAsBefore();
  EXPECT_TRUE(hub->Redo());
  hub->Queries()->Item(1)->Open();
  EXPECT_EQ(sql->SQLStatement(), renamed);
  while (hub->Undo()) {
  }
  EXPECT_EQ(Tree(), "main");
  while (hub->Redo()) {
  }
  EXPECT_EQ(sql->SQLStatement(), renamed);
}

TEST_F(ThreeQueries, AColumnThatGoesLeavesItsRowsAndIsTold) {
  Query("d")->Open();
  Tick("Orders", "Total", false);
  hub->Queries()->Item(1)->Open();
  EXPECT_EQ(Items(*diagram->Entities()->Item("d")), "* CustomerID");
  EXPECT_TRUE(Holds("d.Total"));
  hub->Undo();
  hub->Queries()->Item(1)->Open();
  EXPECT_EQ(Items(*diagram->Entities()->Item("d")), "* CustomerID Total");
  ExpectAsBefore();
}

TEST_F(ThreeQueries, MoveToWithAndBackAreRenamedAndRemoved) {
  Query("d")->SetKind(QueryCommonTable);
  EXPECT_TRUE(Holds("), d AS (")) << Written();
  EXPECT_TRUE(Holds("INNER JOIN d ON"));
  hub->Undo();
  ExpectAsBefore();
  Query("r")->SetName("recent");
  EXPECT_TRUE(Holds("WITH recent AS (")) << Written();
  EXPECT_TRUE(Holds("((recent.n > 3))"));
  hub->Undo();
  ExpectAsBefore();
  Query("r")->SetName("my.r");
  const std::string dotted = sql->SQLStatement();
  EXPECT_TRUE(Holds("WITH \"my.r\" AS (")) << Written();
  EXPECT_TRUE(Holds("((\"my.r\".n > 3))"));
  sql->ParseSQLStatement(dotted);
  EXPECT_EQ(sql->SQLStatement(), dotted);
  EXPECT_EQ(Items(*diagram->Entities()->Item("my.r")), "* CustomerID n");
  while (sql->SQLStatement() != statement && hub->Undo()) {
  }
  const Ref<qbQuery> r = Query("r");
  r->Remove();
  EXPECT_EQ(Tree(), "main, d:from main");
  EXPECT_FALSE(Holds("r."));
  EXPECT_EQ(test::ErrorOf([&] { r->Open(); }), ErrorObjectRemoved);
  hub->Undo();
  ExpectAsBefore();
  EXPECT_EQ(r->Name(), "r") << "undo brings it back";
  diagram->Entities()->Remove("d");
  EXPECT_EQ(Tree(), "main, r:with main") << "a query in FROM goes with its box";
  hub->Undo();
  ExpectAsBefore();
  for (const char* name : {"", "d"}) {
    EXPECT_EQ(test::ErrorOf([&] { Query("r")->SetName(name); }), ErrorInvalidPropertyValue);
  }
  EXPECT_EQ(test::ErrorOf([&] { hub->Queries()->Item(1)->Remove(); }), ErrorInvalidPropertyValue);
  EXPECT_EQ(test::ErrorOf([&] { Query("r")->SetOperator(QueryExcept); }), ErrorInvalidPropertyValue);
  EXPECT_EQ(test::ErrorOf([&] { Query("nosuch"); }), ErrorNoSuchItem);
  hub->BeginStep("mine");
  EXPECT_EQ(test::ErrorOf([&] { Query("r")->Open(); }), ErrorInvalidCall);
  hub->EndStep();
  ExpectAsBefore();
}

TEST_F(ThreeQueries, AreSavedWhicheverIsShownAndLoaded) {
  const std::string file = hub->SaveQueryToText();
  Query("r")->Open();
  EXPECT_EQ(hub->SaveQueryToText(), file);
  EXPECT_EQ(Shown(), "r: Orders");
  const Ref<qbQueryBuilder> loaded = qbQueryBuilder::Create(toolkit);
  test::LinkPanes(*loaded);
  loaded->SetConnection(source);
  EXPECT_TRUE(loaded->LoadQuery(file, true));
  EXPECT_EQ(loaded->LoadRemarks(), std::vector<std::string>());
  EXPECT_EQ(loaded->SQLPane()->SQLStatement(), statement);
  EXPECT_EQ(Tree(*loaded), "main, r:with main, d:from main");
  EXPECT_EQ(loaded->SaveQueryToText(), file);
  // A parent that is not there, and one query twice.
  const auto damaged = [&](const std::string& before, const std::string& after) {
    std::string text = file;
    return text.replace(text.find(before), before.size(), after);
  };
  for (const std::string& text : {damaged("Parent=0", "Parent=7"), damaged("Id=2", "Id=1"), damaged("Kind=2", "Kind=9"),
                                  damaged("LineCount=", "LineCount=9")}) {
    EXPECT_EQ(test::ErrorOf([&] { loaded->LoadQuery(text, true); }), ErrorLoadingQuery);
  }
}

TEST_F(ThreeQueries, AreDesignedFromNothing) {
  diagram->Clear();
  EXPECT_EQ(Tree(), "main") << "an empty design holds no queries";
  const Ref<qbQuery> inner = hub->Queries()->Add(QueryDerivedTable);
  EXPECT_EQ(inner->Name(), "Query");
  EXPECT_EQ(Captions(), "Query");
  inner->Open();
  hub->AddTable("Customers");
  Tick("Customers", "Name");
  hub->Queries()->Item(1)->Open();
  Tick("Query", "Name");
  const Ref<qbQuery> member = hub->Queries()->Add(QueryMember);
  member->Open();
  hub->AddTable("Orders");
  Tick("Orders", "Total");
  member->SetOperator(QueryExcept);
  EXPECT_TRUE(Holds("EXCEPT SELECT Orders.Total FROM Orders")) << Written();
  EXPECT_TRUE(Holds("SELECT Query.Name FROM ( SELECT Customers.Name FROM Customers ) AS Query")) << Written();
  Tick("Orders", "OrderID");
  ASSERT_FALSE(sql->Remarks().empty());
  EXPECT_EQ(sql->Remarks().back(), "The query outputs 2 columns, the first one 1: servers want the same number.");
  hub->Queries()->Item(1)->Open();
  Tick("Query", "Name", false);
  hub->SortByColumn("Query", "Name", "Ascending");
  Tick("Query", "Name", false);
  EXPECT_FALSE(Holds("ORDER BY"));
  EXPECT_TRUE(std::ranges::any_of(sql->Diagnostics(), [](const SQLDiagnostic& remark) {
    return remark.kind == DiagnosticSortNotSelected;
  })) << Written();
  sql->SetSQLSyntax(SQLSyntaxAccess);
  sql->Refresh();
  EXPECT_EQ(sql->SQLStatement(), "") << "Access has no EXCEPT";
  EXPECT_EQ(sql->Diagnostics().back().kind, DiagnosticQueryNotWritten);
}

// What stands behind a query's name is said in the query where the dialect has no place for it, or not at all.
TEST_F(QueriesTest, NameTheirColumnsInEveryDialect) {
  const auto writtenIn = [&](SQLSyntaxEnum dialect) {
    sql->SetSQLSyntax(dialect);
    sql->Refresh();
    return Written();
  };
  sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
  sql->ParseSQLStatement("WITH d (a, b) AS (SELECT Name, CustomerID FROM Customers) SELECT a FROM d");
  hub->Queries()->Item("d")->SetKind(QueryDerivedTable);
  EXPECT_EQ(Written(), "SELECT d.a FROM ( SELECT Customers.Name, Customers.CustomerID FROM Customers ) AS d (a, b)");
  const std::string file = hub->SaveQueryToText();
  EXPECT_EQ(writtenIn(SQLSyntaxSQLite),
            "SELECT d.a FROM ( SELECT Customers.Name AS a, Customers.CustomerID AS b FROM Customers ) AS d");
  diagram->Clear();
  EXPECT_TRUE(hub->LoadQuery(file, true));
  EXPECT_EQ(Written(), "SELECT d.a FROM ( SELECT Customers.Name, Customers.CustomerID FROM Customers ) AS d (a, b)");
  sql->ParseSQLStatement("SELECT d.a FROM (SELECT * FROM Customers) d (a)");
  EXPECT_EQ(writtenIn(SQLSyntaxMySQL), "");
  EXPECT_EQ(sql->Remarks().back(), "The dialect has no d (a) here.");
}

TEST_F(QueriesTest, HaveNoMoreNamesThanColumns) {
  sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
  for (const char* statement : {"WITH d (a, b) AS (SELECT Name FROM Customers) SELECT a FROM d",
                                "SELECT a FROM (SELECT Name FROM Customers) AS d (a, b)"}) {
    sql->ParseSQLStatement(statement);
    ASSERT_EQ(sql->Remarks().size(), 1u) << statement;
    EXPECT_EQ(sql->Remarks().front(), "d names more columns (2) than its query outputs (1): servers refuse that.");
  }
  sql->ParseSQLStatement("WITH d (a, b) AS (SELECT * FROM Customers) SELECT a FROM d");
  EXPECT_EQ(sql->Remarks().size(), 0u);
}

TEST_F(QueriesTest, OfAUnionAreComparedByTheKindsOfTheirValues) {
  source->Table("People", {});
  source->Column("People", "PersonID", 1);
  source->Column("People", "Label", 2, {}, DataTypeCode::VarWChar);
  Use();
  sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
  sql->ParseSQLStatement(
      "SELECT Label, PersonID n, 1 FROM People UNION SELECT PersonID, PersonID p, Label FROM People "
      "UNION SELECT Label, Label x, 'x' FROM People");
  const auto remarks = sql->Remarks();
  ASSERT_EQ(remarks.size(), 2u) << remarks.back();
  EXPECT_EQ(remarks[0],
            "Column 1, \"PersonID\", holds values of another kind than \"Label\" of the first query: "
            "servers may refuse that.");
  EXPECT_EQ(remarks[1],
            "Column 2, \"x\", holds values of another kind than \"n\" of the first query: servers may "
            "refuse that.");
  hub->Queries()->Item(3)->Open();
  EXPECT_EQ(sql->Remarks().size(), 2u) << "whichever is shown";
  sql->SetSQLSyntax(SQLSyntaxSQLite);
  sql->Refresh();
  EXPECT_EQ(sql->Remarks().size(), 0u) << "its columns have no types";
}

// A statement takes over the boxes of what it names, and no others.
TEST_F(QueriesTest, ATypedStatementTakesTheBoxesThatMeanTheSame) {
  source->Table("Parts", {"Number"}, "shop");
  source->Literal("SCHEMA_SEPARATOR", ".");
  Use();
  sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
  const struct {
    const char* first;
    const char* then;
    const char* kept;  // the boxes that stay where they stand, with their columns
  } kCases[] = {
      {"SELECT Total FROM Orders o", "SELECT Total FROM Orders", "Orders(* OrderID! CustomerID Total)"},
      {"SELECT o.Total FROM Orders o, Orders", "SELECT Orders.Total FROM Orders, Orders O",
       "Orders(* OrderID! CustomerID Total) O(* OrderID! CustomerID Total)"},
      {"SELECT o.Name FROM (SELECT Name FROM Customers) o", "SELECT p.Name FROM (SELECT Name FROM Customers) p", ""},
      {"SELECT o.Name FROM (SELECT Name FROM Customers) o", "SELECT o.CustomerID FROM (SELECT * FROM Customers) o",
       "o(* CustomerID Name)"},
      // What a query was called is a table now, and the other way round.
      {"SELECT Orders.CustomerID FROM (SELECT CustomerID FROM Customers) Orders", "SELECT CustomerID FROM Orders", ""},
      {"WITH Orders AS (SELECT Name FROM Customers) SELECT Name FROM Orders", "SELECT CustomerID FROM Orders", ""},
      {"WITH Orders AS (SELECT Name FROM Customers), d AS (SELECT Name FROM Customers) SELECT d.Name FROM Orders, d",
       "WITH d AS (SELECT Name FROM Customers) SELECT Orders.CustomerID FROM Orders, d", "d(* Name)"},
      {"SELECT CustomerID FROM Orders", "SELECT Orders.CustomerID FROM (SELECT CustomerID FROM Customers) Orders",
       "Orders(* CustomerID)"},
      {"SELECT CustomerID FROM Orders", "WITH Orders AS (SELECT Name FROM Customers) SELECT Name FROM Orders",
       "Orders(* Name)"},
      {"SELECT Number FROM shop.Parts", "SELECT Parts.Name FROM (SELECT Name FROM Customers) Parts", ""},
  };
  for (const auto& one : kCases) {
    SCOPED_TRACE(std::string(one.first) + " -> " + one.then);
    diagram->Clear();
    sql->ParseSQLStatement(one.first);
    for (const Ref<qbEntity>& table : *diagram->Entities()) table->SetTop(4321);
    sql->ParseSQLStatement(one.then);
    std::string kept;
    for (const Ref<qbEntity>& table : *diagram->Entities()) {
      if (table->Top() == 4321) kept += (kept.empty() ? "" : " ") + table->Caption() + "(" + Items(*table) + ")";
    }
    EXPECT_EQ(kept, one.kept) << Written();
    const std::string written = sql->SQLStatement();
    diagram->Clear();
    sql->ParseSQLStatement(one.then);
    EXPECT_EQ(sql->SQLStatement(), written) << "whatever was there before";
  }
}

TEST_F(QueriesTest, AreAThousandAtMost) {
  sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
  const auto statement = [](const std::string& member, int count) {
    std::string text = "SELECT Name FROM Customers";
    for (int i = 0; i < count; ++i) text += member;
    return text;
  };
  const std::string member = " UNION SELECT Name FROM Customers";
  std::string told;
  try {
    sql->ParseSQLStatement(statement(member, 1000));
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorParsingText);
    told = error.Description();
  }
  EXPECT_NE(told.find("holds more than 1000 queries"), std::string::npos) << told;
  hub->SetState(InfoDone);
  EXPECT_EQ(Tree(), "main");
  sql->ParseSQLStatement(statement(member, 998));
  hub->Queries()->Add(QueryMember);
  EXPECT_EQ(test::ErrorOf([&] { hub->Queries()->Add(QueryMember); }), ErrorInvalidCall);
  EXPECT_EQ(test::ErrorOf([&] { hub->Queries()->AddInCell(1, "criteria"); }), ErrorInvalidCall);
}

TEST_F(ThreeQueries, ASavedQueryBecomesOneInFrom) {
  const std::string saved = hub->SaveQueryToText();
  const std::string design = "SELECT Name FROM Customers";
  const auto damaged = [&](const std::string& before, const std::string& after) {
    std::string text = saved;
    return text.replace(text.find(before), before.size(), after);
  };
  hub->Queries()->Item(1)->Open();
  sql->ParseSQLStatement(design);
  const std::string before = hub->SaveQueryToText();
  for (const std::string& file : {std::string(), std::string("nonsense\0\1", 10), damaged("SQLSyntax=5", "SQLSyntax=1"),
                                  damaged("SQLSyntax=5", "SQLSyntax=x"), damaged("FROM  \t\t\tOrders", "FROM  Nosuch"),
                                  damaged("End SQLData", "SQLStatement=SELECT 1")}) {
    EXPECT_EQ(test::ErrorOf([&] { hub->Queries()->AddSaved(file, true); }), ErrorLoadingQuery);
    EXPECT_EQ(hub->SaveQueryToText(), before);
  }
  const Ref<qbQuery> added = hub->Queries()->AddSaved(saved, true);
  EXPECT_EQ(Tree(), "main, Query:from main, r:with Query, d:from Query");
  EXPECT_EQ(Items(*diagram->Entities()->Item("Query")), "* Name n Total");
  EXPECT_EQ(added->SQLStatement(), statement);
  EXPECT_TRUE(hub->Undo());
  EXPECT_EQ(hub->SaveQueryToText(), before);
}

// --- Menus ---

TEST_F(QueriesTest, AreOpenedRenamedMovedAndRemovedByTheirMenus) {
  sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
  sql->ParseSQLStatement(
      "WITH r AS (SELECT Name FROM Customers), s AS (SELECT Name FROM Customers) SELECT r.Name FROM r, s "
      "UNION SELECT Name FROM Customers");
  const std::int32_t id = hub->Queries()->Item("r")->Id();
  EXPECT_TRUE(MenuOfQuery(*hub, 99).empty());
  EXPECT_TRUE(test::Enabled(MenuOfQuery(*hub, 0)).empty()) << "the one that is shown";
  EXPECT_EQ(test::Enabled(MenuOfQuery(*hub, id)), "Open Query, Rename Query..., Move into FROM, Remove Query");
  test::Choose(MenuOfQuery(*hub, id), "Open Query");
  EXPECT_EQ(Shown(), "r: Customers");
  EXPECT_EQ(test::Enabled(MenuOfQuery(*hub, 0)), "Open Query");

  // A name is asked for, and which ones are none.
  HeadlessDialogs& dialogs = toolkit->GetDialogs();
  const auto answer = [&](std::optional<std::string> name) {
    dialogs.onShowTextPrompt = [name](const TextDialog& dialog) {
      EXPECT_EQ(dialog.text, "r");
      EXPECT_EQ(dialog.problem(" "), "The query needs a name.");
      EXPECT_EQ(dialog.problem("S"), "Another query is called S.");
      EXPECT_EQ(dialog.problem("R"), "");
      return name;
    };
    test::Choose(MenuOfQuery(*hub, id), "Rename Query...");
  };
  answer(std::nullopt);
  EXPECT_EQ(Tree(), "main, r:with main, s:with main, member:member main");
  answer("t");
  EXPECT_EQ(Tree(), "main, t:with main, s:with main, member:member main");
  const Menu before = MenuOfQuery(*hub, id);
  test::Choose(before, "Move into FROM");
  EXPECT_EQ(Tree(), "main, t:from main, s:with main, member:member main");
  test::Choose(MenuOfQuery(*hub, id), "Turn into Common Table Expression");
  EXPECT_EQ(Tree(), "main, t:with main, s:with main, member:member main");
  EXPECT_EQ(test::Enabled(MenuOfQuery(*hub, hub->Queries()->Item(4)->Id())), "Open Query, Remove Query");
  EXPECT_EQ(test::Enabled(MenuOfNewQueries(*hub)),
            "New Subquery, New Common Table Expression, Add UNION Member, Go to Outer Query")
      << "in one that belongs to another";
  EXPECT_TRUE(LeaveQuery(*hub));
  test::Choose(MenuOfQuery(*hub, id), "Remove Query");
  EXPECT_EQ(Tree(), "main, s:with main, member:member main");
  test::Choose(before, "Move into FROM");  // of a menu that was open meanwhile: nothing happens
  EXPECT_EQ(Tree(), "main, s:with main, member:member main");
  EXPECT_TRUE(hub->Undo());
  EXPECT_EQ(Tree(), "main, t:with main, s:with main, member:member main");
}

}  // namespace
}  // namespace zrqrybld
