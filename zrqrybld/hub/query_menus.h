// What a person does with the queries of a statement, from whatever menu, key or window: the hub's members behind
// entries of menus.
#pragma once

#include <cstdint>
#include <string>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/platform/menu.h"
#include "zrqrybld/sql/query_kind.h"

namespace zrqrybld {

class qbQueryBuilder;
class qbRelationship;

/// What can be done with the query; empty when there is none with this id. The entries outlive the hub.
ZRQRYBLD_API Menu MenuOfQuery(qbQueryBuilder& hub, std::int32_t id);
/// The same for the query that the shown one means by the name.
Menu MenuOfQueryNamed(qbQueryBuilder& hub, const std::string& name);
/// What makes new queries, and leaves the one shown where it belongs to another.
Menu MenuOfNewQueries(qbQueryBuilder& hub);

/// What opens the queries in a cell of the shown query's grid, or puts the first one into it.
Menu MenuOfQueriesInCell(qbQueryBuilder& hub, std::int32_t row, std::int32_t column);

/// Shows the first query in the cell, by row and column from 1. False when there is none.
bool OpenQueryInCell(qbQueryBuilder& hub, std::int32_t row, std::int32_t column);

/// The same for the condition of a join.
Menu MenuOfQueriesInJoin(qbQueryBuilder& hub, const Ref<qbRelationship>& join);
bool OpenQueryInJoin(qbQueryBuilder& hub, const Ref<qbRelationship>& join);
/// Shows the query that the shown one means by the name. False when there is none.
bool OpenQueryNamed(qbQueryBuilder& hub, const std::string& name);
/// Shows the query that the shown one belongs to, and the cell that it stands in. False for the main query.
ZRQRYBLD_API bool LeaveQuery(qbQueryBuilder& hub);
/// Adds a query to the one shown, a step. A member is shown, the box of another one is selected.
ZRQRYBLD_API void AddInnerQuery(qbQueryBuilder& hub, QueryKindEnum kind);

}  // namespace zrqrybld
