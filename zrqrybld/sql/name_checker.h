// NameChecker: whether every name inside the expressions of a statement means something.
//
// Pure: which columns there are is asked of the scope's source; what it does not know is never refused.
#pragma once

#include <memory>
#include <string_view>

#include "zrqrybld/sql/name_scope.h"

namespace zrqrybld {

struct Dialect;
class DesignSource;
class qbDBFunctions;

/// Looks at every name in the select list, in ON, WHERE, GROUP BY, HAVING and ORDER BY, and in the queries within them.
/// SyntaxError at the first that no table has, or several have. Aliases of the select list, functions without
/// parentheses (those of the catalog, too), parameters and the words that some functions take are no names of columns.
void RequireKnownNames(const SelectStatement& statement, const NameScope& scope, const Dialect& dialect,
                       const qbDBFunctions& functions);

/// The names in the expressions and criteria of a designed query.
class DesignNames {
 public:
  /// Query, dialect and functions must outlive this; `functions` may be nothing.
  DesignNames(const QuerySnapshot& query, const Dialect& dialect, const qbDBFunctions* functions);
  DesignNames(const DesignNames&) = delete;
  DesignNames& operator=(const DesignNames&) = delete;
  ~DesignNames();

  /// What is wrong with a name of the expression: no table has it, or several have. Empty when all names mean
  /// something, when the expression cannot be read, and when nobody knows the columns.
  Phrase FaultIn(std::string_view expression) const;
  /// The same of a criterion, as it stands in a cell of a column with this type.
  Phrase FaultInCriterion(std::string_view cell, const SnapshotRow& row) const;

 private:
  NameScope& Scope() const;

  const QuerySnapshot& query_;
  const Dialect& dialect_;
  const qbDBFunctions* functions_;
  std::unique_ptr<DesignSource> source_;
  mutable std::unique_ptr<NameScope> scope_;  // of the tables; made when the first name is looked up
  WordSet aliases_;
};

}  // namespace zrqrybld
