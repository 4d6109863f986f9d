// Renaming a table inside texts that somebody typed. Pure.
#pragma once

#include <string>
#include <string_view>

#include "zrqrybld/sql/names.h"

namespace zrqrybld {

/// The text with the table `before` replaced by `after` wherever it qualifies a column ("before.column"), quoted or
/// not, in any letter case. `before` is one name, or a schema and a table. Literals, comments and columns of the same
/// name are left alone.
std::string RenameQualifier(std::string_view text, std::string_view before, const SqlText& after,
                            const NameRules& rules);

}  // namespace zrqrybld
