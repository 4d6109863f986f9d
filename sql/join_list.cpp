#include "sql/join_list.h"

#include <vector>

namespace zrqrybld {
namespace {

// Places the tables and remembers in which order the joins were met.
class Walk {
 public:
  Walk(const QuerySnapshot& query, qbJoins& joins)
      : query_(query),
        joins_(joins),
        entries_(query.tables.size()),
        taken_(query.joins.size()),
        joinsOf_(query.tables.size()) {
    for (std::size_t j = 0; j < query.joins.size(); ++j) {
      if (IsUsable(query.joins[j])) joinsOf_[query.joins[j].source].push_back(j);
    }
    for (std::size_t j = 0; j < query.joins.size(); ++j) {
      if (IsUsable(query.joins[j])) joinsOf_[query.joins[j].target].push_back(j);
    }
    for (std::size_t table = 0; table < query.tables.size(); ++table) {
      if (!entries_[table]) Follow(table);
    }
  }

  /// The entry of each table.
  const std::vector<qbJoin*>& Entries() const { return entries_; }
  /// The usable joins in the order in which they were met.
  const std::vector<std::size_t>& Met() const { return met_; }

 private:
  struct Visit {
    std::size_t table;
    std::size_t nextJoin;
  };

  void Place(std::size_t table, std::string_view after) {
    entries_[table] = joins_.Add(query_.tables[table].caption.Name(), {}, after).get();
  }

  void Follow(std::size_t start) {
    Place(start, {});
    // An explicit stack: a chain of ten thousand tables must not exhaust the program's own.
    std::vector<Visit> stack{{start, 0}};
    while (!stack.empty()) {
      Visit& visit = stack.back();
      if (visit.nextJoin == joinsOf_[visit.table].size()) {
        stack.pop_back();
        continue;
      }
      const std::size_t j = joinsOf_[visit.table][visit.nextJoin];
      const SnapshotJoin& join = query_.joins[j];
      const std::size_t other = join.source == visit.table ? join.target : join.source;
      if (!entries_[other]) {
        Place(other, entries_[visit.table]->Caption());
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

  const QuerySnapshot& query_;
  qbJoins& joins_;
  std::vector<qbJoin*> entries_;
  std::vector<bool> taken_;
  std::vector<std::vector<std::size_t>> joinsOf_;  // own joins first, then those that end here
  std::vector<std::size_t> met_;
};

// "All rows" stays with the same table when a join is seen from its other end.
JoinTypeEnum TypeSeenFrom(const SnapshotJoin& join, bool fromTarget) {
  const bool allOfThis = (join.kind & (fromTarget ? 1 : 2)) != 0;
  const bool allOfOther = (join.kind & (fromTarget ? 2 : 1)) != 0;
  return static_cast<JoinTypeEnum>((allOfThis ? JoinAllOfThis : 0) | (allOfOther ? JoinAllOfEarlier : 0));
}

}  // namespace

bool IsUsable(const SnapshotJoin& join) { return join.sourceColumn && join.targetColumn && join.source != join.target; }

Ref<qbJoins> BuildJoinList(const QuerySnapshot& query) {
  const Ref<qbJoins> joins = std::make_shared<qbJoins>();
  const Walk walk(query, *joins);
  std::unordered_map<const qbJoin*, std::size_t> places;
  for (const Ref<qbJoin>& entry : *joins) places.emplace(entry.get(), places.size());

  for (const std::size_t j : walk.Met()) {
    const SnapshotJoin& join = query.joins[j];
    qbJoin& source = *walk.Entries()[join.source];
    qbJoin& target = *walk.Entries()[join.target];
    const bool fromTarget = places.at(&target) > places.at(&source);
    qbJoin& later = fromTarget ? target : source;
    const qbJoin& earlier = fromTarget ? source : target;
    qbJoinTables& conditions = *later.JoinTables();
    const std::int32_t before = conditions.Count();
    const Ref<qbJoinTable> condition =
        conditions.Add(later.Caption(), (fromTarget ? join.targetColumn : join.sourceColumn)->Name(), earlier.Caption(),
                       (fromTarget ? join.sourceColumn : join.targetColumn)->Name());
    if (conditions.Count() > before) condition->JoinType = TypeSeenFrom(join, fromTarget);  // the first one counts
  }
  return joins;
}

}  // namespace zrqrybld
