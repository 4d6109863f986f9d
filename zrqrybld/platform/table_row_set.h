// TableRowSet: a row set over rows held in memory. Providers with a few constant rows use it, and
// tests that stand in for a database.
#pragma once

#include <span>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/database.h"

namespace zrqrybld {

class ZRQRYBLD_API TableRowSet final : public RowSet {
 public:
  /// `fields` must outlive the row set; every row has one value a field.
  TableRowSet(std::span<const std::string_view> fields, std::vector<std::vector<Variant>> rows)
      : fields_(fields), rows_(std::move(rows)) {}

  bool Eof() const override { return row_ >= rows_.size(); }
  void MoveNext() override {
    if (!Eof()) ++row_;
  }
  void Close() override { rows_.clear(); }
  std::size_t FieldCount() const override { return fields_.size(); }
  std::string_view FieldName(std::size_t index) const override { return fields_[index]; }
  Variant Value(std::size_t index) const override { return rows_.at(row_).at(index); }
  using RowSet::Value;

 private:
  std::span<const std::string_view> fields_;
  std::vector<std::vector<Variant>> rows_;
  std::size_t row_ = 0;
};

}  // namespace zrqrybld
