// Surface: the window area a control lives in, as the control sees it.
//
// Every control has one from the start: a headless one until an adapter attaches a real window.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/units.h"
#include "zrqrybld/platform/font.h"
#include "zrqrybld/platform/menu.h"
#include "zrqrybld/platform/picture.h"

namespace zrqrybld {

class PopupList;
class TextEditor;

enum class Orientation : std::uint8_t { Horizontal, Vertical };

/// A scroll bar. All numbers are pixels; `value` runs from 0 to `maximum`.
struct ScrollState {
  int value = 0;
  int maximum = 0;  ///< 0: nothing to scroll
  int page = 0;     ///< how much is visible
  int step = 0;     ///< one click on an arrow
  friend bool operator==(const ScrollState&, const ScrollState&) = default;
};

enum class Cursor : std::uint8_t {
  Arrow,
  Wait,
  Move,
  SizeHorizontal,
  SizeVertical,
  SizeDiagonalDown,  ///< top left to bottom right
  SizeDiagonalUp,    ///< bottom left to top right
  ColumnSplit,
  NoDrop,
  Join,  ///< over a place where a join may end
};

/// What a control may ask of its window area; all lengths in pixels of the surface.
class ZRQRYBLD_API Surface {
 public:
  Surface() = default;
  Surface(const Surface&) = delete;
  Surface& operator=(const Surface&) = delete;
  virtual ~Surface() = default;

  /// The size of the visible area, without scroll bars.
  virtual PixelSize ViewSize() const = 0;

  /// The screen's factors between pixels and twips.
  virtual ScreenScale Scale() const = 0;

  /// Measures text as this surface draws it.
  virtual const TextMetrics& Metrics() const = 0;

  /// Asks for a repaint of the area, soon.
  virtual void Invalidate(const PixelRect& area) = 0;

  /// Asks for a repaint of everything, soon.
  void InvalidateAll() { Invalidate({{}, {}, ViewSize().width, ViewSize().height}); }

  /// Shows the scroll bar as given; hides it when there is nothing to scroll.
  virtual void SetScrollBar(Orientation orientation, const ScrollState& state) = 0;

  /// Shows this pointer while it is over the surface.
  virtual void SetCursor(Cursor cursor) = 0;

  /// Takes or gives back all mouse events, also those outside the surface.
  virtual void SetCapture(bool captured) = 0;

  /// Asks for the keyboard.
  virtual void SetFocus() = 0;

  /// Shows a menu at this place; returns when it is closed and the chosen entry's action has run.
  virtual void ShowMenu(const Menu& menu, PixelPoint at) = 0;

  /// Asks for calls of `Control::OnTick`, about twenty a second, or for no more of them.
  virtual void SetTicking(bool ticking) = 0;

  /// Offers a text to be dropped elsewhere; returns when the drag has ended.
  virtual void DragText(std::string_view text) = 0;

  /// Puts the picture on the clipboard. Returns whether there is one.
  virtual bool CopyPicture(const Picture& picture) = 0;

  /// Writes the picture as a PNG file. Error 75 when the file cannot be written, or no window system can draw it.
  virtual void SavePng(const Picture& picture, const std::string& path) = 0;

  /// A line of text to be edited on this surface, hidden at first. It may outlive the surface, and does nothing then.
  virtual std::shared_ptr<TextEditor> MakeTextEditor() = 0;

  /// A list that opens on this surface. It may outlive the surface, and does nothing then.
  virtual std::shared_ptr<PopupList> MakePopupList() = 0;

  /// The text on the clipboard; "" when there is none.
  virtual std::string ClipboardText() const = 0;
  virtual void SetClipboardText(std::string_view text) = 0;

  /// The window system's handle of the window that holds the surface; 0 without a window.
  virtual std::uintptr_t WindowHandle() const = 0;
};

}  // namespace zrqrybld
