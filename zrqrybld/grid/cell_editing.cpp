#include "zrqrybld/grid/cell_editing.h"

#include <new>
#include <utility>

#include "zrqrybld/platform/input.h"

namespace zrqrybld {

CellEditing::~CellEditing() { suggestions_.reset(); }

void CellEditing::SetFont(const Font& font) {
  font_ = font;
  textEditor_.SetFont(font);
  comboEditor_.SetFont(font);
}

void CellEditing::SurfaceChanged() {
  textEditor_.SurfaceChanged();
  comboEditor_.SurfaceChanged();
}

void CellEditing::Open(const Ref<zrGridRow>& row, const Ref<zrGridColumn>& column, const std::string* typed) {
  const bool isCombo = column->Style() == GridColumnCombo || column->Style() == GridColumnComboList;
  CellEditor& editor = isCombo ? static_cast<CellEditor&>(comboEditor_) : textEditor_;
  session_ = Session{row, column, row->ValueAt(static_cast<std::size_t>(column->Index())).Text(), &editor};
  try {
    editor.Load(*column, row->MaxLen(column->Index()), session_->text);
    Place();
    editor.Show();
  } catch (const std::bad_alloc&) {
    session_.reset();  // there may be no editor
    throw;
  }
  if (session_) Suggest();
  if (!typed || !session_) return;
  if (suggestions_) suggestions_->OnKeyDown({0, ShiftNone, *typed});
  editor.TypeOver(*typed);
}

// A cell whose text can only be chosen needs no help with it.
void CellEditing::Suggest() {
  CellEditor& editor = *session_->editor;
  const bool isList = session_->column->Style() == GridColumnComboList;
  const Ref<qbIntelliList> list = source_ && !isList ? source_(session_->column->Index()) : nullptr;
  editor.SetAssisted(list != nullptr);
  if (!list) return;
  suggestions_ = std::make_unique<CellSuggestions>(
      CellSuggestions::Cell{grid_.EditSurface(), editor.TextBox(), font_, [&editor] { return editor.IsListOpen(); },
                            [&editor] { editor.CloseList(); }},
      list);
  Place();
}

void CellEditing::BeforeDropDown(bool& cancel) {
  grid_.BeforeListOpens(cancel);
  if (!cancel && suggestions_) suggestions_->Close();
}

void CellEditing::Place() {
  if (!session_ || session_->row->Index() == 0 || session_->column->Index() == 0) return;
  const EditedGrid::Place place = grid_.PlaceOfEdit(session_->row->Index(), session_->column->Index());
  session_->editor->SetBounds(place.editor);
  if (suggestions_) suggestions_->SetBounds(place.cell);
}

// Gives the keyboard back to the grid, unless it has gone elsewhere already.
void CellEditing::Close() {
  suggestions_.reset();
  if (textEditor_.HasFocus() || comboEditor_.HasFocus()) grid_.EditSurface().SetFocus();
  textEditor_.Hide();
  comboEditor_.Hide();
}

CellEditing::Result CellEditing::Take() {
  Session session = std::move(*session_);
  session_.reset();
  std::string text = session.editor->Text();
  Close();
  return {std::move(session.row), std::move(session.column), std::move(session.text), std::move(text),
          session.editor->HasChoices()};
}

void CellEditing::Drop() {
  session_.reset();
  Close();
}

void CellEditing::OnListKey(const KeyEvent& event) {
  if (session_) session_->editor->OnKeyDown(event);
}

void CellEditing::OnMouseUp(const MouseEvent& event) { comboEditor_.OnMouseUp(event); }

void CellEditing::Paint(Canvas& canvas, const PixelRect& dirty) const {
  if (session_) session_->editor->Paint(canvas, dirty);
}

}  // namespace zrqrybld
