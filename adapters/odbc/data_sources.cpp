#include "adapters/odbc/data_sources.h"

#include <algorithm>

#include "adapters/odbc/odbc_handle.h"
#include "adapters/odbc/odbc_provider.h"
#include "adapters/odbc/odbc_text.h"
#include "base/text.h"

namespace zrqrybld {
namespace {

std::string TextOf(const std::u16string& buffer) {
  return odbc::ToUtf8(std::u16string_view(buffer).substr(0, buffer.find(u'\0')));
}

}  // namespace

std::vector<DataSourceName> OdbcProvider::DataSources() {
  const odbc::Environment environment;
  std::vector<DataSourceName> sources;
  for (SQLUSMALLINT direction = SQL_FETCH_FIRST;; direction = SQL_FETCH_NEXT) {
    std::u16string name(1024, u'\0');
    std::u16string driver(4096, u'\0');
    SQLSMALLINT length = 0;
    const SQLRETURN result =
        SQLDataSourcesW(environment.Get(), direction, odbc::Wide(name), static_cast<SQLSMALLINT>(name.size() - 1),
                        &length, odbc::Wide(driver), static_cast<SQLSMALLINT>(driver.size() - 1), &length);
    if (!SQL_SUCCEEDED(result)) return sources;
    DataSourceName source{TextOf(name), TextOf(driver)};
    // One of the user hides one of the system with the same name.
    const bool known = std::ranges::any_of(
        sources, [&](const DataSourceName& other) { return EqualsNoCase(other.name, source.name); });
    if (!known) sources.push_back(std::move(source));
  }
}

std::vector<std::string> OdbcDataSources(const std::optional<std::string>& driverName) {
  std::vector<std::string> names;
  for (DataSourceName& source : OdbcProvider().DataSources()) {
    if (driverName && !driverName->empty() && !EqualsNoCase(source.driver, *driverName)) continue;
    names.push_back(std::move(source.name));
  }
  return names;
}

}  // namespace zrqrybld
