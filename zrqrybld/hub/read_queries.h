// ReadQueries: a typed statement as the queries that it is made of, each with every name resolved; nothing is changed.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
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

class ReadQueries {
 public:
  /// SyntaxError, with the place in the whole text, for what cannot be read.
  ReadQueries(qbQueryBuilder& hub, std::string_view typed);

  ReadQuery& Main() { return main_; }

 private:
  ReadQuery main_;
};

}  // namespace zrqrybld
