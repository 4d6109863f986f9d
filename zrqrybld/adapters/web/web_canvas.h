// Draws on the page's canvas elements, and measures text as they draw it.
#pragma once

#include <string>
#include <unordered_map>

#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

/// The font as CSS writes it; without a family and size those of the page's element, which the page puts in place of
/// "inherit".
std::string CssFont(const Font& font);

class WebMetrics final : public TextMetrics {
 public:
  /// For a surface, by its number.
  explicit WebMetrics(int surface) : surface_(surface) {}
  Pixels TextWidth(std::string_view text, const Font& font) const override;
  Pixels LineHeight(const Font& font) const override;
  /// The element's font is another one now.
  void Forget() { widths_.clear(); }

 private:
  const int surface_;
  mutable std::unordered_map<std::string, double> widths_;  // what measures most is measured once
};

/// Lives for one paint.
class WebCanvas final : public Canvas {
 public:
  explicit WebCanvas(const TextMetrics& metrics) : metrics_(metrics) {}

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
  const TextMetrics& metrics_;
};

}  // namespace zrqrybld
