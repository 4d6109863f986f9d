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

#include "adapters/sqlite/sqlite_provider.h"
#include "adapters/sqlite/sqlite_types.h"
#include "base/error.h"
#include "platform/schema_fields.h"
#include "tests/sqlite/database_file.h"

namespace zrqrybld {
namespace {

using test::DatabaseFile;
using test::Execute;
using test::TemporaryFolder;

std::unique_ptr<Session> OpenPath(const std::string& path) {
  SqliteProvider provider;
  return provider.Open(ConnectionString("Provider=SQLite;Data Source=" + ConnectionString::QuoteValue(path)), "", "");
}

// The rows as one text: the chosen fields with "|" between them, a line a row; "NULL" for Null.
std::string Dump(RowSet& rows, const std::vector<std::string_view>& fields) {
  std::string text;
  for (; !rows.Eof(); rows.MoveNext()) {
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const Variant value = rows.Value(fields[i]);
      text += (i > 0 ? "|" : "") + (value.IsNull() ? "NULL" : value.Text());
    }
    text += '\n';
  }
  return text;
}

std::string Ask(Session& session, SchemaKind kind, const std::vector<std::string_view>& fields,
                const SchemaRestrictions& restrictions = {}) {
  return Dump(*session.OpenSchema(kind, restrictions), fields);
}

SchemaRestrictions Table(std::string name) { return {{}, {}, std::move(name)}; }

const std::vector<std::string_view> kTable = {"TABLE_TYPE", "TABLE_NAME"};
const std::vector<std::string_view> kColumn = {"TABLE_NAME", "ORDINAL_POSITION", "COLUMN_NAME"};
const std::vector<std::string_view> kKey = {"TABLE_NAME", "ORDINAL", "COLUMN_NAME"};
const std::vector<std::string_view> kReference = {"FK_TABLE_NAME", "FK_COLUMN_NAME", "PK_TABLE_NAME", "PK_COLUMN_NAME",
                                                  "ORDINAL"};

// --- What each statement makes visible
// --------------------------------------------------------------------------------

struct SchemaCase {
  const char* rule;
  const char* script;
  SchemaKind kind;
  std::vector<std::string_view> fields;
  SchemaRestrictions restrictions;
  const char* expected;
};

TEST(SqliteSchema, RowsOfEachKind) {
  const SchemaCase cases[] = {
      {"tables come by type, then name without regard to case; SQLite's own are system tables",
       "CREATE TABLE b (x INTEGER PRIMARY KEY AUTOINCREMENT); CREATE TABLE C (x); CREATE TABLE a (x);"
       "CREATE VIEW w AS SELECT 1 AS one",
       SchemaKind::Tables,
       kTable,
       {},
       "SYSTEM TABLE|sqlite_schema\nSYSTEM TABLE|sqlite_sequence\nTABLE|a\nTABLE|b\nTABLE|C\nVIEW|w\n"},
      {"an underscore is a character of a name, and a name that only begins like SQLite's own is not its own",
       "CREATE TABLE sqlitex (x); CREATE TABLE a_b (x); CREATE TABLE aXb (x)", SchemaKind::Tables, kTable, Table("a_b"),
       "TABLE|a_b\n"},
      {"a percent sign is no pattern", "CREATE TABLE t (x)", SchemaKind::Tables, kTable, Table("%"), ""},
      {"a table is found without regard to ASCII case and keeps its spelling", "CREATE TABLE MixedCase (x)",
       SchemaKind::Columns, kColumn, Table("mIXEDcASE"), "MixedCase|1|x\n"},
      {"other letters keep their case, as in SQLite", "CREATE TABLE \"Ämter\" (x)", SchemaKind::Columns, kColumn,
       Table("ämter"), ""},
      {"an empty restriction is none", "CREATE TABLE t (x)", SchemaKind::PrimaryKeys, kKey, {"", "", ""}, ""},
      {"the schema main is known in any case",
       "CREATE TABLE t (x)",
       SchemaKind::Columns,
       kColumn,
       {{}, "MAIN", "t"},
       "t|1|x\n"},
      {"another schema has no rows", "CREATE TABLE t (x)", SchemaKind::Columns, kColumn, {{}, "temp", "t"}, ""},
      {"there are no catalogs", "CREATE TABLE t (x)", SchemaKind::Tables, kTable, {"main", {}, "t"}, ""},
      {"where there are no schemas the fields are null",
       "CREATE TABLE t (x)",
       SchemaKind::Tables,
       {"TABLE_CATALOG", "TABLE_SCHEMA"},
       Table("t"),
       "NULL|NULL\n"},
      {"generated columns count",
       "CREATE TABLE t (a INT, b INT AS (a * 2), c INT AS (a * 3) STORED, d)",
       SchemaKind::Columns,
       {"ORDINAL_POSITION", "COLUMN_NAME", "COLUMN_FLAGS"},
       Table("t"),
       "1|a|116\n2|b|112\n3|c|112\n4|d|100\n"},
      {"columns of a view have types and cannot be written",
       "CREATE TABLE t (a INT NOT NULL, b TEXT); CREATE VIEW v AS SELECT b, a, a + 1 AS c FROM t",
       SchemaKind::Columns,
       {"ORDINAL_POSITION", "COLUMN_NAME", "DATA_TYPE", "COLUMN_FLAGS"},
       Table("v"),
       "1|b|203|224\n2|a|3|112\n3|c|202|96\n"},
      {"a row number is never null, though not declared so; other key columns may be",
       "CREATE TABLE r (id INTEGER PRIMARY KEY, n INTEGER); CREATE TABLE i (id INT PRIMARY KEY);"
       "CREATE TABLE c (a INTEGER, b INTEGER, PRIMARY KEY (a, b)); CREATE TABLE w (a TEXT PRIMARY KEY) WITHOUT ROWID",
       SchemaKind::Columns,
       {"TABLE_NAME", "COLUMN_NAME", "IS_NULLABLE"},
       {{}, "main", {}},
       "c|a|True\nc|b|True\ni|id|True\nr|id|False\nr|n|True\nsqlite_schema|type|True\nsqlite_schema|name|True\n"
       "sqlite_schema|tbl_name|True\nsqlite_schema|rootpage|True\nsqlite_schema|sql|True\nw|a|False\n"},
      {"defaults are the declared text",
       "CREATE TABLE t (a DEFAULT 'x''y', b DEFAULT (1 + 1), c, d DEFAULT NULL)",
       SchemaKind::Columns,
       {"COLUMN_NAME", "COLUMN_HASDEFAULT", "COLUMN_DEFAULT"},
       Table("t"),
       "a|True|'x''y'\nb|True|1 + 1\nc|False|NULL\nd|True|NULL\n"},
      {"key columns come in the order of the key", "CREATE TABLE t (a, b, c, PRIMARY KEY (c, a))",
       SchemaKind::PrimaryKeys, kKey, Table("T"), "t|1|c\nt|2|a\n"},
      {"a table without row numbers has its key",
       "CREATE TABLE t (a TEXT, b TEXT, PRIMARY KEY (b, a)) WITHOUT ROWID",
       SchemaKind::PrimaryKeys,
       kKey,
       {},
       "t|1|b\nt|2|a\n"},
      {"foreign keys come in the order of declaration, composite ones in the order of their columns",
       "CREATE TABLE p (x, y, PRIMARY KEY (x, y)); CREATE TABLE q (z PRIMARY KEY);"
       "CREATE TABLE c (m REFERENCES q (z), n, o, FOREIGN KEY (o, n) REFERENCES p (y, x))",
       SchemaKind::ForeignKeys,
       kReference,
       {},
       "c|m|q|z|1\nc|o|p|y|1\nc|n|p|x|2\n"},
      {"a reference without columns is to the primary key, in the key's order",
       "CREATE TABLE p (x, y, z, PRIMARY KEY (z, x)); CREATE TABLE c (a, b, FOREIGN KEY (a, b) REFERENCES p)",
       SchemaKind::ForeignKeys, kReference, Table("C"), "c|a|p|z|1\nc|b|p|x|2\n"},
      {"names on the parent's side are spelled as the parent spells them",
       "CREATE TABLE Parent (TheKey PRIMARY KEY); CREATE TABLE c (a REFERENCES PARENT (THEKEY), b REFERENCES parent)",
       SchemaKind::ForeignKeys,
       kReference,
       {},
       "c|a|Parent|TheKey|1\nc|b|Parent|TheKey|1\n"},
      {"a table may refer to itself",
       "CREATE TABLE t (id INTEGER PRIMARY KEY, boss REFERENCES t)",
       SchemaKind::ForeignKeys,
       kReference,
       {},
       "t|boss|t|id|1\n"},
      {"the restriction names the referring table, not the parent",
       "CREATE TABLE p (x PRIMARY KEY); CREATE TABLE c (a REFERENCES p)", SchemaKind::ForeignKeys, kReference,
       Table("p"), ""},
      {"a reference to a missing table keeps the names it was written with",
       "CREATE TABLE c (a REFERENCES Gone (Id))",
       SchemaKind::ForeignKeys,
       kReference,
       {},
       "c|a|Gone|Id|1\n"},
      {"a reference without columns gives nothing when there is no key of as many columns",
       "CREATE TABLE p (x, y, PRIMARY KEY (x, y)); CREATE TABLE k (x);"
       "CREATE TABLE c (a REFERENCES p, b REFERENCES gone, d REFERENCES k)",
       SchemaKind::ForeignKeys,
       kReference,
       {},
       ""},
  };
  for (const SchemaCase& c : cases) {
    SCOPED_TRACE(c.rule);
    const DatabaseFile file(c.script);
    EXPECT_EQ(Ask(*OpenPath(file.Path()), c.kind, c.fields, c.restrictions), c.expected);
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

TEST(SqliteSchema, UnknownAndHostileRestrictionsGiveNoRowsAndDoNoHarm) {
  const DatabaseFile file("CREATE TABLE t (a PRIMARY KEY, b REFERENCES t)");
  const std::unique_ptr<Session> session = OpenPath(file.Path());
  const std::string values[] = {"nothing",
                                "t'; DROP TABLE t; --",
                                "' OR '1'='1",
                                "t\") --",
                                "%",
                                "t_",
                                "main.t",
                                "t ",
                                std::string("t\0x", 3),
                                std::string(100000, 'x'),
                                "\xff\xfe"};
  for (const std::string& value : values) {
    SCOPED_TRACE(value.substr(0, 40));
    for (const SchemaKind kind :
         {SchemaKind::Tables, SchemaKind::Columns, SchemaKind::PrimaryKeys, SchemaKind::ForeignKeys}) {
      EXPECT_TRUE(session->OpenSchema(kind, Table(value))->Eof()) << static_cast<int>(kind);
      EXPECT_TRUE(session->OpenSchema(kind, {{}, value, "t"})->Eof()) << static_cast<int>(kind);
    }
  }
  EXPECT_EQ(Ask(*session, SchemaKind::Tables, kTable, Table("t")), "TABLE|t\n");
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

TEST(SqliteSchema, BrokenViewsAndUnknownModulesDoNotHideTheOtherTables) {
  const DatabaseFile file(
      "CREATE TABLE gone (x); CREATE VIEW broken AS SELECT * FROM gone; CREATE TABLE t (a PRIMARY KEY, b REFERENCES t);"
      "DROP TABLE gone; PRAGMA writable_schema = ON;"
      "INSERT INTO sqlite_schema VALUES ('table', 'alien', 'alien', 0, 'CREATE VIRTUAL TABLE alien USING "
      "no_module(x)')");
  const std::unique_ptr<Session> session = OpenPath(file.Path());
  EXPECT_EQ(Ask(*session, SchemaKind::Tables, kTable),
            "SYSTEM TABLE|sqlite_schema\nTABLE|alien\nTABLE|t\nVIEW|broken\n");
  EXPECT_EQ(Ask(*session, SchemaKind::Columns, kColumn),
            "sqlite_schema|1|type\nsqlite_schema|2|name\nsqlite_schema|3|tbl_name\nsqlite_schema|4|rootpage\n"
            "sqlite_schema|5|sql\nt|1|a\nt|2|b\n");
  EXPECT_EQ(Ask(*session, SchemaKind::PrimaryKeys, kKey), "t|1|a\n");
  EXPECT_EQ(Ask(*session, SchemaKind::ForeignKeys, kReference), "t|b|t|a|1\n");
  for (const char* name : {"broken", "alien"}) {
    try {
      session->OpenSchema(SchemaKind::Columns, Table(name));
      ADD_FAILURE() << name << " should give SQLite's error";
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), 1);
      EXPECT_NE(error.Description().find("no such "), std::string::npos) << error.Description();
    }
  }
}

TEST(SqliteSchema, VirtualTablesAreTablesWithoutHiddenColumnsAndTheirStoreIsOfTheSystem) {
  if (sqlite3_compileoption_used("ENABLE_FTS5") == 0) GTEST_SKIP() << "this SQLite has no fts5";
  const DatabaseFile file("CREATE VIRTUAL TABLE notes USING fts5(title, body)");
  const std::unique_ptr<Session> session = OpenPath(file.Path());
  EXPECT_EQ(Ask(*session, SchemaKind::Tables, kTable),
            "SYSTEM TABLE|notes_config\nSYSTEM TABLE|notes_content\nSYSTEM TABLE|notes_data\n"
            "SYSTEM TABLE|notes_docsize\nSYSTEM TABLE|notes_idx\nSYSTEM TABLE|sqlite_schema\nTABLE|notes\n");
  EXPECT_EQ(Ask(*session, SchemaKind::Columns, kColumn, Table("notes")), "notes|1|title\nnotes|2|body\n");
}

TEST(SqliteSchema, LiteralsSayHowSqliteWritesNames) {
  const DatabaseFile file("");
  EXPECT_EQ(Ask(*OpenPath(file.Path()), SchemaKind::Literals, {"LiteralName", "LiteralValue", "InvalidChars"}),
            "SCHEMA_SEPARATOR|.|NULL\nLIKE_PERCENT|%|NULL\nLIKE_UNDERSCORE|_|NULL\nQUOTE_PREFIX|\"|NULL\n"
            "QUOTE_SUFFIX|\"|NULL\nTABLE_NAME|NULL|\n");
}

// --- Types
// ------------------------------------------------------------------------------------------------------------

TEST(SqliteTypes, DeclarationsAreRead) {
  const std::optional<std::int32_t> none;
  const struct {
    const char* declaration;
    DataTypeCode code;
    std::optional<std::int32_t> length, precision, scale;
  } cases[] = {
      {"", DataTypeCode::VarWChar, none, none, none},
      {"INTEGER", DataTypeCode::Integer, none, none, none},
      {"int(11) unsigned", DataTypeCode::Integer, none, none, none},
      {"UNSIGNED BIG INT", DataTypeCode::BigInt, none, none, none},
      {"bigint", DataTypeCode::BigInt, none, none, none},
      {"SmallInt", DataTypeCode::SmallInt, none, none, none},
      {"double  precision", DataTypeCode::Double, none, none, none},
      {"FLOAT(24)", DataTypeCode::Double, none, none, none},
      {"DECIMAL(10,2)", DataTypeCode::Numeric, none, 10, 2},
      {"numeric ( 8 , -1 )", DataTypeCode::Numeric, none, 8, -1},
      {"NUMBER(5)", DataTypeCode::Numeric, none, 5, 0},
      {"DECIMAL", DataTypeCode::Numeric, none, none, none},
      {"DECIMAL(x,2)", DataTypeCode::Numeric, none, none, none},
      {"bool", DataTypeCode::Boolean, none, none, none},
      {"date", DataTypeCode::DbDate, none, none, none},
      {"TIME", DataTypeCode::DbTime, none, none, none},
      {"timestamp(3) with time zone", DataTypeCode::DbTimeStamp, none, none, none},
      {"CHAR(5)", DataTypeCode::WChar, 5, none, none},
      {"nvarchar(40)", DataTypeCode::VarWChar, 40, none, none},
      {"VARCHAR", DataTypeCode::VarWChar, none, none, none},
      {"VARCHAR(99999999999)", DataTypeCode::VarWChar, none, none, none},
      {"VARCHAR(0)", DataTypeCode::VarWChar, none, none, none},
      {"VARCHAR(-3)", DataTypeCode::VarWChar, none, none, none},
      {"VARCHAR(", DataTypeCode::VarWChar, none, none, none},
      {"VARCHAR()", DataTypeCode::VarWChar, none, none, none},
      {")VARCHAR(7", DataTypeCode::VarWChar, 7, none, none},
      {"TEXT", DataTypeCode::LongVarWChar, none, none, none},
      {"CLOB", DataTypeCode::LongVarWChar, none, none, none},
      {"BLOB", DataTypeCode::LongVarBinary, none, none, none},
      {"VARBINARY(16)", DataTypeCode::VarBinary, 16, none, none},
      {"uniqueidentifier", DataTypeCode::Guid, none, none, none},
      {"GEOMETRY", DataTypeCode::VarWChar, none, none, none},
      {"CHARINT", DataTypeCode::Integer, none, none, none},  // the integer rule of SQLite comes first
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.declaration);
    const sqlite::DeclaredType type = sqlite::ReadDeclaredType(c.declaration);
    EXPECT_EQ(type.type->code, c.code);
    EXPECT_EQ(type.length, c.length);
    EXPECT_EQ(type.precision, c.precision);
    EXPECT_EQ(type.scale, c.scale);
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

// --- Opening
// ----------------------------------------------------------------------------------------------------------

TEST(SqliteOpen, ConnectionStringsThatAreForThisProvider) {
  const struct {
    const char* text;
    bool accepted;
  } cases[] = {
      {"Data Source=/tmp/a.db", true},
      {"database = a.db", true},
      {"DBQ=a.db", true},
      {"Data Source=", false},
      {"", false},
      {"a.db", false},
      {"Driver=SQLite3;Database=/tmp/a.db", false},
      {"DSN=shop;Database=shop", false},
      {"Server=db.example;Database=shop", false},
      {"Host=db.example;Database=shop", false},
  };
  const SqliteProvider provider;
  for (const auto& c : cases) EXPECT_EQ(provider.Accepts(ConnectionString(c.text)), c.accepted) << c.text;
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
  // The superuser may read everything, so the test takes the part of somebody else.
  const bool isSuperuser = geteuid() == 0;
  if (isSuperuser) {
    std::filesystem::permissions(std::filesystem::path(file.Path()).parent_path(), std::filesystem::perms(0755));
    ASSERT_EQ(seteuid(65534), 0);
  }
  ExpectRefused(file.Path(), SQLITE_CANTOPEN, "ermission denied");
  if (isSuperuser) {
    ASSERT_EQ(seteuid(0), 0);
  }
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
  std::filesystem::permissions(folder, std::filesystem::perms(0555));
  const bool isSuperuser = geteuid() == 0;
  if (isSuperuser) {
    ASSERT_EQ(seteuid(65534), 0);
  }
  std::string tables;
  EXPECT_NO_THROW(tables = Ask(*OpenPath(file.Path()), SchemaKind::Tables, kTable, Table("t")));
  if (isSuperuser) {
    ASSERT_EQ(seteuid(0), 0);
  }
  std::filesystem::permissions(folder, std::filesystem::perms(0755));
  EXPECT_EQ(tables, "TABLE|t\n");
}

// --- Lifetime
// ---------------------------------------------------------------------------------------------------------

TEST(SqliteSession, RowsOutliveTheSession) {
  const DatabaseFile file("CREATE TABLE t (a, b, c)");
  std::unique_ptr<Session> session = OpenPath(file.Path());
  const std::unique_ptr<RowSet> rows = session->OpenSchema(SchemaKind::Columns, Table("t"));
  rows->MoveNext();
  session.reset();
  EXPECT_EQ(Dump(*rows, kColumn), "t|2|b\nt|3|c\n");
  EXPECT_TRUE(rows->Eof());
  rows->MoveNext();
  EXPECT_TRUE(rows->Eof());
}

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

TEST(SqliteSession, TellsTheWordsThatItReserves) {
  const DatabaseFile file("");
  const std::vector<std::string> words = OpenPath(file.Path())->Keywords();
  for (const char* word : {"SELECT", "GLOB", "PRAGMA"}) {
    EXPECT_NE(std::ranges::find(words, word), words.end()) << word;
  }
}

TEST(SqliteSession, IsReachedThroughAConnection) {
  const DatabaseFile file("CREATE TABLE t (a)", "semi;colon.db");
  auto providers = std::make_shared<ProviderList>();
  providers->Register(std::make_shared<SqliteProvider>());
  ProviderConnection connection(providers);
  connection.SetConnectionString("provider=sqlite;Data Source=\"" + file.Path() + "\"");
  connection.Open("nobody", "secret");
  EXPECT_FALSE(connection.OpenSchema(SchemaKind::Tables, Table("T"))->Eof());
}

}  // namespace
}  // namespace zrqrybld
