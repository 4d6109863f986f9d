// Runs a SELECT on a source that has an ODBC driver, for looking at its rows.
#pragma once

#include <memory>

#include "adapters/run/query_runner.h"
#include "platform/connection_string.h"

namespace zrqrybld {

/// A runner with a connection of its own, which only reads: the driver is told so, the server too where it has words
/// for that (PostgreSQL, MariaDB, SQLite, Oracle), and the transaction is rolled back at the end. Errors are those of
/// `OdbcProvider::Open`. Answers are read piece by piece from PostgreSQL, MariaDB and SQLite; other drivers are asked
/// for `QueryRunner::kMostRows` rows at most.
std::unique_ptr<QueryRunner> OpenOdbcRunner(const ConnectionString& connectionString);

}  // namespace zrqrybld
