// How public collections read their `Index` argument (a number is a position from 1, a text is a key), and how they are
// walked.
#pragma once

#include <cmath>
#include <cstddef>
#include <iterator>

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

/// Walks a list of handles by position. Each is looked up when it is reached, and the end is where the list ends then:
/// a listener may add and remove items meanwhile, as it may under a loop that counts. The list must outlive the walk.
template <class T>
class IndexIterator {
 public:
  using iterator_concept = std::forward_iterator_tag;
  using iterator_category = std::input_iterator_tag;  // what it yields is no reference
  using value_type = T;
  using difference_type = std::ptrdiff_t;
  using reference = T;
  using pointer = void;

  IndexIterator() = default;
  explicit IndexIterator(const KeyedList<T>& list) : list_(&list) {}
  T operator*() const { return *list_->At(position_); }
  IndexIterator& operator++() {
    ++position_;
    return *this;
  }
  IndexIterator operator++(int) {
    const IndexIterator before = *this;
    ++*this;
    return before;
  }
  friend bool operator==(const IndexIterator&, const IndexIterator&) = default;
  friend bool operator==(const IndexIterator& at, std::default_sentinel_t) { return at.position_ > at.list_->Count(); }

 private:
  const KeyedList<T>* list_ = nullptr;
  std::size_t position_ = 1;
};

}  // namespace zrqrybld
