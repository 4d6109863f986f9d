#include "sql/join_list.h"

#include <string>
#include <unordered_set>

namespace zrqrybld {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

bool IsUsable(const SnapshotJoin& join) { return join.sourceColumn && join.targetColumn && join.source != join.target; }

// The tables as a linked list (inserting behind any one is a matter of two links), and the order in
// which joins were met. Relative order never changes once two tables are in the list.
class Walk {
 public:
  explicit Walk(const QuerySnapshot& query)
      : query_(query),
        next_(query.tables.size(), kNone),
        listed_(query.tables.size()),
        taken_(query.joins.size()),
        joinsOf_(query.tables.size()) {
    for (std::size_t j = 0; j < query.joins.size(); ++j) {
      if (IsUsable(query.joins[j])) joinsOf_[query.joins[j].source].push_back(j);
    }
    for (std::size_t j = 0; j < query.joins.size(); ++j) {
      if (IsUsable(query.joins[j])) joinsOf_[query.joins[j].target].push_back(j);
    }
    for (std::size_t table = 0; table < query.tables.size(); ++table) Start(table);
  }

  std::vector<std::size_t> Order() const {
    std::vector<std::size_t> order;
    for (std::size_t table = first_; table != kNone; table = next_[table]) order.push_back(table);
    return order;
  }
  const std::vector<std::size_t>& Joins() const { return met_; }

 private:
  struct Visit {
    std::size_t table;
    std::size_t nextJoin;
  };

  void Start(std::size_t table) {
    if (listed_[table]) return;
    Place(table, last_);
    last_ = table;
    // An explicit stack: a chain of ten thousand tables must not exhaust the program's own.
    std::vector<Visit> stack{{table, 0}};
    while (!stack.empty()) {
      Visit& visit = stack.back();
      if (visit.nextJoin == joinsOf_[visit.table].size()) {
        stack.pop_back();
        continue;
      }
      const std::size_t j = joinsOf_[visit.table][visit.nextJoin];
      const SnapshotJoin& join = query_.joins[j];
      const std::size_t other = join.source == visit.table ? join.target : join.source;
      if (!listed_[other]) {
        Place(other, visit.table);
        stack.push_back({other, 0});  // comes back to this join afterwards
        continue;
      }
      ++visit.nextJoin;
      if (!taken_[j]) {
        taken_[j] = true;
        met_.push_back(j);
      }
    }
  }

  void Place(std::size_t table, std::size_t after) {
    listed_[table] = true;
    if (after == kNone) {
      first_ = table;
      return;
    }
    next_[table] = next_[after];
    next_[after] = table;
    if (after == last_) last_ = table;
  }

  const QuerySnapshot& query_;
  std::vector<std::size_t> next_;
  std::vector<bool> listed_;
  std::vector<bool> taken_;
  std::vector<std::vector<std::size_t>> joinsOf_;  // own joins first, then those that end here
  std::vector<std::size_t> met_;
  std::size_t first_ = kNone;
  std::size_t last_ = kNone;
};

// "All rows" stays with the same table when a join is seen from its other end.
JoinTypeEnum TypeSeenFrom(const SnapshotJoin& join, bool fromTarget) {
  const bool allOfThis = (join.kind & (fromTarget ? 1 : 2)) != 0;
  const bool allOfOther = (join.kind & (fromTarget ? 2 : 1)) != 0;
  return static_cast<JoinTypeEnum>((allOfThis ? JoinAllOfThis : 0) | (allOfOther ? JoinAllOfEarlier : 0));
}

std::string KeyOf(const JoinCondition& condition) {
  return std::to_string(condition.leftTable) + '\n' + condition.leftColumn.Name() + '\n' +
         std::to_string(condition.rightTable) + '\n' + condition.rightColumn.Name();
}

}  // namespace

std::vector<JoinEntry> BuildJoinList(const QuerySnapshot& query) {
  const Walk walk(query);
  std::vector<JoinEntry> entries;
  std::vector<std::size_t> placeOf(query.tables.size());
  for (const std::size_t table : walk.Order()) {
    placeOf[table] = entries.size();
    entries.push_back({table, {}});
  }
  std::unordered_set<std::string> written;  // the same condition is never written twice
  for (const std::size_t j : walk.Joins()) {
    const SnapshotJoin& join = query.joins[j];
    const bool fromTarget = placeOf[join.target] > placeOf[join.source];
    JoinCondition condition{fromTarget ? join.target : join.source,
                            fromTarget ? *join.targetColumn : *join.sourceColumn,
                            fromTarget ? join.source : join.target,
                            fromTarget ? *join.sourceColumn : *join.targetColumn, TypeSeenFrom(join, fromTarget)};
    if (!written.insert(KeyOf(condition)).second) continue;
    entries[placeOf[condition.leftTable]].conditions.push_back(std::move(condition));
  }
  return entries;
}

}  // namespace zrqrybld
