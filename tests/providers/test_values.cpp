// Values stay values on the servers themselves, in each mode in which they read texts in another way.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "tests/data_table.h"
#include "tests/providers/odbc_executor.h"
#include "tests/providers/provider_test.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/parameter_form.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

struct Mode {
  const char* source;
  const char* set;    // for connections from now on
  const char* reset;  // as it was
};
constexpr Mode kModes[] = {
    {"Sqlite", "", ""},
    {"SqliteOdbc", "", ""},
    {"PostgreSql", "", ""},
    {"PostgreSql", "ALTER ROLE tester SET standard_conforming_strings = off",
     "ALTER ROLE tester RESET standard_conforming_strings"},
    {"MariaDb", "", ""},
    {"MariaDb", "SET GLOBAL sql_mode = 'NO_BACKSLASH_ESCAPES'", "SET GLOBAL sql_mode = DEFAULT"},
    {"MariaDb", "SET GLOBAL sql_mode = 'ANSI_QUOTES'", "SET GLOBAL sql_mode = DEFAULT"},
    {"MariaDb", "SET GLOBAL sql_mode = 'ANSI_QUOTES,NO_BACKSLASH_ESCAPES'", "SET GLOBAL sql_mode = DEFAULT"},
};

// A source in one of its modes, with a table that statements would like to empty.
class HostileValues : public testing::TestWithParam<Mode> {
 protected:
  void SetUp() override {
    source_ = &test::GetSource(GetParam().source);
    if (!source_->missing.empty()) {
      if (test::MustHaveSources()) FAIL() << source_->name << ": " << source_->missing;
      GTEST_SKIP() << "No " << source_->name << ": " << source_->missing;
    }
    if (*GetParam().set) source_->run(GetParam().set);
    auto toolkit = std::make_shared<HeadlessToolkit>();
    test::RegisterProviders(*toolkit->Providers());
    hub_ = qbQueryBuilder::Create(toolkit);
    hub_->SetDiagramPane(diagram_);
    hub_->SetGridPane(grid_);
    hub_->SetSQLPane(sql_);
    grid_->SetShowGroupBy(false);
    sql_->SetSQLSyntax(SQLSyntaxMSSQL);
    hub_->Connect(source_->connectionString);
    ASSERT_FALSE(hub_->LastError()) << hub_->LastError()->Description();
    const bool isOdbc = FindNoCase(source_->connectionString, "Driver=") != std::string::npos;
    // MariaDB's driver sends several statements in one text only when it is asked to.
    if (isOdbc) executor_ = std::make_unique<test::OdbcExecutor>(source_->connectionString + ";Option=67108864");
    Run("CREATE TABLE victim (id INTEGER, name VARCHAR(60))");
    for (const char* name : {"C:\\temp\\", "O'Brien", "a\\b"}) {
      Run(Put("INSERT INTO victim VALUES (" + std::to_string(++rows_) + ", ?PARAM(v,,,text))", name));
    }
  }

  void TearDown() override {
    if (!source_->missing.empty()) return;
    if (rows_ > 0) Run("DROP TABLE victim");
    if (*GetParam().reset) source_->run(GetParam().reset);
  }

  std::string Run(const std::string& sql) { return executor_ ? executor_->Query(sql) : source_->run(sql); }

  std::string Put(const std::string& sql, const std::string& value) const {
    const auto count = static_cast<std::size_t>(ScanParameters(sql, nullptr).parameters->Count());
    const bool typed = FindNoCase(sql, ",text)") != std::string::npos;
    const SnapshotType type = typed ? TypeOfParameter("text", *hub_->DataTypes()) : SnapshotType{};
    return PutInLiterals(sql, std::vector<ParameterValue>(count, {.text = value, .type = type}), LiteralRulesOf(*hub_));
  }

  bool IsFor(const std::string& sources) const {
    const std::string_view name = std::string_view(source_->name).substr(0, 6);  // both ways to SQLite are one
    return sources == "all" || sources.find(name) != std::string::npos;
  }

  std::string Rows(const std::string& answer) const {
    std::string rows;
    for (const std::string_view line : Split(answer, "\n"))
      rows += (rows.empty() || line.empty() ? "" : " ") + std::string(line);
    return rows;
  }

  const test::Source* source_ = nullptr;
  std::unique_ptr<test::OdbcExecutor> executor_;
  int rows_ = 0;
  Ref<qbQueryBuilder> hub_;
  Ref<qbDiagramPane> diagram_ = qbDiagramPane::Create();
  Ref<qbGridPane> grid_ = qbGridPane::Create();
  Ref<qbSQLPane> sql_ = qbSQLPane::Create();
};

INSTANTIATE_TEST_SUITE_P(All, HostileValues, testing::ValuesIn(kModes),
                         [](const auto& test) { return std::string(test.param.source) + std::to_string(test.index); });

TEST_P(HostileValues, StayValuesOrAreRefusedWhereverTheyStand) {
  std::vector<std::string> values;
  int taken = 0;
  for (const test::Row& row : test::ReadRows("hostile_values.txt")) {
    if (row[0] == "value") values.push_back(row[1]);
    if (row[0] != "at" || !IsFor(row[3])) continue;
    const std::string& fate = row[1];
    for (const std::string& value : values) {
      SCOPED_TRACE(row.place + " " + row[4] + " with " + value);
      std::string statement;
      try {
        statement = Put(row[4], value);
      } catch (const Error& error) {
        EXPECT_EQ(error.Number(), ErrorInvalidPropertyValue);
        EXPECT_NE(fate, "taken") << error.Description();
        continue;
      }
      EXPECT_NE(fate, "refused") << statement;
      ++taken;
      try {
        const std::string rows = Run(statement);
        const std::string& wanted = row[2] == "value" ? value : row[2];
        if (wanted != "any") {
          EXPECT_EQ(rows.substr(0, rows.rfind('\n')), wanted) << statement;
        }
      } catch (const std::exception& error) {
        EXPECT_EQ(fate, "free") << statement << "\n" << error.what();
      }
    }
    ASSERT_EQ(Rows(Run("SELECT COUNT(*) FROM victim")), "3") << row.place << " " << row[4];
  }
  EXPECT_GT(taken, static_cast<int>(7 * values.size()));
}

TEST_P(HostileValues, CriteriaChooseTheRowsThatAreMeant) {
  const Ref<qbEntity> victim = TablePicker(hub_).AddTable("victim");
  ASSERT_TRUE(victim && victim->Items()->Count() == 3);
  for (const test::Row& row : test::ReadRows("hostile_values.txt")) {
    if (row[0] != "criterion") continue;
    SCOPED_TRACE(row.place + " " + row[1]);
    grid_->ResetRows();
    grid_->SetFieldOutput("id", true, victim->Caption());
    grid_->SetFieldOutput("name", true, victim->Caption());
    grid_->SetValue(2, "output", false);
    grid_->SetValue(1, "sort_order", "1");
    grid_->Grid()->GotoRowCol(2, "criteria");
    grid_->SetValue(2, "criteria", row[1]);
    grid_->FinishEdit();
    const std::string statement = sql_->SQLStatement();
    const auto& said = sql_->Diagnostics();
    const bool told =
        std::ranges::any_of(said, [](const SQLDiagnostic& d) { return d.kind == DiagnosticUnreadableCriterion; });
    if (row[2] == "-" && told) continue;
    EXPECT_FALSE(told) << statement;
    EXPECT_EQ(Rows(Run(statement)), row[2] == "-" ? "1" : row[2]) << statement;
    EXPECT_NO_THROW(sql_->ParseSQLStatement(statement));
    EXPECT_EQ(sql_->SQLStatement(), statement) << "read back";
  }
}

TEST_P(HostileValues, NamesKeepTheirCharacters) {
  const std::string prefix = source_->Has(test::Difference::SchemaIsPublic)     ? "public."
                             : source_->Has(test::Difference::SchemaIsDatabase) ? "zr_test."
                                                                                : "";
  for (const char* name : {"100%_a\\b", "a\"b'c`d;[e]"}) {
    diagram_->Clear();
    const Ref<qbEntity> entity = TablePicker(hub_).AddTable(prefix + name);
    ASSERT_TRUE(entity && entity->Items()->Count() > 1) << name;
    entity->Items()->Item(2)->SetChecked(true);
    grid_->SetValue(1, "alias", "x\\'`\"];--");
    EXPECT_NO_THROW(Run(sql_->SQLStatement())) << sql_->SQLStatement();
  }
}

}  // namespace
}  // namespace zrqrybld
