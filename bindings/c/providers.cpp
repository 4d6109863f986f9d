// The data source providers of the shared library: those that this build has.
#include <memory>

#include "automation/toolkit_object.h"
#ifdef ZRQRYBLD_HAS_SQLITE
#include "adapters/sqlite/sqlite_provider.h"
#endif
#ifdef ZRQRYBLD_HAS_ODBC
#include "adapters/odbc/odbc_provider.h"
#endif

namespace zrqrybld {

void RegisterProviders([[maybe_unused]] ProviderList& providers) {
#ifdef ZRQRYBLD_HAS_SQLITE
  providers.Register(std::make_shared<SqliteProvider>());
#endif
#ifdef ZRQRYBLD_HAS_ODBC
  providers.Register(std::make_shared<OdbcProvider>());
#endif
}

}  // namespace zrqrybld
