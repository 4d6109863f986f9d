// SvgCanvas: draws into an SVG picture, without any window.
//
// Colours by role come from a table of the caller's or from the built-in light one.
#pragma once

#include <functional>
#include <string>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

class ZRQRYBLD_API SvgCanvas final : public Canvas {
 public:
  /// Colours by role, as "#rrggbb".
  using Colors = std::function<std::string(const Ink& ink)>;

  /// A picture of this size. `colors` may be empty.
  explicit SvgCanvas(PixelSize size, Colors colors = {});

  /// The whole picture so far, a complete SVG document in UTF-8.
  std::string Picture() const;

  void FillRect(const PixelRect& rect, const Ink& ink, Pixels radius = {}) override;
  void StrokeRect(const PixelRect& rect, const Ink& ink, Pixels width, Pixels radius = {}) override;
  void DrawPolyline(std::span<const PixelPoint> points, const Ink& ink, Pixels width, Pixels radius = {}) override;
  void FillPolygon(std::span<const PixelPoint> points, const Ink& ink) override;
  void DrawText(const PixelRect& rect, std::string_view text, const TextStyle& style) override;
  void DrawImage(const PixelRect& rect, const Image& image) override;
  void DrawPart(ThemedPart part, const PixelRect& rect, const PartState& state) override;

 protected:
  void PushClip(const PixelRect& rect) override;
  void PopClip() override;
  void PushView(PixelPoint origin, double zoom) override;
  void PopView() override;

 private:
  std::string ColorOf(const Ink& ink) const;

  PixelSize size_;
  Colors colors_;
  std::string body_;
  int clips_ = 0;  // how many clip paths were made: their names
};

}  // namespace zrqrybld
