#include "zrqrybld/sql/query_snapshot.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "zrqrybld/base/text.h"

namespace zrqrybld {

bool IsUsable(const SnapshotJoin& join) {
  return join.source != join.target && (join.HasPair() || !join.condition.empty());
}

void DescribeColumn(CriteriaContext& context, const SnapshotRow& row) {
  context.dataType = row.type.code;
  context.isLong = row.type.isLong;
  context.prefix = row.type.prefix;
  context.suffix = row.type.suffix;
  context.aggregate = row.grouping.syntax;
}

SqlText TableTerm(const SnapshotTable& table, const NameRules& rules) {
  return table.aliased ? QuoteWhenNeeded(table.caption, rules) : RenderQualified(table.name, rules);
}

std::string FieldTerm(const SnapshotTable& table, const std::string& column, const NameRules& rules) {
  return TableTerm(table, rules).Text() + "." + QuoteWhenNeeded(Identifier(column), rules).Text();
}

bool IsAllColumns(const SnapshotRow& row) {
  if (row.grouping.HasSyntax()) return false;
  const std::string_view text = TrimWhite(row.column);
  return text == "*" || (!row.table && text.ends_with(".*"));
}

std::vector<const SnapshotRow*> SortedRows(const QuerySnapshot& query) {
  std::vector<std::pair<double, const SnapshotRow*>> numbered;
  for (const SnapshotRow& row : query.rows) {
    const std::optional<double> place = row.sort.place;
    if (place && *place >= 0.5) numbered.emplace_back(std::nearbyint(*place), &row);
  }
  std::ranges::stable_sort(numbered, {}, &std::pair<double, const SnapshotRow*>::first);
  std::vector<const SnapshotRow*> rows;
  for (std::size_t i = 0; i < numbered.size(); ++i) {
    const bool replaced = i + 1 < numbered.size() && numbered[i + 1].first == numbered[i].first;
    if (!replaced) rows.push_back(numbered[i].second);
  }
  return rows;
}

}  // namespace zrqrybld
