// OdbcSession: one open source and the schema rows it answers with. Made by OdbcProvider; only the adapter's
// sources include this.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zrqrybld/adapters/odbc/odbc_handle.h"
#include "zrqrybld/platform/provider.h"
#include "zrqrybld/platform/text_reading.h"

namespace zrqrybld::odbc {

class OdbcSession final : public Session {
 public:
  OdbcSession(const std::string& connectionString, Secrets secrets);

  std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) override;
  std::vector<std::string> Keywords() const override;

  /// See DriverConnection.
  const std::shared_ptr<Pulse>& GetPulse() const { return connection_.GetPulse(); }
  void RequireAlive() const { connection_.RequireAlive(); }

 private:
  using Rows = std::vector<std::vector<Variant>>;

  // What the driver says about the source, asked once.
  struct Facts {
    std::string quote;
    std::string catalogSeparator;
    std::string patternEscape;
    std::uint16_t identifierCase = 0;
    bool hasCatalogs = false;
    bool hasSchemas = false;
    bool isSqlite = false;
    // What bytes stand between; none when it is what the driver tells.
    std::optional<std::pair<std::string, std::string>> byteQuotes;
    std::optional<TextReading> reading;  // none when it is not known
  };

  // Where tables are looked for, in the driver's own terms. None means anywhere.
  struct Scope {
    std::optional<std::string> catalog;
    std::optional<std::string> schema;
    std::optional<std::string> table;
  };

  // A table as the driver names it.
  struct Table {
    std::optional<std::string> catalog;
    std::optional<std::string> schema;
    std::string name;
    std::string type;
    std::optional<std::string> remarks;
  };

  // One column of a primary key, or one pair of a foreign key.
  struct KeyColumn {
    Table parent;
    std::optional<std::string> parentColumn;
    std::string column;
    std::int32_t ordinal;
    std::optional<std::string> name;
  };

  bool DatabaseIsSchema() const { return facts_.hasCatalogs && !facts_.hasSchemas; }
  std::optional<std::string> Ask(std::string_view question) const;
  std::optional<TextReading> AskReading(std::string_view server) const;
  std::optional<Scope> ScopeOf(const SchemaRestrictions& restrictions) const;
  std::string Pattern(std::string_view name) const;
  std::string TypeOf(const Table& table, const std::string& type) const;
  Variant CatalogOf(const Table& table) const;
  Variant SchemaOf(const Table& table) const;

  std::vector<Table> AskTables(const Scope& scope, bool anySchema) const;
  std::vector<Table> ListTables(const Scope& scope) const;
  std::vector<Table> TablesWithKeys(const Scope& scope) const;
  std::vector<KeyColumn> AskPrimaryKey(const Table& table) const;
  std::vector<KeyColumn> AskForeignKeys(const Table& table) const;
  void CompleteParents(std::vector<KeyColumn>& keys) const;

  Rows ReadTables(const Scope& scope) const;
  Rows ReadColumns(const Scope& scope) const;
  void AskColumns(const Scope& scope, const Table* only, Rows& rows) const;
  void KeepListedTables(const Scope& scope, Rows& rows) const;
  Rows ReadPrimaryKeys(const Scope& scope) const;
  Rows ReadForeignKeys(const Scope& scope) const;
  Rows ReadProviderTypes() const;
  Rows MakeLiterals() const;

  DriverConnection connection_;
  Facts facts_;
};

}  // namespace zrqrybld::odbc
