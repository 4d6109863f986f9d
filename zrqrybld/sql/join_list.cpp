#include "zrqrybld/sql/join_list.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <numeric>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "zrqrybld/sql/asked_tables.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// A join between two nodes: tables, or groups of tables.
struct Edge {
  std::size_t source;
  std::size_t target;
  const SnapshotJoin* join;
};

// Places the nodes and remembers in which order the joins were met.
class Walk {
 public:
  Walk(std::size_t nodes, const std::vector<Edge>& edges)
      : edges_(edges), next_(nodes, kNone), placed_(nodes), taken_(edges.size()), firstJoin_(nodes + 1) {
    ListJoins();
    for (std::size_t node = 0; node < nodes; ++node) {
      if (!placed_[node]) Follow(node);
    }
  }

  /// The nodes in the order of FROM.
  std::vector<std::size_t> Nodes() const {
    std::vector<std::size_t> nodes;
    nodes.reserve(next_.size());
    for (std::size_t node = first_; node != kNone; node = next_[node]) nodes.push_back(node);
    return nodes;
  }
  /// The joins in the order in which they were met, by their places in the list.
  const std::vector<std::size_t>& Met() const { return met_; }

 private:
  struct Visit {
    std::size_t node;
    std::size_t nextJoin;  // in joins_
  };

  // All nodes' joins in one list: of each node its own first, then those that end there.
  void ListJoins() {
    for (const Edge& edge : edges_) {
      ++firstJoin_[edge.source + 1];
      ++firstJoin_[edge.target + 1];
    }
    std::partial_sum(firstJoin_.begin(), firstJoin_.end(), firstJoin_.begin());
    joins_.resize(firstJoin_.back());
    std::vector<std::size_t> end(firstJoin_.begin(), firstJoin_.end() - 1);
    for (const auto side : {&Edge::source, &Edge::target}) {
      for (std::size_t j = 0; j < edges_.size(); ++j) joins_[end[edges_[j].*side]++] = j;
    }
    met_.reserve(edges_.size());
  }

  void PlaceBehind(std::size_t before, std::size_t node) {
    placed_[node] = true;
    std::size_t& link = before == kNone ? first_ : next_[before];
    next_[node] = link;
    link = node;
    if (before == last_) last_ = node;
  }

  void Follow(std::size_t start) {
    PlaceBehind(last_, start);
    // An explicit stack: a chain of ten thousand tables must not exhaust the program's own.
    std::vector<Visit> stack{{start, firstJoin_[start]}};
    while (!stack.empty()) {
      Visit& visit = stack.back();
      if (visit.nextJoin == firstJoin_[visit.node + 1]) {
        stack.pop_back();
        continue;
      }
      const std::size_t j = joins_[visit.nextJoin];
      const std::size_t other = edges_[j].source == visit.node ? edges_[j].target : edges_[j].source;
      if (!placed_[other]) {
        PlaceBehind(visit.node, other);
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

  const std::vector<Edge>& edges_;
  std::size_t first_ = kNone;
  std::size_t last_ = kNone;
  std::vector<std::size_t> next_;  // of each node: the one behind it
  std::vector<bool> placed_;
  std::vector<bool> taken_;
  std::vector<std::size_t> firstJoin_;  // of each node, in joins_; ends with the next node's
  std::vector<std::size_t> joins_;
  std::vector<std::size_t> met_;
};

// "All rows" stays with the same table when a join is seen from its other end.
JoinTypeEnum TypeSeenFrom(const SnapshotJoin& join, bool fromTarget) {
  return (fromTarget ? join.kind.Reversed() : join.kind).SeenFromSource();
}

// Places tables, group by group.
class Placer {
 public:
  explicit Placer(std::size_t tables) : node_(tables) {}

  // The tables of `order` with the joins among them. Joins above `level` hold groups together.
  std::vector<FromEntry> Place(const std::vector<std::size_t>& order, const std::vector<const SnapshotJoin*>& joins,
                               std::int32_t level) {
    const Nodes nodes = NodesOf(order, joins, level);
    std::vector<Edge> edges;
    edges.reserve(joins.size());
    std::unordered_map<std::size_t, std::vector<const SnapshotJoin*>> inside;  // of each node that is a group
    for (const SnapshotJoin* join : joins) {
      const std::size_t source = node_[join->source];
      const std::size_t target = node_[join->target];
      if (source == target) {
        inside[source].push_back(join);
      } else {
        edges.push_back({source, target, join});
      }
    }
    const Walk walk(nodes.first.size(), edges);
    std::vector<FromEntry> entries;
    entries.reserve(nodes.first.size());
    std::vector<std::size_t> placeOf(nodes.first.size());
    for (const std::size_t node : walk.Nodes()) {
      placeOf[node] = entries.size();
      entries.push_back({nodes.first[node], {}});
    }
    AddConditions(entries, walk, edges, placeOf);
    for (const auto& [node, tables] : nodes.groups) {
      FromEntry& entry = entries[placeOf[node]];
      entry.group = Unwrapped(Place(tables, inside[node], level + 1));
      entry.table = entry.group.front().table;
    }
    return entries;
  }

  // Parentheses around everything say nothing.
  static std::vector<FromEntry> Unwrapped(std::vector<FromEntry> entries) {
    while (entries.size() == 1 && !entries.front().group.empty()) {
      entries = std::exchange(entries.front().group, {});
    }
    return entries;
  }

 private:
  struct Nodes {
    std::vector<std::size_t> first;                                    // of each node the first table
    std::unordered_map<std::size_t, std::vector<std::size_t>> groups;  // of each with several all, in their order
  };

  // Tables that belong together are one node, in the place of the first; `node_` says which each table belongs to.
  Nodes NodesOf(const std::vector<std::size_t>& order, const std::vector<const SnapshotJoin*>& joins,
                std::int32_t level) {
    Nodes nodes;
    nodes.first.reserve(order.size());
    const auto holdsGroup = [level](const SnapshotJoin* join) { return join->groupLevel > level; };
    if (std::ranges::none_of(joins, holdsGroup)) {
      nodes.first = order;
      for (std::size_t i = 0; i < order.size(); ++i) node_[order[i]] = i;
      return nodes;
    }
    for (const std::size_t table : order) node_[table] = table;
    const auto rootOf = [this](std::size_t table) {
      while (node_[table] != table) table = node_[table] = node_[node_[table]];
      return table;
    };
    for (const SnapshotJoin* join : joins) {
      if (holdsGroup(join)) node_[rootOf(join->source)] = rootOf(join->target);
    }
    std::vector<std::size_t> nodeOf(order.size());
    std::unordered_map<std::size_t, std::size_t> nodeOfRoot;
    for (std::size_t i = 0; i < order.size(); ++i) {
      const auto [found, isNew] = nodeOfRoot.emplace(rootOf(order[i]), nodes.first.size());
      nodeOf[i] = found->second;
      if (isNew) {
        nodes.first.push_back(order[i]);
        continue;
      }
      std::vector<std::size_t>& group = nodes.groups[found->second];
      if (group.empty()) group.push_back(nodes.first[found->second]);
      group.push_back(order[i]);
    }
    for (std::size_t i = 0; i < order.size(); ++i) node_[order[i]] = nodeOf[i];
    return nodes;
  }

  void AddConditions(std::vector<FromEntry>& entries, const Walk& walk, const std::vector<Edge>& edges,
                     const std::vector<std::size_t>& placeOf) const {
    std::unordered_set<ColumnPair, HashColumnPair> known;
    for (const std::size_t j : walk.Met()) {
      const SnapshotJoin& join = *edges[j].join;
      const bool fromTarget = placeOf[edges[j].target] > placeOf[edges[j].source];
      const std::size_t left = fromTarget ? join.target : join.source;
      const std::size_t right = fromTarget ? join.source : join.target;
      std::string_view leftColumn, rightColumn;
      if (join.HasPair()) {
        leftColumn = (fromTarget ? join.targetColumn : join.sourceColumn)->Name();
        rightColumn = (fromTarget ? join.sourceColumn : join.targetColumn)->Name();
        const ColumnPair pair{left, leftColumn, right, rightColumn, ComparisonSeen(fromTarget, join.comparison)};
        if (!known.insert(pair).second && join.condition.empty()) continue;
      }
      entries[placeOf[fromTarget ? edges[j].target : edges[j].source]].conditions.push_back(
          {left, leftColumn, right, rightColumn, TypeSeenFrom(join, fromTarget), &join});
    }
  }

  std::vector<std::size_t> node_;  // of each table
};

}  // namespace

int ComparisonSeen(bool fromTarget, JoinComparisonEnum comparison) {
  constexpr int kPatternFirst = -1;
  if (!fromTarget) return comparison;
  const std::optional<JoinComparisonEnum> mirrored = Mirrored(comparison);
  return mirrored ? *mirrored : kPatternFirst;
}

ColumnPair KeyOf(std::size_t source, std::string_view sourceColumn, std::size_t target, std::string_view targetColumn,
                 JoinComparisonEnum comparison) {
  if (target < source) return {target, targetColumn, source, sourceColumn, ComparisonSeen(true, comparison)};
  return {source, sourceColumn, target, targetColumn, ComparisonSeen(false, comparison)};
}

std::size_t HashColumnPair::operator()(const ColumnPair& pair) const {
  constexpr std::hash<std::string_view> kHash;
  return ((pair.left * 31 + pair.right) * 31 + kHash(pair.leftColumn)) * 31 + kHash(pair.rightColumn);
}

std::vector<FromEntry> PlaceTables(const QuerySnapshot& query, std::span<const std::size_t> order) {
  std::vector<bool> isPlaced(query.tables.size());
  for (const std::size_t table : order) isPlaced[table] = true;
  std::vector<const SnapshotJoin*> joins;
  joins.reserve(query.joins.size());
  for (const SnapshotJoin& join : query.joins) {
    if (IsUsable(join) && !join.kind.Asks() && isPlaced[join.source] && isPlaced[join.target]) joins.push_back(&join);
  }
  return Placer::Unwrapped(Placer(query.tables.size()).Place({order.begin(), order.end()}, joins, 0));
}

std::vector<FromEntry> WithoutGroups(std::vector<FromEntry> entries) {
  if (std::ranges::all_of(entries, [](const FromEntry& entry) { return entry.group.empty(); })) return entries;
  std::vector<FromEntry> flat;
  for (FromEntry& entry : entries) {
    if (entry.group.empty()) {
      flat.push_back(std::move(entry));
      continue;
    }
    // What joins the group stands with its first table.
    std::vector<FromEntry> tables = WithoutGroups(std::exchange(entry.group, {}));
    tables.front().conditions = std::move(entry.conditions);
    std::ranges::move(tables, std::back_inserter(flat));
  }
  return flat;
}

Ref<qbJoins> BuildJoinList(const QuerySnapshot& query) {
  const Ref<qbJoins> joins = std::make_shared<qbJoins>();
  const auto captionOf = [&](std::size_t table) { return query.tables[table].caption.Name(); };
  for (const FromEntry& entry : WithoutGroups(PlaceTables(query, PartsOf(query).rows))) {
    qbJoinTables& conditions = *joins->Add(captionOf(entry.table))->JoinTables();
    for (const FromCondition& condition : entry.conditions) {
      if (condition.leftColumn.empty()) continue;
      conditions
          .Add(captionOf(condition.left), std::string(condition.leftColumn), captionOf(condition.right),
               std::string(condition.rightColumn))
          ->JoinType = condition.type;
    }
  }
  return joins;
}

}  // namespace zrqrybld
