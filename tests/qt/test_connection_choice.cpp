#include <gtest/gtest.h>

#include <map>

#include "tests/data_table.h"
#include "zrqrybld/adapters/qt/connection_choice.h"
#include "zrqrybld/platform/connection_string.h"

namespace zrqrybld {
namespace {

using Way = ConnectionWay;
using Parts = std::vector<std::pair<std::string, std::string>>;

TEST(ConnectionChoice, MakesTheConnectionStringOfItsWay) {
  const std::map<std::string, Way> ways = {{"file", Way::SqliteFile}, {"source", Way::DataSource}, {"text", Way::Text}};
  for (const test::Row& row : test::ReadRows("connection_choices.txt")) {
    EXPECT_EQ(BuildConnectionString({ways.at(row[0]), row[1], row[2], row[3], row[4], row[5]}), row[6]) << row.place;
  }
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
