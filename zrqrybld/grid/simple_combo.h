// zrSimpleCombo: a text with a list of choices that drops down below it, the grid's editor of combo cells.
//
// It is a text box (txtCombo), a list (cboList) and a button that the control paints itself at its right. The text box
// can be hidden, so that only the list's texts can be taken. It stands in a part of the surface that it shares with
// its owner, or fills a surface of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "zrqrybld/base/event.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/grid/grid_options.h"
#include "zrqrybld/platform/control.h"
#include "zrqrybld/platform/editors.h"
#include "zrqrybld/platform/property_store.h"

namespace zrqrybld {

class ZRQRYBLD_API zrSimpleCombo final : public Control {
 public:
  /// An empty combo, shown in no window.
  static Ref<zrSimpleCombo> Create() { return Ref<zrSimpleCombo>(new zrSimpleCombo()); }
  std::string_view TypeName() const override { return "zrSimpleCombo"; }

  // --- Events, in order ---

  /// The list is about to open; the argument set to true keeps it closed.
  Event<bool&> BeforeDropDown;
  /// The text changed because an item of the list was chosen.
  Event<> Click;
  /// The text changed by typing or by `SetText`.
  Event<> Change;
  /// A key that the combo itself does not handle: `KeyCode` (set to 0 it is kept from the text box), `ShiftMask` bits.
  Event<std::int32_t&, std::int32_t> KeyDown;
  /// A key that types something: its Unicode character.
  Event<std::int32_t> KeyPress;
  /// A key is released: `KeyCode`, `ShiftMask` bits.
  Event<std::int32_t, std::int32_t> KeyUp;
  /// A double click on the text box.
  Event<> DblClick;
  /// A button is pressed on the text box: `MouseButton`, `ShiftMask` bits, place in pixels from the text box's corner.
  Event<std::int32_t, std::int32_t, float, float> MouseDown;
  /// The mouse moves over the text box; as `MouseDown`.
  Event<std::int32_t, std::int32_t, float, float> MouseMove;
  /// A button is released on the text box; as `MouseDown`.
  Event<std::int32_t, std::int32_t, float, float> MouseUp;

  // --- Properties and methods ---

  /// Shows one line that says what this control is.
  void AboutBox();
  /// Adds an item at the end of the list.
  void AddItem(std::string item) { items_.push_back(std::move(item)); }
  /// Removes all items; the text stays.
  void Clear();
  /// The native window that holds the control; 0 without one.
  std::uintptr_t hwnd() const { return GetSurface().WindowHandle(); }
  /// The chosen item, from 0 in the whole list; -1 when the text is none of its items. Setting it is choosing the item;
  /// -1 chooses none and leaves the text. Error 9 when there is no such item.
  std::int32_t ListIndex() const { return listIndex_; }
  void SetListIndex(std::int32_t index);
  /// The text of the text box, also while it is hidden.
  std::string Text() const { return txtCombo_ ? txtCombo_->Text() : text_; }
  void SetText(std::string_view text);
  /// The native window that holds the text box; toolkits whose text boxes are no windows give that of the control.
  std::uintptr_t TextBoxHandle() const { return hwnd(); }
  /// Where the selected characters of the text box begin, or the caret stands, counted from 0; setting it selects none.
  std::int32_t SelStart() const { return txtCombo_ ? txtCombo_->SelStart() : 0; }
  void SetSelStart(std::int32_t start) { TextBox().Select(start, 0); }
  /// How many characters of the text box are selected.
  std::int32_t SelLength() const { return txtCombo_ ? txtCombo_->SelLength() : 0; }
  void SetSelLength(std::int32_t length) { TextBox().Select(SelStart(), length); }
  /// The selected characters; setting it types over them.
  std::string SelText() const { return txtCombo_ ? txtCombo_->SelText() : std::string(); }
  void SetSelText(std::string_view text) { TextBox().SetSelText(text); }
  /// The font of the text; an empty one is that of the surroundings.
  const zrqrybld::Font& Font() const { return font_; }
  void SetFont(const zrqrybld::Font& font);
  /// The longest text in characters; 0 means any.
  std::int32_t MaxLength() const { return maxLength_; }
  void SetMaxLength(std::int32_t characters);
  /// Whether the text box is hidden and only the list can be used.
  bool HideEdit() const { return options_.hideEdit; }
  void SetHideEdit(bool hide);

  /// A property was set: its key. The container marks it as changed.
  Event<std::string_view> PropertyChanged;
  /// Takes `HideEdit` from a stored form; False when it is missing.
  void ReadProperties(const PropertyStore& store);
  /// Stores `HideEdit`; False is left out.
  void WriteProperties(PropertyStore& store) const;

  // --- For the control whose cells it edits ---

  /// A key in the text box, before the combo acts on it; the last argument set to true keeps it from both.
  Event<const KeyEvent&, bool&> KeyOffered;
  /// The user has taken an item of the open list, be it the one that was chosen before; true when by Enter.
  Event<bool> Picked;
  /// The keyboard has left the text box.
  Event<> FocusLost;

  /// The part of the surface it stands in, in pixels; without one it fills the surface.
  void SetBounds(const PixelRect& bounds);
  PixelRect Bounds() const;
  /// Shows it with its text selected.
  void Show();
  /// Hides it and closes its list.
  void Hide();
  /// Whether it or its text box has the keyboard; a hidden text box leaves it to the owner of the surface.
  bool HasFocus() const { return txtCombo_ && txtCombo_->HasFocus(); }
  bool IsListOpen() const { return cboList_ && cboList_->IsOpen(); }
  void CloseList();
  /// Whether something else helps with what is typed: the list then opens by itself only while an item, or the last
  /// name in it, begins with the text. False at first.
  void SetAssisted(bool assisted) { assisted_ = assisted; }
  TextEditor& TextBox();
  /// Types into the text box as a user would who has selected all of it.
  void TypeOver(const std::string& text);

  void Paint(Canvas& canvas, const PixelRect& dirty) const override;
  void OnResize() override { PlaceTextBox(); }
  void OnMouseDown(const MouseEvent& event) override;
  void OnMouseUp(const MouseEvent& event) override;
  bool OnKeyDown(const KeyEvent& event) override;

 protected:
  void OnSurfaceChanged() override;

 private:
  zrSimpleCombo() = default;

  PixelRect ButtonRect() const;
  void PlaceTextBox();
  void TextChanged();
  bool TextBoxKey(const KeyEvent& event);

  void ToggleList();
  void OpenList();
  enum class Mark : std::uint8_t { Chosen, First, Beginning };
  void ShowMatches(std::string_view filter, Mark mark);
  bool AnyBeginsWith(std::string_view text) const;
  void Choose(std::int32_t index);
  void Pick(std::int32_t shownIndex, bool byEnter);
  bool StepInList(std::int32_t by);
  bool SearchFor(const KeyEvent& event);

  std::shared_ptr<TextEditor> txtCombo_;  // made on first use, anew on another surface
  std::shared_ptr<PopupList> cboList_;
  std::vector<EventConnection> links_;
  std::vector<std::string> items_;
  std::vector<std::int32_t> shown_;  // the items that the open list shows
  std::int32_t listIndex_ = -1;
  std::string text_;    // while there is no text box
  std::string search_;  // what was typed while the text box is hidden
  zrqrybld::Font font_;
  PixelRect bounds_{};
  std::int32_t maxLength_ = 0;
  ComboOptions options_;
  bool assisted_ = false;
  bool visible_ = false;
  bool pressed_ = false;
  bool choosing_ = false;  // a choice is being copied into the text box
  bool setting_ = false;   // the text is being set by program
};

}  // namespace zrqrybld
