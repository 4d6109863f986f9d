// qbDataTypes: the data source's types and how a literal of each is written.
//
// Filled when a connection opens; the grid and the generator look a column's type up by code and
// by whether it is long, because a source may use one code for short and long text.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"

namespace zrqrybld {

/// One type of the data source.
class ZRQRYBLD_API qbDataType final : public Object {
 public:
  std::string_view TypeName() const override { return "qbDataType"; }

  std::string Name;            ///< the source's name of the type
  std::int32_t Indicator = 0;  ///< the type's code, see `DataTypeCode`
  std::string PrefixLetters;   ///< written before a literal of this type
  std::string SuffixLetters;   ///< written after it
  bool IsLong = false;         ///< a long text or binary type

 private:
  friend class qbDataTypes;
  qbDataType() = default;
};

/// The types of the data source, by position from 1 or by name; connecting fills it anew.
class ZRQRYBLD_API qbDataTypes final : public Object {
 public:
  std::string_view TypeName() const override { return "qbDataTypes"; }

  /// Adds a type at the end. Set `IsLong` on the returned item.
  Ref<qbDataType> Add(std::string name = {}, std::int32_t indicator = 0, std::string prefixLetters = {},
                      std::string suffixLetters = {});
  /// Removes all types.
  void Clear() { items_.clear(); }
  /// How many there are; positions run from 1 to it.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  /// Walks them in that order, for a range-based loop.
  CollectionIterator<qbDataTypes> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }

  /// The first type with this code, or nothing.
  Ref<qbDataType> FindByIndicator(std::int32_t indicator) const;

  /// The first type with this code and this length class, or nothing.
  Ref<qbDataType> FindByIndicatorLong(std::int32_t indicator, bool isLong) const;

  /// The type at a position from 1 or with this name in any letter case. Error 9 when there is none.
  Ref<qbDataType> Item(const Variant& index) const { return items_[Require(index)]; }

  /// Removes a type by position or name. Error 9 when there is none.
  void Remove(const Variant& index) { items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(Require(index))); }

 private:
  std::size_t Require(const Variant& index) const;

  // Some dozens of types at most, with names and codes that may repeat: a plain list.
  std::vector<Ref<qbDataType>> items_;
};

}  // namespace zrqrybld
