// Each source's own dialect, as connecting chooses it: what is typed becomes a statement that the source runs, and that
// is read back as it was.
#include <gtest/gtest.h>

#include "tests/link_panes.h"
#include "tests/providers/odbc_executor.h"
#include "tests/providers/provider_test.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

using test::Difference;

class OwnDialect : public test::ProviderTest {
 protected:
  void SetUp() override {
    ProviderTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    hub_ = MakeHub();
    hub_->Connect(source_->connectionString);
    ASSERT_FALSE(hub_->LastError()) << hub_->LastError()->Description();
    if (source_->Has(Difference::SchemaIsPublic)) prefix_ = "public.";
    if (source_->Has(Difference::SchemaIsDatabase)) prefix_ = "zr_test.";
  }

  static Ref<qbQueryBuilder> MakeHub() {
    const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
    test::LinkPanes(*hub);
    hub->SetAutoSyntax(true);
    hub->GridPane()->SetShowGroupBy(false);
    test::RegisterProviders(*hub->GetToolkit().Providers());
    return hub;
  }

  // The first column of the answer, with blanks between.
  std::string Ask() const {
    const std::string statement = hub_->SQLPane()->SQLStatement();
    try {
      std::string values;
      const std::string rows = source_->run(statement);
      for (const std::string_view line : Split(rows, "\n")) {
        const std::string_view value = line.substr(0, line.find('|'));
        if (!value.empty()) values += (values.empty() ? "" : " ") + std::string(value);
      }
      return values;
    } catch (const std::exception& error) {
      return statement + "\n" + error.what();
    }
  }

  Ref<qbQueryBuilder> hub_;
  std::string prefix_;
};

INSTANTIATE_TEST_SUITE_P(All, OwnDialect, testing::ValuesIn(test::SourceNames()),
                         [](const auto& test) { return test.param; });

TEST_P(OwnDialect, IsChosenAndGivesTheRowsThatAreMeant) {
  const bool isPostgreSql = source_->Has(Difference::SchemaIsPublic);
  const bool isMariaDb = source_->Has(Difference::SchemaIsDatabase);
  EXPECT_EQ(hub_->SQLPane()->SQLSyntax(), isPostgreSql ? SQLSyntaxPostgreSQL
                                          : isMariaDb  ? SQLSyntaxMySQL
                                                       : SQLSyntaxSQLite);
  source_->query("DROP TABLE IF EXISTS \"own words\"");
  source_->query(
      std::string("CREATE TABLE \"own words\" (\"Id\" INTEGER PRIMARY KEY, \"Name\" VARCHAR(40), \"Day\" DATE, "
                  "\"select\" ") +
      (isPostgreSql ? "TIMESTAMP" : "DATETIME") + ", \"Flag\" BOOLEAN)");
  source_->query(
      "INSERT INTO \"own words\" VALUES (1, 'Anna', '2020-01-31', '2020-01-31 10:30:00', TRUE), "
      "(2, 'anton', '2020-02-01', '2020-02-01 00:00:00', FALSE), (3, 'Bert', '2021-12-24', NULL, NULL), "
      "(4, 'Zoë', NULL, '2021-12-24 23:59:59', TRUE)");
  const Ref<qbEntity> table = hub_->AddTable(prefix_ + "own words");
  ASSERT_TRUE(table && table->Items()->Count() == 6);
  table->Items()->Item("Id")->SetChecked(true);
  qbGridPane& grid = *hub_->GridPane();
  grid.SortRow(1, "Ascending");

  struct Case {
    const char* column;
    const char* typed;
    const char* ids;
  };
  constexpr Case kCases[] = {{"Day", "31 Jan 2020", "1"},
                             {"Day", ">= 2020-02-01", "2 3"},
                             {"Day", "BETWEEN 2020-01-01 AND '2020-12-31'", "1 2"},
                             {"Day", "NULL", "4"},
                             {"select", "2020-01-31 10:30", "1"},
                             {"select", "> 2020-01-31 10:30:00", "2 4"},
                             {"Flag", "yes", "1 4"},
                             {"Flag", "no OR NULL", "2 3"},
                             {"Name", "ILIKE an%", "1 2"},
                             {"Name", "NOT ILIKE AN%", "3 4"},
                             {"Name", "Zoë", "4"}};
  grid.SetValue(2, "table", table->Caption());  // the row whose column is set for each case
  for (const Case& c : kCases) {
    SCOPED_TRACE(std::string(c.column) + " " + c.typed);
    grid.SetValue(2, "column", c.column);
    grid.SetValue(2, "output", false);
    grid.SetValue(2, "criteria", c.typed);
    EXPECT_EQ(Ask(), c.ids);
    const std::string statement = hub_->SQLPane()->SQLStatement();
    const Ref<qbQueryBuilder> reader = MakeHub();
    reader->Connect(source_->connectionString);
    reader->SQLPane()->ParseSQLStatement(statement);
    EXPECT_EQ(reader->SQLPane()->SQLStatement(), statement);
  }
  // The same rows as the source gives for what was typed.
  const auto readBack = [&](const std::string& typed) {
    hub_->SQLPane()->ParseSQLStatement(typed);
    return Ask();
  };
  const char quote = isMariaDb ? '`' : '"';
  const std::string from = std::string(" FROM ") + quote + "own words" + quote;
  const std::string ids = std::string("SELECT ") + quote + "Id" + quote + from;
  const std::string name = std::string(1, quote) + "Name" + quote;
  if (isPostgreSql || isMariaDb) {
    source_->query("UPDATE \"own words\" SET \"Name\" = 'it''s' WHERE \"Id\" = 3");
    EXPECT_EQ(readBack(ids + " WHERE " + name + " = " + (isPostgreSql ? "E" : "") + "'it\\'s'"), "3");
  }
  if (!isMariaDb) {
    const std::string day = "\"Day\"";
    EXPECT_EQ(readBack(ids + " ORDER BY " + day + " NULLS FIRST"), "4 1 2 3");
    EXPECT_EQ(readBack(ids + " ORDER BY " + day + " NULLS LAST"), "1 2 3 4");
    EXPECT_EQ(readBack(ids + " ORDER BY " + day + " DESC NULLS LAST"), "3 2 1 4");
  }
  EXPECT_EQ(readBack(ids + " ORDER BY " + name + " DESC LIMIT 0"), "");
  hub_->SQLPane()->ParseSQLStatement(ids + " ORDER BY 1");
  hub_->SetSelectTopRecords("2");
  EXPECT_EQ(Ask(), "1 2");
  hub_->SetSkipRecords(1);
  EXPECT_EQ(Ask(), "2 3");
  hub_->SetSelectTopRecords("");
  EXPECT_EQ(Ask(), "2 3 4");
  source_->query("DROP TABLE \"own words\"");
}

// Tables of two servers, one of them seen through the other, designed and joined as if they were of one.
TEST(DataOnTwoServers, IsDesignedAsIfItWereOnOne) {
  const char* const first = std::getenv("ZRQRYBLD_TEST_POSTGRESQL");
  const char* const second = std::getenv("ZRQRYBLD_TEST_POSTGRESQL_SECOND");
  if (!first || !second) {
    if (test::MustHaveSources()) FAIL() << "there are no two PostgreSQL servers";
    GTEST_SKIP() << "there are no two PostgreSQL servers";
  }
  test::OdbcExecutor far(second);
  far.Execute("CREATE TABLE orders (id integer PRIMARY KEY, customer integer, total numeric)");
  far.Execute("INSERT INTO orders SELECT n, n % 10, n * 1.5 FROM generate_series(1, 20000) n");
  test::OdbcExecutor near(first);
  near.Execute("CREATE TABLE customers (id integer PRIMARY KEY, name text)");
  near.Execute("INSERT INTO customers SELECT n, 'c' || n FROM generate_series(0, 11) n");
  near.Execute("CREATE EXTENSION postgres_fdw");
  const std::string port = std::string(second).substr(std::string(second).find("Port=") + 5, 5);
  near.Execute("CREATE SERVER far FOREIGN DATA WRAPPER postgres_fdw OPTIONS (host '127.0.0.1', port '" +
               port.substr(0, port.find(';')) + "', dbname 'zr_test')");
  near.Execute("CREATE USER MAPPING FOR CURRENT_USER SERVER far OPTIONS (user 'tester')");
  near.Execute("CREATE SCHEMA far");
  near.Execute("IMPORT FOREIGN SCHEMA public LIMIT TO (orders) FROM SERVER far INTO far");

  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  test::LinkPanes(*hub);
  hub->SetAutoSyntax(true);
  test::RegisterProviders(*hub->GetToolkit().Providers());
  hub->Connect(first);
  const Ref<qbEntity> customers = hub->AddTable("public.customers");
  const Ref<qbEntity> orders = hub->AddTable("far.orders");
  ASSERT_TRUE(customers && orders);
  const Ref<qbRelationship> join = orders->Relationships()->Add(customers);
  join->SetSourceItemIndex(orders->Items()->Item("customer")->Index());
  join->SetTargetItemIndex(customers->Items()->Item("id")->Index());
  join->SetItemData(1);  // all customers
  qbGridPane& grid = *hub->GridPane();
  grid.SortRow(grid.SetFieldOutput("name", true, customers->Caption()), "Ascending");
  grid.SetValue(grid.SetFieldOutput("total", true, orders->Caption()), "group_by", "Sum");
  grid.SetGroupByFunction(2, *hub->DBFunctions()->Item("SUM"));
  hub->SetSelectTopRecords("3");
  const std::string statement = hub->SQLPane()->SQLStatement();
  EXPECT_EQ(near.Query(statement), "c0|30015000.0\nc1|29988000.0\nc10|NULL\n") << statement;
  near.Execute("DROP SCHEMA far CASCADE");
  near.Execute("DROP EXTENSION postgres_fdw CASCADE");
  near.Execute("DROP TABLE customers");
}

}  // namespace
}  // namespace zrqrybld
