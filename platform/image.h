// Image: a picture that an application hands to the library, as plain pixels.
#pragma once

#include <cstdint>
#include <vector>

#include "base/object.h"

namespace zrqrybld {

/// Pixels row by row from the top, each 0xAARRGGBB. `pixels` holds `width` * `height` of them.
class Image final : public Object {
 public:
  Image(int width, int height, std::vector<std::uint32_t> pixels)
      : width_(width), height_(height), pixels_(std::move(pixels)) {
    pixels_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
  }
  std::string_view TypeName() const override { return "Image"; }

  int Width() const { return width_; }    ///< in pixels
  int Height() const { return height_; }  ///< in pixels
  const std::vector<std::uint32_t>& Pixels() const { return pixels_; }

 private:
  int width_;
  int height_;
  std::vector<std::uint32_t> pixels_;
};

}  // namespace zrqrybld
