// A criterion as a condition of a join: what an outer join's own condition filters, its criterion drops. Pure.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

/// The row's criterion as it is written, when it is the row's only one, of a plain column, and names no other table
/// than that column's, so that it means the same in a join of the table. None for every other row.
std::optional<std::string> ConditionToMove(const QuerySnapshot& query, const SnapshotRow& row);

/// A criterion of a column's row as a condition; "" for none. Error for one that cannot be read.
std::string ConditionOf(const QuerySnapshot& query, const SnapshotRow& row, const std::string& criterion);

/// What a join asks that asked `first` and is to ask `second` as well.
std::string BothConditions(std::string_view first, std::string_view second);

}  // namespace zrqrybld
