// In-place editors and lists as elements of the page.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zrqrybld/adapters/web/numbered.h"
#include "zrqrybld/platform/editors.h"

namespace zrqrybld {

/// The surface that an editor or a list stands on, as far as they know it; its functions give nothing when it has gone.
struct EditorGround {
  std::shared_ptr<const WebHome> home;
  int surface = 0;
  std::function<PixelRect(const PixelRect& onSurface)> inElement;
  std::function<std::string()> name;  ///< what is edited
};

/// An input element over a surface; characters are UTF-16 units.
class WebTextEditor final : public TextEditor, public Numbered<WebTextEditor> {
 public:
  explicit WebTextEditor(EditorGround ground);
  ~WebTextEditor() override;

  void SetBounds(const PixelRect& bounds) override;
  void SetVisible(bool visible) override;
  void SetFont(const Font& font) override;
  void SetMaxLength(std::int32_t characters) override { zrp_editor_limit(Number(), characters); }
  std::string Text() const override { return Taken(zrp_editor_text(Number())); }
  void SetText(std::string_view text) override;
  std::int32_t SelStart() const override { return zrp_editor_start(Number()); }
  std::int32_t SelLength() const override { return zrp_editor_selected(Number()); }
  void Select(std::int32_t start, std::int32_t length) override { zrp_editor_select(Number(), start, length); }
  std::string SelText() const override;
  void SetSelText(std::string_view text) override;
  void SetFocus() override { zrp_editor_focus(Number()); }
  bool HasFocus() const override { return zrp_editor_focused(Number()) != 0; }

 private:
  const EditorGround ground_;
};

/// A list below a part of a surface, or below a character of a text area.
class WebPopupList final : public PopupList, public Numbered<WebPopupList> {
 public:
  explicit WebPopupList(EditorGround ground) : Numbered(ground.home), ground_(std::move(ground)) {}
  /// One for a text area, by its number.
  WebPopupList(std::shared_ptr<const WebHome> home, int area) : Numbered(std::move(home)), area_(area) {}
  ~WebPopupList() override { Close(); }

  void Open(const PixelRect& owner, std::vector<ListEntry> entries, std::int32_t highlighted) override;
  void OpenAt(int character, const std::vector<ListEntry>& entries, std::int32_t highlighted);
  void Close() override;
  bool IsOpen() const override { return open_; }
  std::int32_t Highlighted() const override { return highlighted_; }
  void Highlight(std::int32_t index) override;
  /// The page says what the pointer is over; it shows that itself.
  void Pointed(std::int32_t index) { highlighted_ = index; }

 private:
  const EditorGround ground_;
  const int area_ = 0;
  bool open_ = false;
  std::int32_t highlighted_ = -1;
};

}  // namespace zrqrybld
