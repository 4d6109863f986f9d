#include "tests/providers/sources.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <utility>

#include "tests/providers/odbc_executor.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/odbc/odbc_provider.h"
#include "zrqrybld/adapters/sqlite/sqlite_provider.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld::test {
namespace {

// Words in braces differ between the servers' own languages; see kWords.
constexpr const char* kScript[] = {
    R"(CREATE TABLE "Währungen" ("Kürzel" CHAR(3) NOT NULL PRIMARY KEY, "Kurs in €" DECIMAL(12,4) NOT NULL))",
    R"(CREATE TABLE "Order" ("OrderID" INTEGER NOT NULL PRIMARY KEY, "Währung" CHAR(3) NOT NULL,
         "Select" VARCHAR(20) DEFAULT 'none', FOREIGN KEY ("Währung") REFERENCES "Währungen" ("Kürzel")))",
    R"(CREATE TABLE "Order Details" ("OrderID" INTEGER NOT NULL, "Line No" INTEGER NOT NULL,
         "Amount" DECIMAL(10,2), PRIMARY KEY ("OrderID", "Line No"),
         FOREIGN KEY ("OrderID") REFERENCES "Order" ("OrderID")))",
    R"(CREATE TABLE "Order_Details" ("Wrong" INTEGER))",
    R"(CREATE TABLE "Returns" ("ReturnID" INTEGER NOT NULL PRIMARY KEY, "Order" INTEGER, "Line" INTEGER,
         FOREIGN KEY ("Order", "Line") REFERENCES "Order Details" ("OrderID", "Line No")))",
    R"(CREATE TABLE "Staff" ("StaffID" INTEGER NOT NULL PRIMARY KEY, "Name" VARCHAR(30), "Boss" INTEGER,
         FOREIGN KEY ("Boss") REFERENCES "Staff" ("StaffID")))",
    R"(CREATE TABLE "MixedCase" ("TheId" INTEGER NOT NULL PRIMARY KEY, "theOther" INTEGER))",
    R"(CREATE TABLE "lower" ("id" INTEGER NOT NULL PRIMARY KEY))",
    R"(CREATE TABLE "a""b'c`d;[e]" ("x""y'z`w" INTEGER NOT NULL PRIMARY KEY, "ref" INTEGER,
         FOREIGN KEY ("ref") REFERENCES "a""b'c`d;[e]" ("x""y'z`w")))",
    R"(CREATE TABLE "100%_a\b" ("c%" INTEGER NOT NULL PRIMARY KEY))",
    R"(CREATE TABLE "100%xa\b" ("wrong" INTEGER NOT NULL PRIMARY KEY))",
    R"(CREATE TABLE "Pairs" ("a" INTEGER NOT NULL, "b" INTEGER NOT NULL, PRIMARY KEY ("b", "a")))",
    R"(CREATE TABLE "Implied" ("Ref" CHAR(3) {implied}))",
    R"(CREATE TABLE "Kinds" ("Small" SMALLINT NOT NULL, "Int" INTEGER, "Big" BIGINT, "Double" DOUBLE PRECISION,
         "Dec" DECIMAL(12,3), "Char" CHAR(5), "VarChar" VARCHAR(40), "Text" {text}, "Blob" {blob}, "Date" DATE,
         "Time" TIME, "Stamp" {stamp}, "Bool" BOOLEAN))",
    R"(CREATE VIEW "Order Sums" AS SELECT "OrderID", SUM("Amount") AS "Total" FROM "Order Details" GROUP BY "OrderID")",
    R"(INSERT INTO "Währungen" VALUES ('EUR', 1), ('USD', 0.9), ('GBP', 1.2))",
    R"(INSERT INTO "Order" VALUES (1, 'EUR', 'a'), (2, 'USD', 'b'), (3, 'EUR', NULL))",
    R"(INSERT INTO "Order Details" VALUES (1, 1, 10), (1, 2, 20.5), (2, 1, 7), (3, 1, NULL))",
    R"(INSERT INTO "Returns" VALUES (1, 1, 2), (2, NULL, NULL))",
    R"(INSERT INTO "Staff" VALUES (1, 'Ada', NULL), (2, 'Björn', 1), (3, 'Cem', 1))",
    R"(INSERT INTO "a""b'c`d;[e]" VALUES (1, NULL), (2, 1))",
};

using Words = std::map<std::string, std::string>;

const Words kSqliteWords = {
    {"implied", R"(REFERENCES "Währungen")"}, {"text", "TEXT"}, {"blob", "BLOB"}, {"stamp", "DATETIME"}};
const Words kPostgreSqlWords = {
    {"implied", R"(REFERENCES "Währungen")"}, {"text", "TEXT"}, {"blob", "BYTEA"}, {"stamp", "TIMESTAMP"}};
const Words kMariaDbWords = {{"implied", R"(, FOREIGN KEY ("Ref") REFERENCES "Währungen" ("Kürzel"))"},
                             {"text", "LONGTEXT"},
                             {"blob", "LONGBLOB"},
                             {"stamp", "DATETIME"}};

std::vector<std::string> Script(const Words& words) {
  std::vector<std::string> script;
  for (std::string statement : kScript) {
    for (const auto& [word, meaning] : words) statement = ReplaceAll(statement, "{" + word + "}", meaning);
    script.push_back(std::move(statement));
  }
  return script;
}

// The file that both ways to SQLite open.
const std::string& SqliteFile() {
  static const DatabaseFile file([] {
    std::string script;
    for (const std::string& statement : Script(kSqliteWords)) script += statement + ";";
    return script;
  }());
  return file.Path();
}

std::string QuerySqlite(const std::string& sql) { return QueryText(SqliteFile(), sql) + "\n"; }

std::string Environment(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  return value ? value : "";
}

Source MakeServer(const std::string& name, const std::string& variable, const Words& words, const std::string& first,
                  std::vector<Difference> differences) {
  Source source{name, Environment(variable), std::move(differences), {}, {}, {}};
  if (source.connectionString.empty()) {
    source.missing = Environment(variable + "_MISSING");
    if (source.missing.empty()) source.missing = variable + " is not set; the suite wants tests/providers/servers.sh";
    return source;
  }
  // MariaDB understands the script's quotes when a connection asks for it.
  source.query = [string = source.connectionString, first](const std::string& sql) {
    OdbcExecutor executor(string);
    if (!first.empty()) executor.Execute(first);
    return executor.Query(sql);
  };
  source.run = [string = source.connectionString](const std::string& sql) { return OdbcExecutor(string).Query(sql); };
  OdbcExecutor executor(source.connectionString);
  if (!first.empty()) executor.Execute(first);
  for (const std::string& statement : Script(words)) executor.Execute(statement);
  return source;
}

Source Make(const std::string& name) {
  using enum Difference;
  if (name == "Sqlite") {
    return {name, "Provider=SQLite;Data Source=" + SqliteFile(), {WritableTold}, {}, QuerySqlite, QuerySqlite};
  }
  if (name == "SqliteOdbc") {
    const std::string string = "Driver={SQLite3};Database=" + SqliteFile();
    const auto run = [string](const std::string& sql) { return OdbcExecutor(string).Query(sql); };
    return {name, string, {}, {}, QuerySqlite, run};
  }
  if (name == "PostgreSql") {
    return MakeServer(name, "ZRQRYBLD_TEST_POSTGRESQL", kPostgreSqlWords, "", {SchemaIsPublic, CatalogIsDatabase});
  }
  return MakeServer(name, "ZRQRYBLD_TEST_MARIADB", kMariaDbWords, "SET sql_mode = 'ANSI_QUOTES'", {SchemaIsDatabase});
}

}  // namespace

bool Source::Has(Difference difference) const {
  return std::ranges::find(differences, difference) != differences.end();
}

std::unique_ptr<Session> Source::Open() const {
  const ConnectionString parsed(connectionString);
  ProviderList providers;
  RegisterProviders(providers);
  return providers.Choose(parsed).Open(parsed, "", "");
}

const std::vector<std::string>& SourceNames() {
  static const std::vector<std::string> names = {"Sqlite", "SqliteOdbc", "PostgreSql", "MariaDb"};
  return names;
}

const Source& GetSource(const std::string& name) {
  static std::map<std::string, Source> sources;
  const auto found = sources.find(name);
  return found != sources.end() ? found->second : sources.emplace(name, Make(name)).first->second;
}

void RegisterProviders(ProviderList& providers) {
  providers.Register(std::make_shared<SqliteProvider>());
  providers.Register(std::make_shared<OdbcProvider>());
}

}  // namespace zrqrybld::test
