#include "bench/made_up_source.h"

#include <span>

#include "zrqrybld/base/error.h"
#include "zrqrybld/platform/schema_fields.h"

namespace zrqrybld::bench {
namespace {

class Rows final : public RowSet {
 public:
  Rows(std::span<const std::string_view> fields, std::vector<std::vector<Variant>> rows)
      : fields_(fields), rows_(std::move(rows)) {}
  bool Eof() const override { return current_ == rows_.size(); }
  void MoveNext() override { current_ += Eof() ? 0 : 1; }
  void Close() override { current_ = rows_.size(); }
  std::size_t FieldCount() const override { return fields_.size(); }
  std::string_view FieldName(std::size_t index) const override { return fields_[index]; }
  Variant Value(std::size_t index) const override { return rows_[current_][index]; }

 private:
  std::span<const std::string_view> fields_;
  std::vector<std::vector<Variant>> rows_;
  std::size_t current_ = 0;
};

}  // namespace

std::string ColumnName(int position) { return "C" + std::to_string(position); }
std::string TableName(int position) { return "T" + std::to_string(position); }

std::unique_ptr<RowSet> MadeUpSource::OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions) {
  const std::string table = restrictions.table.value_or("");
  const Variant null = Variant::Null();
  std::vector<std::vector<Variant>> rows;
  switch (kind) {
    case SchemaKind::Tables:
      if (!table.empty()) rows.push_back({null, null, table, "TABLE", null});
      for (int t = 0; table.empty() && t < tables_; ++t) rows.push_back({null, null, TableName(t), "TABLE", null});
      return std::make_unique<Rows>(kTableFields, std::move(rows));
    case SchemaKind::Columns:
      for (int i = 0; i < columns_; ++i) {
        rows.push_back({null, null, table, ColumnName(i), std::int32_t{i + 1}, false, null,
                        std::int32_t{ColumnFixedLength}, false, static_cast<std::int32_t>(DataTypeCode::Integer), null,
                        std::int32_t{10}, std::int32_t{0}, null});
      }
      return std::make_unique<Rows>(kColumnFields, std::move(rows));
    case SchemaKind::PrimaryKeys:
      rows.push_back({null, null, table, ColumnName(0), std::int32_t{1}, null});
      return std::make_unique<Rows>(kPrimaryKeyFields, std::move(rows));
    case SchemaKind::ForeignKeys:
      if (const int number = std::stoi(table.substr(1)); number > 0) {
        rows.push_back({null, null, TableName(number - 1), ColumnName(0), null, null, table, ColumnName(1),
                        std::int32_t{1}, null});
      }
      return std::make_unique<Rows>(kForeignKeyFields, std::move(rows));
    default:
      throw Error(ErrorSchemaNotSupported, "The source does not have this schema.");
  }
}

}  // namespace zrqrybld::bench
