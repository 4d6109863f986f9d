// Statements that try to do more than read, in every mode of a session that changes how a text is read.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/data_table.h"
#include "tests/providers/provider_test.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/odbc/odbc_runner.h"
#include "zrqrybld/adapters/sqlite/sqlite_runner.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

// The way past the reading of the text.
struct Sender : QueryRunner {
  using QueryRunner::Start;
};

class HostileStatements : public test::ProviderTest {
 protected:
  void SetUp() override {
    ProviderTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    std::filesystem::permissions(folder_.Path(), std::filesystem::perms::all);  // the server's user may write, too
    source_->query("CREATE TABLE victim (a INTEGER)");
    source_->query("INSERT INTO victim VALUES (1), (2), (3)");
  }
  void TearDown() override {
    if (source_ && source_->missing.empty()) source_->query("DROP TABLE IF EXISTS victim");
  }

  bool IsMeant(const std::string& name) const { return GetParam().starts_with(name); }
  // What new sessions begin with; "" puts it back.
  void SetMode(const std::string& mode) const {
    if (GetParam() == "PostgreSql") {
      source_->run("ALTER ROLE CURRENT_USER " +
                   (mode.empty() ? "RESET standard_conforming_strings" : "SET standard_conforming_strings = " + mode));
    }
    if (GetParam() == "MariaDb") {
      source_->run("SET GLOBAL sql_mode = " + (mode.empty() ? "DEFAULT" : "'" + (mode == "-" ? "" : mode) + "'"));
    }
  }
  std::unique_ptr<QueryRunner> Open() const {
    const ConnectionString parsed(source_->connectionString);
    return GetParam() == "Sqlite" ? OpenSqliteRunner(parsed) : OpenOdbcRunner(parsed);
  }
  std::string Outcome(const std::string& sql) const {
    try {
      const std::unique_ptr<QueryRunner> runner = Open();
      runner->Execute(sql, DialectFor(SQLSyntaxMSSQL));
      std::vector<ResultRow> rows;
      runner->Fetch(9, rows);
      std::string text;
      for (const ResultRow& row : rows) {
        for (const ResultValue& value : row) text += (text.empty() ? "" : "|") + value.text;
      }
      return text;
    } catch (const Error& error) {
      return "!" + error.Description();
    }
  }
  // What is left when the reading of the text has failed: one statement, in a transaction that only reads.
  void SendUnread(const std::string& sql) const {
    try {
      const std::unique_ptr<QueryRunner> runner = Open();
      (runner.get()->*&Sender::Start)(sql);
      std::vector<ResultRow> rows;
      runner->Fetch(9, rows);
    } catch (const Error&) {
      // As it should be.
    }
  }
  void ExpectNothingHappened() const {
    EXPECT_EQ(source_->query("SELECT count(*) FROM victim"), "3\n");
    EXPECT_TRUE(std::filesystem::is_empty(folder_.Path()));
  }

  test::TemporaryFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(All, HostileStatements, testing::ValuesIn(test::SourceNames()),
                         [](const auto& test) { return test.param; });

TEST_P(HostileStatements, ReadOrAreRefusedInEveryMode) {
  const std::string file = (folder_.Path() / "made").string();
  int run = 0;
  for (const test::Row& row : test::ReadRows("hostile_statements.txt")) {
    if (!IsMeant(row[0])) continue;
    SCOPED_TRACE(row.place);
    ++run;
    SetMode(row[1]);
    const std::string sql = ReplaceAll(row[2], "{file}", file);
    const std::string outcome = Outcome(sql);
    const std::string wanted = ReplaceAll(row[3], "{file}", file);
    const bool met = wanted.starts_with('!')
                         ? outcome.starts_with('!') && outcome.find(wanted.substr(1)) != std::string::npos
                         : TrimWhite(outcome) == wanted;
    EXPECT_TRUE(met) << outcome;
    if (row[2].find("{file}") == std::string::npos) SendUnread(sql);
    ExpectNothingHappened();
  }
  SetMode("");
  EXPECT_GT(run, 8);
}

}  // namespace
}  // namespace zrqrybld
