// What the shared library has of the outside: the data source providers of this build, and the system's files.
#include <memory>

#include "adapters/files/system_files.h"
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

void UseSystemFiles(Toolkit& toolkit) { toolkit.SetFiles(SystemFiles()); }

}  // namespace zrqrybld
