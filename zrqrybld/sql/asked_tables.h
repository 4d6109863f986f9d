// Which tables of a query return rows, and which are only asked about: whether they have a row that fits. Pure.
#pragma once

#include <cstddef>
#include <vector>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

/// Tables that are asked about together: one that a join asks about, and those that are joined to it. They stand in a
/// query of their own, EXISTS (...), inside the tables that ask.
struct AskedPart {
  std::vector<std::size_t> tables;                    ///< in the query's order
  std::vector<const SnapshotJoin*> links = {};        ///< the joins that ask, in the query's order
  std::size_t parent = static_cast<std::size_t>(-1);  ///< the part whose tables ask; `QueryParts::kRows` for none
  std::vector<std::size_t> inside = {};               ///< the parts that its own tables ask about
  bool forNone = false;                               ///< whether there is to be no row
};

/// A join that asks what cannot be told, and why: the texts name the table that is asked about and the one that asks.
struct AskingFault {
  const SnapshotJoin* join;
  TextId why;
};

struct QueryParts {
  static constexpr std::size_t kRows = static_cast<std::size_t>(-1);
  /// So many queries stand in one another at most.
  static constexpr std::size_t kDeepest = 40;

  std::vector<std::size_t> rows;    ///< the tables that return rows, in the query's order
  std::vector<AskedPart> parts;     ///< none where no join asks, or one asks what cannot be told
  std::vector<std::size_t> partOf;  ///< by table; `kRows` for those that return rows
  std::vector<AskingFault> faults;  ///< in the order of joins

  bool IsAsked(std::size_t table) const { return partOf[table] != kRows; }
  bool IsAsked(const SnapshotRow& row) const { return row.table && IsAsked(*row.table); }
  /// Whether the columns of a table can be named where those of the part (`kRows` for none) are.
  bool Sees(std::size_t part, std::size_t table) const;
};

/// Takes time in the number of tables and joins.
QueryParts PartsOf(const QuerySnapshot& query);

/// The table that a join asks about, and the one that it asks for.
inline std::size_t AskedEnd(const SnapshotJoin& join) { return join.kind.AsksTarget() ? join.target : join.source; }
inline std::size_t AskingEnd(const SnapshotJoin& join) { return join.kind.AsksTarget() ? join.source : join.target; }

}  // namespace zrqrybld
