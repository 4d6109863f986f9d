// The join list of a design: in which order tables stand in FROM, and which conditions join each to
// those before it.
#pragma once

#include "sql/joins.h"
#include "sql/query_snapshot.h"

namespace zrqrybld {

/// Whether the join says which two columns are joined, and joins two boxes; one that does not gives no condition.
bool IsUsable(const SnapshotJoin& join);

/// Orders all tables. Each table's joins are followed depth first, its own before those that end at
/// it, and a table that is met is placed immediately behind the one it was met from. Incomplete
/// joins and joins from a table to itself connect nothing. Takes time in the number of tables and joins.
Ref<qbJoins> BuildJoinList(const QuerySnapshot& query);

}  // namespace zrqrybld
