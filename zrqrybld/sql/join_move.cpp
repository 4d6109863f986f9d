#include "zrqrybld/sql/join_move.h"

#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/criteria_formatter.h"
#include "zrqrybld/sql/join_condition.h"

namespace zrqrybld {

std::string ConditionOf(const QuerySnapshot& query, const SnapshotRow& row, const std::string& criterion) {
  CriteriaContext context = query.criteria;
  context.quotePrefix = query.names.quotePrefix;
  DescribeColumn(context, row);
  const std::string term = row.table ? FieldTerm(query.tables[*row.table], row.column, query.names) : row.column;
  return FormatCondition(term, criterion, context);
}

std::optional<std::string> ConditionToMove(const QuerySnapshot& query, const SnapshotRow& row) {
  const auto says = [](const std::string& cell) { return !Trim(cell).empty(); };
  if (!row.table || row.column == "*" || row.grouping.ChoosesGroups()) return std::nullopt;
  if (std::ranges::count_if(row.criteria, says) != 1) return std::nullopt;
  try {
    std::string condition = JoinConditionText(ConditionOf(query, row, *std::ranges::find_if(row.criteria, says)));
    const NamedTables named = TablesNamed(condition, query.tables);
    if (condition.empty() || !named.areAll || named.tables != std::vector{*row.table}) return std::nullopt;
    return condition;
  } catch (const Error&) {
    return std::nullopt;  // it cannot be read, or is none that a join takes
  }
}

std::string BothConditions(std::string_view first, std::string_view second) {
  return std::string(first) + (first.empty() || second.empty() ? "" : " AND ") + std::string(second);
}

}  // namespace zrqrybld
