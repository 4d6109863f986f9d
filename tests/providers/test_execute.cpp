// The whole way: connect, list, add tables, draw joins, tick, generate, and run the statement on the source.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/data_table.h"
#include "tests/providers/provider_test.h"
#include "tests/schema_text.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

using test::Difference;
using test::Sorted;

class ProviderStatement : public test::ProviderTest {
 protected:
  void SetUp() override {
    ProviderTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    auto toolkit = std::make_shared<HeadlessToolkit>();
    test::RegisterProviders(*toolkit->Providers());
    hub_ = qbQueryBuilder::Create(toolkit);
    hub_->SetDiagramPane(diagram_);
    hub_->SetGridPane(grid_);
    hub_->SetSQLPane(sql_);
    grid_->SetShowGroupBy(false);
    sql_->SetSQLSyntax(SQLSyntaxMSSQL);
    hub_->SetGetTablesOnConnect(true);
    hub_->Connect(source_->connectionString);
    ASSERT_FALSE(hub_->LastError()) << hub_->LastError()->Description();
    if (source_->Has(Difference::SchemaIsPublic)) prefix_ = "public.";
    if (source_->Has(Difference::SchemaIsDatabase)) prefix_ = "zr_test.";
  }

  Ref<qbEntity> Add(const std::string& table) {
    const Ref<qbEntity> entity = TablePicker(hub_).AddTable(prefix_ + table);
    EXPECT_TRUE(entity && entity->Items()->Count() > 1) << table;
    return entity;
  }

  static void Tick(const Ref<qbEntity>& entity, const std::string& column) {
    const Ref<qbEntityItem> item = entity->Items()->Item(column);
    ASSERT_TRUE(item) << column;
    item->SetChecked(true);
  }

  // The rows that the generated statement gives on the source, sorted.
  std::string Run() {
    const std::string statement = sql_->SQLStatement();
    try {
      return Sorted(source_->run(statement));
    } catch (const std::exception& error) {
      return statement + error.what();
    }
  }

  std::size_t JoinCount() const {
    std::size_t joins = 0;
    for (std::int32_t i = 1; i <= diagram_->Entities()->Count(); ++i) {
      joins += static_cast<std::size_t>(diagram_->Entities()->Item(i)->Relationships()->Count());
    }
    return joins;
  }

  std::string prefix_;
  Ref<qbQueryBuilder> hub_;
  Ref<qbDiagramPane> diagram_ = qbDiagramPane::Create();
  Ref<qbGridPane> grid_ = qbGridPane::Create();
  Ref<qbSQLPane> sql_ = qbSQLPane::Create();
};

INSTANTIATE_TEST_SUITE_P(All, ProviderStatement, testing::ValuesIn(test::SourceNames()),
                         [](const auto& test) { return test.param; });

TEST_P(ProviderStatement, EveryListedTableCanBeAddedAndRead) {
  const TableLists lists = TablePicker(hub_).ListTables();
  EXPECT_EQ(lists.tables.size(), 14U);
  EXPECT_EQ(lists.views, std::vector<std::string>{prefix_ + "Order Sums"});
  std::vector<std::string> names = lists.tables;
  names.insert(names.end(), lists.views.begin(), lists.views.end());
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    diagram_->Clear();
    const Ref<qbEntity> entity = TablePicker(hub_).AddTable(name);
    ASSERT_TRUE(entity);
    ASSERT_GT(entity->Items()->Count(), 1);
    for (std::int32_t i = 2; i <= entity->Items()->Count(); ++i) entity->Items()->Item(i)->SetChecked(true);
    EXPECT_NO_THROW(source_->run(sql_->SQLStatement())) << sql_->SQLStatement();
  }
}

TEST_P(ProviderStatement, JoinsFromForeignKeysFindTheRowsThatBelongTogether) {
  const Ref<qbEntity> details = Add("Order Details");
  const Ref<qbEntity> order = Add("Order");
  const Ref<qbEntity> currency = Add("Währungen");
  const Ref<qbEntity> returns = Add("Returns");
  EXPECT_TRUE(details->Items()->Item("Line No")->Bold());
  EXPECT_FALSE(details->Items()->Item("Amount")->Bold());
  hub_->RefreshAutoJoins();
  EXPECT_EQ(JoinCount(), 4U);  // the key of two columns counts twice
  Tick(order, "OrderID");
  Tick(order, "Select");
  Tick(details, "Line No");
  Tick(currency, "Kürzel");
  Tick(returns, "ReturnID");
  EXPECT_EQ(Run(), "1|a|2|EUR|1\n") << sql_->SQLStatement();
}

TEST_P(ProviderStatement, ATableThatRefersToItselfIsJoinedToItsCopy) {
  const Ref<qbEntity> staff = Add("Staff");
  const Ref<qbEntity> boss = Add("Staff");
  hub_->RefreshAutoJoins();
  EXPECT_EQ(JoinCount(), 1U);
  Tick(staff, "Name");
  Tick(boss, "Name");
  EXPECT_EQ(Run(), "Björn|Ada\nCem|Ada\n") << sql_->SQLStatement();
}

TEST_P(ProviderStatement, NamesWithEveryKindOfQuoteAreWrittenSoThatTheSourceReadsThem) {
  const std::string name = "a\"b'c`d;[e]";
  const Ref<qbEntity> child = Add(name);
  const Ref<qbEntity> parent = Add(name);
  hub_->RefreshAutoJoins();
  EXPECT_EQ(JoinCount(), 1U);
  Tick(child, "x\"y'z`w");
  Tick(parent, "x\"y'z`w");
  EXPECT_EQ(Run(), "2|1\n") << sql_->SQLStatement();
}

// What the formatter makes of a criterion for each type is read by the source, and chooses the rows that are meant.
TEST_P(ProviderStatement, CriteriaOfEveryTypeChooseTheRowsThatAreMeant) {
  const std::string blob = source_->name == "PostgreSql" ? R"('\x1FE4')" : "X'1FE4'";
  source_->query(
      R"(INSERT INTO "Kinds" VALUES (10, 1, 5, 1.5, 12.345, 'abcde', 'O''Brien', 'long "text"', )" + blob +
      R"(, '2020-01-31', '10:30:00', '2020-01-31 10:15:00', TRUE), (20, 2, 9000000000, 2.5, -1, 'x', 'Müller & Söhne',
         'a text', NULL, '2021-06-01', '23:59:59', '2021-06-01 00:00:00', FALSE),
         (-1, 3, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL))");
  grid_->SetDateFormat("yyyy-mm-dd");
  const Ref<qbEntity> kinds = Add("Kinds");
  for (const test::Row& row : test::ReadRows("criteria_run.txt")) {
    SCOPED_TRACE(row.place + " " + row[0] + " " + row[1]);
    grid_->ResetRows();
    grid_->SetFieldOutput("Int", true, kinds->Caption());
    grid_->SetFieldOutput(row[0], true, kinds->Caption());
    const std::int32_t criterion = row[0] == "Int" ? 1 : 2;
    grid_->Grid()->GotoRowCol(criterion, "criteria");
    grid_->SetValue(criterion, "criteria", row[1]);
    grid_->FinishEdit();
    grid_->SetValue(2, "output", false);
    const std::string answer = Run();
    std::string rows;
    for (const std::string_view line : Split(answer, "\n"))
      rows += (rows.empty() || line.empty() ? "" : " ") + std::string(line);
    EXPECT_EQ(rows, row[2]) << sql_->SQLStatement();
  }
  source_->query(R"(DELETE FROM "Kinds")");
}

TEST_P(ProviderStatement, ATableDroppedAfterTheListingIsAddedWithoutColumns) {
  source_->query(R"(CREATE TABLE "Doomed" ("a" INTEGER))");
  const TableLists lists = TablePicker(hub_).ListTables();
  EXPECT_EQ(std::ranges::count(lists.tables, prefix_ + "Doomed"), 1);
  source_->query(R"(DROP TABLE "Doomed")");
  const Ref<qbEntity> entity = hub_->AddTable(prefix_ + "Doomed");
  ASSERT_TRUE(entity);
  EXPECT_EQ(entity->Items()->Count(), 1);
  EXPECT_FALSE(hub_->HasTable(prefix_ + "Doomed"));
  EXPECT_TRUE(hub_->HasTable(prefix_ + "Order"));
}

TEST_P(ProviderStatement, TheTablesReadOnConnectingAreTheListedOnes) {
  std::vector<std::string> read;
  for (const SourceTable& table : hub_->SourceTables()) {
    EXPECT_FALSE(table.columns.empty()) << table.name;
    if (!table.name.starts_with("sqlite_")) read.push_back(table.name);
  }
  std::ranges::sort(read);
  TableLists lists = TablePicker(hub_).ListTables();
  lists.tables.insert(lists.tables.end(), lists.views.begin(), lists.views.end());
  std::vector<std::string> listed;
  for (const std::string& name : lists.tables) listed.push_back(name.substr(prefix_.size()));
  std::ranges::sort(listed);
  EXPECT_EQ(read, listed);
}

}  // namespace
}  // namespace zrqrybld
