// CellEditor: what a cell's text is edited with in place, a text box or a combo. The edit that goes on asks no further
// which of them it is.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "zrqrybld/grid/columns.h"
#include "zrqrybld/grid/simple_combo.h"
#include "zrqrybld/platform/canvas.h"
#include "zrqrybld/platform/editors.h"
#include "zrqrybld/platform/surface.h"

namespace zrqrybld {

/// What editors ask of who edits with them, and tell.
class CellEditorOwner {
 public:
  CellEditorOwner() = default;
  CellEditorOwner(const CellEditorOwner&) = delete;
  CellEditorOwner& operator=(const CellEditorOwner&) = delete;
  virtual ~CellEditorOwner() = default;

  /// What shows the editors.
  virtual Surface& EditorSurface() const = 0;
  /// A key, before the editor acts on it. Returns whether it was used.
  virtual bool OfferKey(const KeyEvent& key) = 0;
  /// A key that the editor has no use for itself. Returns whether it is kept from the text box.
  virtual bool LeaveKey(const KeyEvent& key) = 0;
  virtual void TextChanged() = 0;
  /// The keyboard has left the editor, or a choice was taken; `goesOn` when Enter has taken it.
  virtual void EditorDone(bool goesOn) = 0;
  virtual void EditorDoubleClicked() = 0;
  /// A list of choices is about to open; `cancel` set to true keeps it closed.
  virtual void BeforeDropDown(bool& cancel) = 0;
};

class CellEditor {
 public:
  explicit CellEditor(CellEditorOwner& owner) : owner_(owner) {}
  CellEditor(const CellEditor&) = delete;
  CellEditor& operator=(const CellEditor&) = delete;
  virtual ~CellEditor() = default;

  /// Takes the text of a cell of the column, at most so many characters (0 for any), and the column's choices.
  virtual void Load(zrGridColumn& column, std::int32_t maxLength, const std::string& text) = 0;
  /// Shows it with its text selected, with the keyboard.
  virtual void Show() = 0;
  virtual void Hide() = 0;
  virtual void SetBounds(const PixelRect& bounds) = 0;
  virtual void SetFont(const Font& font) = 0;
  /// The surface is another one.
  virtual void SurfaceChanged() = 0;
  virtual std::string Text() const = 0;
  virtual bool HasFocus() const = 0;
  /// The text box, made on first use.
  virtual TextEditor& TextBox() = 0;
  /// Replaces the text as if this had been typed.
  virtual void TypeOver(const std::string& typed) = 0;

  // --- Choices; nothing for an editor without any ---

  virtual bool HasChoices() const { return false; }
  virtual bool IsListOpen() const { return false; }
  virtual void CloseList() {}
  /// Whether something else helps with what is typed.
  virtual void SetAssisted(bool) {}

  // --- What it draws on the surface itself, and takes from it ---

  /// Whether its text box is hidden, so that the keyboard stays with the surface.
  virtual bool LeavesKeyboard() const { return false; }
  virtual bool OnKeyDown(const KeyEvent&) { return false; }
  /// Returns whether the place is its own.
  virtual bool OnMouseDown(const MouseEvent&) { return false; }
  virtual void OnMouseUp(const MouseEvent&) {}
  virtual void Paint(Canvas&, const PixelRect&) const {}

 protected:
  CellEditorOwner& Owner() const { return owner_; }

 private:
  CellEditorOwner& owner_;
};

class TextCellEditor final : public CellEditor {
 public:
  using CellEditor::CellEditor;

  void Load(zrGridColumn& column, std::int32_t maxLength, const std::string& text) override;
  void Show() override;
  void Hide() override;
  void SetBounds(const PixelRect& bounds) override;
  void SetFont(const Font& font) override;
  void SurfaceChanged() override;
  std::string Text() const override { return txtText_->Text(); }
  bool HasFocus() const override { return txtText_ && txtText_->HasFocus(); }
  TextEditor& TextBox() override;
  void TypeOver(const std::string& typed) override { txtText_->SetSelText(typed); }

 private:
  Font font_;
  std::shared_ptr<TextEditor> txtText_;  // made on first use, anew on another surface
  std::vector<EventConnection> links_;
};

class ComboCellEditor final : public CellEditor {
 public:
  using CellEditor::CellEditor;
  ~ComboCellEditor() override;

  void Load(zrGridColumn& column, std::int32_t maxLength, const std::string& text) override;
  void Show() override { cboList_->Show(); }
  void Hide() override;
  void SetBounds(const PixelRect& bounds) override { cboList_->SetBounds(bounds); }
  void SetFont(const Font& font) override;
  void SurfaceChanged() override;
  std::string Text() const override { return cboList_->Text(); }
  bool HasFocus() const override { return cboList_ && cboList_->HasFocus(); }
  TextEditor& TextBox() override { return cboList_->TextBox(); }
  void TypeOver(const std::string& typed) override { cboList_->TypeOver(typed); }

  bool HasChoices() const override { return true; }
  bool IsListOpen() const override { return cboList_->IsListOpen(); }
  void CloseList() override { cboList_->CloseList(); }
  void SetAssisted(bool assisted) override { cboList_->SetAssisted(assisted); }

  bool LeavesKeyboard() const override { return cboList_->HideEdit(); }
  bool OnKeyDown(const KeyEvent& event) override { return cboList_->OnKeyDown(event); }
  bool OnMouseDown(const MouseEvent& event) override;
  void OnMouseUp(const MouseEvent& event) override;
  void Paint(Canvas& canvas, const PixelRect& dirty) const override { cboList_->Paint(canvas, dirty); }

 private:
  zrSimpleCombo& Combo();

  Font font_;
  Ref<zrSimpleCombo> cboList_;  // made on first use
  std::vector<EventConnection> links_;
};

}  // namespace zrqrybld
