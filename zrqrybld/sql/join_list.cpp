#include "zrqrybld/sql/join_list.h"

#include <functional>
#include <numeric>
#include <tuple>
#include <unordered_set>

namespace zrqrybld {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// Places the tables and remembers in which order the joins were met.
class Walk {
 public:
  Walk(const QuerySnapshot& query, std::span<const std::size_t> order)
      : query_(query),
        next_(query.tables.size(), kNone),
        placed_(query.tables.size()),
        taken_(query.joins.size()),
        firstJoin_(query.tables.size() + 1) {
    ListJoins();
    for (const std::size_t table : order) {
      if (!placed_[table]) Follow(table);
    }
  }

  /// The tables in the order of FROM.
  std::vector<std::size_t> Tables() const {
    std::vector<std::size_t> tables;
    tables.reserve(next_.size());
    for (std::size_t table = first_; table != kNone; table = next_[table]) tables.push_back(table);
    return tables;
  }
  /// The usable joins in the order in which they were met.
  const std::vector<std::size_t>& Met() const { return met_; }

 private:
  struct Visit {
    std::size_t table;
    std::size_t nextJoin;  // in joins_
  };

  // All tables' joins in one list: of each table its own first, then those that end there.
  void ListJoins() {
    for (const SnapshotJoin& join : query_.joins) {
      if (!IsUsable(join)) continue;
      ++firstJoin_[join.source + 1];
      ++firstJoin_[join.target + 1];
    }
    std::partial_sum(firstJoin_.begin(), firstJoin_.end(), firstJoin_.begin());
    joins_.resize(firstJoin_.back());
    std::vector<std::size_t> end(firstJoin_.begin(), firstJoin_.end() - 1);
    for (const auto side : {&SnapshotJoin::source, &SnapshotJoin::target}) {
      for (std::size_t j = 0; j < query_.joins.size(); ++j) {
        if (IsUsable(query_.joins[j])) joins_[end[query_.joins[j].*side]++] = j;
      }
    }
    met_.reserve(joins_.size() / 2);
  }

  void PlaceBehind(std::size_t before, std::size_t table) {
    placed_[table] = true;
    std::size_t& link = before == kNone ? first_ : next_[before];
    next_[table] = link;
    link = table;
    if (before == last_) last_ = table;
  }

  void Follow(std::size_t start) {
    PlaceBehind(last_, start);
    // An explicit stack: a chain of ten thousand tables must not exhaust the program's own.
    std::vector<Visit> stack{{start, firstJoin_[start]}};
    while (!stack.empty()) {
      Visit& visit = stack.back();
      if (visit.nextJoin == firstJoin_[visit.table + 1]) {
        stack.pop_back();
        continue;
      }
      const std::size_t j = joins_[visit.nextJoin];
      const SnapshotJoin& join = query_.joins[j];
      const std::size_t other = join.source == visit.table ? join.target : join.source;
      if (!placed_[other]) {
        PlaceBehind(visit.table, other);
        stack.push_back({other, firstJoin_[other]});  // comes back to this join afterwards
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
  std::size_t first_ = kNone;
  std::size_t last_ = kNone;
  std::vector<std::size_t> next_;  // of each table: the one behind it
  std::vector<bool> placed_;
  std::vector<bool> taken_;
  std::vector<std::size_t> firstJoin_;  // of each table, in joins_; ends with the next table's
  std::vector<std::size_t> joins_;
  std::vector<std::size_t> met_;
};

// "All rows" stays with the same table when a join is seen from its other end.
JoinTypeEnum TypeSeenFrom(const SnapshotJoin& join, bool fromTarget) {
  return (fromTarget ? join.kind.Reversed() : join.kind).SeenFromSource();
}

}  // namespace

std::size_t HashColumnPair::operator()(const ColumnPair& pair) const {
  constexpr std::hash<std::string_view> kHash;
  return ((pair.left * 31 + pair.right) * 31 + kHash(pair.leftColumn)) * 31 + kHash(pair.rightColumn);
}

bool IsUsable(const SnapshotJoin& join) { return join.sourceColumn && join.targetColumn && join.source != join.target; }

std::vector<FromEntry> PlaceTables(const QuerySnapshot& query, std::span<const std::size_t> order) {
  const Walk walk(query, order);
  std::vector<FromEntry> entries;
  entries.reserve(query.tables.size());
  std::vector<std::size_t> placeOf(query.tables.size());
  for (const std::size_t table : walk.Tables()) {
    placeOf[table] = entries.size();
    entries.push_back({table, {}});
  }

  std::unordered_set<ColumnPair, HashColumnPair> known;
  for (const std::size_t j : walk.Met()) {
    const SnapshotJoin& join = query.joins[j];
    const bool fromTarget = placeOf[join.target] > placeOf[join.source];
    const auto& [left, leftColumn] =
        fromTarget ? std::tie(join.target, join.targetColumn) : std::tie(join.source, join.sourceColumn);
    const auto& [right, rightColumn] =
        fromTarget ? std::tie(join.source, join.sourceColumn) : std::tie(join.target, join.targetColumn);
    if (!known.insert({left, leftColumn->Name(), right, rightColumn->Name()}).second) continue;
    entries[placeOf[left]].conditions.push_back(
        {leftColumn->Name(), right, rightColumn->Name(), TypeSeenFrom(join, fromTarget)});
  }
  return entries;
}

std::vector<FromEntry> PlaceTables(const QuerySnapshot& query) {
  std::vector<std::size_t> order(query.tables.size());
  std::iota(order.begin(), order.end(), 0);
  return PlaceTables(query, order);
}

Ref<qbJoins> BuildJoinList(const QuerySnapshot& query) {
  const Ref<qbJoins> joins = std::make_shared<qbJoins>();
  const auto captionOf = [&](std::size_t table) { return query.tables[table].caption.Name(); };
  for (const FromEntry& entry : PlaceTables(query)) {
    qbJoinTables& conditions = *joins->Add(captionOf(entry.table))->JoinTables();
    for (const FromCondition& condition : entry.conditions) {
      conditions
          .Add(captionOf(entry.table), std::string(condition.leftColumn), captionOf(condition.right),
               std::string(condition.rightColumn))
          ->JoinType = condition.type;
    }
  }
  return joins;
}

}  // namespace zrqrybld
