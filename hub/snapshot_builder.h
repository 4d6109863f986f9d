// Takes the designed query out of the diagram and the grid as plain data.
#pragma once

#include <cstdint>
#include <string>

#include "diagram/entities.h"
#include "grid/grid_pane.h"
#include "host/query_context.h"
#include "sql/query_snapshot.h"

namespace zrqrybld {

/// The tables, joins and rows as they are now. A pane that is not there counts as empty.
QuerySnapshot TakeSnapshot(const QueryContext& context, const qbEntities* entities, const qbGridPane* grid);

/// What a type code says of a column, and how literals of the type are written.
SnapshotType DescribeType(std::int32_t code, bool isLong, const qbDataTypes& types);

/// The type of an entity's column; nothing is known of one that it does not have.
SnapshotType TypeOfColumn(const qbEntity& entity, const std::string& column, const qbDataTypes& types);

}  // namespace zrqrybld
