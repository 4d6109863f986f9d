// SqliteSession: one open database file and the schema rows it answers with. Made by SqliteProvider;
// only the adapter's sources include this.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/adapters/sqlite/sqlite_handle.h"
#include "zrqrybld/platform/provider.h"

namespace zrqrybld::sqlite {

class SqliteSession final : public Session {
 public:
  explicit SqliteSession(DatabaseHandle database) : database_(std::move(database)) {}

  std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) override;
  std::vector<std::string> Keywords() const override;
  bool KnowsWholeSource(SchemaKind) const override { return true; }

 private:
  using Rows = std::vector<std::vector<Variant>>;
  using TableName = std::optional<std::string>;  // none: every table
  using Reader = void (SqliteSession::*)(const TableName& table, Rows& rows) const;

  void ReadTables(const TableName& table, Rows& rows) const;
  void ReadColumns(const TableName& table, Rows& rows) const;
  void ReadPrimaryKeys(const TableName& table, Rows& rows) const;
  void ReadForeignKeys(const TableName& table, Rows& rows) const;
  Rows ReadSkippingBroken(Reader reader, const TableName& table) const;
  Rows MakeProviderTypes() const;

  DatabaseHandle database_;
};

}  // namespace zrqrybld::sqlite
