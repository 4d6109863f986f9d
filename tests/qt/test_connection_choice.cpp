#include <gtest/gtest.h>

#include "adapters/qt/connection_choice.h"
#include "platform/connection_string.h"

namespace zrqrybld {
namespace {

using Way = ConnectionWay;
using Parts = std::vector<std::pair<std::string, std::string>>;

TEST(ConnectionChoice, MakesTheConnectionStringOfItsWay) {
  struct Case {
    ConnectionChoice choice;
    std::string expected;
  };
  const Case cases[] = {
      {{.way = Way::SqliteFile}, ""},
      {{.way = Way::SqliteFile, .file = "  "}, ""},
      {{.way = Way::SqliteFile, .file = "/data/a b.db"}, "Provider=SQLite;Data Source=/data/a b.db"},
      {{.way = Way::SqliteFile, .file = " lead.db"}, "Provider=SQLite;Data Source=\" lead.db\""},
      {{.way = Way::DataSource, .user = "ann", .password = "p"}, ""},
      {{.way = Way::DataSource, .dataSource = "Sales"}, "DSN=Sales"},
      {{.way = Way::DataSource, .dataSource = "Sales", .user = "ann"}, "DSN=Sales;UID=ann"},
      {{.way = Way::DataSource, .dataSource = "Sales", .password = "p w"}, "DSN=Sales;PWD=p w"},
      {{.way = Way::DataSource, .dataSource = "S", .user = "u", .password = "p;\""}, "DSN=S;UID=u;PWD=\"p;\"\"\""},
      {{.way = Way::Text, .text = " \n"}, ""},
      {{.way = Way::Text, .text = " DSN=a;PWD={b;c} \n"}, "DSN=a;PWD={b;c}"},
      // What was given for another way stays out.
      {{.way = Way::SqliteFile, .file = "x.db", .dataSource = "S", .password = "p", .text = "DSN=t"},
       "Provider=SQLite;Data Source=x.db"},
      {{.way = Way::DataSource, .file = "x.db", .text = "DSN=t"}, ""},
      {{.way = Way::Text, .dataSource = "S", .password = "p", .text = "DSN=t"}, "DSN=t"},
  };
  for (const Case& test : cases) EXPECT_EQ(BuildConnectionString(test.choice), test.expected);
}

TEST(ConnectionChoice, NoValueBecomesAPartOfItsOwn) {
  for (const std::string value :
       {";PWD=evil", "x;Driver=evil", "\";Driver=evil;A=\"", "\"", "\"\"", "'", "';Driver=evil;A='", "{", "}",
        "{x};Driver=evil", "};Driver=evil;A={", "=", "a=b", " x ", "\t", "a\nDriver=evil", "größe;\"'{}="}) {
    SCOPED_TRACE(value);
    const ConnectionString source(
        BuildConnectionString({.way = Way::DataSource, .dataSource = value, .user = value, .password = value}));
    EXPECT_EQ(source.Parts(), (Parts{{"DSN", value}, {"UID", value}, {"PWD", value}}));
    const ConnectionString file(BuildConnectionString({.way = Way::SqliteFile, .file = "/d/" + value}));
    EXPECT_EQ(file.Parts(), (Parts{{"Provider", "SQLite"}, {"Data Source", "/d/" + value}}));
  }
}

}  // namespace
}  // namespace zrqrybld
