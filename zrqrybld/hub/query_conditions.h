// QueryConditions: the criteria of a query's grid as a tree of conditions, for whoever shows and edits them so.
//
// The grid's rows are the only home of conditions: what the tree is made of, and what a changed tree is written into,
// in one step.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/sql/condition_tree.h"

namespace zrqrybld {

class qbIntelliList;
class qbQueryBuilder;
class ValueSource;
struct CriteriaContext;

class ZRQRYBLD_API QueryConditions {
 public:
  /// Knows nothing, and changes nothing, once the hub is gone or while it has no grid.
  explicit QueryConditions(const Ref<qbQueryBuilder>& hub) : hub_(hub) {}

  /// The conditions as they are now.
  ConditionTree Tree() const;
  /// Whether the query groups, so that groups can be chosen.
  bool Groups() const;
  /// Makes the rows hold these conditions. Rows that were there for nothing else go; rows that are missing come.
  void Set(const ConditionTree& tree) const;

  /// What a condition can be about, as it is typed: the columns of the diagram.
  std::vector<std::string> Fields() const;
  /// How a field is shown and typed.
  static std::string TextOf(const ConditionField& field);
  /// The field that a typed text names: a column, where groups are chosen an aggregate of one, or an expression.
  ConditionField FieldIn(const std::string& text, bool groups) const;
  /// The criterion as a cell of the field would hold it. Error 40002 when it cannot be read.
  std::string Formatted(const ConditionField& field, const std::string& criterion) const;
  /// What helps with typing a criterion of the field; nothing without a hub. `values` may be nothing.
  Ref<qbIntelliList> SuggestionsFor(const ConditionField& field, std::shared_ptr<ValueSource> values) const;

 private:
  WeakRef<qbQueryBuilder> hub_;
};

}  // namespace zrqrybld
