// How public collections read their `Index` argument: a number is a position from 1, a text is a key.
#pragma once

#include <cmath>
#include <cstddef>

#include "base/error.h"
#include "base/keyed_list.h"
#include "base/variant.h"

namespace zrqrybld {

/// The position that `index` names in `list`; `KeyedList::kNone` when there is none.
template <class T>
std::size_t PositionOf(const KeyedList<T>& list, const Variant& index) {
  if (const std::string* key = index.StringIf()) return list.PositionOf(*key);
  if (const std::int32_t* position = index.Int32If()) {
    return *position >= 1 && static_cast<std::size_t>(*position) <= list.Count() ? static_cast<std::size_t>(*position)
                                                                                 : KeyedList<T>::kNone;
  }
  const std::optional<double> number = index.Number();
  if (!number) return KeyedList<T>::kNone;
  const double position = std::nearbyint(*number);
  if (!(position >= 1 && position <= static_cast<double>(list.Count()))) return KeyedList<T>::kNone;
  return static_cast<std::size_t>(position);
}

/// As `PositionOf`, but a missing item is error 9.
template <class T>
std::size_t RequirePosition(const KeyedList<T>& list, const Variant& index) {
  const std::size_t position = PositionOf(list, index);
  if (position == KeyedList<T>::kNone) ThrowNoSuchItem();
  return position;
}

/// The handle that `index` names, or nothing. For lists of handles.
template <class T>
T ItemOrNothing(const KeyedList<T>& list, const Variant& index) {
  const T* item = list.At(PositionOf(list, index));
  return item ? *item : T();
}

/// The place for a new item: before or after an existing one, else at the end. Error 9 when the
/// neighbour does not exist.
template <class T>
std::size_t PlaceFor(const KeyedList<T>& list, const Variant& before, const Variant& after) {
  const auto given = [](const Variant& v) { return !v.IsMissing() && !v.IsEmpty(); };
  if (given(before)) return RequirePosition(list, before);
  if (given(after)) return RequirePosition(list, after) + 1;
  return list.Count() + 1;
}

}  // namespace zrqrybld
