// The data sources that the suite runs against, each with the same tables.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/platform/provider.h"

namespace zrqrybld::test {

/// Where a driver or a server tells something else than the others.
enum class Difference {
  SchemaIsPublic,     ///< tables stand in the schema "public"
  SchemaIsDatabase,   ///< tables stand in the schema "zr_test", the database's name
  CatalogIsDatabase,  ///< the catalog is "zr_test"
  WritableTold,       ///< the flag of writable columns is set
};

struct Source {
  std::string name;
  std::string connectionString;
  std::vector<Difference> differences;
  std::string missing;  ///< why there is none; "" when there is
  /// Runs a statement, on a connection of its own, that writes names in double quotes; rows as lines with "|".
  std::function<std::string(const std::string& sql)> query;
  /// The same for a statement in the source's own language.
  std::function<std::string(const std::string& sql)> run;

  bool Has(Difference difference) const;
  std::unique_ptr<Session> Open() const;
};

/// The names of all sources, whether they can be had or not.
const std::vector<std::string>& SourceNames();

/// The source with its tables made; made once in a process.
const Source& GetSource(const std::string& name);

/// Registers both providers that the suite is about.
void RegisterProviders(ProviderList& providers);

}  // namespace zrqrybld::test
