// A canvas that only counts: what painting costs before a toolkit draws.
#pragma once

#include <cstddef>

#include "zrqrybld/platform/canvas.h"

namespace zrqrybld::bench {

class CountingCanvas final : public Canvas {
 public:
  std::size_t Calls() const { return calls_; }

  void FillRect(const PixelRect&, const Ink&, Pixels) override { ++calls_; }
  void StrokeRect(const PixelRect&, const Ink&, Pixels, Pixels) override { ++calls_; }
  void DrawPolyline(std::span<const PixelPoint>, const Ink&, Pixels, Pixels) override { ++calls_; }
  void FillPolygon(std::span<const PixelPoint>, const Ink&) override { ++calls_; }
  void DrawText(const PixelRect&, std::string_view, const TextStyle&) override { ++calls_; }
  void DrawImage(const PixelRect&, const Image&) override { ++calls_; }
  void DrawPart(ThemedPart, const PixelRect&, const PartState&) override { ++calls_; }

 protected:
  void PushClip(const PixelRect&) override { ++calls_; }
  void PopClip() override { ++calls_; }
  void PushView(PixelPoint, double) override { ++calls_; }
  void PopView() override { ++calls_; }

 private:
  std::size_t calls_ = 0;
};

}  // namespace zrqrybld::bench
