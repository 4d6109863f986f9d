// Editors and lists without a window: they are only their text, and a test or a script is their user.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/editors.h"

namespace zrqrybld {

class HeadlessTextEditor;

/// Which editor of a surface has the keyboard.
class ZRQRYBLD_API HeadlessFocus {
 public:
  /// The editor; nothing when the surface itself has it.
  HeadlessTextEditor* Editor() const { return editor_; }
  /// Gives the keyboard to an editor or, with nothing, to the surface.
  void Move(HeadlessTextEditor* editor);
  /// The editor dies.
  void Forget(const HeadlessTextEditor* editor) {
    if (editor_ == editor) editor_ = nullptr;
  }

 private:
  HeadlessTextEditor* editor_ = nullptr;
};

/// A line of text without a window.
class ZRQRYBLD_API HeadlessTextEditor final : public TextEditor {
 public:
  explicit HeadlessTextEditor(std::shared_ptr<HeadlessFocus> focus) : focus_(std::move(focus)) {}
  ~HeadlessTextEditor() override { focus_->Forget(this); }

  void SetBounds(const PixelRect& bounds) override { bounds_ = bounds; }
  void SetVisible(bool visible) override {
    visible_ = visible;
    if (!visible && HasFocus()) focus_->Move(nullptr);
  }
  void SetFont(const Font&) override {}
  void SetMaxLength(std::int32_t characters) override { maxLength_ = characters; }
  std::string Text() const override { return text_; }
  void SetText(std::string_view text) override;
  std::int32_t SelStart() const override { return selStart_; }
  std::int32_t SelLength() const override { return selLength_; }
  void Select(std::int32_t start, std::int32_t length) override;
  std::string SelText() const override;
  void SetSelText(std::string_view text) override;
  void SetFocus() override { focus_->Move(this); }
  bool HasFocus() const override { return focus_->Editor() == this; }

  /// What a user does: types over the selection, as far as the length allows; presses a key, which says whether it was
  /// kept from the editor.
  void Type(std::string_view text);
  bool Press(std::int32_t keyCode, std::int32_t shift = 0);

  /// What it was told last.
  bool IsVisible() const { return visible_; }
  /// Where it stands.
  const PixelRect& Bounds() const { return bounds_; }

 private:
  // The bytes that are selected: offset and count.
  std::pair<std::size_t, std::size_t> SelectedBytes() const;

  std::shared_ptr<HeadlessFocus> focus_;
  std::string text_;
  std::int32_t selStart_ = 0;
  std::int32_t selLength_ = 0;
  std::int32_t maxLength_ = 0;
  PixelRect bounds_{};
  bool visible_ = false;
};

/// A list without a window.
class ZRQRYBLD_API HeadlessPopupList final : public PopupList {
 public:
  void Open(const PixelRect& owner, std::vector<ListEntry> entries, std::int32_t highlighted) override {
    owner_ = owner;
    texts_.clear();
    for (ListEntry& entry : entries) texts_.push_back(std::move(entry.text));
    highlighted_ = highlighted;
    open_ = true;
  }
  void Close() override { open_ = false; }
  bool IsOpen() const override { return open_; }
  std::int32_t Highlighted() const override { return highlighted_; }
  void Highlight(std::int32_t index) override { highlighted_ = index; }

  /// What the list shows, and the rectangle that it belongs to.
  const std::vector<std::string>& Texts() const { return texts_; }
  const PixelRect& Owner() const { return owner_; }

 private:
  PixelRect owner_{};
  std::vector<std::string> texts_;
  std::int32_t highlighted_ = -1;
  bool open_ = false;
};

}  // namespace zrqrybld
