// WebSurface: a control in a canvas element.
#pragma once

#include <memory>
#include <string>

#include "zrqrybld/adapters/web/numbered.h"
#include "zrqrybld/adapters/web/web_canvas.h"
#include "zrqrybld/adapters/web/web_editors.h"
#include "zrqrybld/platform/control.h"
#include "zrqrybld/platform/surface.h"

namespace zrqrybld {

class WebSurface final : public Surface, public Numbered<WebSurface> {
 public:
  explicit WebSurface(std::shared_ptr<const WebHome> home) : Numbered(std::move(home)) {}
  ~WebSurface() override { SetControl(nullptr); }

  /// Shows a control, or none.
  void SetControl(Ref<Control> control);
  const Ref<Control>& GetControl() const { return control_; }

  // --- What the page tells ---

  /// Its element has this size now, and is written from right to left or not.
  void Resize(PixelSize size, bool rightToLeft);
  /// Its element's font is another one.
  void FontChanged();
  void Paint(const PixelRect& dirty);
  /// Draws the picture that is being copied or saved.
  void PaintPicture() const;
  /// Runs an entry of the menu that was shown last, by its number from 0 in the order in which the page got them.
  void ChooseEntry(int entry);
  /// What the clipboard holds now.
  void ClipboardIs(std::string text) { clipboard_ = std::move(text); }

  /// A place of the element on the surface, which is seen in a mirror from right to left; and back.
  PixelPoint OnSurface(PixelPoint place) const;
  PixelRect InElement(const PixelRect& onSurface) const;
  bool IsRightToLeft() const { return rightToLeft_; }

  // --- Surface ---

  PixelSize ViewSize() const override { return size_; }
  ScreenScale Scale() const override { return {}; }
  const TextMetrics& Metrics() const override { return metrics_; }
  void Invalidate(const PixelRect& area) override;
  void SetScrollBar(Orientation orientation, const ScrollState& state) override;
  void SetCursor(Cursor cursor) override;
  void SetCapture(bool captured) override { zrp_capture(Number(), captured); }
  void SetFocus() override { zrp_focus(Number()); }
  void ShowMenu(const Menu& menu, PixelPoint at) override;
  void SetTicking(bool ticking) override { zrp_ticking(Number(), ticking); }
  void DragText(std::string_view text) override { zrp_drag(Number(), text.data(), LengthOf(text)); }
  bool CopyPicture(const Picture& picture) override { return ShowPicture(picture, ""); }
  void SavePng(const Picture& picture, const std::string& path) override;
  std::shared_ptr<TextEditor> MakeTextEditor() override;
  std::shared_ptr<PopupList> MakePopupList() override;
  std::string ClipboardText() const override { return clipboard_; }
  void SetClipboardText(std::string_view text) override;
  std::uintptr_t WindowHandle() const override { return 0; }

 private:
  EditorGround Ground();
  bool ShowPicture(const Picture& picture, std::string_view name);

  Ref<Control> control_;
  WebMetrics metrics_{Number()};
  PixelSize size_{800_px, 600_px};  // until the page has laid the element out
  bool rightToLeft_ = false;
  Menu menu_;
  const Picture* picture_ = nullptr;
  std::string clipboard_;
};

}  // namespace zrqrybld
