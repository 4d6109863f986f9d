// The ODBC data sources that are configured on the machine.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/provider.h"

namespace zrqrybld {

/// The names of the data sources of this user and of the system, each once, in the driver manager's order; with a
/// driver's name only those that it serves, without regard to case. An empty name counts as none given. Error
/// 3706 when the driver manager cannot be used.
ZRQRYBLD_API std::vector<std::string> OdbcDataSources(const std::optional<std::string>& driverName = std::nullopt);

namespace odbc {

/// The same sources with their drivers. unixODBC lists those with names beyond ASCII, but does not find them when they
/// are opened. Error 3706 when the driver manager cannot be used.
std::vector<DataSourceName> ConfiguredSources();

/// The names of the drivers that the driver manager knows. Error 3706 as above.
std::vector<std::string> ConfiguredDrivers();

}  // namespace odbc
}  // namespace zrqrybld
