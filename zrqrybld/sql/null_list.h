// Queries behind NOT IN that may return a Null: with one the condition holds for no row at all. Pure.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

struct NullList {
  std::string column;        ///< what the query returns, as it is written there
  std::string query;         ///< as it is written between its parentheses
  std::string withoutNulls;  ///< the same query with "IS NOT NULL" added; "" where one condition does not do it
};

/// The first of the condition's queries behind NOT IN that returns a column which the source says may be Null, and
/// which asks nothing of the column that no Null fulfils. None for a condition that cannot be read.
std::optional<NullList> FindNullList(std::string_view condition, const KnownColumns& columns);

/// The same of one of the row's criteria.
std::optional<NullList> FindNullListIn(const QuerySnapshot& query, const SnapshotRow& row,
                                       const std::string& criterion);

/// The text with the query as it leaves its Nulls out; none where that is not known, or the text does not hold it.
std::optional<std::string> WithoutNulls(const std::string& text, const NullList& list);

}  // namespace zrqrybld
