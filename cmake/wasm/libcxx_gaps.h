// What the sources use of the C++20 library and Debian's emscripten (its libc++ is of early 2022) does not have yet.
//
// Included before each source of the preset "wasm", and nowhere else. Each piece is the standard's own function, as far
// as the sources need it; a newer library has them all, and then the whole is empty.
#pragma once

#include <version>

#if defined(_LIBCPP_VERSION) && _LIBCPP_VERSION < 15000
#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>

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
template <gap_range R, class C = less, class J = identity>
constexpr void sort(R&& r, C c = {}, J j = {}) {
  std::sort(std::begin(r), std::end(r), gap_by(c, j));
}
template <class I, class S, class C = less, class J = identity>
requires gap_ends<I, S>
constexpr void sort(I first, S last, C c = {}, J j = {}) { std::sort(first, last, gap_by(c, j)); }
template <gap_range R, class C = less, class J = identity>
void stable_sort(R&& r, C c = {}, J j = {}) {
  std::stable_sort(std::begin(r), std::end(r), gap_by(c, j));
}
template <class I, class S, class C = less, class J = identity>
requires gap_ends<I, S>
void stable_sort(I first, S last, C c = {}, J j = {}) { std::stable_sort(first, last, gap_by(c, j)); }
template <gap_range R, class I, class C = less, class J = identity>
constexpr void partial_sort(R&& r, I middle, C c = {}, J j = {}) {
  std::partial_sort(std::begin(r), middle, std::end(r), gap_by(c, j));
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

// The fewest digits that are read as the same number again.
template <class T>
int gap_digits(T value) {
  constexpr int kEnough = is_same_v<T, float> ? 9 : 17;
  char text[64];
  for (int digits = 1; digits < kEnough; ++digits) {
    snprintf(text, sizeof text, "%.*e", digits - 1, static_cast<double>(value));
    if (static_cast<T>(strtod(text, nullptr)) == value) return digits;
  }
  return kEnough;
}
template <class T>
requires is_floating_point_v<T> to_chars_result to_chars(char* first, char* last, T value,
                                                         chars_format format = chars_format::general) {
  char text[400];
  const int digits = gap_digits(value);
  int length = 0;
  if (format == chars_format::fixed) {
    snprintf(text, sizeof text, "%.*e", digits - 1, static_cast<double>(value));
    const char* power = strchr(text, 'e');  // none of infinity
    const int exponent = power ? atoi(power + 1) : 0;
    length = snprintf(text, sizeof text, "%.*f", std::max(0, digits - 1 - exponent), static_cast<double>(value));
  } else {
    length = snprintf(text, sizeof text, "%.*g", digits, static_cast<double>(value));
  }
  if (length > last - first) return {last, errc::value_too_large};
  memcpy(first, text, static_cast<size_t>(length));
  return {first + length, errc{}};
}

inline from_chars_result from_chars(const char* first, const char* last, double& value) {
  char text[400];
  const auto length = static_cast<size_t>(std::min<ptrdiff_t>(last - first, sizeof text - 1));
  // strtod takes spaces, a plus sign and hexadecimals, too; from_chars does not.
  if (length == 0 || isspace(static_cast<unsigned char>(*first)) || *first == '+')
    return {first, errc::invalid_argument};
  memcpy(text, first, length);
  text[length] = 0;
  if (char* x = strpbrk(text, "xX")) *x = 0;
  char* end = nullptr;
  const double read = strtod(text, &end);
  if (end == text) return {first, errc::invalid_argument};
  value = read;
  return {first + (end - text), errc{}};
}

}  // namespace std
#endif
