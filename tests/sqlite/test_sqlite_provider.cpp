// What the SQLite provider tells about a database file, and how it refuses what is none.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/schema_text.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/sqlite/sqlite_provider.h"
#include "zrqrybld/adapters/sqlite/sqlite_types.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/schema_fields.h"

namespace zrqrybld {
namespace {

using test::Ask;
using test::DatabaseFile;
using test::Execute;
using test::Table;
using test::TemporaryFolder;

std::unique_ptr<Session> OpenPath(const std::string& path) {
  SqliteProvider provider;
  return provider.Open(ConnectionString("Provider=SQLite;Data Source=" + ConnectionString::QuoteValue(path)), "", "");
}

const std::vector<std::string_view> kTable = {"TABLE_TYPE", "TABLE_NAME"};
const std::vector<std::string_view> kColumn = {"TABLE_NAME", "ORDINAL_POSITION", "COLUMN_NAME"};
const std::vector<std::string_view> kKey = {"TABLE_NAME", "ORDINAL", "COLUMN_NAME"};
const std::vector<std::string_view> kReference = {"FK_TABLE_NAME", "FK_COLUMN_NAME", "PK_TABLE_NAME", "PK_COLUMN_NAME",
                                                  "ORDINAL"};

// --- The schema ---

TEST(SqliteSchema, TellsWhatItsTableSays) {
  for (const test::Record& record : test::ReadRecords("sqlite_schema.txt")) {
    SCOPED_TRACE(record.place + " " + record["rule"]);
    if (record["script"].find("fts5") != std::string::npos && sqlite3_compileoption_used("ENABLE_FTS5") == 0) continue;
    const DatabaseFile file(record["script"]);
    std::string rows;
    try {
      rows = Ask(*OpenPath(file.Path()), record);
    } catch (const Error& error) {
      rows = "error " + std::to_string(error.Number()) + " " + error.Description().substr(0, 7) + "\n";
    }
    const std::string expected = ReplaceAll(record["rows"], "{version}", sqlite3_libversion());
    EXPECT_EQ(rows, expected.empty() ? "" : ReplaceAll(expected, "\r\n", "\n") + "\n");
  }
}

TEST(SqliteSchema, EveryNameThatSqliteAllowsIsAskedForExactly) {
  const std::string names[] = {"Order",
                               "Order Lines",
                               "a.b",
                               "it's",
                               "say \"hi\"",
                               "[x]",
                               "`y`",
                               "x; DROP TABLE t",
                               "x') OR 1=1 --",
                               "100%",
                               "_",
                               "Währungen",
                               "数据",
                               "-- c",
                               "main",
                               "NULL",
                               "?1",
                               " padded ",
                               "tab\there",
                               "line\nbreak",
                               "1st"};
  std::string script;
  const auto quoted = [](const std::string& name) {
    std::string text = "\"";
    for (const char c : name) text += c == '"' ? std::string("\"\"") : std::string(1, c);
    return text + "\"";
  };
  for (const std::string& name : names) {
    script += "CREATE TABLE " + quoted(name) + " (" + quoted(name) + " PRIMARY KEY, " + quoted(name + "2") +
              " REFERENCES " + quoted(name) + ");";
  }
  const DatabaseFile file(script);
  const std::unique_ptr<Session> session = OpenPath(file.Path());
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    EXPECT_EQ(Ask(*session, SchemaKind::Tables, kTable, Table(name)), "TABLE|" + name + "\n");
    EXPECT_EQ(Ask(*session, SchemaKind::Columns, kColumn, Table(name)),
              name + "|1|" + name + "\n" + name + "|2|" + name + "2\n");
    EXPECT_EQ(Ask(*session, SchemaKind::PrimaryKeys, kKey, Table(name)), name + "|1|" + name + "\n");
    EXPECT_EQ(Ask(*session, SchemaKind::ForeignKeys, kReference, Table(name)),
              name + "|" + name + "2|" + name + "|" + name + "|1\n");
  }
}

TEST(SqliteSchema, TheWholeSourceGivesTheSameRowsAsItsTablesOneByOne) {
  const DatabaseFile file(
      "CREATE TABLE p (x, y INT, z AS (x), PRIMARY KEY (y, x)) ; CREATE TABLE \"a b\" (k INTEGER PRIMARY KEY, f, g,"
      "FOREIGN KEY (f, g) REFERENCES p); CREATE TABLE Z (i REFERENCES \"A B\"); CREATE VIEW v AS SELECT * FROM p");
  const std::unique_ptr<Session> session = OpenPath(file.Path());
  const std::pair<SchemaKind, std::vector<std::string_view>> kinds[] = {
      {SchemaKind::Columns, {std::begin(kColumnFields), std::end(kColumnFields)}},
      {SchemaKind::PrimaryKeys, {std::begin(kPrimaryKeyFields), std::end(kPrimaryKeyFields)}},
      {SchemaKind::ForeignKeys, {std::begin(kForeignKeyFields), std::end(kForeignKeyFields)}}};
  for (const auto& [kind, fields] : kinds) {
    std::string oneByOne;
    for (const char* table : {"a b", "p", "sqlite_schema", "v", "Z"}) {
      oneByOne += Ask(*session, kind, fields, Table(table));
    }
    EXPECT_NE(oneByOne, "");
    EXPECT_EQ(Ask(*session, kind, fields), oneByOne);
  }
}

// --- Types ---

TEST(SqliteTypes, DeclarationsAreRead) {
  for (const test::Row& row : test::ReadRows("sqlite_types.txt")) {
    SCOPED_TRACE(row.place + " " + row[0]);
    const sqlite::DeclaredType type = sqlite::ReadDeclaredType(row[0]);
    const auto text = [](const std::optional<std::int32_t>& number) { return number ? std::to_string(*number) : ""; };
    const std::string facts[] = {std::to_string(static_cast<int>(type.type->code)), text(type.length),
                                 text(type.precision), text(type.scale)};
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(facts[i], i + 1 < row.cells.size() ? row[i + 1] : "") << i;
  }
}

TEST(SqliteTypes, EveryTypeOfAColumnIsFoundOnceAmongTheProvidersTypes) {
  const DatabaseFile file(
      "CREATE TABLE t (a INT, b BIGINT, c SMALLINT, d TINYINT, e REAL, f DECIMAL(9,3), g BOOLEAN, h DATE, i TIME,"
      "j DATETIME, k UUID, l CHAR(3), m VARCHAR(9), n TEXT, o BINARY(4), p VARBINARY(4), q BLOB, r, s MYSTERY)");
  const std::unique_ptr<Session> session = OpenPath(file.Path());
  std::set<std::pair<std::int32_t, bool>> known;
  for (auto types = session->OpenSchema(SchemaKind::ProviderTypes, {}); !types->Eof(); types->MoveNext()) {
    EXPECT_TRUE(known.insert({types->Value("DATA_TYPE").ToInt32(), types->Value("IS_LONG").ToBoolean()}).second)
        << types->Text("TYPE_NAME");
  }
  std::set<std::pair<std::int32_t, bool>> used;
  for (auto columns = session->OpenSchema(SchemaKind::Columns, Table("t")); !columns->Eof(); columns->MoveNext()) {
    used.insert({columns->Value("DATA_TYPE").ToInt32(), (columns->Value("COLUMN_FLAGS").ToInt32() & ColumnLong) != 0});
  }
  EXPECT_EQ(used, known);
}

TEST(SqliteTypes, LiteralsInTheTypesQuotesCompareAsTheColumnDoes) {
  // For each type a value and its literal between the type's prefix and suffix: the row must be found.
  const DatabaseFile file(
      "CREATE TABLE t (a DATE, b TIME, c DATETIME, d UUID, e CHAR(3), f VARCHAR(9), g TEXT, h BLOB, i DECIMAL(9,2),"
      "j MYSTERY, k BOOLEAN, l VARBINARY(2));"
      "INSERT INTO t VALUES ('2024-02-29', '12:30:00', '2024-02-29 12:30:00', 'c0ffee', 'abc', 'x', 'y', x'00FF',"
      "12.5, 7, TRUE, x'BEEF')");
  const char* literals[] = {
      "2024-02-29", "12:30:00", "2024-02-29 12:30:00", "c0ffee", "abc", "x", "y", "00FF", "12.50", "7", "1", "BEEF"};
  const std::unique_ptr<Session> session = OpenPath(file.Path());
  std::size_t index = 0;
  for (auto columns = session->OpenSchema(SchemaKind::Columns, Table("t")); !columns->Eof(); columns->MoveNext()) {
    auto types = session->OpenSchema(SchemaKind::ProviderTypes, {});
    while (!types->Eof() && !(types->Value("DATA_TYPE") == columns->Value("DATA_TYPE"))) types->MoveNext();
    ASSERT_FALSE(types->Eof());
    const std::string condition = columns->Text("COLUMN_NAME") + " = " + types->Text("LITERAL_PREFIX") +
                                  literals[index++] + types->Text("LITERAL_SUFFIX");
    EXPECT_EQ(test::QueryText(file.Path(), "SELECT count(*) FROM t WHERE " + condition), "1") << condition;
  }
  EXPECT_EQ(index, std::size(literals));
}

// --- Opening ---

TEST(SqliteOpen, ConnectionStringsThatAreForThisProvider) {
  const SqliteProvider provider;
  for (const test::Row& row : test::ReadRows("provider_strings.txt")) {
    if (row[1] == "-") continue;
    EXPECT_EQ(provider.Accepts(ConnectionString(row[0])), row[1] == "yes") << row.place;
  }
}

TEST(SqliteOpen, FilesWithAnyNameAreOpenedAsFiles) {
  for (const char* name :
       {"plain.db", "with blank.db", "quote'd.db", "double\"d.db", "Größe 数据.db", "what?.db", "100%25.db",
        "semi;colon=.db", "a#b&mode=memory.db", "file:x.db", ":memory:", "no_extension"}) {
    SCOPED_TRACE(name);
    const DatabaseFile file("CREATE TABLE here (x)", name);
    EXPECT_EQ(Ask(*OpenPath(file.Path()), SchemaKind::Tables, kTable, Table("here")), "TABLE|here\n");
    // The same by a relative name, where "file:" and ":memory:" stand at its beginning.
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(std::filesystem::path(file.Path()).parent_path());
    EXPECT_EQ(Ask(*OpenPath(name), SchemaKind::Tables, kTable, Table("here")), "TABLE|here\n");
    std::filesystem::current_path(before);
  }
}

void ExpectRefused(const std::string& path, std::int32_t number, std::string_view reason) {
  SCOPED_TRACE(path);
  try {
    OpenPath(path);
    ADD_FAILURE() << "should not open";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), number) << error.Description();
    EXPECT_NE(error.Description().find(path), std::string::npos) << error.Description();
    EXPECT_NE(error.Description().find(reason), std::string::npos) << error.Description();
  }
}

TEST(SqliteOpen, WhatIsNoDatabaseIsRefusedWithItsNameAndTheReason) {
  const TemporaryFolder folder;
  const auto write = [&](const char* name, const std::string& content) {
    std::ofstream(folder.Path() / name, std::ios::binary) << content;
    return (folder.Path() / name).string();
  };
  ExpectRefused((folder.Path() / "missing.db").string(), ErrorConnectionFailed, "no such file");
  ExpectRefused((folder.Path() / "no folder" / "x.db").string(), ErrorConnectionFailed, "no such file");
  ExpectRefused(folder.Path().string(), ErrorConnectionFailed, "directory");
  ExpectRefused("/dev/null", ErrorConnectionFailed, "no ordinary file");
  ExpectRefused(write("text.db", std::string(5000, 'x')), SQLITE_NOTADB, "not a database");
  ExpectRefused(write("short.db", "hello"), SQLITE_NOTADB, "not a database");
  ExpectRefused(write("beneath.db", "x") + "/y.db", ErrorConnectionFailed, "");
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "missing.db"));

  const DatabaseFile whole("CREATE TABLE t (x)");
  std::string bytes = test::ReadFile(whole.Path());
  std::fill(bytes.begin() + 100, bytes.end(), '\x55');  // a good header on a destroyed schema
  ExpectRefused(write("damaged.db", bytes), SQLITE_CORRUPT, "malformed");

  SqliteProvider provider;
  for (const char* text : {"Provider=SQLite", "Provider=SQLite;Data Source=", "Provider=SQLite;Data Source=\"\""}) {
    EXPECT_THROW(provider.Open(ConnectionString(text), "", ""), Error) << text;
  }
}

TEST(SqliteOpen, AFileThatMayNotBeReadIsRefused) {
  const DatabaseFile file("CREATE TABLE t (x)");
  std::filesystem::permissions(file.Path(), std::filesystem::perms::none);
  test::AsSomebodyElse(std::filesystem::path(file.Path()).parent_path(), 0755,
                       [&] { ExpectRefused(file.Path(), SQLITE_CANTOPEN, "ermission denied"); });
}

TEST(SqliteOpen, AnEmptyFileIsADatabaseWithoutTables) {
  const TemporaryFolder folder;
  const std::string path = (folder.Path() / "empty.db").string();
  std::ofstream(path).flush();
  const std::unique_ptr<Session> session = OpenPath(path);
  EXPECT_EQ(Ask(*session, SchemaKind::Tables, kTable), "SYSTEM TABLE|sqlite_schema\n");
  EXPECT_EQ(Ask(*session, SchemaKind::ForeignKeys, kReference), "");
  EXPECT_EQ(std::filesystem::file_size(path), 0U);
}

TEST(SqliteOpen, ReadingLeavesFileAndFolderAsTheyWere) {
  const DatabaseFile file("CREATE TABLE t (x PRIMARY KEY, y REFERENCES t)");
  const std::string before = test::ReadFile(file.Path());
  {
    const std::unique_ptr<Session> session = OpenPath(file.Path());
    for (const SchemaKind kind : {SchemaKind::Tables, SchemaKind::Columns, SchemaKind::PrimaryKeys,
                                  SchemaKind::ForeignKeys, SchemaKind::ProviderTypes, SchemaKind::Literals}) {
      EXPECT_FALSE(session->OpenSchema(kind, {})->Eof()) << static_cast<int>(kind);
    }
  }
  EXPECT_EQ(test::ReadFile(file.Path()), before);
  const auto folder = std::filesystem::directory_iterator(std::filesystem::path(file.Path()).parent_path());
  EXPECT_EQ(std::distance(begin(folder), end(folder)), 1);
}

TEST(SqliteOpen, AWriteAheadDatabaseIsReadInAFolderThatCannotBeWritten) {
  const DatabaseFile file("PRAGMA journal_mode = WAL; CREATE TABLE t (x)", "read only?%41.db");
  const std::filesystem::path folder = std::filesystem::path(file.Path()).parent_path();
  ASSERT_FALSE(std::filesystem::exists(file.Path() + "-wal"));
  std::string tables;
  test::AsSomebodyElse(folder, 0555, [&] {
    EXPECT_NO_THROW(tables = Ask(*OpenPath(file.Path()), SchemaKind::Tables, kTable, Table("t")));
  });
  std::filesystem::permissions(folder, std::filesystem::perms(0755));
  EXPECT_EQ(tables, "TABLE|t\n");
}

// --- Lifetime ---

TEST(SqliteSession, ChangesByOthersAreSeenAndOpenRowsDoNotLockThemOut) {
  const DatabaseFile file("CREATE TABLE t (a)");
  const std::unique_ptr<Session> session = OpenPath(file.Path());
  const std::unique_ptr<RowSet> open = session->OpenSchema(SchemaKind::Columns, {});
  Execute(file.Path(), "ALTER TABLE t ADD COLUMN b; CREATE TABLE late (x)");
  EXPECT_EQ(Ask(*session, SchemaKind::Columns, kColumn, Table("t")), "t|1|a\nt|2|b\n");
  EXPECT_EQ(Ask(*session, SchemaKind::Tables, kTable), "SYSTEM TABLE|sqlite_schema\nTABLE|late\nTABLE|t\n");
  Execute(file.Path(), "DROP TABLE late");
  EXPECT_EQ(Ask(*session, SchemaKind::Tables, kTable, Table("late")), "");
}

TEST(SqliteSession, ADatabaseLockedByAWriterIsReportedNotShownAsEmpty) {
  const DatabaseFile file("CREATE TABLE t (a)");
  const std::unique_ptr<Session> session = OpenPath(file.Path());
  const test::Connection writer(file.Path());
  writer.Execute("BEGIN EXCLUSIVE; CREATE TABLE u (a)");
  try {
    session->OpenSchema(SchemaKind::Columns, {});
    ADD_FAILURE() << "should be locked";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), SQLITE_BUSY) << error.Description();
  }
  writer.Execute("COMMIT");
  EXPECT_EQ(Ask(*session, SchemaKind::Columns, kColumn, Table("u")), "u|1|a\n");
}

}  // namespace
}  // namespace zrqrybld
