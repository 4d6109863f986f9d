// The grid's copy and paste as tab-separated text.
#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/grid/grid.h"
#include "zrqrybld/grid/tab_text.h"

namespace zrqrybld {

std::string zrGrid::CopyText() const {
  if (selection_.Empty()) return currentRow_ == 0 ? std::string() : CellText(currentRow_, currentColumn_);
  std::vector<std::vector<std::string>> cells;
  for (std::size_t row = Selection().first; row <= Selection().last; ++row) {
    std::vector<std::string>& line = cells.emplace_back();
    for (std::size_t column = 1; column <= static_cast<std::size_t>(columns_->Count()); ++column) {
      line.push_back(CellText(row, column));
    }
  }
  return WriteTabText(cells);
}

void zrGrid::PasteText(std::string_view text) {
  CommitEdit();
  const std::size_t firstRow = selection_.OrElse(currentRow_).first;
  const std::size_t firstColumn = selection_.Empty() ? currentColumn_ : 1;
  if (firstRow == 0 || text.empty()) return;
  const Ref<Object> alive = shared_from_this();
  InBatch(GridWork::Paste, [&] {
    std::size_t place = firstRow;
    for (const std::vector<std::string>& line : ReadTabText(text)) {
      if (place > static_cast<std::size_t>(rows_->Count())) {
        if (!options_.allowRowInsert) return;
        rows_->Add();
        place = static_cast<std::size_t>(rows_->Count());
        AfterInsert.Raise(rows_->Count(), rows_->Count());
        if (place > static_cast<std::size_t>(rows_->Count())) return;  // a listener has removed it
      }
      const Ref<zrGridRow> row = rows_->Item(static_cast<std::int32_t>(place));
      PasteLine(*row, firstColumn, line);
      if (row->Index() != 0) place = static_cast<std::size_t>(row->Index()) + 1;  // a listener may have moved it
    }
  });
}

void zrGrid::PasteLine(zrGridRow& row, std::size_t firstColumn, const std::vector<std::string>& line) {
  // A listener may remove the row, or columns.
  const auto isThere = [&](std::size_t column) {
    return column <= static_cast<std::size_t>(columns_->Count()) && row.Index() != 0;
  };
  for (std::size_t i = 0; i < line.size() && isThere(firstColumn + i); ++i) PasteCell(row, firstColumn + i, line[i]);
}

void zrGrid::PasteCell(zrGridRow& row, std::size_t column, const std::string& text) {
  if (row.Locked() || row.ValueAt(column).Text() == text) return;
  const auto index = static_cast<std::int32_t>(column);
  const bool isCheckBox = IsCheckBoxColumn(column);
  const auto longest = static_cast<std::size_t>(row.MaxLen(index));
  try {
    row.SetValue(index, longest == 0 ? text : std::string(FirstCharacters(text, longest)));
  } catch (const Error& error) {
    if (error.Number() != ErrorInvalidPropertyValue) throw;
    return;  // no truth for a check box
  }
  if (!isCheckBox && row.Index() != 0) AfterEdit.Raise(row.Index(), index);
}

}  // namespace zrqrybld
