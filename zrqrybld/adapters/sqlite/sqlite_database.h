// The database file that a connection string names, opened for reading only. Only the adapter's sources include this.
#pragma once

#include <optional>
#include <string>

#include "zrqrybld/adapters/sqlite/sqlite_handle.h"
#include "zrqrybld/platform/connection_string.h"

namespace zrqrybld::sqlite {

/// The file's name; none when the string names none.
std::optional<std::string> FileName(const ConnectionString& connectionString);

/// Opens the file for reading only. Errors are those of `SqliteProvider::Open`.
DatabaseHandle OpenDatabase(const ConnectionString& connectionString);

}  // namespace zrqrybld::sqlite
