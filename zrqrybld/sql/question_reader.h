// Queries within a typed statement that joins can ask: EXISTS (SELECT ... FROM t WHERE ...), or NOT. Pure.
// Several tables are asked about together when inner joins, in FROM or WHERE, hold all of them together.
//
// They are taken out of WHERE before the statement is bound; then their tables come behind its own, with joins that
// only ask. What no join can say stays in WHERE, where it is a condition as any other.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/sql/select_statement.h"
#include "zrqrybld/sql/statement_binder.h"

namespace zrqrybld {

struct ParseOptions;

struct ReadQuestion {
  std::unique_ptr<SelectStatement> query;  ///< its texts are the statement's
  bool forNone = false;                    ///< NOT stands before it
  std::string_view place;                  ///< the query with its parentheses, in the statement's text
  /// The question that it is a part of, by its position; none for the statement.
  std::optional<std::size_t> around = {};
  std::vector<const FromItem*> tables = {};        ///< in their order
  std::vector<const Expression*> conditions = {};  ///< those of FROM, then WHERE
};

/// Takes the questions out of the conditions that WHERE joins by AND, at most 50; inner ones follow those around them.
/// Those at the places of `left` stay.
std::vector<ReadQuestion> TakeQuestions(SelectStatement& statement, const ParseOptions& options,
                                        std::span<const std::string_view> left);

/// What a condition asks that compares with the rows of a query: "x IN (SELECT y FROM t ...)", or NOT IN.
struct ListQuestion {
  std::string exists;  ///< the same as "EXISTS (SELECT ...)", or NOT
  std::string table;   ///< what the query calls its table
  std::string column;  ///< y
  bool forNone = false;
};

/// None for every condition that is not of this form, with one table and a plain column, or has a LIMIT, GROUP BY or
/// the like. `condition` begins with a column.
std::optional<ListQuestion> ReadListQuestion(const std::string& condition);

/// The condition as the WHERE of a statement, whose text is `statement`; nothing when it cannot be read.
std::unique_ptr<SelectStatement> ReadAsWhere(std::string_view condition, std::string& statement);

/// The query that stands in parentheses; nothing when it cannot be read.
std::unique_ptr<SelectStatement> ReadInner(const Expression& query, const ParseOptions& options);

/// The tables that the questions are about, those of the first one first.
std::vector<const FromItem*> TablesOf(const std::vector<ReadQuestion>& questions);

/// Adds tables and joins of the questions to a statement that was bound without them; `drawn` is what the diagram holds
/// of all its tables. Nothing when all is said; otherwise a question that no joins ask, and `bound` is of no use.
/// SyntaxError for names that mean nothing.
const ReadQuestion* BindQuestions(BoundStatement& bound, const std::vector<ReadQuestion>& questions,
                                  QuerySource& source, const BindOptions& options, const DrawnDiagram& drawn);

}  // namespace zrqrybld
