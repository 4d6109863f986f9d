// TablePicker: the one place where a table of the data source becomes an entity of the diagram.
//
// The hub makes one for each use. It talks to the connection and the diagram through the context.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/host/foreign_keys.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/platform/dialogs.h"

namespace zrqrybld {

struct QueryContext;

/// The tables and views of the data source, as the picker lists them: with the schema in front where
/// the source has schemas.
struct TableLists {
  std::vector<std::string> tables;
  std::vector<std::string> views;
};

/// A table or view as the data source lists it.
struct ListedTable {
  SourceTableName name;
  std::string text;  ///< as lists show it, and as `AddTable` takes it
  bool isView = false;
};

/// A column as the data source describes it.
struct SourceColumn {
  std::string name;
  std::int32_t type = 0;  ///< a `DataTypeCode`
  bool isLong = false;
  bool isKey = false;  ///< part of the primary key, as far as the source tells; filled by `ReadColumnsAndKeys` alone
};

class ZRQRYBLD_API TablePicker {
 public:
  explicit TablePicker(Ref<QueryContext> context) : context_(std::move(context)) {}

  /// Adds the table as an entity: the "*" item, its columns, primary keys in bold, the source's facts in
  /// `Properties`. On a closed connection, or for a table that the source does not have, an entity
  /// without columns. Draws no joins. Nothing when a handler of `BeforeAdd` cancels or no diagram is
  /// linked; error 40004 when the source fails.
  Ref<qbEntity> AddTable(const std::string& tableName);

  /// Adds several tables and draws the joins that the source's foreign keys name. Errors as above; the tables before
  /// the one that failed stay, with their joins; of that one nothing does. `progress` hears of each that was added.
  void AddTables(const std::vector<std::string>& names, const TablesDialog::Progress& progress = {});

  /// Whether the source has a table or view with this name. Errors are the source's own.
  bool HasTable(const std::string& tableName);
  /// The same, where the source itself spells the table's own name in these letters.
  bool HasTableSpelled(const std::string& tableName, const std::string& ownName);

  /// The columns of a table in their order, without one called "*", which no grid row could tell from all columns; none
  /// when the source has no such table. `ownName` receives the table's name without its schema, as the source spells
  /// it. Errors are the source's own.
  std::optional<std::vector<SourceColumn>> ReadColumns(const std::string& tableName, std::string* ownName = nullptr);

  /// The same with the columns of the primary key marked, which is one question more.
  std::optional<std::vector<SourceColumn>> ReadColumnsAndKeys(const std::string& tableName);

  /// Asks the source for its tables and views. Errors are the source's own.
  TableLists ListTables();

  /// The same, in the source's order.
  std::vector<ListedTable> ReadTables();

  /// Lets the user pick tables until the dialog is closed.
  void ShowTables();

 private:
  Ref<qbEntity> MakeEntity(const std::string& tableName);
  std::string FreshKey(const std::string& tableName) const;
  void FillFromSource(qbEntity& entity, const std::string& tableName);
  // The table's row of the tables schema and how to ask for it; the row set is at its end when there is none.
  struct FoundTable {
    SchemaRestrictions restrictions;
    std::unique_ptr<RowSet> row;
  };
  FoundTable FindTable(const std::string& tableName);
  std::optional<FoundTable> FindListed(const std::string& tableName);
  std::vector<SourceColumn> ReadColumns(const SchemaRestrictions& table);
  void AddColumns(qbEntity& entity, const SchemaRestrictions& table);
  std::vector<std::string> ReadKeyColumns(const SchemaRestrictions& table);
  void MarkPrimaryKeys(qbEntity& entity, const SchemaRestrictions& table);

  Ref<QueryContext> context_;
};

}  // namespace zrqrybld
