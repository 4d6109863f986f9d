// A context menu that is about to be shown, as scripts see it: they read its entries, add and remove some.
//
// Its own entries can be chosen only while the handler runs that got the menu: what they do refers to what is shown
// then.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "zrqrybld/automation/binding.h"
#include "zrqrybld/base/event.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/platform/menu.h"

namespace zrqrybld {

class MenuObject;

/// One line of a menu.
class MenuItemObject final : public Object {
 public:
  explicit MenuItemObject(MenuEntry entry);
  std::string_view TypeName() const override { return "MenuItem"; }

  /// The entry has been chosen; only those that a script has added tell so.
  Event<> Click;

  /// What it says; an ampersand marks the access key. "" for a line between groups.
  const std::string& Text() const { return entry_.text; }
  void SetText(std::string text) { entry_.text = std::move(text); }
  /// The key that does the same, as it is shown; "" for none.
  const std::string& Shortcut() const { return entry_.shortcut; }
  /// Whether it can be chosen.
  bool Enabled() const { return entry_.enabled; }
  void SetEnabled(bool enabled) { entry_.enabled = enabled; }
  /// Whether it bears a check mark.
  bool Checked() const { return entry_.checked; }
  void SetChecked(bool checked) { entry_.checked = checked; }
  /// The menu that opens beside it; nothing when it does something itself.
  const Ref<MenuObject>& Entries() const { return entries_; }
  /// Does what choosing it does. Error 5 when it cannot be chosen, 91 when the menu's handler has returned.
  void Choose();

  /// The entry for the menu that is shown; from now on it cannot be chosen here.
  MenuEntry Take();

 private:
  MenuEntry entry_;
  Ref<MenuObject> entries_;
  bool isShown_ = true;
};

/// A menu, by position from 1 or by an entry's text without ampersands.
class MenuObject final : public Object {
 public:
  explicit MenuObject(const Menu& menu);
  std::string_view TypeName() const override { return "ContextMenu"; }

  /// How many entries there are, lines between groups among them.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  /// The entry; error 9 when there is none.
  const Ref<MenuItemObject>& Item(const Variant& index) const { return items_[Place(index)]; }
  /// Adds an entry, at the end or before another; "" adds a line between groups. Its `Click` tells when it is chosen.
  Ref<MenuItemObject> Add(const std::string& text, const Variant& before);
  /// Removes an entry. Error 9 when there is none.
  void Remove(const Variant& index) { items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(Place(index))); }
  /// Removes all; an empty menu is not shown.
  void Clear() { items_.clear(); }

  /// The menu that is shown; see `MenuItemObject::Take`.
  Menu Take() const;

 private:
  std::size_t Place(const Variant& index) const;
  std::vector<Ref<MenuItemObject>> items_;
};

ZRQRYBLD_PUBLIC_AS(MenuItemObject, "MenuItem");
ZRQRYBLD_PUBLIC_AS(MenuObject, "ContextMenu");

/// A menu crosses as an object that the handler changes.
template <>
struct Convert<Menu> {
  static constexpr std::string_view kName = "ContextMenu";
  static Variant To(const Menu& menu) { return Ref<Object>(std::make_shared<MenuObject>(menu)); }
  static Menu From(const Variant& value);
};
template <>
class Argument<Menu&> {
 public:
  static constexpr ArgumentType kType{"ContextMenu", false};
};
template <>
inline constexpr bool kChangedInPlace<Menu> = true;

}  // namespace zrqrybld
