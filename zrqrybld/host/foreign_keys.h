// ForeignKeys: what the data source has told about its foreign keys.
//
// Owned by the context. The source is asked once about each table, or once about all of them where it can answer that
// by one question; the answers are kept until the next pass of automatic joins, or until another connection is in use.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/database.h"

namespace zrqrybld {

/// A table as the source names it; the schema is "" where there are none.
struct SourceTableName {
  std::string schema;
  std::string table;
};

/// One pair of columns of a foreign key: the referencing column and the one it references.
struct ForeignKeyPair {
  SourceTableName child;
  std::string childColumn;
  SourceTableName parent;
  std::string parentColumn;
};

class ForeignKeys {
 public:
  /// The pairs whose referencing table this is, in the source's order; none from a source that does not tell foreign
  /// keys. Other errors are the source's own.
  const std::vector<ForeignKeyPair>& Of(Connection& connection, const SourceTableName& child);

  /// The pairs that reference this table, as far as the source has told: all of them where it can answer for the whole
  /// source by one question, otherwise those of tables that `Of` was called for. Errors as above.
  std::vector<ForeignKeyPair> To(Connection& connection, const SourceTableName& parent);

  /// Forgets all answers.
  void Clear();

 private:
  static std::vector<ForeignKeyPair> Ask(Connection& connection, const SchemaRestrictions& restrictions);

  std::unordered_map<std::string, std::vector<ForeignKeyPair>> byChild_;  // by folded name
  bool askedForAll_ = false;
};

/// The name in any letter case, for lookups.
ZRQRYBLD_API std::string FoldedName(const SourceTableName& name);

}  // namespace zrqrybld
