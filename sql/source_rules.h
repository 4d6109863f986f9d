// The naming rules of the connected data source, read from what the designer shares.
#pragma once

#include "host/query_context.h"
#include "sql/names.h"

namespace zrqrybld {

/// The rules as they are now: the source's own quotes and separator where it has told them, "[" and
/// "]" without a source. The names of a text-file source are never split.
NameRules CurrentNameRules(const QueryContext& context);

}  // namespace zrqrybld
