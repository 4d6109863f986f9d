// Diagnostics: what a designed query says that its statement cannot, or that may surprise.
//
// Pure: they are found in the snapshot and never change the text. The SQL pane shows them; an application reads them
// after each generation.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/sql/generator.h"
#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

struct Dialect;

/// What a diagnostic is about. The object that it names is said behind each kind.
enum SQLDiagnosticEnum : std::int32_t {
  DiagnosticTableNotJoined = 1,        ///< a table: joined to none before it, so that rows multiply
  DiagnosticFullJoin = 2,              ///< a join: the dialect cannot say "all rows of both tables"
  DiagnosticMixedJoins = 3,            ///< a table: its joins are of several kinds, of which only the first is written
  DiagnosticIncompleteJoin = 4,        ///< a join: a column is missing, so that it is not written
  DiagnosticJoinToItself = 5,          ///< a table: it is joined to itself; a second copy of the table is needed
  DiagnosticNotGrouped = 6,            ///< a column: output, but neither grouped nor aggregated
  DiagnosticUnknownFunction = 7,       ///< a column: its group-by choice is none that the designer knows
  DiagnosticSortNotSelected = 8,       ///< a column: sorted by, but missing from SELECT DISTINCT or a UNION
  DiagnosticSameSortOrder = 9,         ///< a column: a later row has the same sort number and takes its place
  DiagnosticDuplicateName = 10,        ///< a name: two columns of the result bear it
  DiagnosticOuterJoinUndone = 11,      ///< a column: its criterion drops the rows that an outer join adds
  DiagnosticUnreadableCriterion = 12,  ///< a column: its criterion cannot be read and is written as it was typed
  DiagnosticAllColumns = 13,           ///< a column "*": sorted, grouped or compared, which only a single column can be
  DiagnosticLimitWritten = 14,         ///< the row limit: it does not mean in this dialect what was asked for
  DiagnosticParentheses = 15,          ///< a table: the parentheses before it are never closed
  DiagnosticNothingToGroup = 16,       ///< a column: its criterion stands in HAVING although the query does not group
  DiagnosticAliasWritten = 17,         ///< a column: its alias is cut, or left out because it is no single column
  DiagnosticJoinsWait = 18,            ///< a table: outer joins bring in each of its tables only with another of them
  DiagnosticNullsPlace = 19,           ///< a column: the dialect cannot say where its Nulls come
  DiagnosticDateMisread = 20,          ///< a column: the source does not take a date of its criterion for one
  DiagnosticUnknownName = 21,       ///< an expression or column: it or its criterion names a column that is not there
  DiagnosticLackingCondition = 22,  ///< a column: an alternative lacks the condition on it that the first one has
  DiagnosticJoinNotWritten = 23,    ///< a join: the dialect cannot say what it asks, or not where it stands
  DiagnosticColumnAsked = 24,       ///< a column or expression: its table is only asked about and has no columns here
  DiagnosticQueryNotWritten = 25,   ///< a query: the dialect cannot say it where it stands, or servers refuse it
  DiagnosticNullInList = 26,        ///< a column or expression: NOT IN asks a query that may return a Null
  DiagnosticWordMissing = 27,  ///< a column or expression: it or its criterion holds what the dialect does not know
};

/// What a remark offers to do about it.
enum SQLCureEnum : std::int32_t {
  CureNone = 0,
  CureGroupBy = 1,     ///< groups by the column
  CureAlias = 2,       ///< gives the column an alias of its own
  CureDialect = 3,     ///< takes the dialect of the same servers today
  CureMoveToJoin = 4,  ///< makes the criterion a condition of the join whose rows it drops
  CureLeaveNulls = 5,  ///< lets the query behind NOT IN leave its Nulls out
};

/// One remark.
struct SQLDiagnostic {
  SQLDiagnosticEnum kind = DiagnosticTableNotJoined;
  /// The caption, column, join or text that it is about.
  std::string object;
  /// A sentence for the person who designs the query, as the pane shows it.
  std::string text;
  /// The same in any language.
  Phrase what;
  /// What the pane offers to do, how it says so, and the row of the query it is done to, from 0.
  SQLCureEnum cure = CureNone;
  Phrase cureName = {};
  std::size_t row = 0;
  /// The join that takes what is moved, by its position in the query.
  std::size_t join = 0;
  friend bool operator==(const SQLDiagnostic&, const SQLDiagnostic&) = default;
};

/// What there is to say about the statement that was generated from the query, in the order of tables, joins and rows.
/// Takes time in the number of tables, joins, rows and criteria.
/// Their texts are English.
std::vector<SQLDiagnostic> Diagnose(const QuerySnapshot& query, const Dialect& dialect, const GeneratedSql& generated);

}  // namespace zrqrybld
