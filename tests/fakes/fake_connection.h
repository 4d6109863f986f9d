// FakeConnection: a data source that is written down in the test.
//
// It answers the six schema kinds from rows in memory, filters them by the restrictions as a real
// source does, remembers what it was asked and fails where the test says so.
#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zrqrybld/base/error.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/platform/table_row_set.h"

namespace zrqrybld::test {

class FakeConnection final : public Connection {
 public:
  using Cells = std::vector<Variant>;

  /// What the library asked, one text a call: the kind's number and the restrictions joined by ".".
  std::vector<std::string> asked;
  /// The error number with which a schema kind fails.
  std::map<SchemaKind, std::int32_t> failures;
  /// The error number with which `Open` fails; 0 for none.
  std::int32_t openFailure = 0;

  // --- The source's content ---

  void Table(const std::string& name, const std::vector<std::string>& columns, const std::string& schema = {},
             const std::string& type = "TABLE") {
    rows_[SchemaKind::Tables].push_back({Variant::Null(), OrNull(schema), name, type, Variant::Null()});
    std::int32_t position = 0;
    for (const std::string& column : columns) Column(name, column, ++position, schema);
  }
  void Column(const std::string& table, const std::string& name, const Variant& position,
              const std::string& schema = {}, DataTypeCode type = DataTypeCode::Integer, std::int32_t flags = 0,
              const Variant& nullable = Variant::Null()) {
    Cells cells(std::size(kColumnFields), Variant::Null());
    Put(cells, kColumnFields, "TABLE_SCHEMA", OrNull(schema));
    Put(cells, kColumnFields, "TABLE_NAME", table);
    Put(cells, kColumnFields, "COLUMN_NAME", name);
    Put(cells, kColumnFields, "ORDINAL_POSITION", position);
    Put(cells, kColumnFields, "DATA_TYPE", static_cast<std::int32_t>(type));
    Put(cells, kColumnFields, "COLUMN_FLAGS", flags);
    Put(cells, kColumnFields, "IS_NULLABLE", nullable);
    rows_[SchemaKind::Columns].push_back(std::move(cells));
  }
  void PrimaryKey(const std::string& table, const std::string& column, const std::string& schema = {}) {
    rows_[SchemaKind::PrimaryKeys].push_back({Variant::Null(), OrNull(schema), table, column, 1, "PK"});
  }
  void ForeignKey(const std::string& child, const std::string& childColumn, const std::string& parent,
                  const std::string& parentColumn, const std::string& childSchema = {},
                  const std::string& parentSchema = {}) {
    rows_[SchemaKind::ForeignKeys].push_back({Variant::Null(), OrNull(parentSchema), parent, parentColumn,
                                              Variant::Null(), OrNull(childSchema), child, childColumn, 1, "FK"});
  }
  void Literal(const std::string& name, const Variant& value, const Variant& invalid = Variant::Null(),
               const Variant& invalidStart = Variant::Null()) {
    rows_[SchemaKind::Literals].push_back({name, value, invalid, invalidStart});
  }
  void Type(const std::string& name, DataTypeCode code, const Variant& prefix, const Variant& suffix,
            const Variant& isLong = false) {
    rows_[SchemaKind::ProviderTypes].push_back({name, static_cast<std::int32_t>(code), 0, prefix, suffix, isLong});
  }
  /// Drops all rows of a kind.
  void Forget(SchemaKind kind) { rows_.erase(kind); }
  std::ptrdiff_t Asked(const std::string& call) const { return std::ranges::count(asked, call); }

  // --- Connection ---

  std::string ConnectionString() const override { return connectionString_; }
  void SetConnectionString(std::string value) override { connectionString_ = std::move(value); }
  void SetProperty(std::string_view, const Variant&) override {}
  void Open(std::string_view, std::string_view) override {
    if (openFailure != 0) throw Error(openFailure, "refused");
    open_ = true;
  }
  void Close() override {
    if (!std::exchange(open_, false)) throw Error(ErrorConnectionClosed, "closed");
  }
  ConnectionStateEnum State() const override { return open_ ? ConnectionOpened : ConnectionClosed; }
  std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions& wanted) override {
    std::string call = std::to_string(static_cast<int>(kind));
    for (const auto& part : {wanted.schema, wanted.table}) call += part ? "." + *part : "";
    asked.push_back(call);
    if (!open_) throw Error(ErrorConnectionClosed, "closed");
    if (const auto failure = failures.find(kind); failure != failures.end()) throw Error(failure->second, "no schema");
    const std::span<const std::string_view> fields = FieldsOf(kind);
    std::vector<Cells> rows = rows_[kind];
    const std::string prefix = kind == SchemaKind::ForeignKeys ? "FK_" : "";
    std::erase_if(rows, [&](const Cells& row) {
      return !Fits(row, fields, prefix + "TABLE_SCHEMA", wanted.schema) ||
             !Fits(row, fields, prefix + "TABLE_NAME", wanted.table);
    });
    return std::make_unique<TableRowSet>(fields, std::move(rows));
  }

 private:
  using Fields = std::span<const std::string_view>;

  static Variant OrNull(const std::string& text) { return text.empty() ? Variant::Null() : Variant(text); }
  static void Put(Cells& cells, Fields fields, std::string_view name, Variant value) {
    cells[static_cast<std::size_t>(std::ranges::find(fields, name) - fields.begin())] = std::move(value);
  }
  // As real sources do: what is not given, or empty, restricts nothing.
  static bool Fits(const Cells& row, Fields fields, std::string_view name, const std::optional<std::string>& wanted) {
    const auto field = std::ranges::find(fields, name);
    if (!wanted || wanted->empty() || field == fields.end()) return true;
    return row[static_cast<std::size_t>(field - fields.begin())].Text() == *wanted;
  }
  static Fields FieldsOf(SchemaKind kind) {
    switch (kind) {
      case SchemaKind::Columns:
        return kColumnFields;
      case SchemaKind::Tables:
        return kTableFields;
      case SchemaKind::ProviderTypes:
        return kProviderTypeFields;
      case SchemaKind::ForeignKeys:
        return kForeignKeyFields;
      case SchemaKind::PrimaryKeys:
        return kPrimaryKeyFields;
      default:
        return kLiteralFields;
    }
  }

  std::string connectionString_;
  bool open_ = false;
  std::map<SchemaKind, std::vector<Cells>> rows_;
};

}  // namespace zrqrybld::test
