// Rows as a saved query holds them: set as they are, without the rules of editing.
#include <algorithm>
#include <string>
#include <unordered_set>

#include "base/scoped_value.h"
#include "diagram/entities.h"
#include "grid/grid_pane.h"

namespace zrqrybld {
namespace {

std::string FieldKey(const std::string& table, const std::string& column) {
  return std::to_string(table.size()) + ":" + table + column;
}

}  // namespace

void qbGridPane::LoadRows(const std::vector<LoadedCell>& cells) {
  const StepScope step(context_.lock(), kStepLoadQuery);
  const ScopedValue busy(busy_, true);
  {
    const RedrawPause pause(*grdPane_);
    grdPane_->Rows()->Clear();
    for (const LoadedCell& cell : cells) {
      while (RowCount() < cell.row) AddEmptyRow();
      LoadCell(cell);
    }
    EnsureEmptyLastRow();
    TickOutputs();
  }
  ReportChange();
}

void qbGridPane::LoadCell(const LoadedCell& cell) {
  if (cell.column == kColumnGroupBy) {
    const Ref<QueryContext> context = context_.lock();
    if (const Ref<qbDBFunction> choice = context ? context->DBFunctions()->FindGroupBy(cell.text) : nullptr) {
      SetGroupByFunction(cell.row, *choice);
      return;
    }
  }
  // A check box makes a Boolean of the text.
  RowWriter(RowAt(cell.row)).SetText(cell.column, cell.text);
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
  const ScopedValue busy(busy_, true);
  emptyFrom_ = std::min(emptyFrom_, static_cast<std::int32_t>(same) + 1);
  rows.Restore(same + 1, count - same - behind, {begin, end});
  // Listeners have been told of the current cell by now, and may have changed rows.
  for (std::size_t i = same + 1; i <= std::min(then.size() - behind, static_cast<std::size_t>(RowCount())); ++i) {
    const zrGridRow& row = RowAt(static_cast<std::int32_t>(i));
    NoteRow(row);
    if (RowReader(row).HasSort()) NoteSorted(row);
  }
  currentText_ =
      grdPane_->Row() == 0 ? std::string() : Text(RowAt(grdPane_->Row()), static_cast<std::size_t>(grdPane_->Column()));
}

void qbGridPane::RestoreShowGroupBy(bool show) {
  if (show == showGroupBy_) return;
  showGroupBy_ = show;
  ShowGroupByColumn();
  PropertyChanged.Raise("ShowGroupBy");
}

// Every item of the diagram is ticked when a row outputs it, and only then.
void qbGridPane::TickOutputs() {
  std::unordered_set<std::string> outputs;
  for (std::int32_t i = 1; i <= RowCount(); ++i) {
    const zrGridRow& row = RowAt(i);
    if (RowReader(row).IsOutput()) {
      outputs.insert(FieldKey(Text(row, kColumnTable), Text(row, kColumnColumn)));
    }
  }
  const Ref<qbEntities> entities = Entities();
  for (std::int32_t i = 1; entities && i <= entities->Count(); ++i) {
    const Ref<qbEntity> entity = entities->Item(i);
    for (std::int32_t j = 1; j <= entity->Items()->Count(); ++j) {
      const Ref<qbEntityItem> item = entity->Items()->Item(j);
      item->SetChecked(outputs.contains(FieldKey(entity->Caption(), item->Text())));
    }
  }
}

}  // namespace zrqrybld
