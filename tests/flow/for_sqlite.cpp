#include "tests/flow/headless_designer.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld::test {

namespace {

// Servers take parentheses in FROM around joined tables, not around one.
std::string WithoutParenthesesAroundOne(std::string sql) {
  for (std::size_t from = sql.find("FROM"); from != std::string::npos; from = sql.find("FROM", from + 4)) {
    const std::size_t open = sql.find_first_not_of(" \r\n\t", from + 4);
    if (open == std::string::npos || sql.compare(open, 2, "( ") != 0) continue;
    const std::size_t close = sql.find(" )", open);
    if (close == std::string::npos || sql.substr(open, close - open).find("JOIN") != std::string::npos) continue;
    sql.replace(close, 2, "  ");
    sql.replace(open, 2, "  ");
  }
  return sql;
}

}  // namespace

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
    sql = columns + WithoutParenthesesAroundOne(sql.substr(from));
  } else {
    takeLimit("TOP ", " ");
  }
  return sql + limit;
}

}  // namespace zrqrybld::test
