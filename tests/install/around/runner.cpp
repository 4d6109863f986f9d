#include <zrqrybld/adapters/sqlite/sqlite_runner.h>
#include <zrqrybld/hub/query_builder.h>
#include <string>
#include <vector>

bool Example(const zrqrybld::Ref<zrqrybld::qbQueryBuilder>& hub, const std::string& sql) {
  // EXAMPLE
  return more && names.empty();
}
