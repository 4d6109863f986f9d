#include "zrqrybld/platform/headless.h"

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_platform.h"

namespace zrqrybld {

Pixels HeadlessMetrics::TextWidth(std::string_view text, const Font& font) const {
  return Pixels((font.bold ? 8.0 : 7.0) * static_cast<double>(CharacterCount(text)));
}

Pixels HeadlessMetrics::LineHeight(const Font&) const { return 16_px; }

void HeadlessSurface::SetScrollBar(Orientation orientation, const ScrollState& state) {
  (orientation == Orientation::Horizontal ? horizontal_ : vertical_) = state;
}

const ScrollState& HeadlessSurface::ScrollBar(Orientation orientation) const {
  return orientation == Orientation::Horizontal ? horizontal_ : vertical_;
}

void HeadlessSurface::SavePng(const Picture&, const std::string& path) {
  throw Error(ErrorFileAccess, Phrase(text::NoPngWithoutWindow, path));
}

std::shared_ptr<PopupList> HeadlessSurface::MakePopupList() {
  auto list = std::make_shared<HeadlessPopupList>();
  popup_ = list;
  return list;
}

Variant MemoryPropertyStore::Read(std::string_view key, const Variant& defaultValue) const {
  const auto found = values_.find(key);
  return found == values_.end() ? defaultValue : found->second;
}

void MemoryPropertyStore::Write(std::string_view key, const Variant& value, const Variant& defaultValue) {
  if (value == defaultValue) {
    values_.erase(std::string(key));
  } else {
    Write(key, value);
  }
}

void MemoryPropertyStore::Write(std::string_view key, const Variant& value) {
  values_.insert_or_assign(std::string(key), value);
}

}  // namespace zrqrybld
