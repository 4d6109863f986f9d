// A query with the queries that belong to it, and its text.
//
// Pure: each query is a snapshot that the generator writes; here they are put together by WITH, by UNION and its like,
// and in FROM.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/host/designer_values.h"
#include "zrqrybld/sql/diagnostics.h"
#include "zrqrybld/sql/generator.h"
#include "zrqrybld/sql/query_kind.h"
#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

struct Dialect;

/// A query and those that belong to it, in their order.
struct QueryTree {
  std::int32_t id = 0;
  QueryKindEnum kind = QueryMain;
  QueryOperatorEnum combined = QueryUnion;
  std::string name;
  /// What its columns are called outside, behind its name; empty where they bear their own names.
  std::vector<std::string> columnNames;
  QuerySnapshot query;
  /// What it outputs, as far as the types are known.
  std::vector<QueryColumn> columns;
  std::vector<QueryTree> inner;
};

/// Where the text of a query stands in that of the whole, with all queries in it; offsets from 0.
struct QueryPart {
  std::int32_t id = 0;
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// What a dialect cannot say of a query, or what no server would take.
struct QueryFault {
  std::int32_t id = 0;
  Phrase what;
  bool stops = true;  ///< whether there is no text because of it
};

/// What there is to say about a query that is not the one shown.
struct QueryRemark {
  std::string name;          ///< of the query; "" of the main one and of members
  std::size_t member = 0;    ///< which member of its compound it is, from 2; 0 for no member
  SQLDiagnostic diagnostic;  ///< nothing can be done about it from elsewhere
};

struct GeneratedQuery {
  /// "" where the dialect cannot say what one of the queries asks for.
  std::string text;
  std::vector<QueryPart> parts;
  std::int32_t extended = 0;  ///< the query that `extra` was for: the one that the panes show
  std::vector<QueryFault> faults;
  std::vector<QueryRemark> remarks;
};

/// Writes the statement; `extra` is added to the query with the id `shown`, of which nothing is remarked. Takes time in
/// the number of tables, joins and rows and the length of the text, times the depth of the tree.
ZRQRYBLD_API GeneratedQuery GenerateQuery(QueryTree tree, const Dialect& dialect, std::int32_t shown = 0,
                                          const ExtraConditions& extra = {});

}  // namespace zrqrybld
