#include "zrqrybld/host/foreign_keys.h"

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {

std::string FoldedName(const SourceTableName& name) { return FoldCase(name.schema) + '\n' + FoldCase(name.table); }

std::vector<ForeignKeyPair> ForeignKeys::Ask(Connection& connection, const SchemaRestrictions& restrictions) {
  std::vector<ForeignKeyPair> pairs;
  try {
    const auto rows = connection.OpenSchema(SchemaKind::ForeignKeys, restrictions);
    for (; !rows->Eof(); rows->MoveNext()) {
      pairs.push_back({{rows->Text("FK_TABLE_SCHEMA"), rows->Text("FK_TABLE_NAME")},
                       rows->Text("FK_COLUMN_NAME"),
                       {rows->Text("PK_TABLE_SCHEMA"), rows->Text("PK_TABLE_NAME")},
                       rows->Text("PK_COLUMN_NAME")});
    }
  } catch (const Error& error) {
    if (error.Number() != ErrorSchemaNotSupported) throw;
  }
  return pairs;
}

const std::vector<ForeignKeyPair>& ForeignKeys::Of(Connection& connection, const SourceTableName& child) {
  if (!askedForAll_ && connection.KnowsWholeSource(SchemaKind::ForeignKeys)) {
    byChild_.clear();
    for (ForeignKeyPair& pair : Ask(connection, {})) byChild_[FoldedName(pair.child)].push_back(std::move(pair));
    askedForAll_ = true;
  }
  const std::string key = FoldedName(child);
  const auto known = byChild_.find(key);
  if (known != byChild_.end()) return known->second;
  std::vector<ForeignKeyPair> pairs;
  if (!askedForAll_) {
    SchemaRestrictions table;
    table.table = child.table;
    if (!child.schema.empty()) table.schema = child.schema;
    pairs = Ask(connection, table);
  }
  return byChild_[key] = std::move(pairs);  // an empty answer is an answer, too
}

std::vector<ForeignKeyPair> ForeignKeys::To(Connection& connection, const SourceTableName& parent) {
  const std::string key = FoldedName(parent);
  Of(connection, parent);
  std::vector<ForeignKeyPair> pairs;
  for (const auto& [child, ofChild] : byChild_) {
    for (const ForeignKeyPair& pair : ofChild) {
      if (FoldedName(pair.parent) == key) pairs.push_back(pair);
    }
  }
  return pairs;
}

void ForeignKeys::Clear() {
  byChild_.clear();
  askedForAll_ = false;
}

}  // namespace zrqrybld
