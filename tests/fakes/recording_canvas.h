// A canvas that writes down what is painted, for tests that look at it.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

/// Writes one line of text for every call, for instance "fill 0,0 10x20 Box".
class RecordingCanvas final : public Canvas {
 public:
  /// The calls so far, one line each.
  const std::vector<std::string>& Lines() const { return lines_; }
  /// All lines, each ended by a line feed.
  std::string Text() const;

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
  std::vector<std::string> lines_;
};

}  // namespace zrqrybld
