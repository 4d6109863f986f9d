// The binder: a syntax tree as a designed query, with every name resolved.
//
// Pure: what the data source knows is asked of a `QuerySource`. Nothing of the statement is dropped and nothing changes
// its meaning; what the designer cannot hold is refused with its place.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "host/catalogs.h"
#include "sql/dialect.h"
#include "sql/name_scope.h"
#include "sql/query_snapshot.h"
#include "sql/select_statement.h"

namespace zrqrybld {

struct BindOptions {
  /// The dialect in which the statement is written anew.
  const Dialect* dialect = nullptr;
  /// The aggregates that the grid offers.
  const qbDBFunctions* functions = nullptr;
  NameRules names;
  CriteriaContext criteria;
  /// How many criteria columns the grid has.
  std::size_t criteriaColumns = 4;
  /// How the diagram will hold the tables and the joins. Puts `query.joins` into its order (which joins there are stays
  /// the same) and answers with the order of the tables, as positions in `query.tables`. It is asked for `attempt` 0,
  /// 1,
  /// ... until what is generated means the same as the statement; an empty answer ends the attempts. Without it tables
  /// and joins stay as they are.
  std::function<std::vector<std::size_t>(QuerySnapshot& query, std::size_t attempt)> arrange;
};

/// The query that the statement designs: tables in the order of FROM, rows in the order of the select list and behind
/// them those that are not output. SyntaxError for what cannot be told, is not there or cannot be shown.
QuerySnapshot BindStatement(const SelectStatement& statement, QuerySource& source, const BindOptions& options);

}  // namespace zrqrybld
