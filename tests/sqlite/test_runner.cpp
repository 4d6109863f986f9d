// Looking at rows: what may be sent to a source, what its errors tell, and SQLite itself.
#include <gtest/gtest.h>

#include "tests/data_table.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/run/error_place.h"
#include "zrqrybld/adapters/run/source_sql.h"
#include "zrqrybld/adapters/sqlite/sqlite_runner.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

TEST(SourceSql, OnlyOneSelectInWordsOfTheSourceIsSent) {
  for (const test::Row& row : test::ReadRows("source_sql.txt")) {
    SCOPED_TRACE(row.place);
    std::string objection;
    try {
      const std::size_t at = row[0].find('@');  // behind it what the session tells
      const std::string source = row[0].substr(0, at);
      const SourceMode mode =
          at == std::string::npos ? ModeOf(source) : ModeOf(source, std::string_view(row[0]).substr(at + 1));
      RequireOneSelect(row[2], mode);
      RequireSpoken(row[2], *FindDialect(row[1]), source);
    } catch (const Error& error) {
      objection = error.Description() + "@" + std::to_string(error.Offset().value_or(999));
    }
    if (row[3].empty()) {
      EXPECT_EQ(objection, "");
      continue;
    }
    const std::size_t at = row[3].find('@');
    EXPECT_NE(objection.find(row[3].substr(0, at)), std::string::npos) << objection;
    EXPECT_TRUE(objection.ends_with(row[3].substr(at))) << objection;
  }
}

TEST(ErrorPlace, IsReadFromTheServersWords) {
  for (const test::Row& row : test::ReadRows("error_places.txt")) {
    const auto place = FindErrorPlace(row[0], row[1]);
    EXPECT_EQ(place ? std::string(TrimWhite(row[1].substr(*place))) : "-", Trim(row[2])) << row.place;
  }
}

TEST(SqliteRunner, TellsItsOwnPlacesAndRefusesWhatIsNotARead) {
  const test::DatabaseFile file("CREATE TABLE t (a, d DATE); INSERT INTO t VALUES (x'', '2020-01-31')");
  const auto open = [&] { return OpenSqliteRunner(ConnectionString("Data Source=" + file.Path())); };
  const auto failure = [&](const char* sql) -> std::optional<std::size_t> {
    try {
      open()->Execute(sql, DialectFor(SQLSyntaxMSSQL));
    } catch (const Error& error) {
      return error.Offset();
    }
    return 999;
  };
  EXPECT_EQ(failure("SELECT a, nope FROM t"), 10u);
  EXPECT_EQ(failure("SELECT a FROM t WHERE a = ?"), std::nullopt) << "a parameter without a value";
  const std::unique_ptr<QueryRunner> runner = open();
  runner->Execute("SELECT a, d FROM t", DialectFor(SQLSyntaxMSSQL));
  std::vector<ResultRow> rows;
  EXPECT_FALSE(runner->Fetch(5, rows));
  EXPECT_EQ(rows.at(0).at(0).text, "0 bytes");
  EXPECT_EQ(rows.at(0).at(1).kind, ResultKind::Date);
  runner->Stop();
  EXPECT_THROW(runner->Fetch(5, rows), QueryStopped);
}

}  // namespace
}  // namespace zrqrybld
