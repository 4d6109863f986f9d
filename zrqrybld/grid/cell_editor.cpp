#include "zrqrybld/grid/cell_editor.h"

#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/input.h"

namespace zrqrybld {

// --- The text box ---

TextEditor& TextCellEditor::TextBox() {
  if (txtText_) return *txtText_;
  txtText_ = Owner().EditorSurface().MakeTextEditor();
  txtText_->SetFont(font_);
  links_.push_back(txtText_->KeyDown.Connect(
      [this](const KeyEvent& key, bool& kept) { kept = kept || Owner().OfferKey(key) || Owner().LeaveKey(key); }));
  links_.push_back(txtText_->Changed.Connect([this] { Owner().TextChanged(); }));
  links_.push_back(txtText_->FocusLost.Connect([this] { Owner().EditorDone(false); }));
  links_.push_back(txtText_->DblClick.Connect([this] { Owner().EditorDoubleClicked(); }));
  return *txtText_;
}

void TextCellEditor::Load(zrGridColumn&, std::int32_t maxLength, const std::string& text) {
  TextEditor& box = TextBox();
  box.SetMaxLength(maxLength);
  box.SetText(text);
}

void TextCellEditor::Show() {
  txtText_->SetVisible(true);
  txtText_->Select(0, static_cast<std::int32_t>(CharacterCount(txtText_->Text())));
  txtText_->SetFocus();
}

void TextCellEditor::Hide() {
  if (txtText_) txtText_->SetVisible(false);
}

void TextCellEditor::SetBounds(const PixelRect& bounds) { txtText_->SetBounds(bounds); }

void TextCellEditor::SetFont(const Font& font) {
  font_ = font;
  if (txtText_) txtText_->SetFont(font);
}

// A text box belongs to the surface that has made it.
void TextCellEditor::SurfaceChanged() {
  links_.clear();
  txtText_.reset();
}

// --- The combo ---

ComboCellEditor::~ComboCellEditor() {
  links_.clear();  // nobody is there to be told any more
  if (cboList_) cboList_->AttachSurface(nullptr);
}

zrSimpleCombo& ComboCellEditor::Combo() {
  if (cboList_) return *cboList_;
  cboList_ = zrSimpleCombo::Create();
  cboList_->AttachSurface(&Owner().EditorSurface());
  cboList_->SetFont(font_);
  links_.push_back(cboList_->KeyDown.Connect([this](std::int32_t& keyCode, std::int32_t shift) {
    if (Owner().LeaveKey({keyCode, shift})) keyCode = 0;
  }));
  links_.push_back(
      cboList_->KeyOffered.Connect([this](const KeyEvent& key, bool& kept) { kept = kept || Owner().OfferKey(key); }));
  links_.push_back(cboList_->Change.Connect([this] { Owner().TextChanged(); }));
  links_.push_back(cboList_->FocusLost.Connect([this] { Owner().EditorDone(false); }));
  links_.push_back(cboList_->Picked.Connect([this](bool byEnter) { Owner().EditorDone(byEnter); }));
  links_.push_back(cboList_->DblClick.Connect([this] { Owner().EditorDoubleClicked(); }));
  links_.push_back(cboList_->BeforeDropDown.Connect([this](bool& cancel) { Owner().BeforeDropDown(cancel); }));
  return *cboList_;
}

void ComboCellEditor::Load(zrGridColumn& column, std::int32_t maxLength, const std::string& text) {
  zrSimpleCombo& combo = Combo();
  combo.Clear();
  for (const Ref<zrGridComboItem>& item : *column.ComboItems()) combo.AddItem(item->Text());
  combo.SetMaxLength(maxLength);
  combo.SetHideEdit(column.Style() == GridColumnComboList);
  combo.SetText(text);
}

void ComboCellEditor::Hide() {
  if (cboList_) cboList_->Hide();
}

void ComboCellEditor::SetFont(const Font& font) {
  font_ = font;
  if (cboList_) cboList_->SetFont(font);
}

void ComboCellEditor::SurfaceChanged() {
  if (cboList_) cboList_->AttachSurface(&Owner().EditorSurface());
}

bool ComboCellEditor::OnMouseDown(const MouseEvent& event) {
  if (!cboList_->Bounds().Contains(event.position)) return false;
  cboList_->OnMouseDown(event);
  return true;
}

void ComboCellEditor::OnMouseUp(const MouseEvent& event) {
  if (cboList_) cboList_->OnMouseUp(event);
}

}  // namespace zrqrybld
