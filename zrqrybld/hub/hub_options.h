// HubOptions: the options that the hub has of its own, with what a newly placed control has for each.
#pragma once

#include <cstdint>
#include <string>

#include "zrqrybld/host/designer_values.h"

namespace zrqrybld {

/// Those that belong to the query, and are undone with it.
struct QueryOptions {
  bool distinctRecords = false;
  std::string selectTopRecords;
  std::int32_t skipRecords = 0;
  friend bool operator==(const QueryOptions&, const QueryOptions&) = default;
};

struct HubOptions : QueryOptions {
  bool allowJoinProperties = false;
  bool connectOnLoad = true;
  bool getTablesOnConnect = false;
  FieldOrderEnum retrieveFieldOrder = FieldOrderDefault;
  bool saveLoadEntityItems = false;
  bool saveConnectionString = false;
  std::int16_t aliasMaxLen = 0;
  bool autoSyntax = false;
};

}  // namespace zrqrybld
