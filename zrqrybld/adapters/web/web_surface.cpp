#include "zrqrybld/adapters/web/web_surface.h"

#include <cmath>
#include <functional>
#include <utility>
#include <vector>

#include "zrqrybld/adapters/web/fields.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_qt.h"
#include "zrqrybld/platform/mirrored_canvas.h"
#include "zrqrybld/platform/while_alive.h"

namespace zrqrybld {
namespace {

// A line for each entry: how deep it stands, text, key, and whether it is enabled and checked.
void ListEntries(const Menu& menu, int depth, Fields& fields) {
  for (const MenuEntry& entry : menu) {
    const int flags = (entry.enabled ? 1 : 0) | (entry.checked ? 2 : 0) | (entry.entries.empty() ? 0 : 4);
    fields.push_back(Packed({std::to_string(depth), entry.text, entry.shortcut, std::to_string(flags)}));
    ListEntries(entry.entries, depth + 1, fields);
  }
}

// What an editor edits: the current cell by its headers, otherwise the current object by its name.
std::string NameOfEdit(const Ref<Control>& control) {
  const AccessibleTree* tree = control ? control->Accessible() : nullptr;
  if (!tree) return {};
  const AccessibleId current = tree->Current();
  const auto cell = tree->PlaceOf(current);
  if (!cell) return tree->Contains(current) ? tree->Describe(current).name : std::string();
  return tree->Describe(tree->ColumnHeader(cell->column)).name + ", " + tree->Describe(tree->RowHeader(cell->row)).name;
}

const MenuEntry* EntryAt(const Menu& menu, int& place) {
  for (const MenuEntry& entry : menu) {
    if (place-- == 0) return &entry;
    if (const MenuEntry* found = EntryAt(entry.entries, place)) return found;
  }
  return nullptr;
}

}  // namespace

void WebSurface::SetControl(Ref<Control> control) {
  if (const Ref<Control> old = std::exchange(control_, nullptr)) {
    if (&old->GetSurface() == this) old->AttachSurface(nullptr);
  }
  control_ = std::move(control);
  if (control_) control_->AttachSurface(this);
}

void WebSurface::Resize(PixelSize size, bool rightToLeft) {
  size_ = size;
  rightToLeft_ = rightToLeft;
  if (control_) control_->OnResize();
  InvalidateAll();
}

void WebSurface::FontChanged() {
  metrics_.Forget();
  if (control_) control_->AttachSurface(this);
  InvalidateAll();
}

void WebSurface::Paint(const PixelRect& dirty) {
  const Ref<Control> control = control_;
  if (!control) return;
  WebCanvas canvas(metrics_);
  if (!rightToLeft_) {
    control->Paint(canvas, dirty);
    return;
  }
  MirroredCanvas mirrored(canvas, size_.width);
  control->Paint(mirrored, InElement(dirty));
}

PixelPoint WebSurface::OnSurface(PixelPoint place) const {
  return rightToLeft_ ? PixelPoint{size_.width - place.x, place.y} : place;
}

PixelRect WebSurface::InElement(const PixelRect& onSurface) const {
  return rightToLeft_ ? MirroredAt(size_.width, onSurface) : onSurface;
}

void WebSurface::Invalidate(const PixelRect& area) {
  const PixelRect place = InElement(area);
  zrp_invalidate(Number(), place.left.Value(), place.top.Value(), place.width.Value(), place.height.Value());
}

void WebSurface::SetScrollBar(Orientation orientation, const ScrollState& state) {
  zrp_scroll_bar(Number(), orientation == Orientation::Vertical, state.value, state.maximum, state.page, state.step);
}

void WebSurface::SetCursor(Cursor cursor) {
  if (rightToLeft_ && cursor == Cursor::SizeDiagonalDown) {
    cursor = Cursor::SizeDiagonalUp;
  } else if (rightToLeft_ && cursor == Cursor::SizeDiagonalUp) {
    cursor = Cursor::SizeDiagonalDown;
  }
  zrp_cursor(Number(), static_cast<int>(cursor));
}

// Returns at once: nothing happens behind a menu in the library, and what is chosen comes by `ChooseEntry`.
void WebSurface::ShowMenu(const Menu& menu, PixelPoint at) {
  menu_ = menu;
  Fields fields;
  ListEntries(menu_, 0, fields);
  const std::string text = Packed(fields);
  const PixelRect place = InElement({at.x, at.y, {}, {}});
  zrp_menu(Number(), place.left.Value(), place.top.Value(), text.data(), LengthOf(text));
}

void WebSurface::ChooseEntry(int entry) {
  const Menu menu = std::exchange(menu_, {});
  const MenuEntry* chosen = EntryAt(menu, entry);
  if (!chosen || !chosen->enabled || !chosen->action) return;
  const Ref<Control> control = control_;
  chosen->action();
}

void WebSurface::SetClipboardText(std::string_view text) {
  clipboard_ = text;
  zrp_copy(text.data(), LengthOf(text));
}

bool WebSurface::ShowPicture(const Picture& picture, std::string_view name) {
  picture_ = &picture;
  const int shown =
      zrp_picture(Number(), picture.size.width.Value(), picture.size.height.Value(), name.data(), LengthOf(name));
  picture_ = nullptr;
  return shown != 0;
}

void WebSurface::PaintPicture() const {
  if (!picture_) return;
  WebCanvas canvas(metrics_);
  picture_->paint(canvas);
}

void WebSurface::SavePng(const Picture& picture, const std::string& path) {
  if (ShowPicture(picture, path)) return;
  throw Error(ErrorFileAccess, Phrase(text::CannotBeWritten, path, std::string("PNG")));
}

EditorGround WebSurface::Ground() {
  const std::weak_ptr<WebSurface> link = weak_from_this();
  return {Home(), Number(), WhileAlive(link, [this](const PixelRect& place) { return InElement(place); }),
          WhileAlive(link, [this] { return NameOfEdit(control_); })};
}

std::shared_ptr<TextEditor> WebSurface::MakeTextEditor() { return std::make_shared<WebTextEditor>(Ground()); }

std::shared_ptr<PopupList> WebSurface::MakePopupList() { return std::make_shared<WebPopupList>(Ground()); }

}  // namespace zrqrybld
