// What a query is to the one that it stands in, and how the members of a compound are put together.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

struct QueryForms;

/// What a query is to the query that it belongs to.
enum QueryKindEnum : std::int32_t {
  QueryMain = 0,          ///< the statement itself; it belongs to none
  QueryDerivedTable = 1,  ///< stands in FROM, in parentheses
  QueryCommonTable = 2,   ///< stands in WITH, and is named like a table
  QueryMember = 3,        ///< stands behind UNION and its like
  QueryInCell = 4,        ///< stands in a cell of the grid, and is one of the queries only while it is shown
};

/// Whether such a query is named like a table.
constexpr bool HasName(QueryKindEnum kind) { return kind == QueryDerivedTable || kind == QueryCommonTable; }

/// How a member's rows are put together with those of all before it.
enum QueryOperatorEnum : std::int32_t {
  QueryUnion = 0,
  QueryUnionAll = 1,
  QueryIntersect = 2,
  QueryIntersectAll = 3,
  QueryExcept = 4,  ///< MINUS in some dialects
  QueryExceptAll = 5,
};

/// Whether equal rows are counted, and not made one.
constexpr bool KeepsDuplicates(QueryOperatorEnum combined) { return combined % 2 == 1; }
constexpr bool Intersects(QueryOperatorEnum combined) { return combined / 2 == 1; }
constexpr bool Excepts(QueryOperatorEnum combined) { return combined / 2 == 2; }

/// The operator in words of everybody: "UNION ALL".
ZRQRYBLD_API std::string_view NameOf(QueryOperatorEnum combined);
/// As a dialect writes it; "" where it cannot.
ZRQRYBLD_API std::string WordOf(QueryOperatorEnum combined, const QueryForms& forms);

}  // namespace zrqrybld
