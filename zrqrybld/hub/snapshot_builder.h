// Takes the designed query out of the diagram and the grid as plain data.
#pragma once

#include <cstdint>
#include <string>

#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

struct QueryContext;

/// Whether the entity shows columns, not only "*".
bool HasKnownColumns(const qbEntity& entity);

/// The join at a position in the query that was taken, from 0; nothing when there is none.
Ref<qbRelationship> RelationshipAt(const qbEntities& entities, std::size_t join);

/// The tables, joins and rows as they are now. A pane that is not there counts as empty.
QuerySnapshot TakeSnapshot(const QueryContext& context, const qbEntities* entities, const qbGridPane* grid);

}  // namespace zrqrybld
