// Automatic joins: what the foreign keys of the data source say about the tables in the diagram.
#pragma once

#include <string>
#include <vector>

#include "zrqrybld/diagram/entities.h"

namespace zrqrybld {

struct QueryContext;

/// Draws a join for each pair of columns that a foreign key links, unless it is there already. The
/// source of the join is the entity that references, its target the one that is referenced; columns
/// are named by position. Of two copies of a table that references itself the later is the parent.
/// Each pass asks the source anew, once about each table, or once about all where it can answer that. A source without
/// foreign keys draws nothing; other failures are the source's own errors.
void RefreshRelationships(const Ref<QueryContext>& context);

/// The tables that the entity's table references or, as far as the source has told, that reference it, by name; without
/// those that are in the diagram. Errors are the source's own.
std::vector<std::string> RelatedTables(QueryContext& context, const qbEntity& entity);

}  // namespace zrqrybld
