// Opening a source through ODBC, and how it fails: always error 3706 with the driver's words, never with a password.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "tests/data_table.h"
#include "tests/providers/provider_test.h"
#include "tests/schema_text.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/odbc/data_sources.h"
#include "zrqrybld/adapters/odbc/odbc_handle.h"
#include "zrqrybld/adapters/odbc/odbc_provider.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/headless.h"

namespace zrqrybld {
namespace {

using test::DatabaseFile;
using test::TemporaryFolder;

std::unique_ptr<Session> Open(const std::string& text, const std::string& user = {}, const std::string& password = {}) {
  return OdbcProvider().Open(ConnectionString(text), user, password);
}

// The description of the error with which opening fails; "" with a failure of the test when it does not.
std::string Refusal(const std::string& text, const std::string& user = {}, const std::string& password = {}) {
  try {
    Open(text, user, password);
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorConnectionFailed) << error.Description();
    EXPECT_NE(error.Description(), "");
    return error.Description();
  }
  ADD_FAILURE() << "opened: " << text;
  return {};
}

// A port of this machine on which nobody listens.
std::string DeadPort() {
  const int handle = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  bind(handle, reinterpret_cast<sockaddr*>(&address), size);
  getsockname(handle, reinterpret_cast<sockaddr*>(&address), &size);
  close(handle);
  return std::to_string(ntohs(address.sin_port));
}

// The string with another value for one of its keys, or with a further part.
std::string With(const std::string& text, const std::string& key, const std::string& value) {
  std::string changed;
  bool found = false;
  const ConnectionString parsed(text);
  for (const auto& [name, old] : parsed.Parts()) {
    const bool same = EqualsNoCase(name, key);
    found |= same;
    changed += name + "=" + ConnectionString::QuoteValue(same ? value : old) + ";";
  }
  return found ? changed : changed + key + "=" + ConnectionString::QuoteValue(value) + ";";
}

// --- Which strings are for this provider ---

TEST(OdbcOpen, TakesStringsThatNameADriverOrADataSource) {
  const OdbcProvider provider;
  for (const test::Row& row : test::ReadRows("provider_strings.txt")) {
    if (row[2] == "-") continue;
    EXPECT_EQ(provider.Accepts(ConnectionString(row[0])), row[2] == "yes") << row.place;
  }
}

TEST(OdbcOpen, EveryUsualFormReachesTheSource) {
  const DatabaseFile file("CREATE TABLE t (x)", "ein Name.db");
  const std::string rest = "Driver={SQLite3};Database=" + file.Path();
  for (const std::string& text :
       {rest, "Provider=MSDASQL;" + rest,
        "Provider=MSDASQL;Persist Security Info=False;Extended Properties=\"" + rest + "\"",
        "Driver=SQLite3;Database=\"" + file.Path() + "\"",
        "Provider=MSDASQL;Driver=SQLite3;Initial Catalog=" + file.Path(), rest + ";UID=nobody;PWD={se;cr}}et}"}) {
    SCOPED_TRACE(text);
    ProviderList providers;
    test::RegisterProviders(providers);
    const ConnectionString parsed(text);
    Provider& provider = providers.Choose(parsed);
    EXPECT_EQ(provider.Name(), "MSDASQL");
    std::unique_ptr<Session> session;
    EXPECT_NO_THROW(session = provider.Open(parsed, "", ""));
    if (session) {
      EXPECT_EQ(test::Dump(*session->OpenSchema(SchemaKind::Tables, {}), {"TABLE_NAME"}), "t\n");
    }
  }
}

// --- Refusals that need no server ---

TEST(OdbcOpen, SaysWhyThereIsNoSuchSource) {
  EXPECT_NE(Refusal("Provider=MSDASQL;UID=x").find("names no data source"), std::string::npos);
  EXPECT_NE(Refusal("DSN=no such source").find("[IM002]"), std::string::npos);
  EXPECT_NE(Refusal("Driver={No Such Driver};PWD=topsecret").find("[01000]"), std::string::npos);
  const std::string missing = Refusal("Driver={No Such Driver};Server=x;PWD=No Such Driver");
  EXPECT_EQ(missing.find("No Such Driver"), std::string::npos) << missing;
}

TEST(OdbcOpen, AServerThatIsNotThereIsRefused) {
  for (const char* driver : {"PostgreSQL Unicode", "MariaDB Unicode"}) {
    const std::string text = Refusal("Driver={" + std::string(driver) + "};Server=127.0.0.1;Port=" + DeadPort() +
                                     ";Database=zr_test;UID=tester;PWD=topsecret");
    EXPECT_TRUE(text.starts_with("[")) << text;
    EXPECT_EQ(text.find("topsecret"), std::string::npos) << text;
  }
}

TEST(OdbcOpen, AFileIsNeitherMadeNorTakenForADatabase) {
  const TemporaryFolder folder;
  const std::string missing = folder.Path() / "missing.db";
  const std::string text = "Driver={SQLite3};Database=";
  EXPECT_NE(Refusal(text + missing).find("there is no such file"), std::string::npos);
  EXPECT_NE(Refusal(text + folder.Path().string()).find("no ordinary file"), std::string::npos);
  EXPECT_NE(Refusal(text + "\"" + missing + ";x\"").find("semicolon"), std::string::npos);
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));

  const std::string closed = folder.Path() / "closed.db";
  test::Execute(closed, "CREATE TABLE t (x)");
  std::filesystem::permissions(closed, std::filesystem::perms(0));
  std::string refusal;
  test::AsSomebodyElse(folder.Path(), 0755, [&] { refusal = Refusal(text + closed); });
  EXPECT_NE(refusal.find("ermission denied"), std::string::npos) << refusal;

  const std::string letter = folder.Path() / "letter.db";
  std::ofstream(letter) << std::string(5000, 'x');
  EXPECT_NE(Refusal(text + letter).find("not a database"), std::string::npos);
}

// --- Refusals by a server ---

class OdbcServer : public test::ProviderTest {};

INSTANTIATE_TEST_SUITE_P(All, OdbcServer, testing::Values("PostgreSql", "MariaDb"),
                         [](const auto& test) { return test.param; });

TEST_P(OdbcServer, AWrongPasswordIsRefusedWithoutShowingIt) {
  const std::string text = With(source_->connectionString, "UID", "locked");
  for (const char* password : {"wrong", "wr;o}ng", "{wrong}", "wr ong%41+", "lock", "falsch ü"}) {
    SCOPED_TRACE(password);
    for (const std::string& refusal : {Refusal(text + ";PWD=" + ConnectionString::QuoteValue(password)),
                                       Refusal(source_->connectionString, "locked", password)}) {
      EXPECT_TRUE(refusal.starts_with("[")) << refusal;
      EXPECT_EQ(refusal.find(password), std::string::npos) << refusal;
    }
  }
  EXPECT_NO_THROW(Open(With(With(text, "PWD", "right"), "Database", GetParam() == "MariaDb" ? "" : "zr_test")));
}

TEST_P(OdbcServer, AnUnknownDatabaseIsRefused) {
  const std::string refusal = Refusal(With(source_->connectionString, "Database", "no such database"));
  EXPECT_NE(refusal.find("no such database"), std::string::npos) << refusal;
}

TEST_P(OdbcServer, TheDesignerStaysUsableAndTellsWhatWentWrong) {
  auto toolkit = std::make_shared<HeadlessToolkit>();
  test::RegisterProviders(*toolkit->Providers());
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create(toolkit);
  hub->SetDiagramPane(qbDiagramPane::Create());
  hub->Connect(With(With(source_->connectionString, "UID", "locked"), "PWD", "topsecret"));
  ASSERT_TRUE(hub->LastError());
  EXPECT_EQ(hub->LastError()->Number(), ErrorConnectionFailed);
  EXPECT_EQ(hub->LastError()->Description().find("topsecret"), std::string::npos);
  EXPECT_FALSE(hub->IsConnected());
  hub->Connect(source_->connectionString);
  EXPECT_FALSE(hub->LastError());
  EXPECT_GT(hub->AddTable("Staff")->Items()->Count(), 1);
}

// --- Configured data sources ---

// While one lives, the user's data sources are those of a file of its own.
class ConfiguredSources {
 public:
  explicit ConfiguredSources(const std::string& text) : path_(folder_.Path() / "odbc.ini") {
    std::ofstream(path_) << text;
    if (const char* before = std::getenv("ODBCINI")) before_ = before;
    setenv("ODBCINI", path_.c_str(), 1);
  }
  ConfiguredSources(const ConfiguredSources&) = delete;
  ConfiguredSources& operator=(const ConfiguredSources&) = delete;
  ~ConfiguredSources() {
    if (before_) {
      setenv("ODBCINI", before_->c_str(), 1);
    } else {
      unsetenv("ODBCINI");
    }
  }

 private:
  TemporaryFolder folder_;
  std::string path_;
  std::optional<std::string> before_;
};

TEST(OdbcDataSources, AreListedByDriverAndOpenedByName) {
  const DatabaseFile file("CREATE TABLE t (x)");
  const std::string missing = file.Path() + ".missing";
  const ConfiguredSources sources("[A Shop]\nDriver=SQLite3\nDatabase=" + file.Path() +
                                  "\n\n[Läden]\nDriver=SQLite3\nDatabase=" + file.Path() +
                                  "\n\n[Gone]\nDriver=SQLite3\nDatabase=" + missing +
                                  "\n\n[Server]\nDriver=PostgreSQL Unicode\nServername=127.0.0.1\n");
  const auto has = [](const std::vector<std::string>& names, const char* name) {
    return std::ranges::count(names, name) == 1;
  };
  const std::vector<std::string> all = OdbcDataSources();
  for (const char* name : {"A Shop", "Läden", "Gone", "Server"}) EXPECT_TRUE(has(all, name)) << name;
  const std::vector<std::string> some = OdbcDataSources("sqlITE3");
  EXPECT_TRUE(has(some, "A Shop") && !has(some, "Server"));
  EXPECT_EQ(OdbcDataSources(""), all);
  EXPECT_EQ(OdbcDataSources("no such driver"), std::vector<std::string>());

  ProviderList providers;
  test::RegisterProviders(providers);
  EXPECT_EQ(providers.DataSources().size(), all.size());

  for (const char* name : {"DSN=A Shop", "DSN=a shop", "Provider=MSDASQL;Data Source=A Shop"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(test::Dump(*Open(name)->OpenSchema(SchemaKind::Tables, {}), {"TABLE_NAME"}), "t\n");
  }
  Refusal("DSN=Gone");
  EXPECT_FALSE(std::filesystem::exists(missing));
}

// --- Secrets ---

TEST(OdbcSecrets, AreHiddenInWhateverFormADriverRepeatsThem) {
  struct {
    const char* secret;
    const char* message;
    const char* hidden;
  } const cases[] = {
      {"topsecret", "PWD=topsecret;", "PWD=***;"},
      {"a}b;c", "PWD={a}}b;c}", "PWD={***}"},
      {"topsecret", "topsecrettopsecret", "******"},
      {"a", "a bad a", "*** bad ***"},  // a short one only where it stands alone
      {"", "as it was", "as it was"},
  };
  for (const auto& c : cases) {
    odbc::Secrets secrets;
    secrets.Add(c.secret);
    EXPECT_EQ(secrets.Hide(c.message), c.hidden);
  }
  odbc::Secrets two;
  two.Add("pass");
  two.Add("password");
  EXPECT_EQ(two.Hide("password pass"), "*** ***");
}

}  // namespace
}  // namespace zrqrybld
