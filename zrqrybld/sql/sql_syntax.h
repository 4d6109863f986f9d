// The dialects by number, for whoever names one and asks nothing of it.
#pragma once

#include <cstdint>

namespace zrqrybld {

/// The SQL dialects, as the SQL pane's `SQLSyntax` names them.
enum SQLSyntaxEnum : std::int32_t {
  SQLSyntaxGeneric = 0,
  SQLSyntaxMSSQL = 1,
  SQLSyntaxOracle = 2,
  SQLSyntaxAccess = 3,
  SQLSyntaxOpenSQL = 4,
  SQLSyntaxPostgreSQL = 5,
  SQLSyntaxMySQL = 6,  ///< MySQL and MariaDB
  SQLSyntaxSQLite = 7,
  SQLSyntaxSQLServer = 8,  ///< SQL Server from 2012 on
  SQLSyntaxOracle12 = 9,   ///< Oracle from 12c on
  SQLSyntaxANSI = 10,      ///< standard SQL, for whatever else there is
};

}  // namespace zrqrybld
