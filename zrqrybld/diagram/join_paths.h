// Ways from the tables of the diagram to another one along the source's foreign keys.
#pragma once

#include <string>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/foreign_keys.h"

namespace zrqrybld {

/// One way: the table of the diagram where it begins, by its caption, and the tables that are missing, as lists show
/// them, in the order in which each can be joined to the one before; the wanted table is the last.
struct JoinPath {
  std::string from;
  std::vector<std::string> tables;
};

/// The shortest ways to the table, all of the same length, in the order of their names; at most twelve. None when the
/// table is linked to none of the diagram, when it is there already, or when the source tells no foreign keys. At
/// most 200 tables are walked over, and a source that tells foreign keys by table is asked about as many. Errors are
/// the source's own.
ZRQRYBLD_API std::vector<JoinPath> PathsTo(QueryContext& context, const SourceTableName& table);

}  // namespace zrqrybld
