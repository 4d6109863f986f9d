#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

#include "tests/flow/headless_designer.h"
#include "tests/flow/queries_by_chance.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld {
namespace {

// ZRQRYBLD_QUERIES=2000 test_flow --gtest_filter=QueriesByChance* goes on.
TEST(QueriesByChance, AreWrittenAnewWithTheRowsOfTheOriginal) {
  std::string script;
  for (const std::string& line : test::QueryTables("")) script += line + ";";
  const test::DatabaseFile file(script);
  const test::Connection source(file.Path());
  test::HeadlessDesigner designer;
  designer.Hub().Connect("Provider=SQLite;Data Source=" + file.Path());
  const test::QueryTarget target{.syntax = SQLSyntaxSQLite, .run = [&](const std::string& sql) {
                                   std::vector<std::string> lines;
                                   const std::string rows = source.Query(sql);
                                   for (std::size_t at = 0; at < rows.size();) {
                                     const std::size_t end = std::min(rows.find('\n', at), rows.size());
                                     lines.push_back(rows.substr(at, end - at));
                                     at = end + 1;
                                   }
                                   return lines;
                                 }};
  const char* const wished = std::getenv("ZRQRYBLD_QUERIES");
  const unsigned count = wished ? static_cast<unsigned>(std::atoi(wished)) : 80;
  std::cout << test::TryQueries(designer.Hub(), target, count, 1) << "\n";
}

}  // namespace
}  // namespace zrqrybld
