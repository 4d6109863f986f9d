// What an expression can be put together from: the columns of the diagram and the words of the catalogs.
#pragma once

#include <vector>

#include "host/query_context.h"
#include "platform/dialogs.h"

namespace zrqrybld {

/// The groups in the order in which they are shown; empty ones are left out. Columns are written as in the statement.
std::vector<ExpressionGroup> ExpressionParts(const QueryContext& context);

}  // namespace zrqrybld
