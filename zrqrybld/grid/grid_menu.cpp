// The grid's own context menu. Every entry is a command that the keyboard or the mouse has, too, or opens a window.
#include <algorithm>

#include "zrqrybld/base/texts_grid.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/command_entry.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {

// What the menu offers. Its entries hold a copy of this, and the menu does not outlive the pane.
class GridPaneMenu {
 public:
  explicit GridPaneMenu(qbGridPane& pane) : pane_(pane), grid_(*pane.grdPane_) {}
  Menu Make(const GridHit& hit) const;

 private:
  void AddRowEntries(Menu& menu) const;
  void AddCellEntries(Menu& menu) const;
  Menu ColumnEntries(std::size_t column) const;
  void ClearCell() const;
  void SetColumnShown(std::int32_t column, bool show) const;

  qbGridPane& pane_;
  zrGrid& grid_;
};

Menu GridPaneMenu::Make(const GridHit& hit) const {
  const bool isHeader = hit.part == GridPart::ColumnHeader || hit.part == GridPart::ColumnEdge;
  if (isHeader) return ColumnEntries(hit.column);
  Menu menu;
  if (hit.part == GridPart::Cell || hit.part == GridPart::RowHeader) AddRowEntries(menu);
  if (hit.part == GridPart::Cell) AddCellEntries(menu);
  if (!menu.empty()) menu.push_back(MenuEntry::Separator());
  menu.push_back({Say(pane_.rows_.Context(), text::MenuColumns), "", {}, true, false, ColumnEntries(0)});
  return menu;
}

// On the selected rows, else on the current one.
void GridPaneMenu::AddRowEntries(Menu& menu) const {
  const auto selectOne = [*this] {
    const auto row = static_cast<std::size_t>(grid_.Row());
    if (grid_.Selection().first == 0) grid_.SelectRows(row, row);
  };
  const bool may = grid_.AllowRowInsert();
  const bool several = grid_.Selection().Count() > 1;
  const auto first = grid_.Selection().first != 0 ? grid_.Selection().first : static_cast<std::size_t>(grid_.Row());
  const auto last = grid_.Selection().first != 0 ? grid_.Selection().last : first;
  const auto move = [*this](int direction) { return [*this, direction] { grid_.MoveRows(direction); }; };
  menu.push_back({Say(pane_.rows_.Context(), several ? text::MenuInsertRows : text::MenuInsertRow),
                  KeyTextOf(Command::InsertRows),
                  [*this, selectOne] {
                    selectOne();
                    grid_.InsertRows();
                  },
                  may});
  menu.push_back({Say(pane_.rows_.Context(), several ? text::MenuDeleteRows : text::MenuDeleteRow),
                  KeyTextOf(Command::DeleteRows),
                  [*this, selectOne] {
                    selectOne();
                    grid_.DeleteSelectedRows();
                  },
                  may});
  const Ref<QueryContext> context = pane_.rows_.Context();
  menu.push_back(EntryFor(context, Command::MoveRowsUp, move(-1), may && first > 1));
  menu.push_back(
      EntryFor(context, Command::MoveRowsDown, move(1), may && last < static_cast<std::size_t>(pane_.RowCount())));
  menu.push_back(MenuEntry::Separator());
  menu.push_back(
      EntryFor(context, Command::CopyCells, [*this] { grid_.GetSurface().SetClipboardText(grid_.CopyText()); }));
  menu.push_back(EntryFor(
      context, Command::PasteCells, [*this] { grid_.PasteText(grid_.GetSurface().ClipboardText()); },
      !grid_.GetSurface().ClipboardText().empty()));
}

void GridPaneMenu::AddCellEntries(Menu& menu) const {
  const std::int32_t row = grid_.Row();
  const std::int32_t column = grid_.Column();
  if (row == 0 || column == 0 || column == kColumnOutput || pane_.rows_.At(row).Locked()) return;
  const bool holdsText = !RowReader(pane_.rows_.At(row)).IsBlank(static_cast<std::size_t>(column));
  const bool linked = pane_.rows_.Context() != nullptr;
  menu.push_back({Say(pane_.rows_.Context(), text::MenuClear), "", [*this] { ClearCell(); }, holdsText});
  if (column != kColumnColumn && column < kColumnCriteria) return;
  menu.push_back(MenuEntry::Separator());
  if (linked) {
    for (MenuEntry& entry : pane_.rows_.Context()->design.MenuOfCell(row, column)) menu.push_back(std::move(entry));
  }
  menu.push_back(EntryFor(
      pane_.rows_.Context(), Command::OpenBuilder, [*this] { pane_.ShowExpressionBuilder(); }, linked));
  menu.push_back(EntryFor(
      pane_.rows_.Context(), Command::ZoomCell, [*this] { pane_.ShowExpressionZoom(); }, linked));
}

void GridPaneMenu::ClearCell() const {
  if (grid_.Row() > 0 && grid_.Column() > 0) pane_.SetCellAsEdit(grid_.Row(), grid_.Column(), "");
}

// What can be done to a column (0 for none), and which ones are shown. The last one that is shown stays.
Menu GridPaneMenu::ColumnEntries(std::size_t column) const {
  Menu menu;
  const zrGridColumns& columns = *grid_.Columns();
  const auto isShown = [](const Ref<zrGridColumn>& c) { return c->Width() > 0; };
  const auto shown = std::ranges::count_if(columns, isShown);
  constexpr float kNarrowest = 300;
  if (column != 0) {
    const auto index = static_cast<std::int32_t>(column);
    // The grouping column stands for grouping itself: that it ends is said, not done on the way.
    const TextId hide = index == kColumnGroupBy ? text::MenuEndGrouping : text::MenuHideColumn;
    menu.push_back({Say(pane_.rows_.Context(), hide), "", [*this, index] { SetColumnShown(index, false); }, shown > 1});
    menu.push_back(
        {Say(pane_.rows_.Context(), text::MenuFitWidth), "", [*this, index] { grid_.FitColumn(index, kNarrowest); }});
  }
  menu.push_back({Say(pane_.rows_.Context(), text::MenuFitAllWidths), "", [*this, isShown] {
                    for (const Ref<zrGridColumn>& each : *grid_.Columns()) {
                      if (isShown(each)) grid_.FitColumn(each->Index(), kNarrowest);
                    }
                  }});
  menu.push_back({Say(pane_.rows_.Context(), text::MenuAddOrColumn), "", [*this] { pane_.AddOrColumn(); },
                  pane_.OrColumns() < kMostOrColumns});
  menu.push_back(MenuEntry::Separator());
  for (const Ref<zrGridColumn>& each : columns) {
    const bool is = isShown(each);
    const bool groups = each->Index() == kColumnGroupBy;
    const std::string caption = InMenu(each->Caption());
    menu.push_back({groups ? Say(pane_.rows_.Context(), {text::MenuGroupRows, caption}) : caption, "",
                    [*this, index = each->Index(), is] { SetColumnShown(index, !is); }, !is || shown > 1, is});
  }
  return menu;
}

void GridPaneMenu::SetColumnShown(std::int32_t column, bool show) const {
  if (column == kColumnGroupBy) {
    pane_.SetShowGroupBy(show);
  } else {
    grid_.Columns()->Item(column)->SetHidden(!show);
  }
}

// --- The pane ---

void qbGridPane::OpenMenu() {
  const Key key = RowOf(Command::ContextMenu).key;
  grdPane_->OnKeyDown({key.code, key.shift, {}});
}

void qbGridPane::ShowMenu(const GridHit& hit, PixelPoint at) {
  grdPane_->CommitEdit();
  // The menu is about what is under it: rows that are selected elsewhere are not meant.
  if (hit.part == GridPart::Cell && !grdPane_->Selection().Contains(hit.row)) grdPane_->SelectRows(0, 0);
  Menu menu = GridPaneMenu(*this).Make(hit);
  BeforeContextMenu.Raise(static_cast<std::int32_t>(hit.row), static_cast<std::int32_t>(hit.column), menu);
  if (!menu.empty()) grdPane_->GetSurface().ShowMenu(menu, at);
}

}  // namespace zrqrybld
