// Renaming a table inside texts that somebody typed. Pure.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/names.h"

namespace zrqrybld {

/// The text with the table `before` replaced by `after` wherever it qualifies a column ("before.column"), quoted or
/// not, in any letter case. `before` is one name, or a schema and a table. Literals, comments and columns of the same
/// name are left alone.
std::string RenameQualifier(std::string_view text, std::string_view before, const SqlText& after,
                            const NameRules& rules);

/// The text with the table `before` replaced by `after` in FROM of each query that stands in it in parentheses, and
/// where it qualifies a column in there, unless an alias is called so. A query that has one of WITH which is called so
/// stays as it is: it means that one.
std::string RenameSource(std::string_view text, std::string_view before, const SqlText& after, const NameRules& rules);

/// The text with the table before each column that stands without one, where `tables` knows it by its name. What stands
/// in queries in parentheses, and names of functions, are left alone.
std::string QualifyColumns(std::string_view text,
                           const std::unordered_map<std::string, SqlText, HashNoCase, EqualNoCase>& tables);

}  // namespace zrqrybld
