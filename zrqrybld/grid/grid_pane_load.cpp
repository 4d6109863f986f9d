// Rows as a saved query holds them: set as they are, without the rules of editing.
#include <algorithm>
#include <string>

#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"

namespace zrqrybld {

void qbGridPane::LoadRows(const std::vector<LoadedCell>& cells) {
  const StepScope step(rows_.Context(), kStepLoadQuery);
  const auto busy = rows_.Busy();
  {
    const RedrawPause pause(*grdPane_);
    grdPane_->Rows()->Clear();
    for (const LoadedCell& cell : cells) {
      while (RowCount() < cell.row) rows_.AddEmpty();
      LoadCell(cell);
    }
    rows_.EnsureEmptyLast();
    alternatives_.Fit();
    output_.FollowAll();
  }
  rows_.ReportChange();
}

void qbGridPane::LoadCell(const LoadedCell& cell) {
  if (cell.column == kColumnGroupBy) {
    const qbDBFunctions* functions = rows_.Functions();
    const Ref<qbDBFunction> choice = functions ? functions->FindGroupBy(cell.text) : nullptr;
    if (choice) return SetGroupByFunction(cell.row, *choice);
  }
  // A check box makes a Boolean of the text.
  RowWriter(rows_.At(cell.row)).SetText(cell.column, cell.text);
}

void qbGridPane::LoadNullsPlace(std::int32_t row, NullsPlace nulls) {
  const auto busy = rows_.Busy();
  zrGridRow& cells = rows_.At(row);
  const SortDirection direction = RowReader(cells).Direction();
  if (direction != SortDirection::None) RowWriter(cells).SetText(kColumnSortType, TextOf(direction, nulls));
}

void qbGridPane::Restore(const std::vector<SharedRowContent>& then) {
  zrGridRows& rows = *grdPane_->Rows();
  const auto count = static_cast<std::size_t>(rows.Count());
  const auto isAs = [&](std::size_t row, std::size_t place) {
    return SaysTheSame(rows.At(row + 1).Content(), then[place]);
  };
  std::size_t same = 0;
  const std::size_t shorter = std::min(count, then.size());
  while (same < shorter && isAs(same, same)) ++same;
  std::size_t behind = 0;
  while (behind < shorter - same && isAs(count - 1 - behind, then.size() - 1 - behind)) ++behind;
  const auto begin = then.begin() + static_cast<std::ptrdiff_t>(same);
  const auto end = then.end() - static_cast<std::ptrdiff_t>(behind);
  if (begin == end && count == then.size()) return;
  const auto busy = rows_.Busy();
  alternatives_.Ensure(AlternativeColumns::NeededBy({begin, end}));
  fields_.Shifted(static_cast<std::int32_t>(same) + 1);
  rows.Restore(same + 1, count - same - behind, {begin, end});
  // Listeners have been told of the current cell by now, and may have changed rows.
  for (std::size_t i = same + 1; i <= std::min(then.size() - behind, static_cast<std::size_t>(RowCount())); ++i) {
    const zrGridRow& row = rows_.At(static_cast<std::int32_t>(i));
    fields_.Note(row);
    if (RowReader(row).HasCriteria(rows_.LastColumn())) fields_.NoteTyped(row);
    if (RowReader(row).HasSort()) sorting_.Note(row);
  }
  alternatives_.Fit();
  currentText_ = grdPane_->Row() == 0
                     ? std::string()
                     : RowReader(rows_.At(grdPane_->Row())).Text(static_cast<std::size_t>(grdPane_->Column()));
}

}  // namespace zrqrybld
