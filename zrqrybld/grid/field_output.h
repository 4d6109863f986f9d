// FieldOutput: how fields get into the rows of a grid pane and out of them, and how rows and boxes keep each other's
// ticks.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zrqrybld/grid/field_rows.h"
#include "zrqrybld/grid/group_by_column.h"

namespace zrqrybld {

class FieldOutput {
 public:
  /// All must outlive this.
  FieldOutput(PaneRows& rows, FieldRows& fields, const GroupByColumn& grouping)
      : rows_(rows), fields_(fields), grouping_(grouping) {}

  // --- Into the grid, and out of it ---

  /// The first row of the field outputs it from now on. Returns it; 0 when the field has no row.
  std::int32_t Tick(const FieldName& field);
  /// A row that outputs the field: one more before this one, else (0) the first empty one. Returns it.
  std::int32_t Add(const FieldName& field, std::int32_t before);
  /// All rows of the field stop to output it; those that say nothing else go.
  void Untick(const FieldName& field);
  /// Puts rows into the empty ones, then behind the last; what is output is ticked in its box.
  void AddRows(const std::vector<QueryRow>& rows);

  // --- The diagram ---

  /// Ticks the field in its box, or unticks it.
  void Push(const FieldName& field, bool checked) const;
  /// Ticks in all boxes what any row outputs, and nothing else.
  void FollowAll() const;
  /// The columns that are ticked in the diagram and no row outputs.
  std::vector<FieldName> TickedOnly() const;
  /// Rows are about to go: what they alone output is unticked.
  void AboutToGo(std::int32_t first, std::int32_t last);

  // --- Names ---

  /// The column or the table of the row was typed. A qualified text is split, and names that differ from the diagram's
  /// in letter case only, or stand in quotes, get its spelling; after this, comparisons are exact.
  void Respell(zrGridRow& row, std::int32_t column) const;
  /// The field that a text means which comes from elsewhere.
  FieldName FieldIn(const std::string& text) const;

 private:
  PaneRows& rows_;
  FieldRows& fields_;
  const GroupByColumn& grouping_;
};

}  // namespace zrqrybld
