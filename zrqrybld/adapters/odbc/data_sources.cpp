#include "zrqrybld/adapters/odbc/data_sources.h"

#include <algorithm>

#include "zrqrybld/adapters/odbc/odbc_handle.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

// The functions for bytes: the names come as they stand in the configuration, which is UTF-8. Those for UTF-16 make
// one character of each byte.
std::string TextOf(const std::string& buffer) { return buffer.substr(0, buffer.find('\0')); }
SQLCHAR* Bytes(std::string& buffer) { return reinterpret_cast<SQLCHAR*>(buffer.data()); }

}  // namespace

std::vector<DataSourceName> odbc::ConfiguredSources() {
  const odbc::Environment environment;
  std::vector<DataSourceName> sources;
  for (SQLUSMALLINT direction = SQL_FETCH_FIRST;; direction = SQL_FETCH_NEXT) {
    std::string name(1024, '\0');
    std::string driver(4096, '\0');
    SQLSMALLINT length = 0;
    const SQLRETURN result =
        SQLDataSources(environment.Get(), direction, Bytes(name), static_cast<SQLSMALLINT>(name.size() - 1), &length,
                       Bytes(driver), static_cast<SQLSMALLINT>(driver.size() - 1), &length);
    if (!SQL_SUCCEEDED(result)) return sources;
    DataSourceName source{TextOf(name), TextOf(driver)};
    // One of the user hides one of the system with the same name.
    const bool known = std::ranges::any_of(
        sources, [&](const DataSourceName& other) { return EqualsNoCase(other.name, source.name); });
    if (!known) sources.push_back(std::move(source));
  }
}

std::vector<std::string> odbc::ConfiguredDrivers() {
  const odbc::Environment environment;
  std::vector<std::string> drivers;
  for (SQLUSMALLINT direction = SQL_FETCH_FIRST;; direction = SQL_FETCH_NEXT) {
    std::string name(1024, '\0');
    std::string attributes(4096, '\0');
    SQLSMALLINT length = 0;
    const SQLRETURN result =
        SQLDrivers(environment.Get(), direction, Bytes(name), static_cast<SQLSMALLINT>(name.size() - 1), &length,
                   Bytes(attributes), static_cast<SQLSMALLINT>(attributes.size() - 1), &length);
    if (!SQL_SUCCEEDED(result)) return drivers;
    drivers.push_back(TextOf(name));
  }
}

std::vector<std::string> OdbcDataSources(const std::optional<std::string>& driverName) {
  std::vector<std::string> names;
  for (DataSourceName& source : odbc::ConfiguredSources()) {
    if (driverName && !driverName->empty() && !EqualsNoCase(source.driver, *driverName)) continue;
    names.push_back(std::move(source.name));
  }
  return names;
}

}  // namespace zrqrybld
