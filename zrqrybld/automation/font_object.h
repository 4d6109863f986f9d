// Font as an object: what a control's `Font` property hands out. Changing it changes the control.
#pragma once

#include <functional>
#include <string>

#include "zrqrybld/base/object.h"
#include "zrqrybld/platform/font.h"

namespace zrqrybld {

class FontObject final : public Object {
 public:
  /// `store` takes every change to where the font came from; without it the object is a value of its own.
  explicit FontObject(Font font = {}, std::function<void(const Font&)> store = {})
      : font_(std::move(font)), store_(std::move(store)) {}
  std::string_view TypeName() const override { return "Font"; }

  /// The family; "" is the font of the surroundings.
  const std::string& Name() const { return font_.family; }
  void SetName(std::string name) {
    font_.family = std::move(name);
    Stored();
  }
  /// In points; 0 is the size of the surroundings.
  double Size() const { return font_.points; }
  void SetSize(double points) {
    font_.points = points;
    Stored();
  }
  /// Whether the letters are heavy.
  bool Bold() const { return font_.bold; }
  void SetBold(bool bold) {
    font_.bold = bold;
    Stored();
  }
  /// Whether the letters slant.
  bool Italic() const { return font_.italic; }
  void SetItalic(bool italic) {
    font_.italic = italic;
    Stored();
  }

  const Font& Value() const { return font_; }

 private:
  void Stored() const {
    if (store_) store_(font_);
  }

  Font font_;
  std::function<void(const Font&)> store_;
};

}  // namespace zrqrybld
