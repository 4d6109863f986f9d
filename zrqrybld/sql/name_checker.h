// NameChecker: whether every name inside the expressions of a statement means something.
//
// Pure: which columns there are is asked of the scope's source; what it does not know is never refused.
#pragma once

#include "zrqrybld/sql/name_scope.h"

namespace zrqrybld {

struct Dialect;
class qbDBFunctions;

/// Looks at every name in the select list, in ON, WHERE, GROUP BY, HAVING and ORDER BY, and in the queries within them.
/// SyntaxError at the first that no table has, or several have. Aliases of the select list, functions without
/// parentheses (those of the catalog, too), parameters and the words that some functions take are no names of columns.
void RequireKnownNames(const SelectStatement& statement, const NameScope& scope, const Dialect& dialect,
                       const qbDBFunctions& functions);

}  // namespace zrqrybld
