// Designs made by chance over copies of the sample database's tables: their statements run on every source.
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <stdexcept>

#include "tests/flow/random_designs.h"
#include "tests/link_panes.h"
#include "tests/providers/provider_test.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

using test::Difference;

constexpr const char* kTables[] = {"Customers", "Order",     "Order Lines", "Products", "Categories",
                                   "Suppliers", "Employees", "Shipments",   "carriers", "Währungen"};

class ProviderDesigns : public test::ProviderTest {
 protected:
  // The other tests want to find only their own tables.
  void TearDown() override {
    if (IsSkipped() || HasFatalFailure()) return;
    for (const char* table : kTables) source_->query("DROP TABLE \"copy " + std::string(table) + "\"");
  }

  // Copies the tables under names of their own: "copy Customers" and so on.
  void CopyTables(test::Store& store) const {
    for (const char* table : kTables) {
      const std::string name = "\"copy " + std::string(table) + "\"";
      std::string columns;
      for (const test::Row& row :
           store.Run("SELECT name, type FROM pragma_table_xinfo('" + std::string(table) + "')")) {
        columns += (columns.empty() ? "\"" : ", \"") + std::get<std::string>(row[0]) + "\" " + TypeOn(row[1]);
      }
      std::string ending;  // letters are told apart, as the other sources do
      if (source_->Has(Difference::SchemaIsDatabase)) ending = " COLLATE utf8mb4_bin";
      source_->query("CREATE TABLE " + name + " (" + columns + ")" + ending);
      std::string values;
      for (const test::Row& row : store.Table(table).rows) {
        values += values.empty() ? "(" : ", (";
        for (const test::Cell& cell : row) {
          const bool text = std::holds_alternative<std::string>(cell);
          const std::string value = text ? std::get<std::string>(cell) : test::CellText(cell);
          values += (&cell == &row.front() ? "" : ",") + (text ? "'" + ReplaceAll(value, "'", "''") + "'" : value);
        }
        values += ")";
        if (values.size() > 50'000 || &row == &store.Table(table).rows.back()) {
          source_->query("INSERT INTO " + name + " VALUES " + std::exchange(values, {}));
        }
      }
    }
  }

  // Without them a join of large tables takes seconds.
  void IndexKeys() const {
    int number = 0;
    for (const test::ForeignKeyColumn& key : test::StoreForeignKeys()) {
      for (const auto& [table, column] :
           {std::pair(key.childTable, key.childColumn), {key.parentTable, key.parentColumn}}) {
        source_->query("CREATE INDEX \"copy" + std::to_string(++number) + "\" ON \"copy " + table + "\" (\"" + column +
                       "\")");
      }
    }
  }

  static std::string TypeOn(const test::Cell& type) {
    const std::string name = std::get<std::string>(type);
    if (name.starts_with("CHAR")) return "VAR" + name;  // no blanks at the end
    return name == "DATETIME"  ? "VARCHAR(30)"
           : name == "BOOLEAN" ? "SMALLINT"
           : name == "REAL"    ? "DOUBLE PRECISION"
                               : name;
  }

  std::vector<std::vector<std::string>> Run(const std::string& sql) const {
    std::vector<std::vector<std::string>> lines;
    std::string answer;
    try {
      answer = source_->run(sql);
    } catch (const std::exception& error) {
      throw std::runtime_error(error.what() + ("\n" + sql));
    }
    std::istringstream stream(answer);
    for (std::string line; std::getline(stream, line);) {
      if (line.empty()) continue;
      lines.emplace_back();
      for (const std::string_view cell : Split(line, "|")) lines.back().push_back(test::CellText(std::string(cell)));
    }
    return lines;
  }
};

INSTANTIATE_TEST_SUITE_P(Servers, ProviderDesigns, testing::Values("PostgreSql", "MariaDb"),
                         [](const auto& test) { return test.param; });

TEST_P(ProviderDesigns, GiveTheRowsThatTheyMean) {
  test::Store store;
  CopyTables(store);
  IndexKeys();
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  test::LinkPanes(*hub);
  hub->GridPane()->SetDateFormat("yyyy-mm-dd");
  test::RegisterProviders(*hub->GetToolkit().Providers());
  hub->Connect(source_->connectionString);
  ASSERT_FALSE(hub->LastError());
  const bool isMariaDb = source_->Has(Difference::SchemaIsDatabase);
  ASSERT_TRUE(hub->SourceDialect());
  EXPECT_EQ(hub->SourceDialect()->syntax, isMariaDb ? SQLSyntaxMySQL : SQLSyntaxPostgreSQL);
  const test::Target target{isMariaDb ? "zr_test.copy " : "public.copy ", !isMariaDb, hub->SourceDialect()->syntax, 700,
                            [this](const std::string& sql) { return Run(sql); }};
  std::cout << test::TryDesigns(*hub, store, target, 120, 5) << "\n";
}

}  // namespace
}  // namespace zrqrybld
