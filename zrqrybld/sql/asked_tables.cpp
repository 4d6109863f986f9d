#include "zrqrybld/sql/asked_tables.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "zrqrybld/base/texts_sql.h"

namespace zrqrybld {
namespace {

bool Asks(const SnapshotJoin& join) { return IsUsable(join) && join.kind.Asks(); }

// Tables that are joined without a question stand together, wherever that is.
class Grouping {
 public:
  explicit Grouping(const QuerySnapshot& query) : next_(query.tables.size()) {
    std::iota(next_.begin(), next_.end(), 0);
    for (const SnapshotJoin& join : query.joins) {
      if (IsUsable(join) && !join.kind.Asks()) next_[RootOf(join.source)] = RootOf(join.target);
    }
  }

  std::size_t RootOf(std::size_t table) {
    while (next_[table] != table) table = next_[table] = next_[next_[table]];
    return table;
  }

 private:
  std::vector<std::size_t> next_;
};

class Parting {
 public:
  explicit Parting(const QuerySnapshot& query) : query_(query), groups_(query) {}

  QueryParts Run() {
    FindParts();
    FindParents();
    FindCircles();
    if (!result_.faults.empty()) TakeBack();
    return std::move(result_);
  }

 private:
  void Refuse(const SnapshotJoin& join, TextId why) { result_.faults.push_back({&join, why}); }

  std::size_t PartAt(std::size_t table) const { return result_.partOf[table]; }

  void FindParts() {
    std::vector<std::size_t> partOfRoot(query_.tables.size(), QueryParts::kRows);
    for (const SnapshotJoin& join : query_.joins) {
      if (!Asks(join)) continue;
      const std::size_t root = groups_.RootOf(AskedEnd(join));
      if (root == groups_.RootOf(AskingEnd(join))) {
        Refuse(join, text::AskedAndJoined);
        continue;
      }
      if (partOfRoot[root] == QueryParts::kRows) {
        partOfRoot[root] = result_.parts.size();
        result_.parts.push_back({{}, {}, QueryParts::kRows, {}, join.kind.AsksForNone()});
      }
      result_.parts[partOfRoot[root]].links.push_back(&join);
    }
    for (std::size_t table = 0; table < query_.tables.size(); ++table) {
      const std::size_t part = partOfRoot[groups_.RootOf(table)];
      result_.partOf.push_back(part);
      (part == QueryParts::kRows ? result_.rows : result_.parts[part].tables).push_back(table);
    }
  }

  // One answer serves one query: what is asked in two ways, or from two places, has none.
  void FindParents() {
    for (AskedPart& part : result_.parts) {
      part.parent = PartAt(AskingEnd(*part.links.front()));
      for (const SnapshotJoin* link : part.links) {
        if (link->kind.AsksForNone() != part.forNone) {
          Refuse(*link, text::AskedBothWays);
        } else if (PartAt(AskingEnd(*link)) != part.parent) {
          Refuse(*link, text::AskedFromTwoPlaces);
        }
      }
    }
  }

  void FindCircles() {
    for (std::size_t i = 0; i < result_.parts.size(); ++i) {
      std::size_t around = result_.parts[i].parent;
      std::size_t depth = 1;
      while (around != QueryParts::kRows && depth++ < QueryParts::kDeepest) around = result_.parts[around].parent;
      if (around != QueryParts::kRows) {
        Refuse(*result_.parts[i].links.front(), text::AskedInCircle);
      } else if (result_.parts[i].parent != QueryParts::kRows) {
        result_.parts[result_.parts[i].parent].inside.push_back(i);
      }
    }
  }

  void TakeBack() {
    result_.parts.clear();
    result_.rows.resize(query_.tables.size());
    std::iota(result_.rows.begin(), result_.rows.end(), 0);
    result_.partOf.assign(query_.tables.size(), QueryParts::kRows);
  }

  const QuerySnapshot& query_;
  Grouping groups_;
  QueryParts result_;
};

}  // namespace

bool QueryParts::Sees(std::size_t part, std::size_t table) const {
  while (part != kRows && partOf[table] != part) part = parts[part].parent;
  return partOf[table] == part;
}

QueryParts PartsOf(const QuerySnapshot& query) {
  if (std::ranges::any_of(query.joins, Asks)) return Parting(query).Run();
  QueryParts parts;
  parts.rows.resize(query.tables.size());
  std::iota(parts.rows.begin(), parts.rows.end(), 0);
  parts.partOf.assign(query.tables.size(), QueryParts::kRows);
  return parts;
}

}  // namespace zrqrybld
