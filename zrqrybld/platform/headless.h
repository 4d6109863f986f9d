// The headless toolkit: every platform interface without a window.
//
// A server, a script or a test uses the whole library through it. Surfaces remember what they were
// asked for; dialogs are answered by handlers or, without one, closed at once and recorded.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/canvas.h"
#include "zrqrybld/platform/headless_editors.h"
#include "zrqrybld/platform/property_store.h"
#include "zrqrybld/platform/surface.h"
#include "zrqrybld/platform/toolkit.h"

namespace zrqrybld {

/// Text of fixed width: 7 pixels a character, 8 when bold; lines of 16 pixels.
class ZRQRYBLD_API HeadlessMetrics final : public TextMetrics {
 public:
  Pixels TextWidth(std::string_view text, const Font& font) const override;
  Pixels LineHeight(const Font& font) const override;
};

/// A surface of 800 by 600 pixels, unless told otherwise, with 15 twips a pixel.
class ZRQRYBLD_API HeadlessSurface final : public Surface {
 public:
  PixelSize ViewSize() const override { return size_; }
  ScreenScale Scale() const override { return {}; }
  const TextMetrics& Metrics() const override { return metrics_; }
  void Invalidate(const PixelRect&) override { ++invalidations_; }
  void SetScrollBar(Orientation orientation, const ScrollState& state) override;
  void SetCursor(Cursor cursor) override { cursor_ = cursor; }
  void SetCapture(bool captured) override { captured_ = captured; }
  void SetFocus() override { focus_->Move(nullptr); }
  void ShowMenu(const Menu& menu, PixelPoint at) override {
    menu_ = menu;
    menuPlace_ = at;
  }
  void SetTicking(bool ticking) override { ticking_ = ticking; }
  void DragText(std::string_view text) override { draggedText_ = text; }
  bool CopyPicture(const Picture& picture) override {
    copied_ = picture;
    return true;
  }
  void SavePng(const Picture& picture, const std::string& path) override;
  std::shared_ptr<TextEditor> MakeTextEditor() override { return std::make_shared<HeadlessTextEditor>(focus_); }
  std::shared_ptr<PopupList> MakePopupList() override;
  std::string ClipboardText() const override { return clipboard_; }
  void SetClipboardText(std::string_view text) override { clipboard_ = text; }
  std::uintptr_t WindowHandle() const override { return 0; }

  /// Changes the size. The control on it is not told: call its `OnResize`.
  void SetViewSize(PixelSize size) { size_ = size; }
  /// What a scroll bar was told last.
  const ScrollState& ScrollBar(Orientation orientation) const;
  /// The menu shown last.
  const Menu& LastMenu() const { return menu_; }
  PixelPoint MenuPlace() const { return menuPlace_; }
  bool IsTicking() const { return ticking_; }
  /// How often something was to be painted anew.
  std::size_t Invalidations() const { return invalidations_; }
  Cursor CurrentCursor() const { return cursor_; }
  bool IsCaptured() const { return captured_; }
  const std::string& DraggedText() const { return draggedText_; }
  /// The picture that was copied last; one without `paint` when none was.
  const Picture& CopiedPicture() const { return copied_; }
  /// The editor that has the keyboard; nothing when it is the surface's own.
  HeadlessTextEditor* FocusedEditor() const { return focus_->Editor(); }
  /// The list that was made last, while it lives.
  std::shared_ptr<HeadlessPopupList> LastPopupList() const { return popup_.lock(); }

 private:
  HeadlessMetrics metrics_;
  PixelSize size_{800_px, 600_px};
  ScrollState horizontal_;
  ScrollState vertical_;
  Cursor cursor_ = Cursor::Arrow;
  bool captured_ = false;
  Menu menu_;
  PixelPoint menuPlace_{};
  bool ticking_ = false;
  std::size_t invalidations_ = 0;
  std::string draggedText_;
  Picture copied_;
  std::shared_ptr<HeadlessFocus> focus_ = std::make_shared<HeadlessFocus>();
  std::weak_ptr<HeadlessPopupList> popup_;
  std::string clipboard_;
};

/// A text area that is only its text.
class ZRQRYBLD_API HeadlessTextArea final : public TextArea {
 public:
  std::string Text() const override { return text_; }
  void SetText(std::string_view text) override { text_ = text; }
  void SetReadOnly(bool readOnly) override { readOnly_ = readOnly; }
  void SetRemarks(const std::vector<std::string>& remarks) override { remarks_ = remarks; }

  /// Whether the user could change the text.
  bool IsReadOnly() const { return readOnly_; }
  /// What is shown beside the text.
  const std::vector<std::string>& Remarks() const { return remarks_; }
  void SetFault(std::size_t offset, std::size_t length) override {
    fault_ = length == 0 ? std::string() : text_.substr(offset, length);
  }
  void SetCommands(std::vector<TextCommand> commands) override { commands_ = std::move(commands); }

  /// The piece that is underlined; "" for none.
  const std::string& Fault() const { return fault_; }
  const std::vector<TextCommand>& Commands() const { return commands_; }
  /// Changes the text as a user would.
  void Type(std::string_view text) {
    text_ = text;
    Edited.Raise();
  }

 private:
  std::string text_;
  bool readOnly_ = false;
  std::vector<std::string> remarks_;
  std::string fault_;
  std::vector<TextCommand> commands_;
};

/// Dialogs that a handler answers; all messages are recorded.
class ZRQRYBLD_API HeadlessDialogs final : public Dialogs {
 public:
  /// A message that was shown.
  struct Message {
    std::string text;
    MessageIcon icon;
  };
  void ShowMessage(std::string_view text, MessageIcon icon) override { messages.push_back({std::string(text), icon}); }
  void ShowMessageSoon(std::string_view text, MessageIcon icon) override { ShowMessage(text, icon); }
  bool Confirm(std::string_view question) override { return onConfirm && onConfirm(question); }
  void ShowTables(const TablesDialog& dialog) override {
    if (onShowTables) onShowTables(dialog);
  }

  bool ShowJoinProperties(JoinDialog& dialog) override { return onShowJoinProperties && onShowJoinProperties(dialog); }
  bool ShowExpression(ExpressionDialog& dialog) override { return onShowExpression && onShowExpression(dialog); }
  std::string ShowConnectionPrompt(const ConnectionDialog& dialog) override {
    return onShowConnectionPrompt ? onShowConnectionPrompt(dialog) : std::string();
  }
  std::string ShowSaveFile(const SaveFileDialog& dialog) override {
    return onShowSaveFile ? onShowSaveFile(dialog) : std::string();
  }
  std::optional<std::string> ShowTextPrompt(const TextDialog& dialog) override {
    return onShowTextPrompt ? onShowTextPrompt(dialog) : std::nullopt;
  }
  bool ShowParameters(ParametersDialog& dialog) override { return onShowParameters && onShowParameters(dialog); }

  std::vector<Message> messages;
  std::function<void(const TablesDialog&)> onShowTables;
  std::function<bool(JoinDialog&)> onShowJoinProperties;
  std::function<bool(ExpressionDialog&)> onShowExpression;
  std::function<std::string(const ConnectionDialog&)> onShowConnectionPrompt;
  std::function<std::string(const SaveFileDialog&)> onShowSaveFile;
  std::function<bool(std::string_view)> onConfirm;
  std::function<std::optional<std::string>(const TextDialog&)> onShowTextPrompt;
  std::function<bool(ParametersDialog&)> onShowParameters;
};

/// The toolkit of a designer without a window.
class ZRQRYBLD_API HeadlessToolkit final : public Toolkit {
 public:
  HeadlessDialogs& GetDialogs() override { return dialogs_; }
  void SetBusyPointer(bool busy) override { busyDepth_ += busy ? 1 : -1; }
  /// Whether the hourglass is on.
  bool IsBusyPointer() const { return busyDepth_ > 0; }

 private:
  HeadlessDialogs dialogs_;
  int busyDepth_ = 0;
};

/// A property store in memory.
class ZRQRYBLD_API MemoryPropertyStore final : public PropertyStore {
 public:
  Variant Read(std::string_view key, const Variant& defaultValue) const override;
  void Write(std::string_view key, const Variant& value, const Variant& defaultValue) override;
  void Write(std::string_view key, const Variant& value) override;

  /// Everything stored, by key.
  const std::map<std::string, Variant, std::less<>>& Values() const { return values_; }

 private:
  std::map<std::string, Variant, std::less<>> values_;
};

}  // namespace zrqrybld
