// What the user gives in the connection prompt, and the connection string that it makes.
#pragma once

#include <cstdint>
#include <string>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// The ways to a data source.
enum class ConnectionWay : std::uint8_t { SqliteFile, DataSource, Text };

/// What was given, for every way; only what belongs to the chosen way counts.
struct ConnectionChoice {
  ConnectionWay way = ConnectionWay::SqliteFile;
  std::string file = {};        ///< of a SQLite database
  std::string dataSource = {};  ///< a configured one, by name
  std::string user = {};
  std::string password = {};
  std::string text = {};  ///< a connection string
};

/// The connection string; "" while too little is given. A path, name or password is one value in it, whatever
/// characters it holds: none can end its value and begin a part of its own.
ZRQRYBLD_API std::string BuildConnectionString(const ConnectionChoice& choice);

}  // namespace zrqrybld
