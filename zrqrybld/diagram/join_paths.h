// Ways from the tables of the diagram to another one along the source's foreign keys.
#pragma once

#include <string>
#include <vector>

#include "zrqrybld/host/foreign_keys.h"
#include "zrqrybld/host/query_context.h"

namespace zrqrybld {

/// One way: the table of the diagram where it begins, by its caption, and the tables that are missing, as lists show
/// them, in the order in which each can be joined to the one before; the wanted table is the last.
struct JoinPath {
  std::string from;
  std::vector<std::string> tables;
};

/// The shortest ways to the table, all of the same length, in the order of their names; at most twelve. None when the
/// table is linked to none of the diagram, when it is there already, or when the source tells no foreign keys. Of
/// sources that tell foreign keys table by table, at most 200 tables are asked about. Errors are the source's own.
std::vector<JoinPath> PathsTo(QueryContext& context, const SourceTableName& table);

}  // namespace zrqrybld
