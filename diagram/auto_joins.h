// Automatic joins: what the foreign keys of the data source say about the tables in the diagram.
#pragma once

#include "diagram/entities.h"
#include "host/query_context.h"

namespace zrqrybld {

/// Draws a join for each pair of columns that a foreign key links, unless it is there already. The
/// source of the join is the entity that references, its target the one that is referenced; columns
/// are named by position. Of two copies of a table that references itself the later is the parent.
/// Asks the source once per entity. A source without foreign keys draws nothing; other failures are
/// the source's own errors.
void RefreshRelationships(const Ref<QueryContext>& context);

}  // namespace zrqrybld
