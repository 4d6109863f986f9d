// What the shared library has of the outside: the data source providers of this build, and the system's files.
#include <memory>

#include "zrqrybld/adapters/files/system_files.h"
#include "zrqrybld/automation/toolkit_object.h"
#ifdef ZRQRYBLD_HAS_SQLITE
#include "zrqrybld/adapters/sqlite/sqlite_provider.h"
#endif
#ifdef ZRQRYBLD_HAS_ODBC
#include "zrqrybld/adapters/odbc/odbc_provider.h"
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
