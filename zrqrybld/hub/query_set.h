// QuerySet: the queries of a statement, of which the panes show one.
//
// Plain values. What the panes do not show is kept as undo keeps it: pieces that moments share. The hub puts them into
// the panes and takes them back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/host/designer_values.h"
#include "zrqrybld/sql/query_kind.h"
#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

struct Design;

/// A join of a diagram: the table that it begins at and its place among the joins there, each from 0.
struct JoinPlace {
  std::size_t table = 0;
  std::size_t join = 0;
};

/// Where a query stands in the grid of the one that it belongs to, or in the condition of a join there. The text of the
/// cell, or of the condition, says what the query is; what is changed in its design is written there at once.
struct QueryCell {
  std::size_t row = 0;                 ///< from 0
  std::size_t column = 0;              ///< the grid's, from 1
  std::optional<JoinPlace> join = {};  ///< in whose condition it stands; then it stands in no cell
  std::size_t number = 0;              ///< of the queries in the cell, from 0
  std::string text;                    ///< the query as the cell has it; "" for one that the cell does not hold yet
  std::string written;                 ///< how its design was written when it said the same as the cell
  std::string about;                   ///< what the cell's row is about
};

/// One query. What stands in its last three is of the moment when the panes left it.
struct StoredQuery {
  std::int32_t id = 0;      ///< stays as it is; 0 is the main query
  std::int32_t parent = 0;  ///< of the query that it belongs to
  QueryKindEnum kind = QueryMain;
  QueryOperatorEnum combined = QueryUnion;
  std::string name;
  std::vector<std::string> columnNames;  ///< what its columns are called outside; empty for their own names
  QueryCell cell;                        ///< of a query in a cell
  std::shared_ptr<const Design> design;
  std::shared_ptr<const QuerySnapshot> snapshot;
  std::shared_ptr<const std::vector<QueryColumn>> columns;
};

/// The queries, each behind the one that it belongs to and behind those before it there.
struct ZRQRYBLD_API QuerySet {
  std::vector<StoredQuery> queries = {StoredQuery{}};
  std::int32_t shown = 0;
  std::int32_t lastId = 0;

  bool IsSingle() const { return queries.size() == 1; }
  /// By its id; nullptr when there is none.
  const StoredQuery* Find(std::int32_t id) const;
  StoredQuery* Find(std::int32_t id);
  const StoredQuery& Shown() const { return *Find(shown); }
  /// What belongs to the query, in order.
  std::vector<const StoredQuery*> InnerOf(std::int32_t id) const;
  /// Whether members belong to the query.
  bool BeginsCompound(std::int32_t id) const;
  /// The queries that the query can name like a table, those that count first before others: its own, and what stands
  /// in WITH around it.
  std::vector<const StoredQuery*> Nameable(std::int32_t id) const;
  /// That of them which the name means, exactly before without regard to case; nullptr when there is none.
  const StoredQuery* FindNamed(std::int32_t id, std::string_view name) const;
  /// A name that none of them has: the wanted one, or with a number behind it.
  std::string FreeName(std::int32_t id, const std::string& wanted) const;
  /// Adds a query behind the others of its parent; its id.
  std::int32_t Add(StoredQuery query);
  /// Adds one that has its id already.
  void Insert(StoredQuery query);
  /// Removes the query with all that belongs to it.
  void Remove(std::int32_t id);
  /// Whether the query is the other, or belongs to it at any depth.
  bool IsWithin(std::int32_t id, std::int32_t other) const;
  /// Whether the query stands in a cell, or belongs to one that does at any depth.
  bool StandsInCell(std::int32_t id) const;
};

}  // namespace zrqrybld
