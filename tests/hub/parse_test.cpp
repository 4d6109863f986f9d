#include "tests/data_table.h"
#include "tests/error_of.h"
#include "tests/hub_fixture.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/statement_loader.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"
#include "zrqrybld/sql/statement_parser.h"

namespace zrqrybld {
namespace {

class ParseTest : public test::HubTest {
 protected:
  // What a statement is said to mean is what the designer writes once it has read it.
  void Parse(const std::string& statement) const {
    std::string meaning;
    const bool isRead = test::ErrorOf([&] { meaning = MeaningOf(*hub, statement); }) == 0;
    sql->ParseSQLStatement(statement);
    EXPECT_TRUE(isRead) << statement;
    EXPECT_EQ(meaning, sql->SQLStatement());
  }

  std::string Options() const {
    std::string text = hub->DistinctRecords() ? "distinct " : "";
    text += hub->SelectTopRecords() + (grid->ShowGroupBy() ? "grouped" : "");
    if (hub->SkipRecords() > 0) text += (text.empty() ? "skip " : " skip ") + std::to_string(hub->SkipRecords());
    return text;
  }

  // As `Joins`, with kinds and marks.
  std::string Kinds() const {
    std::string text;
    for (std::int32_t i = 1; i <= diagram->Entities()->Count(); ++i) {
      const qbRelationships& joins = *diagram->Entities()->Item(i)->Relationships();
      for (std::int32_t j = 1; j <= joins.Count(); ++j) {
        const qbRelationship& join = *joins.Item(j);
        const bool left = join.LeftIndicator() == IndicatorImage;
        const bool right = join.RightIndicator() == IndicatorImage;
        const auto end = [](const qbEntity& entity, const Ref<qbEntityItem>& item) {
          return entity.Caption() + (item ? "." + item->Text() : "");
        };
        text += (text.empty() ? "" : " ") + end(*join.Source(), join.SourceItem()) + ">" +
                end(*join.Target(), join.TargetItem()) + " " + join.ItemData().Text() +
                (left && right ? " both"
                 : left        ? " left"
                 : right       ? " right"
                               : "");
        if (join.Comparison() != JoinEqual) text += " " + std::string(SignOf(join.Comparison()));
        if (join.Existence() != JoinReturnsRows) text += " E" + std::to_string(join.Existence());
        if (!join.Condition().empty()) text += " {" + join.Condition() + "}";
        if (join.GroupLevel() != 0) text += " (" + std::to_string(join.GroupLevel()) + ")";
      }
    }
    return text;
  }

  // A design in which a table's caption, a column and an alias have one name.
  void NameEverything(const Dialect& dialect, const std::string& table, const std::string& name) {
    const Designer fresh;
    static_cast<Designer&>(*this) = fresh;
    hub->DBKeywords()->Clear();
    hub->DBFunctions()->Clear();
    sql->SetSQLSyntax(dialect.syntax);
    const Ref<qbEntity> entity = hub->AddTable(table);
    const Ref<qbEntity> other = hub->AddTable("other");
    entity->Items()->Add(name, name);
    other->Items()->Add("c", "c");
    entity->SetCaption(name);
    const Ref<qbRelationship> join = other->Relationships()->Add(entity);
    join->SetSourceItemIndex(1);
    join->SetTargetItemIndex(1);
    grid->SetFieldOutput(name, true, name);
    grid->SetValue(1, "alias", name);
    grid->SetValue(1, "criteria", "= 1");
    grid->SetValue(1, "sort_order", "1");
    sql->Refresh();
  }

  void ExpectReadBack(const std::string& name) {
    const std::string text = sql->SQLStatement();
    EXPECT_NE(text.find(name), std::string::npos);
    try {
      Parse(text);
    } catch (const Error& error) {
      ADD_FAILURE() << text << "\n" << error.Description();
    }
    EXPECT_EQ(sql->SQLStatement(), text);
  }

  // A column of the grid: the cells of the rows in use with " / " between, criteria columns with " ~ ".
  std::vector<std::string> CriteriaKeys() const {
    std::vector<std::string> keys{"criteria"};
    for (std::int32_t i = 1; i <= grid->OrColumns(); ++i) keys.push_back("or" + std::to_string(i));
    return keys;
  }
  std::string Cells(const std::vector<std::string>& keys) const {
    std::string text;
    for (std::int32_t row = 1; row <= grid->RowCount(); ++row) {
      if (Cell(row, "column").empty()) continue;
      if (row > 1) text += "/ ";
      for (const std::string& key : keys) {
        if (Cell(row, key).empty()) continue;
        text += (text.ends_with("/ ") || text.empty() ? "" : "~ ") + Cell(row, key) + " ";
      }
    }
    while (text.ends_with(' ') || text.ends_with('/')) text.pop_back();
    return text;
  }
};

TEST_F(ParseTest, MakesTheDesignerSayWhatTheStatementSays) {
  for (const test::Record& record : test::ReadRecords("parsed.txt")) {
    SCOPED_TRACE(record.place);
    const Designer fresh;
    static_cast<Designer&>(*this) = fresh;
    Use();
    sql->SetSQLSyntax(record.Has("syntax") ? FindDialect(record["syntax"])->syntax : SQLSyntaxMSSQL);
    if (record.Has("capitals")) hub->Properties()->Set("INVALID_TABLE_CHARS", "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    if (record.Has("table")) source->Table(record["table"], {"name"});
    if (record.Has("before")) Parse(record["before"]);
    if (record.Has("reading")) {
      hub->Properties()->Set(kTextReadingLiteral, WordsOf(*UsualReading(record["reading"])));
    }
    std::string error;
    try {
      Parse(record["sql"]);
    } catch (const Error& failure) {
      EXPECT_EQ(failure.Number(), ErrorParsingText);
      error = failure.Description();
      const std::size_t cause = error.find("[40002] ");
      error = cause == std::string::npos ? error : error.substr(cause + 8);
      EXPECT_EQ(hub->state(), InfoParsingSQL);
      EXPECT_EQ(Captions(), "") << "an error changes nothing";
    }
    EXPECT_EQ(error, record.Has("error") ? record["error"] : "");
    const std::pair<const char*, std::string> actual[] = {
        {"options", Options()},
        {"tables", Captions()},
        {"joins", Kinds()},
        {"rows", Rows()},
        {"groups", Cells({"group_by"})},
        {"criteria", Cells(CriteriaKeys())},
        {"statement", Sql()},
        {"sorts", Cells({"column", "sort_type", "sort_order"})},
    };
    for (const auto& [name, text] : actual) {
      if (!record.Has(name)) continue;
      EXPECT_EQ(text, record[name]) << name;
    }
  }
}

TEST_F(ParseTest, EntitiesAndJoinsThatStayAreTheSameObjects) {
  Use();
  sql->SetSQLSyntax(SQLSyntaxMSSQL);
  const std::string statement =
      "SELECT Name FROM Customers INNER JOIN Orders ON Customers.CustomerID = Orders.CustomerID";
  Parse(statement);
  const Ref<qbEntity> customers = diagram->Entities()->Item("Customers");
  const Ref<qbRelationship> join = customers->Relationships()->Item(1);
  customers->SetLeft(4500);
  const std::string text = sql->SQLStatement();
  Parse(statement);
  EXPECT_EQ(diagram->Entities()->Item("Customers"), customers);
  EXPECT_EQ(customers->Relationships()->Item(1), join);
  EXPECT_EQ(customers->Left(), 4500);
  EXPECT_EQ(sql->SQLStatement(), text);
  EXPECT_TRUE(Item("Customers", "Name")->Checked());
  Parse("SELECT Total FROM Orders o");
  EXPECT_EQ(Captions(), "o");
  EXPECT_FALSE(customers->EntityBox());
}

TEST_F(ParseTest, AFailureChangesNothingAndLeavesTheState) {
  Use();
  sql->SetSQLSyntax(SQLSyntaxMSSQL);
  Parse("SELECT TOP 3 Name FROM Customers");
  const std::string text = sql->SQLStatement();
  std::vector<std::string> infos;
  const auto link = hub->Info.Connect([&](QueryBuilderInfoEnum& info, Variant& parameters) {
    infos.push_back(std::to_string(info) + " " + parameters.Text());
  });
  try {
    Parse("SELECT Total\r\nFROM Orders WHERE");
    FAIL() << "it was read";
  } catch (const Error& error) {
    EXPECT_EQ(
        error.Description(),
        "An error occured while parsing the text.\r\n[40002] Line 2, column 18: An expression is expected at the end "
        "of the text.");
    EXPECT_EQ(error.Offset(), 31u);
  }
  EXPECT_EQ(hub->state(), InfoParsingSQL);
  EXPECT_EQ(sql->SQLStatement(), text);
  EXPECT_EQ(Options(), "3");
  EXPECT_EQ(Rows(), "Customers.Name");
  Parse("SELECT Total FROM Orders");
  EXPECT_EQ(hub->state(), InfoDone);
  EXPECT_EQ(infos.front(), "9 SELECT Total\r\nFROM Orders WHERE");
  EXPECT_EQ(infos.back(), "0 9");

  sql->SetSQLSyntax(SQLSyntaxOpenSQL);
  const std::string before = sql->SQLStatement();
  try {
    Parse("SELECT Name FROM Customers");
    FAIL() << "it was read";
  } catch (const Error& error) {
    EXPECT_EQ(error.Description(), "Parsing not support for the selected SQL Syntax.");
  }
  EXPECT_EQ(hub->state(), InfoDone);
  EXPECT_EQ(sql->SQLStatement(), before);
}

TEST_F(ParseTest, WhatAFailureHasLeftEndsWithTheNextChange) {
  Use();
  sql->SetSQLSyntax(SQLSyntaxMSSQL);
  Parse("SELECT Name FROM Customers");
  const std::string text = sql->SQLStatement();
  const std::function<void()> kChanges[] = {
      [&] { sql->Refresh(); },
      [&] { EXPECT_EQ(sql->AddWhereClause("", ""), text); },
      [&] { hub->CancelOperation(); },
      [&] { hub->AddTable("Orders"); },
      [&] { Item("Customers", "CustomerID")->SetChecked(true); },
      [&] { hub->SetDistinctRecords(true); },
      [&] { hub->Undo(); },
  };
  for (const auto& change : kChanges) {
    EXPECT_EQ(test::ErrorOf([&] { Parse("SELECT"); }), ErrorParsingText);
    EXPECT_EQ(hub->state(), InfoParsingSQL);
    change();
    EXPECT_EQ(hub->state(), InfoDone);
    EXPECT_FALSE(sql->SQLStatement().empty());
  }
}

// Whatever a table, its copy, a column or an alias is called, the parser reads what the generator writes.
TEST_F(ParseTest, EveryWordIsANameThatIsReadBack) {
  constexpr std::string_view kWords =
      "ALIKE ALL AND ANY APPLY AS ASC BETWEEN BOTH BY CASE CAST COLLATE CONNECT COUNT CROSS CURRENT_DATE DATE DATETIME "
      "DESC "
      "DISTINCT DISTINCTROW ELSE END ESCAPE EXCEPT EXISTS FALSE FETCH FILTER FIRST FOR FROM FULL GLOB GROUP HAVING "
      "ILIKE IN "
      "INNER INTERSECT INTERVAL INTO IS ISNULL JOIN LAST LATERAL LEADING LEFT LEVEL LIKE LIMIT MATCH MINUS MODEL "
      "NATURAL "
      "NEXT NOT NOTNULL NULL NULLS OFFSET OJ ON ONLY OPTION OR ORDER OUTER OVER PERCENT PIVOT REGEXP RIGHT RLIKE ROW "
      "ROWNUM ROWS SELECT SEPARATOR SOME START SYSDATE TABLESAMPLE THEN TIES TIME TIMESTAMP TO TOP TRAILING TRUE UNION "
      "UNPIVOT UP USER USING WHEN WHERE WINDOW WITH WITHIN";
  for (const Dialect& dialect : AllDialects()) {
    if (!dialect.canBeParsed) continue;
    for (const std::string_view word : Split(kWords, " ")) {
      const std::string name(word);
      NameEverything(dialect, name, name);
      ExpectReadBack(name);
      NameEverything(dialect, "t", name);
      ExpectReadBack(name);
    }
  }
}

TEST_F(ParseTest, WithoutASourceTheColumnsAreThoseThatTheStatementNames) {
  sql->SetSQLSyntax(SQLSyntaxMSSQL);
  const std::string statement =
      "SELECT a.x FROM t AS a LEFT JOIN s.u ON s.u.i = a.i WHERE u.Y > 5 AND u.y < 9 AND a.z GLOB 'z'";
  Parse(statement);
  EXPECT_EQ(Kinds(), "a.i>s.u.i 2 left");
  EXPECT_EQ(Rows(), "a.x -s.u.Y -s.u.Y -.a.z GLOB 'z'");  // as it is spelled first
  const std::string text = sql->SQLStatement();
  EXPECT_NE(text.find("LEFT JOIN s.u ON s.u.i = a.i"), std::string::npos) << text;
  Parse(text);
  EXPECT_EQ(sql->SQLStatement(), text);
}

// --- The text as it was typed ---

constexpr const char* kTyped =
    "-- who ordered\r\nselect c.CustomerID -- the key\r\n  from Customers c\r\n-- Germans\r\nwhere "
    "c.CustomerID > 1 /* for /* now */\r\n-- end";

// It is shown while the query is what it means; later its comments stand in front of their clauses.
TEST_F(ParseTest, KeepsWhatWasTypedWhileItIsTrue) {
  Use();
  sql->SetSQLSyntax(SQLSyntaxMSSQL);
  Parse(kTyped);
  const std::string own = sql->SQLStatement();
  EXPECT_EQ(own.find("--"), std::string::npos) << "not unless the application wants it";
  EXPECT_EQ(hub->SaveQueryToText().find("TypedStatement"), std::string::npos);
  hub->Undo();
  sql->SetKeepTypedText(true);
  sql->ParseSQLStatement(kTyped);
  EXPECT_EQ(sql->SQLStatement(), kTyped);
  EXPECT_EQ(sql->PlainStatement(), own);
  EXPECT_FALSE(sql->IsEdited());

  Tick("c", "Name");
  const std::string stale = sql->SQLStatement();
  EXPECT_EQ(stale,
            "-- who ordered\r\n-- the key\r\nSELECT \r\n\tc.CustomerID, \r\n\tc.Name\r\nFROM \r\n\tCustomers AS c\r\n"
            "-- Germans\r\n/* for / * now */\r\nWHERE \r\n\t((c.CustomerID > 1))\r\n-- end");
  Tick("c", "Name", false);
  EXPECT_EQ(sql->SQLStatement(), kTyped) << "it means this again";
  hub->Undo();
  EXPECT_EQ(sql->SQLStatement(), stale);
  const std::string file = hub->SaveQueryToText();
  hub->Undo();

  diagram->Clear();
  hub->AddTable("Orders");
  EXPECT_EQ(sql->SQLStatement().find("--"), std::string::npos) << "another query";
  hub->Undo();
  hub->Undo();
  EXPECT_EQ(sql->SQLStatement(), kTyped);

  diagram->Clear();
  EXPECT_TRUE(hub->LoadQuery(file, true));
  EXPECT_EQ(sql->SQLStatement(), stale) << "what was typed does not mean this, whatever the file says";
  Tick("c", "Name", false);
  EXPECT_EQ(sql->SQLStatement(), kTyped);
}

// A file may hold any text; it counts for what it is.
TEST_F(ParseTest, AFileCannotShowOneStatementAndDesignAnother) {
  Use();
  Parse("SELECT CustomerID FROM Customers");
  const std::string own = sql->SQLStatement();
  const std::string file = hub->SaveQueryToText();
  sql->SetKeepTypedText(true);
  for (const char* typed : {"Line1=SELECT Name FROM Customers", "Line1=DELETE FROM Customers", "Line1=", "Line2=x",
                            "Line1=SELECT CustomerID FROM Customers; DROP TABLE Customers"}) {
    diagram->Clear();
    const std::string hostile = file + "\r\nBegin TypedStatement\r\n" + typed + "\r\nLineCount=1\r\nEnd TypedStatement";
    EXPECT_TRUE(hub->LoadQuery(hostile, true)) << typed;
    EXPECT_EQ(sql->SQLStatement(), own) << typed;
  }
  // What one source reads as a comment is one to all of them: nothing in it is ever a statement.
  hub->Properties()->Set(kTextReadingLiteral, WordsOf(*UsualReading("PostgreSQL")));
  diagram->Clear();
  EXPECT_TRUE(
      hub->LoadQuery(file + "\r\nBegin TypedStatement\r\nLine1=/* /* */; DROP TABLE x */ SELECT 1\r\nLineCount=1\r\n"
                            "End TypedStatement",
                     true));
  EXPECT_TRUE(sql->SQLStatement().starts_with("/* / * * /; DROP TABLE x */\r\n")) << sql->SQLStatement();
  EXPECT_EQ(sql->PlainStatement(), own);
  sql->SetSQLSyntax(SQLSyntaxAccess);
  sql->Refresh();
  EXPECT_EQ(sql->SQLStatement().find("/*"), std::string::npos) << "it has no comments";
  sql->SetSQLSyntax(SQLSyntaxMSSQL);
  EXPECT_EQ(
      test::ErrorOf([&] { hub->LoadQuery("Begin TypedStatement\nLine1=x\nLineCount=1e9\nEnd TypedStatement", true); }),
      ErrorLoadingQuery);
}

// What the designer cannot hold stands for the query when its user says so, until it is applied or taken back.
TEST_F(ParseTest, ATextThatCannotBeDrawnStandsAsItIs) {
  Use();
  constexpr const char* kUnion = "SELECT Name FROM Customers UNION SELECT 'x'";
  int told = 0;
  const EventConnection link = sql->SqlOnlyChanged.Connect([&] { ++told; });
  sql->ShowTyped(kUnion);
  EXPECT_FALSE(sql->UseAsTyped()) << "nobody has tried to apply it";
  EXPECT_FALSE(sql->ApplyEditedText());
  EXPECT_FALSE(sql->IsSqlOnly());
  EXPECT_TRUE(sql->UseAsTyped());
  EXPECT_TRUE(sql->IsSqlOnly());
  hub->AddTable("Customers");
  EXPECT_EQ(sql->SQLStatement(), kUnion);
  sql->ShowTyped("SELECT Name FROM Customers");
  EXPECT_TRUE(sql->IsSqlOnly()) << "while it is edited";
  EXPECT_TRUE(sql->ApplyEditedText());
  EXPECT_FALSE(sql->IsSqlOnly());
  EXPECT_EQ(told, 2);

  sql->ShowTyped(kUnion);
  EXPECT_EQ(hub->SaveQueryToText().find("TypedStatement"), std::string::npos);
  sql->SetKeepTypedText(true);
  const std::string file = hub->SaveQueryToText();
  sql->RevertEditedText();
  diagram->Clear();
  EXPECT_TRUE(hub->LoadQuery(file, true));
  EXPECT_TRUE(sql->IsEdited());
  EXPECT_EQ(sql->SQLStatement(), kUnion);
  sql->RevertEditedText();
  EXPECT_EQ(Rows(), "Customers.Name");
}

// Nothing a statement holds makes the designer work without end: what goes beyond is refused, and the design stays.
TEST_F(ParseTest, QueriesBeyondWhatADesignHoldsAreRefused) {
  Use();
  sql->SetSQLSyntax(FindDialect("SQLite")->syntax);
  sql->ParseSQLStatement("SELECT OrderID FROM Orders");
  const std::string before = sql->SQLStatement();
  const std::string plain = "SELECT Total FROM Orders";
  const auto nested = [&](int depth) {
    std::string text = plain;
    for (int i = 1; i < depth; ++i) text = "SELECT Total FROM (" + text + ") q";
    return text;
  };
  const auto united = [&](int count) {
    std::string text = plain;
    for (int i = 1; i < count; ++i) text += " UNION ALL " + plain;
    return text;
  };
  for (const auto& [text, most] : {std::pair{nested(101), "100"}, {united(1001), "1000"}, {united(1200), "1000"}}) {
    try {
      sql->ParseSQLStatement(text);
      ADD_FAILURE() << "more than " << most << " were read";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorParsingText);
      EXPECT_NE(error.Description().find(most), std::string::npos) << error.Description();
    }
    EXPECT_EQ(sql->SQLStatement(), before);
  }
  for (const std::string& text : {nested(100), united(1000)}) {
    EXPECT_EQ(test::ErrorOf([&] { sql->ParseSQLStatement(text); }), 0) << text.size();
  }
}

}  // namespace
}  // namespace zrqrybld
