// The sample database, and the tool that makes it from its script.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <utility>

#include "adapters/sqlite/sqlite_provider.h"
#include "tests/sqlite/database_file.h"

namespace zrqrybld {
namespace {

using test::ReadFile;
using test::TemporaryFolder;

// Runs the tool; its exit status and what it said.
std::pair<int, std::string> MakeDatabase(const std::filesystem::path& script, const std::filesystem::path& database) {
  const std::string command =
      "\"" ZRQRYBLD_MAKE_DATABASE "\" \"" + script.string() + "\" \"" + database.string() + "\" 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return {-1, ""};
  std::string output;
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) output += static_cast<char>(c);
  return {pclose(pipe), output};
}

TEST(SampleDatabase, IsSoundAndEveryRowHasItsParents) {
  const test::Connection database(ZRQRYBLD_SAMPLE_DB);
  EXPECT_EQ(database.Query("PRAGMA integrity_check"), "ok");
  EXPECT_EQ(database.Query("PRAGMA foreign_key_check"), "");
}

TEST(SampleDatabase, HoldsItsTablesWithRowsEnoughToDesignQueriesOn) {
  const struct {
    const char* table;
    int least, most;
  } cases[] = {
      {"Categories", 5, 20},       {"Customers", 100, 300}, {"Employees", 10, 30},      {"Order", 800, 2000},
      {"Order Lines", 2000, 6000}, {"Products", 50, 200},   {"Shipments", 1500, 6000},  {"Suppliers", 5, 30},
      {"Währungen", 4, 20},        {"carriers", 3, 10},     {"OrderTotals", 800, 2000}, {"Open Order Lines", 50, 2000},
  };
  const test::Connection database(ZRQRYBLD_SAMPLE_DB);
  std::set<std::string> expected;
  for (const auto& c : cases) {
    const int count = std::stoi(database.Query("SELECT count(*) FROM \"" + std::string(c.table) + "\""));
    EXPECT_GE(count, c.least) << c.table;
    EXPECT_LE(count, c.most) << c.table;
    expected.insert(c.table);
  }
  std::set<std::string> found;
  SqliteProvider provider;
  const auto session = provider.Open(ConnectionString("Data Source=" ZRQRYBLD_SAMPLE_DB), "", "");
  for (auto rows = session->OpenSchema(SchemaKind::Tables, {}); !rows->Eof(); rows->MoveNext()) {
    if (rows->Text("TABLE_TYPE") != "SYSTEM TABLE") found.insert(rows->Text("TABLE_NAME"));
  }
  EXPECT_EQ(found, expected);
}

TEST(SampleDatabase, OuterJoinsFindRowsWithoutPartner) {
  const char* lonely[] = {
      "Customers WHERE CustomerID NOT IN (SELECT CustomerID FROM \"Order\")",
      "\"Order\" WHERE OrderID NOT IN (SELECT OrderID FROM \"Order Lines\")",
      "\"Order\" WHERE OrderID NOT IN (SELECT OrderID FROM Shipments)",
      "Products WHERE ProductID NOT IN (SELECT ProductID FROM \"Order Lines\")",
      "Products WHERE SupplierID IS NULL",
      "Suppliers WHERE SupplierID NOT IN (SELECT SupplierID FROM Products WHERE SupplierID IS NOT NULL)",
      "Categories WHERE CategoryID NOT IN (SELECT CategoryID FROM Products)",
      "Employees WHERE ReportsTo IS NULL",
      "\"Order\" WHERE EmployeeID IS NULL",
      "Shipments WHERE CarrierID IS NULL",
      "carriers WHERE carrier_id NOT IN (SELECT CarrierID FROM Shipments WHERE CarrierID IS NOT NULL)",
      "\"Währungen\" WHERE \"Kürzel\" NOT IN (SELECT \"Währung\" FROM Customers)",
  };
  const test::Connection database(ZRQRYBLD_SAMPLE_DB);
  for (const char* rows : lonely) {
    EXPECT_NE(database.Query(std::string("SELECT count(*) FROM ") + rows), "0") << rows;
  }
  EXPECT_EQ(
      database.Query("SELECT count(*) FROM \"Order Lines\" AS l WHERE Quantity < "
                     "(SELECT sum(Quantity) FROM Shipments AS s WHERE s.OrderID = l.OrderID AND s.LineNo = l.LineNo)"),
      "0")
      << "more was shipped than ordered";
}

TEST(SampleDatabase, ItsRowsAreSpreadSoThatGroupsDiffer) {
  const struct {
    const char* groups;
    int least;
  } cases[] = {
      {"(SELECT DISTINCT CustomerID FROM \"Order\")", 120},
      {"(SELECT DISTINCT ProductID FROM \"Order Lines\")", 70},
      {"(SELECT DISTINCT City FROM Customers)", 10},
      {"(SELECT DISTINCT strftime('%Y-%m', OrderDate) FROM \"Order\")", 30},
      {"(SELECT DISTINCT n FROM (SELECT count(*) AS n FROM \"Order\" GROUP BY CustomerID))", 5},
      {"(SELECT DISTINCT n FROM (SELECT count(*) AS n FROM \"Order Lines\" GROUP BY OrderID))", 4},
  };
  const test::Connection database(ZRQRYBLD_SAMPLE_DB);
  for (const auto& c : cases) {
    EXPECT_GE(std::stoi(database.Query(std::string("SELECT count(*) FROM ") + c.groups)), c.least) << c.groups;
  }
}

TEST(SampleDatabase, ItsForeignKeysAreAllSeen) {
  SqliteProvider provider;
  const auto session = provider.Open(ConnectionString("Data Source=" ZRQRYBLD_SAMPLE_DB), "", "");
  std::string text;
  for (auto rows = session->OpenSchema(SchemaKind::ForeignKeys, {}); !rows->Eof(); rows->MoveNext()) {
    text += rows->Text("FK_TABLE_NAME") + "." + rows->Text("FK_COLUMN_NAME") + " " + rows->Text("PK_TABLE_NAME") + "." +
            rows->Text("PK_COLUMN_NAME") + " " + rows->Text("ORDINAL") + "\n";
  }
  EXPECT_EQ(text,
            "Customers.Währung Währungen.Kürzel 1\n"
            "Employees.ReportsTo Employees.EmployeeID 1\n"
            "Order.CustomerID Customers.CustomerID 1\n"
            "Order.EmployeeID Employees.EmployeeID 1\n"
            "Order Lines.OrderID Order.OrderID 1\n"
            "Order Lines.ProductID Products.ProductID 1\n"
            "Products.CategoryID Categories.CategoryID 1\n"
            "Products.SupplierID Suppliers.SupplierID 1\n"
            "Shipments.CarrierID carriers.carrier_id 1\n"
            "Shipments.OrderID Order Lines.OrderID 1\n"
            "Shipments.LineNo Order Lines.LineNo 2\n");
}

TEST(MakeDatabase, TheSameScriptGivesTheSameBytes) {
  const TemporaryFolder folder;
  const auto [status, output] = MakeDatabase(ZRQRYBLD_SAMPLE_SCRIPT, folder.Path() / "again.db");
  ASSERT_EQ(status, 0) << output;
  EXPECT_TRUE(ReadFile(folder.Path() / "again.db") == ReadFile(ZRQRYBLD_SAMPLE_DB));
}

TEST(MakeDatabase, FailuresNameTheLineAndLeaveTheOldDatabase) {
  const struct {
    const char* rule;
    const char* script;
    const char* message;  // after the script's name
  } cases[] = {
      {"a syntax error at its own line", "CREATE TABLE t (\n  a,\n  b c d e !\n);\n", ":3: "},
      {"an unknown table, after comments and blank lines", "-- one\n\n/* two\n */ SELECT * FROM gone;", ":4: no such"},
      {"a failure while a statement runs, at the statement",
       "CREATE TABLE t (a PRIMARY KEY);\nINSERT INTO t VALUES (1);\n\nINSERT INTO t\nVALUES (1);", ":4: UNIQUE"},
      {"a row without its parent",
       "CREATE TABLE p (a PRIMARY KEY); CREATE TABLE c (b REFERENCES p); INSERT INTO c VALUES (1)",
       ": a row of table c has no parent"},
  };
  const TemporaryFolder folder;
  const std::filesystem::path script = folder.Path() / "script.sql";
  const std::filesystem::path database = folder.Path() / "out.db";
  for (const auto& c : cases) {
    SCOPED_TRACE(c.rule);
    std::ofstream(script) << c.script;
    std::ofstream(database) << "old";
    const auto [status, output] = MakeDatabase(script, database);
    EXPECT_NE(status, 0);
    EXPECT_NE(output.find(script.string() + c.message), std::string::npos) << output;
    EXPECT_EQ(ReadFile(database), "old");
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "out.db.tmp"));
  }
  EXPECT_NE(MakeDatabase(folder.Path() / "missing.sql", database).first, 0);
  EXPECT_EQ(ReadFile(database), "old");
}

}  // namespace
}  // namespace zrqrybld
