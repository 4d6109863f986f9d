// Statements of several queries made by chance (the same in each run): what the designer writes of them gives the rows
// of the original, also after a save and a load.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {

class qbQueryBuilder;

namespace test {

/// Where statements run.
struct QueryTarget {
  SQLSyntaxEnum syntax = SQLSyntaxSQLite;
  bool hasParentheses = false;  ///< around members of UNION and its like
  bool hasAnyAndAll = false;    ///< before a query in a comparison
  bool namesColumns = false;    ///< of a query in FROM, behind its name
  std::string prefix = {};      ///< before the table names
  /// The rows of a statement as lines, in any order.
  std::function<std::vector<std::string>(const std::string& sql)> run;
};

/// The tables that the statements name, as a script for any server.
std::vector<std::string> QueryTables(const std::string& prefix);

/// Types the statements into the designer, which is connected to where they run. Adds a failure for each that gives
/// other rows, or changes when it is read again, saved and loaded, undone and made again, or looked at query by query,
/// those in cells of the grid, too. Returns a line of figures.
std::string TryQueries(qbQueryBuilder& hub, const QueryTarget& target, unsigned count, unsigned seed);

}  // namespace test
}  // namespace zrqrybld
