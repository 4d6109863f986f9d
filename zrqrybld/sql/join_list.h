// The join list of a design: in which order tables stand in FROM, and which conditions join each to
// those before it.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "zrqrybld/sql/joins.h"
#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

/// Whether the join says which two columns are joined, and joins two boxes; one that does not gives no condition.
bool IsUsable(const SnapshotJoin& join);

/// Two columns that are compared, to find them again in a hashed container. The names belong to somebody else.
struct ColumnPair {
  std::size_t left;
  std::string_view leftColumn;
  std::size_t right;
  std::string_view rightColumn;
  friend bool operator==(const ColumnPair&, const ColumnPair&) = default;
};
struct HashColumnPair {
  std::size_t operator()(const ColumnPair& pair) const;
};

/// A condition that joins a table of FROM to one before it. Its texts belong to the query.
struct FromCondition {
  std::string_view leftColumn;  ///< of the entry's own table
  std::size_t right;            ///< the table before it, by its position in the query
  std::string_view rightColumn;
  JoinTypeEnum type;
};

/// A table of FROM, by its position in the query.
struct FromEntry {
  std::size_t table;
  std::vector<FromCondition> conditions;  ///< each once, whatever its kind: the first one counts
};

/// Orders all tables. Each table's joins are followed depth first, its own before those that end at
/// it, and a table that is met is placed immediately behind the one it was met from. Incomplete
/// joins and joins from a table to itself connect nothing. Takes time in the number of tables and joins.
std::vector<FromEntry> PlaceTables(const QuerySnapshot& query);

/// The same when the diagram holds the tables in `order`: their positions in the query, each once.
std::vector<FromEntry> PlaceTables(const QuerySnapshot& query, std::span<const std::size_t> order);

/// The placed tables as objects that can be handed out.
Ref<qbJoins> BuildJoinList(const QuerySnapshot& query);

}  // namespace zrqrybld
