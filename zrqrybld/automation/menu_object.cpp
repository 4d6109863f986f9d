#include "zrqrybld/automation/menu_object.h"

#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {

MenuItemObject::MenuItemObject(MenuEntry entry) : entry_(std::move(entry)) {
  if (!entry_.entries.empty()) entries_ = std::make_shared<MenuObject>(entry_.entries);
}

void MenuItemObject::Choose() {
  if (!entry_.enabled || entry_.IsSeparator() || entries_) throw Error(ErrorInvalidCall, "The entry cannot be chosen.");
  if (!entry_.action) {
    const Ref<Object> alive = shared_from_this();
    Click.Raise();
    return;
  }
  if (!isShown_) throw Error(ErrorObjectRemoved, "The menu is not shown any more.");
  const std::function<void()> action = entry_.action;  // which may take the entry away
  action();
}

MenuEntry MenuItemObject::Take() {
  isShown_ = false;
  MenuEntry entry = entry_;
  entry.entries.clear();
  if (entries_) {
    entry.entries = entries_->Take();
  } else if (!entry.action) {
    entry.action = [item = RefTo(*this)] { item->Choose(); };
  }
  return entry;
}

MenuObject::MenuObject(const Menu& menu) {
  for (const MenuEntry& entry : menu) items_.push_back(std::make_shared<MenuItemObject>(entry));
}

Ref<MenuItemObject> MenuObject::Add(const std::string& text, const Variant& before) {
  const std::size_t place = before.IsMissing() || before.IsEmpty() ? items_.size() : Place(before);
  const auto item = std::make_shared<MenuItemObject>(MenuEntry{text, {}});
  items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(place), item);
  return item;
}

Menu MenuObject::Take() const {
  Menu menu;
  for (const Ref<MenuItemObject>& item : items_) menu.push_back(item->Take());
  return menu;
}

std::size_t MenuObject::Place(const Variant& index) const {
  if (const std::string* text = index.StringIf()) {
    const auto found = std::ranges::find_if(items_, [text](const Ref<MenuItemObject>& item) {
      return EqualsNoCase(ReplaceAll(item->Text(), "&", ""), *text);
    });
    if (found == items_.end()) ThrowNoSuchItem();
    return static_cast<std::size_t>(found - items_.begin());
  }
  const auto position = Convert<std::int32_t>::From(index);
  if (position < 1 || position > Count()) ThrowNoSuchItem();
  return static_cast<std::size_t>(position - 1);
}

Menu Convert<Menu>::From(const Variant& value) {
  const auto menu = std::dynamic_pointer_cast<MenuObject>(value.ToObject());
  if (!menu) ThrowMismatch(kName, value);
  return menu->Take();
}

}  // namespace zrqrybld
