// What the grid pane does when cells change, by the user or by program: row and diagram follow each other.
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/step_context.h"

namespace zrqrybld {
namespace {

bool NamesField(std::int32_t column) { return column == kColumnColumn || column == kColumnTable; }

}  // namespace

void qbGridPane::CellChanged(std::int32_t row, std::int32_t column) {
  if (NamesField(column)) fields_.Note(rows_.At(row));
  if (column >= kColumnCriteria) fields_.NoteTyped(rows_.At(row));
  if (column == kColumnSortType || column == kColumnSortOrder) sorting_.Note(rows_.At(row));
  alternatives_.CellChanged(rows_.At(row), column);
  if (rows_.IsBusy()) return;
  const Ref<QueryContext> context = rows_.Context();
  const StepScope step(context, kStepEditCell, CaptionOf(column));
  WholeOrNothing(context, [&] { FollowChange(row, column); });
}

void qbGridPane::FollowChange(std::int32_t row, std::int32_t column) {
  const Ref<zrGridRow> cells = rows_.Hold(row);
  {
    const auto busy = rows_.Busy();
    if (NamesField(column)) {
      output_.Respell(*cells, column);
      if (cells->Index() == 0) return;  // a listener has removed the row
      if (column == kColumnColumn || RowReader(*cells).IsBlank(kColumnGroupBy)) grouping_.Fill(*cells);
      rows_.EnsureEmptyLast();
    }
    if (column == kColumnGroupBy) grouping_.TagText(*cells);
    if (NamesField(column) || column == kColumnOutput) {
      // A row that names another field gives up the old one; its box stays ticked while another row outputs it.
      const FieldName left = before_;
      const FieldName now = FieldOf(*cells);
      const bool leftOutput = fields_.IsOutput(left);
      const bool nowOutput = fields_.IsOutput(now);
      output_.Push(left, leftOutput);
      output_.Push(now, nowOutput);
    }
    AfterChange.Raise(row, column);
  }
  rows_.ReportChange();
}

// Rows were deleted or moved: the sort numbers close up, the statement follows the order.
void qbGridPane::RowsMoved() {
  sorting_.CloseGaps();
  rows_.EnsureEmptyLast();
  rows_.ReportChange();
}

void qbGridPane::CurrentCellChanged(std::int32_t row, std::int32_t column) {
  currentText_ = row > 0 && column > 0
                     ? grdPane_->CellText(static_cast<std::size_t>(row), static_cast<std::size_t>(column))
                     : std::string();
  RowColChange.Raise(row, column);
}

std::string qbGridPane::CaptionOf(std::int32_t column) const {
  return column > 0 ? grdPane_->Columns()->Item(column)->Caption() : std::string();
}

// What the user does at one stroke: one step, one statement.
void qbGridPane::BatchChanged(GridWork kind, bool begins) {
  static constexpr StepName kNames[] = {kStepEditCell,   kStepEditCells,  kStepPaste,
                                        kStepInsertRows, kStepDeleteRows, kStepMoveRows};
  if (begins) {
    rules_.BeginWork();
    change_.reset();
    batches_.push_back(rows_.Context());
    try {
      if (batches_.back())
        batches_.back()->steps.BeginStep(kNames[static_cast<std::size_t>(kind)], CaptionOf(grdPane_->Column()));
    } catch (...) {
      batches_.pop_back();
      throw;
    }
    return;
  }
  if (batches_.empty()) return;
  const Ref<QueryContext> context = batches_.back();
  batches_.pop_back();
  rows_.EnsureEmptyLast();
  if (context) context->steps.EndStep();
}

}  // namespace zrqrybld
