// qbProperties: an ordered bag of key/value pairs.
//
// The hub, every entity and every entity item own one for free use by the library and the
// application; the query file reader keeps each section of a file in one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/keyed_list.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"

namespace zrqrybld {

/// One pair of a `qbProperties`.
class ZRQRYBLD_API qbProperty final : public Object {
 public:
  std::string_view TypeName() const override { return "qbProperty"; }

  /// The key, "" when the pair was added without one.
  const std::string& Key() const { return key_; }

  /// Any value.
  const Variant& Value() const { return value_; }
  void SetValue(Variant value) { value_ = std::move(value); }

 private:
  friend class qbProperties;
  qbProperty(std::string key, Variant value) : key_(std::move(key)), value_(std::move(value)) {}

  std::string key_;
  Variant value_;
};

/// Pairs in the order of adding, by position from 1 or by key in any letter case.
class ZRQRYBLD_API qbProperties final : public Object {
 public:
  std::string_view TypeName() const override { return "qbProperties"; }

  /// Adds a pair, at the end or beside an existing one (position from 1, or key). Error 457 when the
  /// key is in use, 9 when the neighbour does not exist.
  Ref<qbProperty> Add(Variant value = {}, std::string_view key = {}, const Variant& before = Variant::Missing(),
                      const Variant& after = Variant::Missing());

  /// Removes all pairs, also those that the library has put there.
  void Clear() { items_.Clear(); }
  /// How many there are; positions run from 1 to it.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.Count()); }
  /// Walks them in that order, for a range-based loop.
  CollectionIterator<qbProperties> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }

  /// Whether the key is in use, in any letter case.
  bool Exists(std::string_view key) const { return items_.Find(key) != nullptr; }

  /// Whether exactly this key is in use.
  bool HasExactly(std::string_view key) const { return items_.HasExactly(key); }

  /// The pair at a position from 1 or under a key. Error 9 when there is none.
  Ref<qbProperty> Item(const Variant& index) const { return *items_.At(RequirePosition(items_, index)); }

  /// Removes a pair by position or key. Error 9 when there is none.
  void Remove(const Variant& index) { items_.RemoveAt(RequirePosition(items_, index)); }

  /// The value under the key, or nullptr.
  const Variant* Find(std::string_view key) const;

  /// The text under the key; none when there is no such key or its value is Null.
  std::optional<std::string> FindText(std::string_view key) const;

  /// Sets the value under the key, which is added when it is new.
  void Set(std::string_view key, Variant value);

  /// Removes the key if it is there.
  void RemoveIfPresent(std::string_view key);

 private:
  KeyedList<Ref<qbProperty>> items_;
};

}  // namespace zrqrybld
