#include "zrqrybld/sql/query_rows.h"

namespace zrqrybld {

std::string QueryRows::KeyOf(const RowField& field) {
  return (field.table ? std::to_string(*field.table) : std::string()) + '\n' + field.column + '\n' +
         field.grouping.name;
}

std::size_t QueryRows::Add(const RowField& field) {
  const std::size_t index = rows_.size();
  SnapshotRow& row = rows_.emplace_back();
  row.table = field.table;
  row.column = field.column;
  row.grouping = field.grouping;
  byField_[KeyOf(field)].rows.push_back(index);
  return index;
}

std::optional<std::size_t> QueryRows::FindForCriterion(const RowField& field, std::size_t column, bool groups,
                                                       const std::function<bool(const SnapshotRow&)>& suits) {
  const auto found = byField_.find(KeyOf(field));
  if (found == byField_.end()) return std::nullopt;
  FieldRows& entry = found->second;
  const std::size_t place = column * 2 + (groups ? 1 : 0);
  if (entry.full.size() <= place) entry.full.resize(place + 1);
  // Rows that are passed over stay passed over: they hold a criterion there, or are of another kind.
  for (std::size_t& i = entry.full[place]; i < entry.rows.size(); ++i) {
    SnapshotRow& row = rows_[entry.rows[i]];
    if (row.criteria.size() <= column) row.criteria.resize(column + 1);
    if (suits(row) && row.criteria[column].empty()) return entry.rows[i];
  }
  return std::nullopt;
}

std::optional<std::size_t> QueryRows::FindAny(const RowField& field,
                                              const std::function<bool(const SnapshotRow&)>& suits) const {
  const auto found = byField_.find(KeyOf(field));
  if (found == byField_.end()) return std::nullopt;
  for (const std::size_t index : found->second.rows) {
    if (suits(rows_[index])) return index;
  }
  return std::nullopt;
}

}  // namespace zrqrybld
