#include "zrqrybld/sql/join_limits.h"

#include <algorithm>

#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/join_list.h"

namespace zrqrybld {
namespace {

bool IsOuter(const SnapshotJoin& join) { return IsUsable(join) && join.kind.IsOuter(); }

// The mark of an outer join goes with the sign of equality, or stands behind a column whatever the sign is.
bool CanBeMarked(const SnapshotJoin& join, const Dialect& dialect) {
  if (!join.condition.empty()) return false;
  if (join.comparison == JoinEqual || join.kind.IsFull()) return true;
  return dialect.marksColumns && NeedsValues(join.comparison) && Mirrored(join.comparison);
}

}  // namespace

bool HasOuterJoins(const QuerySnapshot& query) { return std::ranges::any_of(query.joins, IsOuter); }

JoinLimit LimitOf(const SnapshotJoin& join, const Dialect& dialect, bool hasOuterJoins) {
  if (!IsUsable(join) || join.kind.Asks()) return JoinLimit::None;  // a question is a condition of any kind
  if (join.groupLevel > 0 && hasOuterJoins && !dialect.hasJoinGroups) return JoinLimit::Group;
  if (dialect.joins == Dialect::Joins::Clauses || !IsOuter(join) || CanBeMarked(join, dialect)) return JoinLimit::None;
  return JoinLimit::Condition;
}

}  // namespace zrqrybld
