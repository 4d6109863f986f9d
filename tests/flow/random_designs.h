// Designs made by chance (the same in each run), made in a designer, run by whoever can, and held against what they
// mean.
#pragma once

#include <functional>
#include <random>
#include <string>
#include <vector>

#include "tests/flow/store_rows.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {

class qbQueryBuilder;

namespace test {

class Chance {
 public:
  explicit Chance(unsigned seed) : engine_(seed) {}
  // A number from 0 to `end` - 1. The standard's distributions differ from library to library; a remainder does not.
  std::size_t Below(std::size_t end) { return engine_() % end; }
  bool OneIn(std::size_t times) { return Below(times) == 0; }

 private:
  std::mt19937 engine_;
};

/// What a source cannot do, and where its tables are.
struct Target {
  std::string prefix;  ///< before the table names of the sample database
  bool hasFullJoin = true;
  SQLSyntaxEnum own = SQLSyntaxSQLite;  ///< its own dialect, whose statements run as they are
  std::size_t mostRows = 3400;          ///< designs with more, also on the way, are left out
  /// The rows of a statement, the cells as `CellText` writes them.
  std::function<std::vector<std::vector<std::string>>(const std::string& sql)> run;
};

/// A cell without the differences between sources: numbers in their shortest form, "NULL" for Null.
std::string CellText(const Cell& cell);
std::string CellText(const std::string& text);

/// Two to five tables joined by their foreign keys, in every kind of join, with columns, criteria, groups and sorting.
Design DesignByChance(Store& store, Chance& chance, bool withFullJoins);

/// Makes the design in an empty diagram and grid.
void Build(qbQueryBuilder& hub, const Design& design, const std::string& prefix);

/// Runs the designs in every dialect that can say them. Adds a failure for each one whose rows are not those that
/// `Evaluate` gives. Returns a line of figures: how many of which sort were run.
std::string TryDesigns(qbQueryBuilder& hub, Store& store, const Target& target, int count, unsigned seed);

}  // namespace test
}  // namespace zrqrybld
