// The binder: a syntax tree as a designed query, with every name resolved.
//
// Pure: what the data source knows is asked of a `QuerySource`. Nothing of the statement is dropped and nothing changes
// its meaning; what the designer cannot hold is refused with its place.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/sql/join_orders.h"
#include "zrqrybld/sql/name_scope.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/select_statement.h"

namespace zrqrybld {

class OuterQueries;
struct Dialect;

struct BindOptions {
  /// The dialect in which the statement is written anew.
  const Dialect* dialect = nullptr;
  /// The aggregates that the grid offers.
  const qbDBFunctions* functions = nullptr;
  NameRules names;
  CriteriaContext criteria;
  /// Whether members of UNION and its like follow: what it sorts by are columns of them all.
  bool beginsCompound = false;
  /// The queries around, whose columns may be named as well.
  std::shared_ptr<const OuterQueries> outer;
  /// How many criteria columns the grid may have, and how many it has at first.
  std::size_t criteriaColumns = 101;
  std::size_t usualCriteriaColumns = 4;
  /// What the diagram holds already, and is to keep where it can.
  DrawnDiagram drawn;
};

struct BoundStatement {
  QuerySnapshot query;
  /// How the diagram is to hold the tables and joins, so that what is generated means the same as the statement.
  JoinArrangement arrangement;
};

/// The query that the statement designs: tables in the order of FROM, rows in the order of the select list and behind
/// them those that are not output. SyntaxError for what cannot be told, is not there or cannot be shown.
BoundStatement BindStatement(const SelectStatement& statement, QuerySource& source, const BindOptions& options);

}  // namespace zrqrybld
