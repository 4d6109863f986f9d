// Runs a SELECT on a SQLite database, for looking at its rows.
#pragma once

#include <memory>

#include "zrqrybld/adapters/run/query_runner.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/connection_string.h"

namespace zrqrybld {

/// A runner with a connection of its own to the file, which cannot write. The file is read from the first row to the
/// last or to the runner's end: as long as that takes, others can read it and may have to wait before they write.
/// Errors are those of `SqliteProvider::Open`.
ZRQRYBLD_API std::unique_ptr<QueryRunner> OpenSqliteRunner(const ConnectionString& connectionString);

}  // namespace zrqrybld
