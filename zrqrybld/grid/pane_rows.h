// PaneRows: the rows of a grid pane, and what the parts of the pane share besides: the grid, the designer's context,
// and whether the pane itself is at work.
#pragma once

#include <cstdint>

#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/grid/grid.h"
#include "zrqrybld/grid/row_cells.h"

namespace zrqrybld {

class qbEntities;
struct QueryContext;

class PaneRows {
 public:
  explicit PaneRows(Ref<zrGrid> grid) : grid_(std::move(grid)) {}
  PaneRows(const PaneRows&) = delete;
  PaneRows& operator=(const PaneRows&) = delete;

  zrGrid& Grid() const { return *grid_; }

  // --- The designer ---

  /// Nothing while the pane is linked to no hub.
  Ref<QueryContext> Context() const { return context_.lock(); }
  const WeakRef<QueryContext>& Link() const { return context_; }
  void SetContext(const Ref<QueryContext>& context) { context_ = context; }
  /// The tables of the diagram, or nothing.
  Ref<qbEntities> Entities() const;
  /// The functions that the designer offers, or nothing.
  const qbDBFunctions* Functions() const;
  /// The query is another one now.
  void ReportChange() const;

  // --- The rows ---

  std::int32_t Count() const { return grid_->Rows()->Count(); }
  std::size_t LastColumn() const { return static_cast<std::size_t>(grid_->Columns()->Count()); }
  /// A row that exists. Who changes cells holds it: a listener may take it away.
  zrGridRow& At(std::int32_t row) const { return grid_->Rows()->At(static_cast<std::size_t>(row)); }
  Ref<zrGridRow> Hold(std::int32_t row) const { return grid_->Rows()->Item(row); }
  /// The longest alias that the designer allows, in characters; 0 for any.
  std::int16_t AliasMaxLen() const;
  void AddEmpty() const;
  /// An empty row always follows the last one that is not.
  void EnsureEmptyLast() const;

  // --- The pane at work ---

  /// Whether the pane itself is changing cells, or pushing a change to the diagram.
  bool IsBusy() const { return busy_; }
  /// It is, for as long as the result lives.
  ScopedValue<bool> Busy() { return {busy_, true}; }

 private:
  Ref<zrGrid> grid_;
  WeakRef<QueryContext> context_;
  bool busy_ = false;
};

}  // namespace zrqrybld
