// The conditions of a query as a tree of groups, and the grid's rows of criteria as the same conditions.
//
// Pure. Rows say "any of these alternatives, each all of its cells"; a group within an alternative stands in a row of
// its own, as an expression that is a condition, with the criterion "= True". The tree shows both alike.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/sql/query_row.h"

namespace zrqrybld {

/// What a condition is about.
struct ConditionField {
  std::string table;           ///< a caption; "" for an expression
  std::string column;          ///< a column's name, or the expression
  std::string aggregate = {};  ///< as a cell shows it; "" for none
  friend bool operator==(const ConditionField&, const ConditionField&) = default;
};

/// A condition, or a group of them.
struct ConditionNode {
  enum class Kind : std::uint8_t { All, Any, Single };
  Kind kind = Kind::All;
  bool negated = false;
  std::vector<ConditionNode> parts = {};  ///< of a group
  ConditionField field = {};              ///< of a single one
  /// What is asked of the field, as a cell has it; "" where the expression is a condition by itself.
  std::string criterion = {};
  friend bool operator==(const ConditionNode&, const ConditionNode&) = default;

  bool IsGroup() const { return kind != Kind::Single; }
};

/// The conditions that choose rows, and those that choose groups.
struct ConditionTree {
  ConditionNode where;
  ConditionNode having;
  friend bool operator==(const ConditionTree&, const ConditionTree&) = default;
};

/// How a single condition is SQL text, which the rows of groups hold.
struct ConditionWords {
  std::function<std::string(const ConditionField& field, const std::string& criterion)> write;
  /// The field that a text names; none for any other expression.
  std::function<std::optional<ConditionField>(std::string_view text)> fieldIn;
  std::string likeOperator = "LIKE";
};

/// More alternatives than these are one condition in a row of its own.
inline constexpr std::size_t kMostAlternatives = 101;
/// Deeper groups than these are shown as their text.
inline constexpr int kDeepestGroup = 50;

/// The tree in its plain form: no group within one of its kind, none of one part, none that is empty but the outermost,
/// and no condition that is not finished.
ZRQRYBLD_API ConditionNode Plain(ConditionNode node);

/// The conditions that the rows hold.
ZRQRYBLD_API ConditionTree TreeOf(const std::vector<QueryRow>& rows, const ConditionWords& words);

/// A row, and whether nothing but conditions that are gone was the reason for it.
struct ConditionedRow {
  QueryRow row;
  bool unused = false;
  friend bool operator==(const ConditionedRow&, const ConditionedRow&) = default;
};

/// The rows with the criteria of the tree in place of their own: as many, in their order, and behind them those that
/// are new. `grouped`: the query groups, so that new rows say what they are for.
ZRQRYBLD_API std::vector<ConditionedRow> WithConditions(const std::vector<QueryRow>& rows, const ConditionTree& tree,
                                                        const ConditionWords& words, bool grouped);

}  // namespace zrqrybld
