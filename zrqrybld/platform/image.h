// Image: a picture that an application hands to the library, as plain pixels. ImageList: several of them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/texts_platform.h"

namespace zrqrybld {

/// Pixels row by row from the top, each 0xAARRGGBB. `pixels` holds `width` * `height` of them.
class Image final : public Object {
 public:
  Image(int width, int height, std::vector<std::uint32_t> pixels)
      : width_(width), height_(height), pixels_(std::move(pixels)) {
    pixels_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
  }
  std::string_view TypeName() const override { return "Image"; }

  int Width() const { return width_; }    ///< the width in pixels
  int Height() const { return height_; }  ///< the height in pixels
  const std::vector<std::uint32_t>& Pixels() const { return pixels_; }

 private:
  int width_;
  int height_;
  std::vector<std::uint32_t> pixels_;
};

/// Pictures by position from 1 or by key.
class ImageList final : public Object {
 public:
  std::string_view TypeName() const override { return "ImageList"; }

  /// Adds a picture at the end. Error 457 when the key is in use, 91 for nothing.
  void Add(Ref<Image> image, const std::string& key = {}) {
    if (!image) throw Error(ErrorObjectRemoved, text::NoPictureGiven);
    images_.Insert(std::move(image), key);
  }
  /// How many there are; positions run from 1 to it.
  std::int32_t Count() const { return static_cast<std::int32_t>(images_.Count()); }
  /// The picture at a position from 1 or under a key, or nothing.
  Ref<Image> Item(const Variant& index) const { return ItemOrNothing(images_, index); }

 private:
  KeyedList<Ref<Image>> images_;
};

}  // namespace zrqrybld
