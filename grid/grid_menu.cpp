// The grid's own context menu. Every entry is a command that the keyboard or the mouse has, too, or opens a window.
#include "base/texts_grid.h"
#include "grid/grid_pane.h"
#include "platform/commands.h"

namespace zrqrybld {

void qbGridPane::ShowMenu(const GridHit& hit, PixelPoint at) {
  grdPane_->CommitEdit();
  // The menu is about what is under it: rows that are selected elsewhere are not meant.
  if (hit.part == GridPart::Cell && !grdPane_->Selection().Contains(hit.row)) grdPane_->SelectRows(0, 0);
  Menu menu;
  const bool isHeader = hit.part == GridPart::ColumnHeader || hit.part == GridPart::ColumnEdge;
  if (hit.part == GridPart::Cell || hit.part == GridPart::RowHeader) AddRowEntries(menu);
  if (hit.part == GridPart::Cell) AddCellEntries(menu);
  if (isHeader) {
    menu = ColumnEntries(hit.column);
  } else {
    if (!menu.empty()) menu.push_back(MenuEntry::Separator());
    menu.push_back({Say(context_.lock(), text::MenuColumns), "", {}, true, false, ColumnEntries(0)});
  }
  BeforeContextMenu.Raise(static_cast<std::int32_t>(hit.row), static_cast<std::int32_t>(hit.column), menu);
  if (!menu.empty()) grdPane_->GetSurface().ShowMenu(menu, at);
}

// On the selected rows, else on the current one.
void qbGridPane::AddRowEntries(Menu& menu) {
  const auto selectOne = [this] {
    const auto row = static_cast<std::size_t>(grdPane_->Row());
    if (grdPane_->Selection().first == 0) grdPane_->SelectRows(row, row);
  };
  const bool may = grdPane_->AllowRowInsert();
  const bool several = grdPane_->Selection().Count() > 1;
  const auto first =
      grdPane_->Selection().first != 0 ? grdPane_->Selection().first : static_cast<std::size_t>(grdPane_->Row());
  const auto last = grdPane_->Selection().first != 0 ? grdPane_->Selection().last : first;
  const auto move = [this](int direction) { return [this, direction] { grdPane_->MoveRows(direction); }; };
  menu.push_back({Say(context_.lock(), several ? text::MenuInsertRows : text::MenuInsertRow),
                  KeyTextOf(Command::InsertRows),
                  [this, selectOne] {
                    selectOne();
                    grdPane_->InsertRows();
                  },
                  may});
  menu.push_back({Say(context_.lock(), several ? text::MenuDeleteRows : text::MenuDeleteRow),
                  KeyTextOf(Command::DeleteRows),
                  [this, selectOne] {
                    selectOne();
                    grdPane_->DeleteSelectedRows();
                  },
                  may});
  menu.push_back({Say(context_.lock(), text::MenuMoveUp), KeyTextOf(Command::MoveRowsUp), move(-1), may && first > 1});
  menu.push_back({Say(context_.lock(), text::MenuMoveDown), KeyTextOf(Command::MoveRowsDown), move(1),
                  may && last < static_cast<std::size_t>(RowCount())});
  menu.push_back(MenuEntry::Separator());
  menu.push_back({Say(context_.lock(), text::MenuCopy), KeyTextOf(Command::CopyCells),
                  [this] { grdPane_->GetSurface().SetClipboardText(grdPane_->CopyText()); }, true});
  menu.push_back({Say(context_.lock(), text::MenuPaste), KeyTextOf(Command::PasteCells),
                  [this] { grdPane_->PasteText(grdPane_->GetSurface().ClipboardText()); },
                  !grdPane_->GetSurface().ClipboardText().empty()});
}

void qbGridPane::AddCellEntries(Menu& menu) {
  const std::int32_t row = grdPane_->Row();
  const std::int32_t column = grdPane_->Column();
  if (row == 0 || column == 0 || column == kColumnOutput || RowAt(row).Locked()) return;
  const bool holdsText = !RowAt(row).ValueAt(static_cast<std::size_t>(column)).IsBlank();
  menu.push_back({Say(context_.lock(), text::MenuClear), "", [this] { ClearCell(); }, holdsText});
  if (column != kColumnColumn && column < kColumnCriteria) return;
  menu.push_back(MenuEntry::Separator());
  menu.push_back(
      {Say(context_.lock(), text::MenuBuilder), "", [this] { ShowExpressionBuilder(); }, !context_.expired()});
  menu.push_back({Say(context_.lock(), text::MenuZoom), KeyTextOf(Command::ZoomCell), [this] { ShowExpressionZoom(); },
                  !context_.expired()});
}

void qbGridPane::ClearCell() {
  if (grdPane_->Row() > 0 && grdPane_->Column() > 0) SetCellAsEdit(grdPane_->Row(), grdPane_->Column(), "");
}

// What can be done to a column (0 for none), and which ones are shown. The last one that is shown stays.
Menu qbGridPane::ColumnEntries(std::size_t column) {
  Menu menu;
  const zrGridColumns& columns = *grdPane_->Columns();
  std::int32_t shown = 0;
  for (std::int32_t i = 1; i <= columns.Count(); ++i) shown += columns.Item(i)->Width() > 0 ? 1 : 0;
  constexpr float kNarrowest = 300;
  if (column != 0) {
    const auto index = static_cast<std::int32_t>(column);
    menu.push_back(
        {Say(context_.lock(), text::MenuHideColumn), "", [this, index] { SetColumnShown(index, false); }, shown > 1});
    menu.push_back(
        {Say(context_.lock(), text::MenuFitWidth), "", [this, index] { grdPane_->FitColumn(index, kNarrowest); }});
  }
  menu.push_back({Say(context_.lock(), text::MenuFitAllWidths), "", [this] {
                    for (std::int32_t i = 1; i <= ColumnCount(); ++i) {
                      if (grdPane_->Columns()->Item(i)->Width() > 0) grdPane_->FitColumn(i, kNarrowest);
                    }
                  }});
  menu.push_back(MenuEntry::Separator());
  for (std::int32_t i = 1; i <= columns.Count(); ++i) {
    const bool isShown = columns.Item(i)->Width() > 0;
    menu.push_back({columns.Item(i)->Caption(), "", [this, i, isShown] { SetColumnShown(i, !isShown); },
                    !isShown || shown > 1, isShown});
  }
  return menu;
}

// The grouping column stands for grouping itself.
void qbGridPane::SetColumnShown(std::int32_t column, bool show) {
  if (column == kColumnGroupBy) {
    SetShowGroupBy(show);
  } else {
    grdPane_->Columns()->Item(column)->SetHidden(!show);
  }
}

}  // namespace zrqrybld
