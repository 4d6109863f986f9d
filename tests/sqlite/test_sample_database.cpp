// The sample database, and the tool that makes it from its script.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <utility>

#include "tests/data_table.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/sqlite/sqlite_provider.h"

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

TEST(SampleDatabase, HasRowsEnoughToDesignQueriesOn) {
  const test::Connection database(ZRQRYBLD_SAMPLE_DB);
  std::set<std::string> expected;
  for (const test::Row& row : test::ReadRows("sample_database.txt")) {
    const std::string relation = row[0].starts_with("(") || row[0].find(" WHERE ") != std::string::npos
                                     ? row[0]
                                     : "\"" + *expected.insert(row[0]).first + "\"";
    const int count = std::stoi(database.Query("SELECT count(*) FROM " + relation));
    EXPECT_GE(count, std::stoi(row[1])) << row.place << " " << row[0];
    EXPECT_LE(count, row[2].empty() ? count : std::stoi(row[2])) << row.place << " " << row[0];
  }
  std::set<std::string> found;
  SqliteProvider provider;
  const auto session = provider.Open(ConnectionString("Data Source=" ZRQRYBLD_SAMPLE_DB), "", "");
  for (auto rows = session->OpenSchema(SchemaKind::Tables, {}); !rows->Eof(); rows->MoveNext()) {
    if (rows->Text("TABLE_TYPE") != "SYSTEM TABLE") found.insert(rows->Text("TABLE_NAME"));
  }
  EXPECT_EQ(found, expected);
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
