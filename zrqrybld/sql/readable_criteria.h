// Whether a statement may be run as far as its criteria are concerned.
#pragma once

#include "zrqrybld/base/export.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {

/// Error 40002 when a criterion stands in the pane's statement as it was typed because it cannot be read: nobody has
/// told what such a statement does. For those who run statements, or hand them to others that do.
ZRQRYBLD_API void RequireReadableCriteria(const qbSQLPane& pane);

}  // namespace zrqrybld
