// How public collections read their `Index` argument: a number is a position from 1, a text is a key. How they are
// walked.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/keyed_list.h"
#include "zrqrybld/base/variant.h"

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

/// Walks a public collection by position, handing out what `Item` does. A collection may change meanwhile: the walk
/// goes on at the next position and ends behind the last item that is there then.
template <class Collection>
class CollectionIterator {
 public:
  using iterator_concept = std::input_iterator_tag;
  using reference = decltype(std::declval<const Collection&>().Item(std::int32_t{1}));
  using value_type = std::remove_cvref_t<reference>;
  using difference_type = std::ptrdiff_t;

  CollectionIterator() = default;
  explicit CollectionIterator(const Collection& collection) : collection_(&collection) {}
  reference operator*() const { return collection_->Item(position_); }
  CollectionIterator& operator++() {
    ++position_;
    return *this;
  }
  CollectionIterator operator++(int) {
    CollectionIterator before = *this;
    ++position_;
    return before;
  }
  friend bool operator==(const CollectionIterator& one, std::default_sentinel_t) {
    return one.position_ > one.collection_->Count();
  }
  friend bool operator==(const CollectionIterator&, const CollectionIterator&) = default;

 private:
  const Collection* collection_ = nullptr;
  std::int32_t position_ = 1;
};

}  // namespace zrqrybld
