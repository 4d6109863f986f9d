// What is looked at before a statement is sent: that it is one SELECT and nothing else, and that the source
// understands the dialect it is written in.
#pragma once

#include <string>
#include <string_view>

#include "zrqrybld/adapters/run/source_mode.h"
#include "zrqrybld/base/export.h"

namespace zrqrybld {

struct Dialect;

/// Error 40002, with the place, when the text is anything but one SELECT that only reads, WITH before it or not:
/// another statement, a second one, SELECT INTO, a lock, a function or clause with effects (source_effects.h), or a
/// SELECT without columns. Literals, quoted names and comments are told apart as the source does it; in every way in
/// which it may, when its mode or the source itself is not known, and one objection is enough.
void RequireOneSelect(std::string_view sql, const SourceMode& mode);

/// What is sent for a statement that `RequireOneSelect` lets through: nothing stands in another place, but comments
/// and the sign at the end are blanks, so that a driver which tells them apart in another way has nothing to mistake.
/// The statement as it is when the source's way is not known.
std::string StatementToSend(std::string_view sql, const SourceMode& mode);

/// A statement of PostgreSQL that means the same and holds no ";", also not in literals and names: a driver that looks
/// for the ends of statements by itself finds none, and sends one. Error 40002, with the place, where that cannot be
/// said, as for a ";" that ends a statement.
ZRQRYBLD_API std::string WithoutSemicolons(std::string_view sql, const SourceMode& mode);

/// Error 40002, with the place, when the statement holds what this source does not know, though the dialect does: TOP,
/// *=, (+), ROWNUM and the like. Everything passes for a source of the family `Other`.
void RequireSpoken(std::string_view sql, const Dialect& dialect, std::string_view sourceName);

}  // namespace zrqrybld
