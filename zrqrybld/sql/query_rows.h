// QueryRows: the rows of the grid while a statement is read into them.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

/// What a row of the grid stands for: a column of a table, an aggregate of one, or an expression.
struct RowField {
  std::optional<std::size_t> table;  ///< none for an expression
  std::string column;                ///< the expression itself when it has no table
  RowGrouping grouping;              ///< an aggregate, or none
};

class QueryRows {
 public:
  explicit QueryRows(std::vector<SnapshotRow>& rows) : rows_(rows) {}

  /// Adds a row of the field without anything else in it.
  std::size_t Add(const RowField& field);
  SnapshotRow& operator[](std::size_t row) { return rows_[row]; }

  /// The first row of the field that suits, and `column` of whose criteria is free. What suits may depend on `groups`
  /// (whether the criterion chooses groups), but not change from call to call.
  std::optional<std::size_t> FindForCriterion(const RowField& field, std::size_t column, bool groups,
                                              const std::function<bool(const SnapshotRow&)>& suits);
  /// The first row of the field that suits.
  std::optional<std::size_t> FindAny(const RowField& field, const std::function<bool(const SnapshotRow&)>& suits) const;
  /// Whether any row stands for the field.
  bool Has(const RowField& field) const { return byField_.contains(KeyOf(field)); }

 private:
  struct FieldRows {
    std::vector<std::size_t> rows;
    std::vector<std::size_t> full;  // by criteria column and kind: so many rows from the front have no room there
  };
  static std::string KeyOf(const RowField& field);

  std::vector<SnapshotRow>& rows_;
  std::unordered_map<std::string, FieldRows> byField_;
};

}  // namespace zrqrybld
