#include "tests/fakes/paint_watch.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/fakes/recording_canvas.h"
#include "zrqrybld/platform/headless.h"

namespace zrqrybld::test {

PaintWatch::PaintWatch(const Control& control) : control_(control), asked_(Asked()), picture_(Picture()) {}

void PaintWatch::Check() {
  const std::string picture = Picture();
  if (picture != picture_ && Asked() == asked_) {
    const auto differs = static_cast<std::size_t>(std::ranges::mismatch(picture, picture_).in1 - picture.begin());
    const std::size_t line = differs == 0 ? 0 : picture.rfind('\n', differs - 1) + 1;
    ADD_FAILURE() << "painted in another way, and nobody asked for it, from " << picture.substr(line, 100);
  }
  asked_ = Asked();
  picture_ = picture;
}

std::size_t PaintWatch::Asked() const {
  return static_cast<const HeadlessSurface&>(control_.GetSurface()).Invalidations();
}

std::string PaintWatch::Picture() const {
  RecordingCanvas canvas;
  const PixelSize size = control_.GetSurface().ViewSize();
  control_.Paint(canvas, {{}, {}, size.width, size.height});
  return canvas.Text();
}

}  // namespace zrqrybld::test
