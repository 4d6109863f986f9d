// The generator: a designed query as SELECT text in one dialect.
//
// Pure: a snapshot goes in, text comes out. Lines end in CR LF; every item of a clause stands on a
// line of its own, indented by one TAB.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/phrase.h"
#include "zrqrybld/sql/join_list.h"
#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

struct Dialect;

/// A criterion that cannot be read; the statement holds it as it was typed.
struct UnreadableCriterion {
  std::size_t row;  ///< the position in `QuerySnapshot::rows`, from 0
  std::string text;
  Phrase reason;
};

/// A date that the connected source does not take for one.
struct MisreadCriterion {
  std::size_t row;   ///< the position in `QuerySnapshot::rows`, from 0
  std::string date;  ///< as it stands in the statement
};

struct GeneratedSql {
  /// "" where the dialect cannot say what the query asks for; the remarks tell what that is.
  std::string text;
  /// What stands behind the last member of the compound that the query begins: ORDER BY and the limit.
  std::string tail;
  /// Whether some table other than the first is joined to none before it.
  bool cartesian = false;
  /// The tables as they stand in FROM; valid as long as the query is.
  std::vector<FromEntry> from;
  /// The same of each query within the query that a join asks.
  std::vector<std::vector<FromEntry>> asked;
  std::vector<UnreadableCriterion> unreadable;
  std::vector<MisreadCriterion> misread;
  /// Rows that a compound cannot be sorted by, for they are not output: positions in `QuerySnapshot::rows`, from 0.
  std::vector<std::size_t> unsorted;
};

/// Conditions that are added to the statement as they stand, without parentheses.
struct ExtraConditions {
  std::string orExpression;
  std::string andExpression;
};

/// The text with `indent` behind each line end that stands in no literal, name or comment.
std::string Indented(std::string_view text, std::string_view indent);

/// Writes the statement. Takes time in the number of tables, joins and rows and the length of the text.
GeneratedSql GenerateSelect(const QuerySnapshot& query, const Dialect& dialect, const ExtraConditions& extra = {});

}  // namespace zrqrybld
