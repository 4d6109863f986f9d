#include "zrqrybld/adapters/sqlite/sqlite_provider.h"

#include <algorithm>

#include "zrqrybld/adapters/sqlite/sqlite_database.h"
#include "zrqrybld/adapters/sqlite/sqlite_session.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kOtherAccessKeys[] = {"Driver", "DSN", "FileDSN", "Server", "Host"};

}  // namespace

bool SqliteProvider::Accepts(const ConnectionString& connectionString) const {
  return sqlite::FileName(connectionString) && std::ranges::none_of(kOtherAccessKeys, [&](std::string_view key) {
           return connectionString.Get(key).has_value();
         });
}

std::unique_ptr<Session> SqliteProvider::Open(const ConnectionString& connectionString, std::string_view,
                                              std::string_view) {
  return std::make_unique<sqlite::SqliteSession>(sqlite::OpenDatabase(connectionString));
}

}  // namespace zrqrybld
