// What a SELECT can do beside reading, as each kind of source knows it: functions and clauses that a read-only
// transaction does not hold back. A table of data; a role that may only read holds back the rest.
#pragma once

#include <cstddef>
#include <string_view>

#include "zrqrybld/adapters/run/code_reader.h"
#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// Looks for effects in the pieces of one statement, in their order.
class EffectFinder {
 public:
  explicit EffectFinder(SourceFamily family) : family_(family) {}

  /// Error 40002, with the place and the name, when the piece completes something that has an effect.
  void Add(const Piece& piece);

 private:
  SourceFamily family_;
  Piece before_;
};

/// Whether a function of this name has effects, in a source of the family `Sqlite`.
ZRQRYBLD_API bool HasEffectInSqlite(std::string_view function);

}  // namespace zrqrybld
