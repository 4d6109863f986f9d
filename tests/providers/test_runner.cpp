// Looking at rows: each source runs one SELECT, in pieces, can be stopped, and lets nothing be written.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <thread>

#include "tests/providers/provider_test.h"
#include "zrqrybld/adapters/odbc/odbc_runner.h"
#include "zrqrybld/adapters/sqlite/sqlite_runner.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

using Clock = std::chrono::steady_clock;

class Runner : public test::ProviderTest {
 protected:
  std::unique_ptr<QueryRunner> Open() const {
    const ConnectionString parsed(source_->connectionString);
    return GetParam() == "Sqlite" ? OpenSqliteRunner(parsed) : OpenOdbcRunner(parsed);
  }
  /// The statement with names in the source's own quotes.
  std::string InSource(const std::string& sql) const {
    return GetParam() == "MariaDb" ? ReplaceAll(sql, "\"", "`") : sql;
  }
  /// "Staff" so many times beside itself: 3 to that power of rows.
  std::string Product(const std::string& what, int times) const {
    std::string sql = "SELECT " + what + " FROM ";
    for (int i = 0; i < times; ++i) sql += (i > 0 ? ", \"Staff\" t" : "\"Staff\" t") + std::to_string(i);
    return InSource(sql);
  }
  std::vector<std::string> Execute(QueryRunner& runner, const std::string& sql) const {
    return runner.Execute(sql, DialectFor(SQLSyntaxMSSQL));
  }
  /// Every row of the answer on a line: kinds and texts.
  std::string Rows(const std::string& sql) const {
    const std::unique_ptr<QueryRunner> runner = Open();
    std::string text;
    for (const std::string& name : Execute(*runner, InSource(sql))) text += name + " ";
    std::vector<ResultRow> rows;
    while (runner->Fetch(2, rows)) {
    }
    for (const ResultRow& row : rows) {
      text += "\n";
      for (const ResultValue& value : row) text += "NTndb"[static_cast<int>(value.kind)] + ("(" + value.text + ")");
    }
    return text;
  }
  /// The error of a statement that fails: its place, and its words.
  std::pair<int, std::string> Failure(const std::string& sql) const {
    try {
      return {-2, Rows(sql)};
    } catch (const Error& error) {
      return {error.Offset() ? static_cast<int>(*error.Offset()) : -1, error.Description()};
    }
  }
};

INSTANTIATE_TEST_SUITE_P(All, Runner, testing::ValuesIn(test::SourceNames()),
                         [](const auto& test) { return test.param; });

TEST_P(Runner, TellsValuesByTheirKinds) {
  EXPECT_EQ(Rows(R"(SELECT "StaffID", "Name", "Boss" FROM "Staff" ORDER BY 1;)"),
            "StaffID Name Boss \nn(1)T(Ada)N()\nn(2)T(Bj\u00f6rn)n(1)\nn(3)T(Cem)n(1)");
  source_->query(R"(DELETE FROM "Kinds")");
  const bool isPostgreSql = GetParam() == "PostgreSql";
  const std::string blob = isPostgreSql ? "'\\x00ff'" : "X'00ff'";
  source_->query(R"(INSERT INTO "Kinds" ("Small", "Dec", "Blob", "Date", "Text") VALUES (7, 1.5, )" + blob +
                 ", '2020-01-31', '" + std::string(40000, 'x') + "')");
  const std::string told = Rows(R"(SELECT "Small", "Blob", "Date", "Bool" FROM "Kinds")");
  EXPECT_EQ(told, "Small Blob Date Bool \nn(7)b(2 bytes  0x00FF)d(2020-01-31)N()");
  const std::unique_ptr<QueryRunner> runner = Open();
  Execute(*runner, InSource(R"(SELECT "Text" FROM "Kinds")"));
  std::vector<ResultRow> rows;
  runner->Fetch(1, rows);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_TRUE(rows[0][0].cut);
  EXPECT_LE(rows[0][0].text.size(), QueryRunner::kLongestText);
  EXPECT_GT(rows[0][0].text.size(), 16000u);
}

TEST_P(Runner, TheServersWordsComeWithTheirPlace) {
  for (const char* sql : {R"(SELECT "StaffID" FROM "Nowhere")", R"(SELECT "StaffID" FRM "Staff" WHERE 1 = 1)"}) {
    const auto [place, words] = Failure(sql);
    EXPECT_NE(words, "");
    const int wanted = std::string_view(sql).find("FRM") != std::string_view::npos ? 17 : 22;
    std::cout << GetParam() << ": " << place << " of " << wanted << " " << words << "\n";
    EXPECT_TRUE(place == -1 || std::abs(place - wanted) <= 9) << place << " " << words;
  }
}

// What the check of the text lets through, because only the source knows what a name does, the source refuses.
TEST_P(Runner, NothingIsWritten) {
  const std::string before = source_->query(R"(SELECT count(*) FROM "Staff")");
  for (const char* sql : {"DELETE FROM \"Staff\"", "SELECT 1; DELETE FROM \"Staff\"", "SELECT 1 AS a INTO copy"}) {
    EXPECT_GE(Failure(sql).first, 0) << sql;
  }
  if (GetParam() == "PostgreSql") {
    source_->query(
        "CREATE OR REPLACE FUNCTION spoil() RETURNS integer LANGUAGE sql AS "
        "'DELETE FROM \"Returns\"; DELETE FROM \"Staff\"; SELECT 1'");
    EXPECT_NE(Failure("SELECT spoil()").second.find("read-only"), std::string::npos);
    EXPECT_NE(Failure("SELECT nextval('none'), set_config('transaction_read_only', 'off', true)").first, -2);
  }
  if (GetParam() == "MariaDb") {
    source_->run(
        "CREATE OR REPLACE FUNCTION zr_test.spoil() RETURNS INTEGER MODIFIES SQL DATA BEGIN DELETE FROM "
        "zr_test.`Pairs`; INSERT INTO zr_test.`Pairs` VALUES (1, 1); RETURN 1; END");
    EXPECT_NE(Failure("SELECT zr_test.spoil()").second.find("READ ONLY"), std::string::npos);
    source_->run("DROP FUNCTION zr_test.spoil");
  }
  EXPECT_EQ(source_->query(R"(SELECT count(*) FROM "Staff")"), before);
}

std::size_t ResidentBytes() {
  std::ifstream file("/proc/self/statm");
  std::size_t total = 0;
  std::size_t resident = 0;
  file >> total >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

TEST_P(Runner, ALongAnswerIsReadInPieces) {
  const std::unique_ptr<QueryRunner> runner = Open();
  const std::size_t before = ResidentBytes();
  const auto start = Clock::now();
  Execute(*runner, Product("t0.\"Name\", t1.\"Name\", t2.\"Name\"", 14));
  std::vector<ResultRow> rows;
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(runner->Fetch(500, rows));
  EXPECT_EQ(rows.size(), 1500u);
  std::cout << GetParam() << ": " << std::chrono::duration<double>(Clock::now() - start).count() << " s, "
            << (ResidentBytes() - before) / 1024 << " KiB\n";
  EXPECT_LT(ResidentBytes(), before + (std::size_t{32} << 20));
}

// The most that this process has held since the last call.
std::size_t PeakBytes() {
  std::ifstream file("/proc/self/status");
  std::size_t kilobytes = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("VmHWM:")) kilobytes = std::stoul(line.substr(6));
  }
  std::ofstream("/proc/self/clear_refs") << 5;
  return kilobytes * 1024;
}

// 243 rows of a megabyte: neither the rows nor what a driver holds of them grows with the answer. A limit of the
// statement's own goes before that of MariaDB's session.
TEST_P(Runner, WideRowsAreReadWithinBounds) {
  constexpr std::size_t kMegabyte = std::size_t{1} << 20;
  const std::string wide = GetParam().starts_with("Sqlite") ? "printf('%.1000000c', 'x')" : "REPEAT('x', 1000000)";
  for (const char* limit : {"", " LIMIT 240"}) {
    if (*limit != 0 && GetParam() != "MariaDb") continue;
    const std::unique_ptr<QueryRunner> runner = Open();
    PeakBytes();
    const std::size_t before = ResidentBytes();
    Execute(*runner, Product("t0.\"Name\", " + wide + " AS w", 5) + limit);
    std::size_t count = 0;
    std::vector<ResultRow> rows;
    for (bool more = true; more; count += rows.size()) {
      rows.clear();
      more = runner->Fetch(500, rows);
      std::size_t bytes = 0;
      for (const ResultRow& row : rows) bytes += BytesOf(row);
      EXPECT_LT(bytes, QueryRunner::kBlockBytes + 2 * QueryRunner::kLongestText);
    }
    const std::size_t peak = (PeakBytes() - before) / kMegabyte;
    std::cout << GetParam() << limit << ": " << count << " rows, " << peak << " MB at most\n";
#if !defined(__SANITIZE_ADDRESS__)  // which holds back what is freed
    EXPECT_LT(peak, 150u);
#endif
    EXPECT_EQ(count < 240, runner->WasCutOff());
    EXPECT_GE(count, 60u);
  }
}

TEST_P(Runner, IsStoppedInTheMiddle) {
  for (const int delay : {0, 300}) {
    const std::unique_ptr<QueryRunner> runner = Open();
    std::atomic<bool> ended = false;
    std::thread stopper([&] {
      for (std::this_thread::sleep_for(std::chrono::milliseconds(delay)); !ended;
           std::this_thread::sleep_for(std::chrono::milliseconds(100))) {
        runner->Stop();
      }
    });
    const auto start = Clock::now();
    EXPECT_THROW(
        {
          Execute(*runner, Product("count(*)", 20));
          std::vector<ResultRow> rows;
          runner->Fetch(1, rows);
        },
        QueryStopped);
    ended = true;
    stopper.join();
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
  }
}

}  // namespace
}  // namespace zrqrybld
