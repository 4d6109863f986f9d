// MirroredCanvas: draws on another canvas as in a mirror, for languages that are written from right to left.
//
// Places, lines and alignments are mirrored; texts, pictures and themed parts are not turned round in themselves.
#pragma once

#include <memory>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

/// The rectangle in a mirror: a place and its mirrored one add up to `axis`.
inline PixelRect MirroredAt(Pixels axis, const PixelRect& rect) {
  return {axis - rect.Right(), rect.top, rect.width, rect.height};
}

class ZRQRYBLD_API MirroredCanvas final : public Canvas {
 public:
  /// `canvas` outlives this; `width` is that of what is drawn.
  MirroredCanvas(Canvas& canvas, Pixels width) : canvas_(canvas), axis_(width) {}

  void FillRect(const PixelRect& rect, const Ink& ink, Pixels radius = {}) override {
    canvas_.FillRect(Mirror(rect), ink, radius);
  }
  void StrokeRect(const PixelRect& rect, const Ink& ink, Pixels width, Pixels radius = {}) override {
    canvas_.StrokeRect(Mirror(rect), ink, width, radius);
  }
  void DrawPolyline(std::span<const PixelPoint> points, const Ink& ink, Pixels width, Pixels radius = {}) override {
    canvas_.DrawPolyline(Mirror(points), ink, width, radius);
  }
  void FillPolygon(std::span<const PixelPoint> points, const Ink& ink) override {
    canvas_.FillPolygon(Mirror(points), ink);
  }
  void DrawText(const PixelRect& rect, std::string_view text, const TextStyle& style) override;
  void DrawImage(const PixelRect& rect, const Image& image) override { canvas_.DrawImage(Mirror(rect), image); }
  void DrawPart(ThemedPart part, const PixelRect& rect, const PartState& state) override {
    canvas_.DrawPart(part, Mirror(rect), state);
  }

 protected:
  void PushClip(const PixelRect& rect) override {
    clips_.push_back(std::make_unique<ClipScope>(canvas_, Mirror(rect)));
  }
  void PopClip() override { clips_.pop_back(); }
  void PushView(PixelPoint origin, double zoom) override;
  void PopView() override;

 private:
  // A view and the axis outside it.
  struct View {
    Pixels axis;
    std::unique_ptr<ViewScope> scope;
  };

  PixelRect Mirror(const PixelRect& rect) const { return MirroredAt(axis_, rect); }
  std::vector<PixelPoint> Mirror(std::span<const PixelPoint> points) const;

  Canvas& canvas_;
  Pixels axis_;  // what a place and its mirrored one add up to
  std::vector<std::unique_ptr<ClipScope>> clips_;
  std::vector<View> views_;
};

}  // namespace zrqrybld
