#include "tests/flow/headless_designer.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld::test {

std::string ForSqlite(const std::string& statement, SQLSyntaxEnum syntax) {
  std::string sql = statement;
  std::string limit;
  // Takes out what begins with `before` and ends behind `after`; what stands between is the limit.
  const auto takeLimit = [&](std::string_view before, std::string_view after) {
    const std::size_t start = sql.find(before);
    if (start == std::string::npos) return;
    const std::size_t number = start + before.size();
    const std::size_t end = sql.find(after, number);
    limit = "\nLIMIT " + sql.substr(number, end - number);
    sql.erase(start, end + after.size() - start);
  };
  if (syntax == SQLSyntaxOpenSQL) {
    takeLimit("\n\tUP TO ", " ROWS");
    const std::size_t from = sql.find("\nFROM ");
    std::string columns = sql.substr(0, from);
    const std::size_t first = columns.find("\n\t");  // the list begins here; every item stands on a line of its own
    for (std::size_t at = columns.find(" \n\t", first + 1); at != std::string::npos;
         at = columns.find(" \n\t", at + 3)) {
      columns.insert(at, ",");
    }
    sql = columns + sql.substr(from);
  } else {
    takeLimit("TOP ", " ");
  }
  return sql + limit;
}

}  // namespace zrqrybld::test
