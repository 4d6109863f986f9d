// ReadQueries: a typed statement as the queries that it is made of, each with every name resolved; nothing is changed.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/hub/read_statement.h"

namespace zrqrybld {

class qbQueryBuilder;

/// A query of the statement, with those that belong to it in their order.
struct ReadQuery {
  StoredQuery facts;  ///< what it is, without its design
  std::string text;   ///< its own SELECT
  std::unique_ptr<ReadStatement> statement;
  std::vector<QueryColumn> columns;
  std::vector<ReadQuery> inner;
};

/// What stands around a query that is read.
struct QuerySurroundings {
  /// The queries that it can name like tables.
  std::vector<std::pair<std::string, std::vector<QueryColumn>>> named;
  /// The queries whose columns it can name; nothing for a statement.
  std::shared_ptr<const OuterQueries> outer;
};

class ReadQueries {
 public:
  /// Reads a statement. SyntaxError, with the place in the whole text, for what cannot be read.
  ReadQueries(qbQueryBuilder& hub, std::string_view typed);
  /// Reads a query that stands within another one; errors as above.
  ReadQueries(qbQueryBuilder& hub, std::string_view typed, const QuerySurroundings& around);

  ReadQuery& Main() { return main_; }

 private:
  ReadQuery main_;
};

}  // namespace zrqrybld
