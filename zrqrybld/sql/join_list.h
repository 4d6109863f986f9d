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

/// The comparison of a join as a number that is the same from both of its ends.
int ComparisonSeen(bool fromTarget, JoinComparisonEnum comparison);

/// Two columns that are compared, to find them again in a hashed container. The names belong to somebody else.
struct ColumnPair {
  std::size_t left;
  std::string_view leftColumn;
  std::size_t right;
  std::string_view rightColumn;
  int comparison = JoinEqual;  ///< as `ComparisonSeen` from the left column
  friend bool operator==(const ColumnPair&, const ColumnPair&) = default;
};
/// The columns of a join, the same whichever end comes first.
ColumnPair KeyOf(std::size_t source, std::string_view sourceColumn, std::size_t target, std::string_view targetColumn,
                 JoinComparisonEnum comparison);
struct HashColumnPair {
  std::size_t operator()(const ColumnPair& pair) const;
};

/// A condition that joins a table of FROM to one before it. Its texts belong to the query.
struct FromCondition {
  std::size_t left;             ///< the entry's own table, or another of its group
  std::string_view leftColumn;  ///< "" when only the join's own condition is asked
  std::size_t right;            ///< the table before it, by its position in the query
  std::string_view rightColumn;
  JoinTypeEnum type;
  const SnapshotJoin* join;  ///< whose it is

  /// Whether the entry's own table is the one that the join was drawn from.
  bool FromSource() const { return join->source == left; }
};

/// A table of FROM, by its position in the query, or a group of tables that are joined first.
struct FromEntry {
  std::size_t table;                      ///< of a group the first
  std::vector<FromCondition> conditions;  ///< each once, whatever its kind: the first one counts
  std::vector<FromEntry> group = {};      ///< the tables of a group, in their order; empty for a table alone
};

/// Orders the tables of a query, which the diagram holds in `order`: their positions in the query, each once. Those
/// that are not named there, and the joins to them, are left out, as joins that only ask are. Each table's joins are
/// followed depth first, its own before those that end at it, and a table that is met is placed immediately behind the
/// one it was met from. Incomplete joins and joins from a table to itself connect nothing. Tables that joins with a
/// group level hold together stand as one entry; inside it they are ordered in the same way. Takes time in the number
/// of tables and joins, and of levels.
std::vector<FromEntry> PlaceTables(const QuerySnapshot& query, std::span<const std::size_t> order);

/// The entries without groups: each table by itself, in the order in which they are written.
std::vector<FromEntry> WithoutGroups(std::vector<FromEntry> entries);

/// The placed tables as objects that can be handed out.
Ref<qbJoins> BuildJoinList(const QuerySnapshot& query);

}  // namespace zrqrybld
