// What a dialect cannot say of a join. Pure.
#pragma once

#include <cstdint>

#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

struct Dialect;

enum class JoinLimit : std::uint8_t {
  None,       ///< it can be written
  Condition,  ///< an outer join whose columns are not only compared as equal, beside a list of tables
  Group,      ///< tables that are joined first, where that changes what an outer join means
};

/// Why the dialect has no text for the query's join. That it has no word for "all rows of both tables" is not told
/// here.
JoinLimit LimitOf(const SnapshotJoin& join, const Dialect& dialect, bool hasOuterJoins);

/// Whether any join of the query is an outer one.
bool HasOuterJoins(const QuerySnapshot& query);

}  // namespace zrqrybld
