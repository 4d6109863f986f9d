// Sources and strings that mean no good, on the real drivers: what a file's connection string may not do, servers that
// stop answering, and names that look like quotes.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "tests/data_table.h"
#include "tests/link_panes.h"
#include "tests/providers/provider_test.h"
#include "tests/providers/tcp_proxy.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/odbc/odbc_provider.h"
#include "zrqrybld/adapters/odbc/odbc_runner.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/provider.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

using Clock = std::chrono::steady_clock;
using test::TcpProxy;

constexpr auto kPromised = std::chrono::seconds(10);

Ref<qbQueryBuilder> MakeHub() {
  auto toolkit = std::make_shared<HeadlessToolkit>();
  test::RegisterProviders(*toolkit->Providers());
  Ref<qbQueryBuilder> hub = qbQueryBuilder::Create(toolkit);
  test::LinkPanes(*hub);
  hub->GridPane()->SetShowGroupBy(false);
  return hub;
}

// The description of the error that loading a file with the connection string leaves; "" when it connects.
std::string Load(const std::string& connectionString) {
  const Ref<qbQueryBuilder> hub = MakeHub();
  const bool loaded = hub->LoadQuery("Version=1\r\nConnectionString=" + connectionString + "\r\n", true);
  EXPECT_EQ(loaded, !hub->LastError());
  EXPECT_EQ(loaded, hub->IsConnected());
  return hub->LastError() ? hub->LastError()->Description() : std::string();
}

class Hostile : public test::ProviderTest {
 protected:
  std::string With(const std::string& key, const std::string& value) const {
    std::string text;
    const ConnectionString parsed(source_->connectionString);
    for (const auto& [name, old] : parsed.Parts()) {
      if (!EqualsNoCase(name, key)) text += name + "=" + ConnectionString::QuoteValue(old) + ";";
    }
    return text + key + "=" + value;
  }
  int Port() const { return std::stoi(ConnectionString(source_->connectionString).Get("Port").value_or("0")); }
  std::string Through(const TcpProxy& proxy) const { return With("Port", std::to_string(proxy.Port())); }
};

class HostileServer : public Hostile {};

const auto kNames = [](const auto& test) { return test.param; };
INSTANTIATE_TEST_SUITE_P(All, Hostile, testing::ValuesIn(test::SourceNames()), kNames);
INSTANTIATE_TEST_SUITE_P(All, HostileServer, testing::Values("PostgreSql", "MariaDb"), kNames);

// --- Strings from files ---

TEST_P(HostileServer, AFileRunsNothingWhileItIsOpened) {
  source_->query(R"(DROP TABLE IF EXISTS "Victim")");
  source_->query(R"(CREATE TABLE "Victim" (x INTEGER))");
  for (int i = 0; i < 3; ++i) source_->query(R"(INSERT INTO "Victim" VALUES (1))");
  const std::string statement = GetParam() == "MariaDb" ? "DELETE FROM Victim" : "DELETE FROM \"Victim\"";
  for (const char* key : {"ConnSettings", "A6", "INITSTMT", " init stmt "}) {
    const std::string said = Load(With(key, statement));
    EXPECT_NE(said.find("runs statements"), std::string::npos) << key << ": " << said;
    EXPECT_NE(Load(With("Database", "{zr_test;" + std::string(key) + "=" + statement + "}")), "") << key;
  }
  EXPECT_EQ(source_->query(R"(SELECT count(*) FROM "Victim")"), "3\n");
  // The same string from a program is its own business, and shows that the test can fail.
  const Ref<qbQueryBuilder> hub = MakeHub();
  hub->Connect(With(GetParam() == "MariaDb" ? "INITSTMT" : "ConnSettings", statement));
  EXPECT_FALSE(hub->LastError());
  EXPECT_NE(source_->query(R"(SELECT count(*) FROM "Victim")"), "3\n");
  EXPECT_EQ(Load(source_->connectionString), "") << "what is harmless is opened";
  source_->query(R"(DROP TABLE "Victim")");
}

TEST(HostileFile, NoLibraryIsLoaded) {
  // Any library will do that no driver is, and that this process has not loaded.
  const char* const library = "libcrypt.so.1";
  void* loaded = dlopen(library, RTLD_NOW | RTLD_NOLOAD);
  if (loaded != nullptr) GTEST_SKIP() << library << " is loaded already";
  void* found = dlopen(library, RTLD_NOW);
  if (found == nullptr) GTEST_SKIP() << "there is no " << library;
  dlclose(found);
  for (const std::string& text : {std::string("Driver=") + library, "Driver={" + std::string(library) + "};Server=x"}) {
    EXPECT_NE(Load(text).find("configured on this computer"), std::string::npos);
    EXPECT_EQ(dlopen(library, RTLD_NOW | RTLD_NOLOAD), nullptr) << text;
  }
}

TEST(HostileFile, NoDatabaseIsMade) {
  const test::TemporaryFolder folder;
  for (const char* text :
       {"Driver={SQLite3};Database=", "Provider=SQLite;Data Source=", "Driver=SQLite3;NoCreat=0;Database="}) {
    EXPECT_NE(Load(text + (folder.Path() / "made.db").string()), "") << text;
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

// --- Servers that stop answering ---

TEST_P(HostileServer, ASilentListenerIsGivenUp) {
  const TcpProxy proxy(0);
  const auto start = Clock::now();
  const Ref<qbQueryBuilder> hub = MakeHub();
  hub->Connect(Through(proxy));
  ASSERT_TRUE(hub->LastError());
  EXPECT_EQ(hub->LastError()->Number(), ErrorConnectionFailed) << hub->LastError()->Description();
  EXPECT_LT(Clock::now() - start, kPromised);
  // Looking at rows logs in by itself.
  const auto again = Clock::now();
  EXPECT_THROW(OpenOdbcRunner(ConnectionString(Through(proxy))), Error);
  EXPECT_LT(Clock::now() - again, kPromised);
}

TEST_P(HostileServer, OneThatGoesSilentOrIsCutIsClosedAndOpensAgain) {
  for (const auto mode : {TcpProxy::Mode::Silent, TcpProxy::Mode::Cut}) {
    // MariaDB's driver itself ends the process when the rows of an answer are cut; its head may be.
    for (const long after : {0L, GetParam() == "MariaDb" ? 20L : 40L}) {
      SCOPED_TRACE(std::to_string(static_cast<int>(mode)) + " after " + std::to_string(after));
      TcpProxy proxy(Port());
      const Ref<qbQueryBuilder> hub = MakeHub();
      hub->Connect(Through(proxy));
      ASSERT_FALSE(hub->LastError()) << hub->LastError()->Description();
      proxy.Set(mode, after);
      const auto start = Clock::now();
      try {
        hub->AddTable("Staff");
        ADD_FAILURE() << "added";
      } catch (const Error& error) {
        EXPECT_EQ(error.Number(), ErrorAddingTable);
        EXPECT_NE(error.Description().find("[3706]"), std::string::npos) << error.Description();
      }
      EXPECT_LT(Clock::now() - start, kPromised);
      EXPECT_FALSE(hub->IsConnected());
      // Nothing is asked on it any more, and everything ends at once.
      const auto next = Clock::now();
      hub->RefreshAutoJoins();
      EXPECT_THROW(hub->Connection()->OpenSchema(SchemaKind::Tables), Error);
      EXPECT_LT(Clock::now() - next, std::chrono::seconds(1));
      proxy.Set(TcpProxy::Mode::Pass);
      hub->Connect(Through(proxy));
      EXPECT_FALSE(hub->LastError());
      EXPECT_GT(hub->AddTable("Staff")->Items()->Count(), 1);
    }
  }
}

TEST(HostileSource, ALockedDatabaseIsNotWaitedForLong) {
  const test::DatabaseFile file("CREATE TABLE t (x)");
  for (const std::string& text :
       {"Provider=SQLite;Data Source=" + file.Path(), "Driver={SQLite3};Database=" + file.Path()}) {
    sqlite3* writer = nullptr;
    ASSERT_EQ(sqlite3_open(file.Path().c_str(), &writer), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(writer, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
    const auto start = Clock::now();
    const Ref<qbQueryBuilder> hub = MakeHub();
    hub->Connect(text);
    try {
      hub->AddTable("t");  // one driver tells nothing of a file that is locked, instead of failing
    } catch (const Error& error) {
      EXPECT_NE(error.Description().find("locked"), std::string::npos) << error.Description();
    }
    EXPECT_LT(Clock::now() - start, kPromised) << text;
    sqlite3_close(writer);
  }
}

// --- Names ---

TEST_P(Hostile, NamesThatLookLikeQuotesAndSchemasKeepTheirColumns) {
  for (const std::string& name : {std::string("[x]"), std::string("a.b"), std::string("[a].b")}) {
    SCOPED_TRACE(name);
    const std::string quoted = "\"" + name + "\"";
    source_->query("DROP TABLE IF EXISTS " + quoted);
    source_->query("CREATE TABLE " + quoted + " (id INTEGER)");
    source_->query("INSERT INTO " + quoted + " VALUES (7)");
    const Ref<qbQueryBuilder> hub = MakeHub();
    hub->Connect(source_->connectionString);
    hub->SQLPane()->SetSQLSyntax(SQLSyntaxMSSQL);
    // As the picker lists it.
    std::string listed;
    const auto rows = hub->Connection()->OpenSchema(SchemaKind::Tables, {{}, {}, name});
    ASSERT_FALSE(rows->Eof());
    const std::string schema = rows->Text("TABLE_SCHEMA");
    for (const std::string& text : {(schema.empty() ? "" : schema + ".") + name, name}) {
      EXPECT_TRUE(hub->HasTable(text)) << text;
      const Ref<qbEntity> entity = hub->AddTable(text);
      ASSERT_EQ(entity->Items()->Count(), 2) << text;
      entity->Items()->Item(2)->SetChecked(true);
      EXPECT_EQ(source_->run(hub->SQLPane()->SQLStatement()), "7\n") << hub->SQLPane()->SQLStatement();
      hub->DiagramPane()->Clear();
    }
    source_->query("DROP TABLE " + quoted);
  }
}

TEST_P(Hostile, AutomaticJoinsTakeEverySpelling) {
  const Ref<qbQueryBuilder> hub = MakeHub();
  hub->Connect(source_->connectionString);
  const auto rows = hub->Connection()->OpenSchema(SchemaKind::Tables, {{}, {}, "Staff"});
  const std::string told = rows->Text("TABLE_SCHEMA");
  const std::string schema = told.empty() ? "main" : told;
  const std::string joined = GetParam() == "PostgreSql" ? "Staff" : "sTAFF";  // which tells letters apart
  for (const auto& [first, second] :
       {std::pair(schema + ".Staff", schema + "." + joined), {schema + ".Staff", joined}}) {
    SCOPED_TRACE(first + " " + second);
    hub->DiagramPane()->Clear();
    const Ref<qbEntity> one = hub->AddTable(first);
    hub->AddTable(second);
    hub->RefreshAutoJoins();
    EXPECT_EQ(one->Relationships()->Count(), 1) << "its boss is in the other copy";
  }
}

}  // namespace
}  // namespace zrqrybld
