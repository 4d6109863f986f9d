// The join list: in which order tables stand in FROM, and which conditions join each to those
// before it.
#pragma once

#include <cstddef>
#include <vector>

#include "sql/dialect.h"
#include "sql/query_snapshot.h"

namespace zrqrybld {

/// One condition, seen from the table whose entry holds it: `left` is that table's column.
struct JoinCondition {
  std::size_t leftTable;
  Identifier leftColumn;
  std::size_t rightTable;
  Identifier rightColumn;
  JoinTypeEnum type;
};

/// One table of FROM with the conditions that join it to tables before it.
struct JoinEntry {
  std::size_t table;
  std::vector<JoinCondition> conditions;
};

/// Orders all tables. Each table's joins are followed depth first, its own before those that end at
/// it, and a table that is met is placed immediately behind the one it was met from. Incomplete
/// joins and joins from a table to itself connect nothing. Takes time in the number of tables and joins.
std::vector<JoinEntry> BuildJoinList(const QuerySnapshot& query);

}  // namespace zrqrybld
