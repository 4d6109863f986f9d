// FieldTerms: which expressions of a statement are fields of the grid (columns and aggregates of one column), and how
// the generator writes them.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>

#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/sql/name_scope.h"
#include "zrqrybld/sql/query_rows.h"
#include "zrqrybld/sql/statement_printer.h"

namespace zrqrybld {

/// Whether the expression calls a function that the catalog offers for grouping: it has one value for a group.
bool CallsAggregate(std::string_view expression, const qbDBFunctions& functions);

class FieldTerms {
 public:
  /// Scope, rules and functions must outlive this.
  FieldTerms(const NameScope& scope, const NameRules& rules, const qbDBFunctions& functions);

  /// The column that an expression is, parentheses around it left out. None for other expressions, and for a name that
  /// no table has; SyntaxError for a name that cannot be told.
  std::optional<RowField> ColumnOf(const Expression& expression) const;
  /// The aggregate of one column, or of "*", that an expression is.
  std::optional<RowField> AggregateOf(const Expression& expression) const;
  /// The field's text in the statement.
  std::string TermOf(const RowField& field) const;

  /// The expression with all names of columns as the generator writes them, on one line. Two expressions with the same
  /// text mean the same.
  std::string Normalized(const Expression& expression) const;
  /// As `Normalized`, with fields of aggregates written as the generator writes them, too.
  std::string NormalizedFields(const Expression& expression) const;
  /// As `NormalizedFields`, with the numbers and truth values that the conditions compare with in parentheses.
  std::string WithLiteralsApart(const Expression& expression) const;
  /// The expression as it was written, on one line; names that mean another column in the generated text are qualified.
  std::string Written(const Expression& expression) const;

 private:
  using Aggregates = std::unordered_map<std::string, RowGrouping>;  // by syntax, as `KeyOf` makes it alike
  const Aggregates& KnownAggregates() const;
  bool AppendField(const Expression& e, std::string& text) const;
  const Expression* OnlyOperand(const Expression& expression) const;
  std::string ColumnTerm(std::size_t table, const std::string& column) const;

  const NameScope& scope_;
  const NameRules& rules_;
  const qbDBFunctions& functions_;
  mutable std::optional<Aggregates> aggregates_;  // read when a statement first calls a function
  Substitution columns_;
};

}  // namespace zrqrybld
