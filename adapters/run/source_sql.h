// What is looked at before a statement is sent: that it is one SELECT and nothing else, and that the source
// understands the dialect it is written in.
#pragma once

#include <cstdint>
#include <string_view>

#include "sql/dialect.h"

namespace zrqrybld {

/// Sources that cut a text into words in the same way and know the same clauses.
enum class SourceFamily : std::uint8_t { Sqlite, PostgreSql, MariaDb, SqlServer, Oracle, Access, Other };

/// The family by what a source calls itself; `Other` for one that is not known.
SourceFamily FamilyOf(std::string_view sourceName);

/// Error 40002, with the place, when the text is anything but one SELECT that only reads: another statement, a second
/// one, SELECT INTO, or a SELECT without columns. Literals, quoted names and comments are told apart as the source does
/// it; for a source of the family `Other` in every known way, and one objection is enough.
void RequireOneSelect(std::string_view sql, SourceFamily family);

/// Error 40002, with the place, when the statement holds what this source does not know, though the dialect does: TOP,
/// *=, (+), ROWNUM and the like. Everything passes for a source of the family `Other`.
void RequireSpoken(std::string_view sql, const Dialect& dialect, std::string_view sourceName);

}  // namespace zrqrybld
