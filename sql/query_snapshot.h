// QuerySnapshot: a designed query as plain data, taken from the diagram, the grid and the options.
//
// The generator is a function of it. It knows no control, so a design can be written down in a test
// and two designs can be compared.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "sql/names.h"
#include "sql/sql_text.h"

namespace zrqrybld {

/// One table of the diagram.
struct SnapshotTable {
  /// What the table is called in this query.
  Identifier caption;
  /// Its name in the data source, schema first.
  std::vector<Identifier> name;
  /// Whether the caption is another than the name, so that the statement needs an alias.
  bool aliased = false;
  friend bool operator==(const SnapshotTable&, const SnapshotTable&) = default;
};

/// One join of the diagram. `source` and `target` are positions in `QuerySnapshot::tables`, from 0.
struct SnapshotJoin {
  std::size_t source = 0;
  std::size_t target = 0;
  /// The joined columns; none when the join is not complete.
  std::optional<Identifier> sourceColumn;
  std::optional<Identifier> targetColumn;
  /// Bit 1: all rows of the target; bit 2: all rows of the source.
  int kind = 0;
  friend bool operator==(const SnapshotJoin&, const SnapshotJoin&) = default;
};

/// One row of the grid.
struct SnapshotRow {
  /// A column's name, "*", or an expression when `table` is none.
  std::string column;
  Identifier alias;
  /// The position in `QuerySnapshot::tables`, from 0; none for an expression.
  std::optional<std::size_t> table;
  bool output = false;
  std::string sortType;
  std::string sortOrder;
  std::string groupBy;
  /// The aggregate's syntax with "@field" in it; empty for grouping choices and outside group-by mode.
  std::string aggregate;
  friend bool operator==(const SnapshotRow&, const SnapshotRow&) = default;
};

struct QuerySnapshot {
  std::vector<SnapshotTable> tables;
  /// In the order of their source tables.
  std::vector<SnapshotJoin> joins;
  std::vector<SnapshotRow> rows;
  bool groupByMode = false;
  bool distinct = false;
  /// "", a number or a number followed by "%".
  std::string top;
  NameRules names;
};

}  // namespace zrqrybld
