// The grid's editing in place. An edit ends once: the session is taken out first, and only then is the cell written, so
// that whatever happens on the way (the focus moving, a message) finds no edit any more.
#include "base/text.h"
#include "grid/grid.h"

namespace zrqrybld {
namespace {

// Between the cell's edge and its editor: the cell's mark as the current one stays visible.
constexpr Pixels kEditorInset = 2_px;

}  // namespace

TextEditor& zrGrid::TextBox() {
  if (txtText_) return *txtText_;
  txtText_ = GetSurface().MakeTextEditor();
  txtText_->SetFont(font_);
  txtLinks_.push_back(txtText_->KeyDown.Connect([this](const KeyEvent& key, bool& kept) {
    kept = kept || (suggestions_ && suggestions_->OnKeyDown(key)) || EditorKey(key);
  }));
  txtLinks_.push_back(txtText_->Changed.Connect([this] { ShowEditedCell(); }));
  txtLinks_.push_back(txtText_->FocusLost.Connect([this] { CommitEdit(); }));
  txtLinks_.push_back(txtText_->DblClick.Connect([this] { DblClick.Raise(); }));
  return *txtText_;
}

zrSimpleCombo& zrGrid::Combo() {
  if (cboList_) return *cboList_;
  cboList_ = zrSimpleCombo::Create();
  cboList_->AttachSurface(&GetSurface());
  cboList_->SetFont(font_);
  cboLinks_.push_back(cboList_->KeyDown.Connect([this](std::int32_t& keyCode, std::int32_t shift) {
    if (EditorKey({keyCode, shift})) keyCode = 0;
  }));
  cboLinks_.push_back(cboList_->KeyOffered.Connect(
      [this](const KeyEvent& key, bool& kept) { kept = kept || (suggestions_ && suggestions_->OnKeyDown(key)); }));
  cboLinks_.push_back(cboList_->Change.Connect([this] { ShowEditedCell(); }));
  cboLinks_.push_back(cboList_->FocusLost.Connect([this] { CommitEdit(); }));
  cboLinks_.push_back(cboList_->Picked.Connect([this] { CommitEdit(); }));
  cboLinks_.push_back(cboList_->DblClick.Connect([this] { DblClick.Raise(); }));
  cboLinks_.push_back(cboList_->BeforeDropDown.Connect([this](bool& cancel) {
    BeforeDropDown.Raise(Row(), Column(), cancel);
    if (!cancel && suggestions_) suggestions_->Close();
  }));
  return *cboList_;
}

// `typed` replaces the cell's text, as if it had been typed into the editor.
bool zrGrid::OpenEditor(const std::string* typed) {
  if (edit_ || currentRow_ == 0) return false;
  const Ref<zrGridRow> row = rows_->Item(Row());
  const Ref<zrGridColumn> column = columns_->Item(Column());
  const auto editable = [&] {
    return !edit_ && row->Index() == Row() && column->Index() == Column() && !row->Locked() && column->Width() > 0 &&
           column->Style() != GridColumnCheckBox;
  };
  if (!editable()) return false;
  const Ref<Object> alive = shared_from_this();
  BeforeEdit.Raise(Row(), Column());
  if (!editable()) return false;  // a listener has changed what is to be edited
  const bool isCombo = column->Style() == GridColumnCombo || column->Style() == GridColumnComboList;
  edit_ = EditSession{row, column, CellText(currentRow_, currentColumn_), isCombo};
  try {
    if (isCombo) {
      ShowCombo();
    } else {
      ShowTextBox();
    }
  } catch (const std::bad_alloc&) {
    edit_.reset();  // there may be no editor
    throw;
  }
  if (edit_) Suggest();
  if (typed && edit_) {
    if (suggestions_) suggestions_->OnKeyDown({0, ShiftNone, *typed});
    if (isCombo) {
      cboList_->TypeOver(*typed);
    } else {
      txtText_->SetSelText(*typed);
    }
  }
  Redraw();
  return true;
}

// A cell whose text can only be chosen needs no help with it.
void zrGrid::Suggest() {
  const bool isList = edit_->column->Style() == GridColumnComboList;
  const Ref<qbIntelliList> list = suggestionSource_ && !isList ? suggestionSource_(Column()) : nullptr;
  if (edit_->isCombo) cboList_->SetAssisted(list != nullptr);
  if (!list) return;
  const bool isCombo = edit_->isCombo;
  suggestions_ = std::make_unique<CellSuggestions>(
      CellSuggestions::Cell{GetSurface(), isCombo ? cboList_->TextBox() : TextBox(), font_,
                            [this, isCombo] { return isCombo && cboList_->IsListOpen(); },
                            [this, isCombo] {
                              if (isCombo) cboList_->CloseList();
                            }},
      list);
  PlaceEditor();
}

void zrGrid::ShowTextBox() {
  TextEditor& editor = TextBox();
  editor.SetMaxLength(edit_->row->MaxLen(edit_->column->Index()));
  editor.SetText(edit_->text);
  PlaceEditor();
  editor.SetVisible(true);
  editor.Select(0, static_cast<std::int32_t>(CharacterCount(edit_->text)));
  editor.SetFocus();
}

void zrGrid::ShowCombo() {
  zrSimpleCombo& combo = Combo();
  combo.Clear();
  const zrGridComboItems& items = *edit_->column->ComboItems();
  for (std::int32_t i = 1; i <= items.Count(); ++i) combo.AddItem(items.Item(i)->Text());
  combo.SetMaxLength(edit_->row->MaxLen(edit_->column->Index()));
  combo.SetHideEdit(edit_->column->Style() == GridColumnComboList);
  combo.SetText(edit_->text);
  PlaceEditor();
  combo.Show();
}

// An editor whose cell is scrolled under the headers waits outside the window: hidden it would lose the keyboard.
void zrGrid::PlaceEditor() {
  if (!edit_ || edit_->row->Index() == 0 || edit_->column->Index() == 0) return;
  const GridLayout layout = Layout();
  const PixelRect cell = GetRowColumnXY(edit_->row->Index(), edit_->column->Index());
  PixelRect inside = cell.Inset(kEditorInset, kEditorInset);
  if (cell.top < layout.HeaderHeight() || cell.left < layout.RowHeaderWidth()) inside.top = -cell.height * 2;
  if (edit_->isCombo) {
    cboList_->SetBounds(inside);
  } else {
    txtText_->SetBounds(inside);
  }
  if (suggestions_) suggestions_->SetBounds(cell);
}

// What is typed into a cell that was scrolled away brings it back.
void zrGrid::ShowEditedCell() {
  if (edit_) MakeCurrent(currentRow_, currentColumn_);
}

// Gives the keyboard back to the grid, unless it has gone elsewhere already.
void zrGrid::CloseEditor() {
  suggestions_.reset();
  const bool hasFocus = (txtText_ && txtText_->HasFocus()) || (cboList_ && cboList_->HasFocus());
  if (hasFocus) GetSurface().SetFocus();
  if (txtText_) txtText_->SetVisible(false);
  if (cboList_) cboList_->Hide();
  Redraw();
}

void zrGrid::CommitEdit() {
  if (!edit_) return;
  const Ref<Object> alive = shared_from_this();  // a listener may let go of the grid
  const EditSession session = std::move(*edit_);
  edit_.reset();
  const std::string text = session.isCombo ? cboList_->Text() : txtText_->Text();
  CloseEditor();
  if (session.row->Index() == 0 || session.column->Index() == 0) return;
  InBatch(GridWork::EditCell, [&] {
    if (text != session.text) WriteBack(session, text);
    if (session.row->Index() != 0) AfterEdit.Raise(session.row->Index(), session.column->Index());
  });
}

// A choice of the list brings its tag along.
void zrGrid::WriteBack(const EditSession& session, const std::string& text) {
  const zrGridComboItems& items = *session.column->ComboItems();
  for (std::int32_t i = 1; session.isCombo && i <= items.Count(); ++i) {
    const Ref<zrGridComboItem> item = items.Item(i);
    if (item->Text() != text) continue;
    if (!item->Tag().IsEmpty()) session.row->SetTagVariant(session.column->Index(), item->Tag());
    break;
  }
  session.row->SetValue(session.column->Index(), text);
}

void zrGrid::CancelEdit() {
  if (!edit_) return;
  edit_.reset();
  CloseEditor();
}

// A key in an open editor that its combo has not used. Returns whether it is kept from the editor.
bool zrGrid::EditorKey(const KeyEvent& event) {
  if (!edit_) return false;
  const bool plain = event.shift == ShiftNone;
  switch (event.keyCode) {
    case KeyCodeEscape:
      CancelEdit();
      return true;
    case KeyCodeF2:
      if (event.shift != ShiftShift) return false;
      CommitEdit();
      ZoomWanted.Raise();
      return true;
    case KeyCodeEnter:
      if (!plain) return false;
      CommitEdit();
      MoveToNextCell(1);
      return true;
    case KeyCodeTab:
      CommitEdit();
      return MoveToNextCell(event.shift == ShiftShift ? -1 : 1);
    case KeyCodeUp:
    case KeyCodeDown:
      if (!plain || edit_->isCombo) return false;
      CommitEdit();
      MoveCurrent(event.keyCode);
      return true;
    default:
      return false;
  }
}

}  // namespace zrqrybld
