// The rows of a schema as scripts see them.
#pragma once

#include <memory>
#include <string>

#include "zrqrybld/automation/public_names.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/platform/database.h"

namespace zrqrybld {

class RowSetObject;

/// A field of the current row.
class FieldObject final : public Object {
 public:
  FieldObject(Ref<RowSetObject> rows, std::size_t index) : rows_(std::move(rows)), index_(index) {}
  std::string_view TypeName() const override { return "Field"; }
  /// As the source spells it.
  std::string Name() const;
  /// Of the row that is current when it is asked. Null where the source has none; error 3021 at the end of the rows.
  Variant Value() const;

 private:
  Ref<RowSetObject> rows_;
  std::size_t index_;
};
ZRQRYBLD_PUBLIC_AS(FieldObject, "Field");

/// Forward-only rows. They stand on the first row when they are made.
class RowSetObject final : public Object {
 public:
  explicit RowSetObject(std::unique_ptr<RowSet> rows) : rows_(std::move(rows)) {}
  std::string_view TypeName() const override { return "RowSet"; }
  /// Whether there is no current row any more.
  bool Eof() const { return rows_->Eof(); }
  /// Goes to the next row. Does nothing at the end.
  void MoveNext() { rows_->MoveNext(); }
  /// Frees the rows; `EOF` is True from then on.
  void Close() { rows_->Close(); }
  /// The number of fields of a row.
  std::int32_t FieldCount() const { return static_cast<std::int32_t>(rows_->FieldCount()); }
  /// A field by name or by number from 0. Error 9 when there is none.
  Ref<FieldObject> Fields(const Variant& index);

  const RowSet& Rows() const { return *rows_; }

 private:
  std::unique_ptr<RowSet> rows_;
};
ZRQRYBLD_PUBLIC_AS(RowSetObject, "RowSet");

}  // namespace zrqrybld
