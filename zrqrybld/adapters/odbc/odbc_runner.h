// Runs a SELECT on a source that has an ODBC driver, for looking at its rows.
#pragma once

#include <memory>

#include "zrqrybld/adapters/run/query_runner.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/connection_string.h"

namespace zrqrybld {

/// A runner with a connection of its own, which only reads: the driver is told so, the server too where it has words
/// for that (PostgreSQL, MariaDB, SQLite, Oracle), and the transaction is rolled back at the end. The session is asked
/// how it reads a text, and the statement is sent prepared, which is one statement only. Errors are those of
/// `OdbcProvider::Open`, and 3706 when the server's transaction is not one that only reads.
///
/// Answers are read piece by piece from PostgreSQL and SQLite, and from MariaDB with a driver that can (from 3.2);
/// an earlier one holds an answer as a whole and is asked for as many rows as it can hold, see `WasCutOff`. Other
/// drivers are asked for `QueryRunner::kMostRows` rows at most.
ZRQRYBLD_API std::unique_ptr<QueryRunner> OpenOdbcRunner(const ConnectionString& connectionString);

}  // namespace zrqrybld
