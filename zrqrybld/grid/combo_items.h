// The choices of a combo column: texts with a tag and an optional key.
#pragma once

#include <cstdint>
#include <string>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"

namespace zrqrybld {

/// One choice.
class ZRQRYBLD_API zrGridComboItem final : public Object {
 public:
  std::string_view TypeName() const override { return "zrGridComboItem"; }

  /// A value of the owner's; the grid stores it in the cell's tag when the choice is taken.
  const Variant& Tag() const { return tag_; }
  void SetTag(Variant tag) { tag_ = std::move(tag); }
  /// What the list shows.
  const std::string& Text() const { return text_; }
  void SetText(std::string text) { text_ = std::move(text); }
  /// The key as it was given or set; the list finds the choice by the one that it was added with. "" for none.
  const std::string& Key() const { return key_; }
  void SetKey(std::string key) { key_ = std::move(key); }

 private:
  friend class zrGridComboItems;
  zrGridComboItem(std::string text, Variant tag, std::string key)
      : tag_(std::move(tag)), text_(std::move(text)), key_(std::move(key)) {}

  Variant tag_;
  std::string text_;
  std::string key_;
};

/// The choices of one column in the order of its list, by position from 1 or by key.
class ZRQRYBLD_API zrGridComboItems final : public Object {
 public:
  std::string_view TypeName() const override { return "zrGridComboItems"; }

  /// Adds a choice at the end. Error 457 when the key is in use.
  Ref<zrGridComboItem> Add(std::string text, Variant tag = {}, const std::string& key = {}) {
    const Ref<zrGridComboItem> item(new zrGridComboItem(std::move(text), std::move(tag), key));
    return items_.Insert(item, key);
  }
  /// Removes all choices.
  void Clear() { items_.Clear(); }
  /// How many there are; positions run from 1 to it.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.Count()); }
  /// The choice at a position from 1 or under a key. Error 9 when there is none.
  Ref<zrGridComboItem> Item(const Variant& index) const { return *items_.At(RequirePosition(items_, index)); }
  /// Removes a choice by position or key. Error 9 when there is none.
  void Remove(const Variant& index) { items_.RemoveAt(RequirePosition(items_, index)); }

  /// The items in their order, as handles; see `CollectionIterator`.
  CollectionIterator<zrGridComboItems> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }

 private:
  KeyedList<Ref<zrGridComboItem>> items_;
};

}  // namespace zrqrybld
