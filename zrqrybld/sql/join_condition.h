// The condition that a join asks besides the comparison of its columns, as text. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

/// The condition on one line without comments, as it can stand beside others in ON: alternatives in parentheses. "" for
/// a blank text. SyntaxError with the place when it is no condition.
std::string JoinConditionText(std::string_view typed);

/// The tables that a condition names before its columns.
struct NamedTables {
  std::vector<std::size_t> tables;  ///< positions in the query, each once
  bool areAll = true;  ///< not where a name stands alone, names no table of the query, or stands in a query
};
NamedTables TablesNamed(std::string_view condition, const std::vector<SnapshotTable>& tables);

}  // namespace zrqrybld
