// What a driver is given to open a source. Only the adapter's sources include this.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "zrqrybld/adapters/odbc/odbc_handle.h"
#include "zrqrybld/platform/connection_string.h"

namespace zrqrybld::odbc {

/// Whether the string names a driver or a configured data source.
bool NamesSource(const ConnectionString& connectionString);

/// What a connection is for. For `Rows` a driver is told to take one statement at a time and to read row by row.
enum class Purpose : std::uint8_t { Catalogue, Rows };

struct DriverSource {
  std::string text;  ///< the string for the driver
  Secrets secrets;
};

/// The string in the driver's own terms. `user` and `password` take the
/// place of those of the string. Error 3706 when it names no source, or a file of SQLite that cannot be read.
DriverSource MakeDriverSource(const ConnectionString& connectionString, std::string_view user,
                              std::string_view password, Purpose purpose);

}  // namespace zrqrybld::odbc
