// The naming rules of the connected data source, read from what the designer shares.
#pragma once

#include <optional>
#include <string>

#include "zrqrybld/base/export.h"
#include "zrqrybld/sql/names.h"

namespace zrqrybld {

struct QueryContext;

/// The texts around a quoted name.
struct NameQuotes {
  std::string prefix;
  std::string suffix;
};

/// The quotes that the source has told: "QUOTE_PREFIX" before "QUOTE", and for the closing one "QUOTE_SUFFIX" before
/// the opening one's partner. None when it has told none.
std::optional<NameQuotes> SourceQuotes(const QueryContext& context);

/// The rules as they are now: the dialect's own quotes, otherwise the source's and separator where it has told them;
/// "[", "]" and "." without a source. The names of a text-file source are never split.
ZRQRYBLD_API NameRules CurrentNameRules(const QueryContext& context);

}  // namespace zrqrybld
