#include "zrqrybld/adapters/odbc/odbc_provider.h"

#include <optional>
#include <string>
#include <utility>

#include "zrqrybld/adapters/odbc/data_sources.h"
#include "zrqrybld/adapters/odbc/driver_source.h"
#include "zrqrybld/adapters/odbc/patient_session.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {

bool OdbcProvider::Accepts(const ConnectionString& connectionString) const {
  const std::optional<std::string> provider = connectionString.Get("Provider");
  return (!provider || EqualsNoCase(*provider, Name())) && odbc::NamesSource(connectionString);
}

std::unique_ptr<Session> OdbcProvider::Open(const ConnectionString& connectionString, std::string_view user,
                                            std::string_view password) {
  odbc::DriverSource source = odbc::MakeDriverSource(connectionString, user, password, odbc::Purpose::Catalogue);
  return std::make_unique<odbc::PatientSession>(source.text, std::move(source.secrets));
}

std::vector<DataSourceName> OdbcProvider::DataSources() { return odbc::ConfiguredSources(); }

std::vector<std::string> OdbcProvider::Drivers() { return odbc::ConfiguredDrivers(); }

}  // namespace zrqrybld
