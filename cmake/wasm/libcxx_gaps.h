// What the sources use of the C++20 library and Debian's emscripten (its libc++ is of early 2022) does not have yet.
//
// Included before each source of the preset "wasm", and nowhere else. Each piece is the standard's own function, as far
// as the sources need it; a newer library has them all, and then the whole is empty.
#pragma once

#include <version>

#if defined(_LIBCPP_VERSION) && _LIBCPP_VERSION < 15000
// Functions as values come without what tells their types, which nobody asks and which would keep the name of each in
// the data. Everything else has its types.
#ifndef _LIBCPP_NO_RTTI
#define _LIBCPP_NO_RTTI
#include <functional>
#undef _LIBCPP_NO_RTTI
#endif
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

// Numbers are JavaScript's affair (bindings/web/imports/callbacks.js): those of the C library are a fiftieth of the
// whole.
extern "C" {
int zrj_number_text(double value, int isSingle, int plainOnly, char* text);
int zrj_number(const char* text, int length, double* value);
}

namespace std::ranges {

template <class R>
concept gap_range = requires(R& r) {
  std::begin(r);
  std::end(r);
};

// An array decays into a pointer: only what can be compared with it ends what begins there.
template <class I, class S>
concept gap_ends = !gap_range<I> && requires(const I& i, const S& s) {
  i == s;
};

// What compares two elements by what a projection makes of them.
template <class C, class J>
constexpr auto gap_by(C& c, J& j) {
  return [&c, &j](auto&& a, auto&& b) -> bool { return std::invoke(c, std::invoke(j, a), std::invoke(j, b)); };
}

template <class I, class S, class P, class J = identity>
requires gap_ends<I, S>
constexpr I find_if(I first, S last, P p, J j = {}) {
  while (first != last && !std::invoke(p, std::invoke(j, *first))) ++first;
  return first;
}
template <gap_range R, class P, class J = identity>
constexpr auto find_if(R&& r, P p, J j = {}) {
  return ranges::find_if(std::begin(r), std::end(r), std::ref(p), std::ref(j));
}
template <class I, class S, class T, class J = identity>
requires gap_ends<I, S>
constexpr I find(I first, S last, const T& value, J j = {}) {
  return ranges::find_if(
      first, last, [&](const auto& x) { return x == value; }, std::ref(j));
}
template <gap_range R, class T, class J = identity>
constexpr auto find(R&& r, const T& value, J j = {}) {
  return ranges::find(std::begin(r), std::end(r), value, std::ref(j));
}
template <gap_range R, class P, class J = identity>
constexpr bool any_of(R&& r, P p, J j = {}) {
  return ranges::find_if(r, std::ref(p), std::ref(j)) != std::end(r);
}
template <class I, class S, class P, class J = identity>
requires gap_ends<I, S>
constexpr bool any_of(I first, S last, P p, J j = {}) {
  return ranges::find_if(first, last, std::ref(p), std::ref(j)) != last;
}
template <class... A>
constexpr bool none_of(A&&... a) {
  return !ranges::any_of(std::forward<A>(a)...);
}
template <gap_range R, class P, class J = identity>
constexpr bool all_of(R&& r, P p, J j = {}) {
  return !ranges::any_of(r, std::not_fn(std::ref(p)), std::ref(j));
}
template <class I, class S, class P, class J = identity>
requires gap_ends<I, S>
constexpr bool all_of(I first, S last, P p, J j = {}) {
  return !ranges::any_of(first, last, std::not_fn(std::ref(p)), std::ref(j));
}
template <gap_range R, class P, class J = identity>
constexpr ptrdiff_t count_if(R&& r, P p, J j = {}) {
  ptrdiff_t count = 0;
  for (auto&& x : r) count += std::invoke(p, std::invoke(j, x)) ? 1 : 0;
  return count;
}
template <gap_range R, class T, class J = identity>
constexpr auto count(R&& r, const T& value, J j = {}) {
  return ranges::count_if(
      r, [&](const auto& x) { return x == value; }, std::ref(j));
}
// One sorting for all kinds of elements, stable: it orders their numbers. The library's own are a copy for each kind
// and each comparison.
using gap_before = bool (*)(const void* comparison, size_t a, size_t b);
[[gnu::noinline]] inline void gap_order(size_t* order, size_t count, gap_before before, const void* comparison) {
  if (count < 2) return;
  const size_t half = count / 2;
  gap_order(order, half, before, comparison);
  gap_order(order + half, count - half, before, comparison);
  const std::vector<size_t> left(order, order + half);
  size_t a = 0;
  for (size_t b = half, to = 0; a < half; ++to) {
    order[to] = b < count && before(comparison, order[b], left[a]) ? order[b++] : left[a++];
  }
}
template <class I, class S, class B>
void gap_sort_moving(I first, S last, const B& before) {
  const auto count = static_cast<size_t>(last - first);
  if (count < 2) return;
  std::vector<size_t> order(count);
  for (size_t i = 0; i < count; ++i) order[i] = i;
  const auto compare = [&](size_t a, size_t b) -> bool { return before(first[ptrdiff_t(a)], first[ptrdiff_t(b)]); };
  gap_order(
      order.data(), count,
      [](const void* comparison, size_t a, size_t b) {
        return (*static_cast<const decltype(compare)*>(comparison))(a, b);
      },
      &compare);
  // Each to its place, along the circles in which they change places.
  for (size_t i = 0; i < count; ++i) {
    if (order[i] == i) continue;
    auto kept = std::move(first[ptrdiff_t(i)]);
    size_t to = i;
    for (size_t from; (from = order[to]) != i; to = from) {
      first[ptrdiff_t(to)] = std::move(first[ptrdiff_t(from)]);
      order[to] = to;
    }
    first[ptrdiff_t(to)] = std::move(kept);
    order[to] = to;
  }
}
template <class I, class S, class B>
constexpr void gap_sort(I first, S last, const B& before) {
  if (is_constant_evaluated()) return std::sort(first, last, before);
  ranges::gap_sort_moving(first, last, before);
}
template <gap_range R, class C = less, class J = identity>
constexpr void sort(R&& r, C c = {}, J j = {}) {
  ranges::gap_sort(std::begin(r), std::end(r), gap_by(c, j));
}
template <class I, class S, class C = less, class J = identity>
requires gap_ends<I, S>
constexpr void sort(I first, S last, C c = {}, J j = {}) { ranges::gap_sort(first, last, gap_by(c, j)); }
template <gap_range R, class C = less, class J = identity>
void stable_sort(R&& r, C c = {}, J j = {}) {
  ranges::gap_sort(std::begin(r), std::end(r), gap_by(c, j));
}
template <class I, class S, class C = less, class J = identity>
requires gap_ends<I, S>
void stable_sort(I first, S last, C c = {}, J j = {}) { ranges::gap_sort(first, last, gap_by(c, j)); }
template <gap_range R, class I, class C = less, class J = identity>
constexpr void partial_sort(R&& r, I, C c = {}, J j = {}) {
  ranges::gap_sort(std::begin(r), std::end(r), gap_by(c, j));
}
template <gap_range R, class C = less, class J = identity>
constexpr bool is_sorted(R&& r, C c = {}, J j = {}) {
  return std::is_sorted(std::begin(r), std::end(r), gap_by(c, j));
}
template <gap_range R, class C = less, class J = identity>
constexpr auto is_sorted_until(R&& r, C c = {}, J j = {}) {
  return std::is_sorted_until(std::begin(r), std::end(r), gap_by(c, j));
}
template <gap_range R, class T, class C = less, class J = identity>
constexpr auto lower_bound(R&& r, const T& value, C c = {}, J j = {}) {
  return std::lower_bound(std::begin(r), std::end(r), value,
                          [&](auto&& a, const T& b) -> bool { return std::invoke(c, std::invoke(j, a), b); });
}
template <gap_range R, class T, class C = less, class J = identity>
constexpr auto upper_bound(R&& r, const T& value, C c = {}, J j = {}) {
  return std::upper_bound(std::begin(r), std::end(r), value,
                          [&](const T& a, auto&& b) -> bool { return std::invoke(c, a, std::invoke(j, b)); });
}
template <gap_range R, class T, class C = less>
constexpr bool binary_search(R&& r, const T& value, C c = {}) {
  return std::binary_search(std::begin(r), std::end(r), value, c);
}
template <gap_range R, class O, class F>
constexpr void transform(R&& r, O out, F f) {
  std::transform(std::begin(r), std::end(r), out, std::ref(f));
}
template <gap_range R, class P = equal_to, class J = identity>
constexpr auto adjacent_find(R&& r, P p = {}, J j = {}) {
  return std::adjacent_find(std::begin(r), std::end(r), gap_by(p, j));
}
template <gap_range R, class C = less, class J = identity>
constexpr auto max_element(R&& r, C c = {}, J j = {}) {
  return std::max_element(std::begin(r), std::end(r), gap_by(c, j));
}
template <gap_range R, class O, class P, class J = identity>
constexpr void copy_if(R&& r, O out, P p, J j = {}) {
  std::copy_if(std::begin(r), std::end(r), out, [&](auto&& x) -> bool { return std::invoke(p, std::invoke(j, x)); });
}
template <gap_range R, class T>
constexpr void fill(R&& r, const T& value) {
  std::fill(std::begin(r), std::end(r), value);
}
template <gap_range R, class C = less, class J = identity>
constexpr void push_heap(R&& r, C c = {}, J j = {}) {
  std::push_heap(std::begin(r), std::end(r), gap_by(c, j));
}
template <gap_range R, class C = less, class J = identity>
constexpr void pop_heap(R&& r, C c = {}, J j = {}) {
  std::pop_heap(std::begin(r), std::end(r), gap_by(c, j));
}
template <gap_range R, class O>
constexpr void move(R&& r, O out) {
  std::move(std::begin(r), std::end(r), out);
}
template <gap_range R, class C = less, class J = identity>
constexpr auto max(R&& r, C c = {}, J j = {}) {
  return *std::max_element(std::begin(r), std::end(r), gap_by(c, j));
}
template <gap_range R, class O>
constexpr void copy(R&& r, O out) {
  std::copy(std::begin(r), std::end(r), out);
}
template <gap_range R>
constexpr void reverse(R&& r) {
  std::reverse(std::begin(r), std::end(r));
}
template <gap_range R, class P, class T>
constexpr void replace_if(R&& r, P p, const T& value) {
  std::replace_if(std::begin(r), std::end(r), std::ref(p), value);
}
template <gap_range R, class A, class B>
constexpr void replace(R&& r, const A& old, const B& value) {
  std::replace(std::begin(r), std::end(r), old, value);
}
template <gap_range R, gap_range S, class P = equal_to, class J = identity, class K = identity>
constexpr bool equal(R&& r, S&& s, P p = {}, J j = {}, K k = {}) {
  auto a = std::begin(r);
  auto b = std::begin(s);
  while (a != std::end(r) && b != std::end(s)) {
    if (!std::invoke(p, std::invoke(j, *a), std::invoke(k, *b))) return false;
    ++a;
    ++b;
  }
  return a == std::end(r) && b == std::end(s);
}

}  // namespace std::ranges

namespace std {

template <class T>
unique_ptr<T> make_unique_for_overwrite(size_t n = 0) {
  if constexpr (is_array_v<T>) {
    return unique_ptr<T>(new remove_extent_t<T>[n]);
  } else {
    return unique_ptr<T>(new T);
  }
}

template <class T>
requires is_floating_point_v<T> to_chars_result to_chars(char* first, char* last, T value,
                                                         chars_format format = chars_format::general) {
  char text[400];
  const int length =
      zrj_number_text(static_cast<double>(value), is_same_v<T, float>, format == chars_format::fixed, text);
  if (length > last - first) return {last, errc::value_too_large};
  memcpy(first, text, static_cast<size_t>(length));
  return {first + length, errc{}};
}

inline from_chars_result from_chars(const char* first, const char* last, double& value) {
  const int length = zrj_number(first, static_cast<int>(last - first), &value);
  if (length < 0) return {last, errc::result_out_of_range};
  return {first + length, length == 0 ? errc::invalid_argument : errc{}};
}

}  // namespace std
#endif
