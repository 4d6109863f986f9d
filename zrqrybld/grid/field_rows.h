// FieldRows: which rows of a grid pane name a field, or a table, or may name tables in what was typed, and which is the
// first that names nothing. Found without a walk over the rows.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "zrqrybld/grid/field_names.h"
#include "zrqrybld/grid/pane_rows.h"

namespace zrqrybld {

class FieldRows {
 public:
  /// `rows` must outlive this.
  explicit FieldRows(const PaneRows& rows) : rows_(rows) {}

  /// The row names another field, or none, from now on. What it named before stays noted until it is looked up.
  void Note(const zrGridRow& row);
  /// A text that may name tables was typed into the row: an expression or a criterion.
  void NoteTyped(const zrGridRow& row);
  /// Rows were added, moved or removed; those before this position are as they were.
  void Shifted(std::int32_t from);
  /// There are no rows of the table any more.
  void Forget(const std::string& table) { byTable_.erase(table); }
  /// There are no rows any more.
  void Clear();

  /// The rows that name the field, in their order.
  std::vector<Ref<zrGridRow>> Of(const FieldName& field) const;
  /// The rows that name the table, in their order.
  std::vector<Ref<zrGridRow>> OfTable(const std::string& table) const;
  /// The rows that name the table, and those in which an expression or a criterion was ever typed, in their order.
  std::vector<Ref<zrGridRow>> MayName(const std::string& table) const;
  /// Whether any row outputs the field.
  bool IsOutput(const FieldName& field) const;
  /// The first empty row; 0 when there is none.
  std::int32_t FirstEmpty();

 private:
  using Noted = std::vector<WeakRef<Object>>;
  void NoteTable(const zrGridRow& row, const std::string& table);
  std::size_t Many() const;

  const PaneRows& rows_;
  // Entries are only added; what is out of date is dropped when it is met.
  mutable std::unordered_map<std::string, Noted> byField_;
  std::unordered_map<std::string, Noted> byTable_;
  Noted typed_;
  std::int32_t emptyFrom_ = 1;  // no row before this one is empty
};

/// The field that a row names.
FieldName FieldOf(const zrGridRow& row);

}  // namespace zrqrybld
