// The grid's editing in place.
#include <algorithm>

#include "zrqrybld/grid/grid.h"
#include "zrqrybld/platform/commands.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {
namespace {

// Between the cell's edge and its editor: the cell's mark as the current one stays visible.
constexpr Pixels kEditorInset = 2_px;

// A choice of the list brings its tag along.
void WriteBack(const CellEditing::Result& result) {
  const std::int32_t column = result.column->Index();
  const zrGridComboItems& items = *result.column->ComboItems();
  const auto isTaken = [&](const Ref<zrGridComboItem>& item) { return item->Text() == result.text; };
  const auto item = std::ranges::find_if(items, isTaken);
  const bool isChoice = result.mayBeChoice && item != items.end();
  if (isChoice && !(*item)->Tag().IsEmpty()) result.row->SetTagVariant(column, (*item)->Tag());
  result.row->SetValue(column, result.text);
}

}  // namespace

// `typed` replaces the cell's text, as if it had been typed into the editor.
bool zrGrid::OpenEditor(const std::string* typed) {
  if (IsEditing() || currentRow_ == 0) return false;
  const Ref<zrGridRow> row = rows_->Item(Row());
  const Ref<zrGridColumn> column = columns_->Item(Column());
  const auto editable = [&] {
    return !IsEditing() && row->Index() == Row() && column->Index() == Column() && !row->Locked() &&
           column->Width() > 0 && column->Style() != GridColumnCheckBox;
  };
  if (!editable()) return false;
  const Ref<Object> alive = shared_from_this();
  BeforeEdit.Raise(Row(), Column());
  if (!editable()) return false;  // a listener has changed what is to be edited
  editing_.Open(row, column, typed);
  Redraw();
  return true;
}

// An editor whose cell is scrolled under the headers waits outside the window: hidden it would lose the keyboard.
zrGrid::Place zrGrid::PlaceOfEdit(std::int32_t row, std::int32_t column) const {
  const GridLayout layout = Layout();
  const PixelRect cell = GetRowColumnXY(row, column);
  PixelRect inside = cell.Inset(kEditorInset, kEditorInset);
  const PixelRect button = CellButton(static_cast<std::size_t>(row), static_cast<std::size_t>(column));
  if (!button.Empty()) inside.width = button.left - inside.left;
  // As wide as the text that it begins with, where the window is.
  constexpr Pixels kBesideText = 36_px;
  const Pixels text = GetSurface().Metrics().TextWidth(
      CellText(static_cast<std::size_t>(row), static_cast<std::size_t>(column)), options_.font);
  const Pixels wanted = std::min(text + kBesideText, GetSurface().ViewSize().width - inside.left - kEditorInset);
  if (button.Empty()) inside.width = std::max(inside.width, wanted);
  if (cell.top < layout.HeaderHeight() || cell.left < layout.RowHeaderWidth()) inside.top = -cell.height * 2;
  return {cell, inside};
}

// What is typed into a cell that was scrolled away brings it back.
void zrGrid::EditChanged() {
  if (IsEditing()) MakeCurrent(currentRow_, currentColumn_);
}

void zrGrid::CommitEdit() {
  if (!IsEditing()) return;
  const Ref<Object> alive = shared_from_this();  // a listener may let go of the grid
  const CellEditing::Result result = editing_.Take();
  Redraw();
  if (result.row->Index() == 0 || result.column->Index() == 0) return;
  InBatch(GridWork::EditCell, [&] {
    if (result.text != result.before) WriteBack(result);
    if (result.row->Index() != 0) AfterEdit.Raise(result.row->Index(), result.column->Index());
  });
}

// A choice that Enter has taken goes on as any text does that Enter ends.
void zrGrid::EditDone(bool goesOn) {
  const Ref<Object> alive = Alive();
  CommitEdit();
  if (goesOn) MoveToNextCell(1);
}

void zrGrid::CancelEdit() {
  if (!IsEditing()) return;
  editing_.Drop();
  Redraw();
}

bool zrGrid::EditKey(const KeyEvent& event) {
  if (!IsEditing()) return false;
  const bool plain = event.shift == ShiftNone;
  if (const bool zooms = Asks(event, Command::ZoomCell); zooms || Asks(event, Command::OpenBuilder)) {
    CommitEdit();
    (zooms ? ZoomWanted : BuilderWanted).Raise();
    return true;
  }
  if (Asks(event, Command::GoToQueryAtCaret)) {
    const Ref<Object> alive = shared_from_this();
    CommitEdit();
    const bool opens = currentRow_ != 0 && !ShortText(currentRow_, currentColumn_).empty();
    if (opens) OpenWanted.Raise();
    return opens;
  }
  if (const bool next = Asks(event, Command::NextStop); next || Asks(event, Command::PreviousStop)) {
    CommitEdit();
    return MoveToNextCell(next ? 1 : -1);
  }
  switch (event.keyCode) {
    case KeyCodeEscape:
      CancelEdit();
      return true;
    case KeyCodeEnter:
      if (!plain) return false;
      CommitEdit();
      MoveToNextCell(1);
      return true;
    case KeyCodeUp:
    case KeyCodeDown:
      if (!plain || editing_.UsesArrows()) return false;
      CommitEdit();
      MoveCurrent(event.keyCode);
      return true;
    default:
      return false;
  }
}

}  // namespace zrqrybld
