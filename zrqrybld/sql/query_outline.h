// QueryOutline: which queries a statement is made of, as parts of its text.
//
// Pure. It finds the queries of WITH and the members of UNION and its like; what stands in each is read by the
// statement parser, which also finds the queries in FROM.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/sql/query_kind.h"

namespace zrqrybld {

struct Dialect;

/// Queries are nested up to this depth, and a statement holds up to so many.
inline constexpr int kDeepestQuery = 100;
inline constexpr int kMostQueries = 1000;

/// A query and those that belong to it. All texts are views into the statement.
struct QueryOutline {
  /// A query of WITH.
  struct Named {
    std::string_view name;                  ///< as written
    std::vector<std::string_view> columns;  ///< the names of its columns, as written; empty where it has its own
    std::unique_ptr<QueryOutline> query;
  };
  /// What stands behind UNION and its like.
  struct Member {
    QueryOperatorEnum combined = QueryUnion;
    std::string_view word;  ///< the operator's first word
    std::unique_ptr<QueryOutline> query;
  };

  std::vector<Named> named;
  bool recursive = false;       ///< WITH RECURSIVE
  std::string_view select;      ///< the first SELECT, without what is sorted and limited by as a whole
  std::vector<Member> members;  ///< each is put together with all before it
  std::string_view tail;        ///< ORDER BY and limits behind the last member; "" for none

  /// Whether it is one SELECT.
  bool IsPlain() const { return named.empty() && members.empty(); }
};

/// The queries of the statement. Takes time in the length of the text. A text that is one SELECT, or whose parentheses
/// and quotes do not close, comes back as it is. SyntaxError for what cannot be told or shown.
ZRQRYBLD_API QueryOutline OutlineQuery(std::string_view text, const Dialect& dialect);

/// The text of the first SELECT with `tail` behind it: every character stands as far from the beginning of `select` as
/// in the statement.
std::string TextOfSelect(const QueryOutline& query);

}  // namespace zrqrybld
