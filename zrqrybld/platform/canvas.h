// Canvas: what the core draws on.
//
// A few primitives, and themed parts that the toolkit draws in the platform's own style. Colours
// are given by role, so that light, dark and high-contrast themes need no code here; a colour that
// the application has set is drawn as it is. A recording canvas writes one line of text a call.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/units.h"
#include "zrqrybld/platform/font.h"
#include "zrqrybld/platform/image.h"

namespace zrqrybld {

/// What a colour is for. The toolkit derives the colours from the system palette.
enum class ColorRole : std::uint8_t {
  Surface,        ///< the diagram's background
  SurfaceText,    ///< hints on the background
  Box,            ///< a table box and the cells of a grid
  BoxFrame,       ///< the thin line around a box
  CaptionActive,  ///< caption bar of the selected box
  CaptionActiveText,
  CaptionInactive,  ///< caption bar of the other boxes
  CaptionInactiveText,
  Text,       ///< text on `Box`
  QuietText,  ///< secondary text on `Box`
  RowHover,
  RowSelected,
  RowSelectedText,
  RowAlternate,  ///< every other row of a grid
  GridLine,
  Disabled,
  Join,
  JoinHover,
  JoinSelected,
  KeyIcon,  ///< primary keys
  Focus,
  Error,
  Warning,
  Keyword,
  Literal,
  Comment,
  Identifier,
};

/// A colour by role, or one that the application has chosen.
using Ink = std::variant<ColorRole, Color>;

/// Parts that are drawn in the platform's own style.
enum class ThemedPart : std::uint8_t {
  CheckBox,
  ColumnHeader,
  RowHeader,
  DropButton,
  FocusRectangle,
};

/// How a themed part is drawn.
struct PartState {
  bool checked = false;
  bool mixed = false;  ///< of a check box: partly checked
  bool hover = false;
  bool pressed = false;
  bool disabled = false;
  friend bool operator==(const PartState&, const PartState&) = default;
};

enum class TextAlignment : std::uint8_t { Left, Center, Right };

/// How a line of text is drawn.
struct TextStyle {
  Ink ink = ColorRole::Text;
  Font font = {};
  TextAlignment alignment = TextAlignment::Left;
  /// So many bytes at the beginning of a text that stands left are drawn in `quietInk`, and never bold.
  std::size_t quietBytes = 0;
  Ink quietInk = ColorRole::QuietText;
};

/// Draws in pixels from the top left corner of the control.
class ZRQRYBLD_API Canvas {
 public:
  Canvas() = default;
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;
  virtual ~Canvas() = default;

  /// Fills a rectangle, with rounded corners when `radius` is above 0.
  virtual void FillRect(const PixelRect& rect, const Ink& ink, Pixels radius = {}) = 0;

  /// Draws the outline of a rectangle, inside it.
  virtual void StrokeRect(const PixelRect& rect, const Ink& ink, Pixels width, Pixels radius = {}) = 0;

  /// Draws straight pieces through the points, bends rounded by `radius`.
  virtual void DrawPolyline(std::span<const PixelPoint> points, const Ink& ink, Pixels width, Pixels radius = {}) = 0;

  /// Fills the area inside the points.
  virtual void FillPolygon(std::span<const PixelPoint> points, const Ink& ink) = 0;

  /// Draws one line of text, vertically centred, elided at its end when it does not fit.
  virtual void DrawText(const PixelRect& rect, std::string_view text, const TextStyle& style) = 0;

  /// Draws a picture scaled into the rectangle.
  virtual void DrawImage(const PixelRect& rect, const Image& image) = 0;

  /// Draws a themed part.
  virtual void DrawPart(ThemedPart part, const PixelRect& rect, const PartState& state) = 0;

 protected:
  friend class ClipScope;
  friend class ViewScope;
  virtual void PushClip(const PixelRect& rect) = 0;
  virtual void PopClip() = 0;
  virtual void PushView(PixelPoint origin, double zoom) = 0;
  virtual void PopView() = 0;
};

/// Limits all drawing to a rectangle (within the limits in force) while it lives.
class [[nodiscard]] ClipScope {
 public:
  ClipScope(Canvas& canvas, const PixelRect& rect) : canvas_(canvas) { canvas_.PushClip(rect); }
  ClipScope(const ClipScope&) = delete;
  ClipScope& operator=(const ClipScope&) = delete;
  ~ClipScope() { canvas_.PopClip(); }

 private:
  Canvas& canvas_;
};

/// Draws everything enlarged by a factor and moved, while it lives: the point (0, 0) comes to stand at `origin`.
class [[nodiscard]] ViewScope {
 public:
  ViewScope(Canvas& canvas, PixelPoint origin, double zoom) : canvas_(canvas) { canvas_.PushView(origin, zoom); }
  ViewScope(const ViewScope&) = delete;
  ViewScope& operator=(const ViewScope&) = delete;
  ~ViewScope() { canvas_.PopView(); }

 private:
  Canvas& canvas_;
};

}  // namespace zrqrybld
