// How C++ types cross the automation boundary: `Convert<T>` turns a value into a Variant and back.
//
// A value that cannot be read as the type asked for is error 13, which names both; a number or a Boolean is
// read as a text and a text as a number where it says one, as callers without types expect.
#pragma once

#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "zrqrybld/automation/font_object.h"
#include "zrqrybld/automation/public_names.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/units.h"
#include "zrqrybld/base/variant.h"

namespace zrqrybld {

/// Error 13: `value` is not what a `wanted` can be read from.
[[noreturn]] void ThrowMismatch(std::string_view wanted, const Variant& value);

template <class T>
struct Convert;

template <>
struct Convert<Variant> {
  static constexpr std::string_view kName = "Variant";
  static Variant To(Variant value) { return value; }
  static Variant From(const Variant& value) { return value; }
};

template <>
struct Convert<bool> {
  static constexpr std::string_view kName = "Boolean";
  static Variant To(bool value) { return value; }
  static bool From(const Variant& value) { return value.ToBoolean(); }
};

template <>
struct Convert<std::string> {
  static constexpr std::string_view kName = "String";
  static Variant To(std::string_view value) { return value; }
  static std::string From(const Variant& value);
};
template <>
struct Convert<std::string_view> : Convert<std::string> {};

/// Whole numbers, and characters by their code.
template <std::integral T>
struct Convert<T> {
  static constexpr std::string_view kName = sizeof(T) == 2 ? "Integer" : sizeof(T) == 4 ? "Long" : "LongLong";
  using Wide =
      std::conditional_t<sizeof(T) == 2, std::int16_t, std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t>>;
  static Variant To(T value) { return static_cast<Wide>(value); }
  static T From(const Variant& value) {
    const std::optional<double> number = value.Number();
    const double whole = number ? std::nearbyint(*number) : 0;
    if (!number || !(whole >= static_cast<double>(std::numeric_limits<Wide>::min()) &&
                     whole <= static_cast<double>(std::numeric_limits<Wide>::max()))) {
      ThrowMismatch(kName, value);
    }
    return static_cast<T>(static_cast<Wide>(whole));
  }
};

template <std::floating_point T>
struct Convert<T> {
  static constexpr std::string_view kName = sizeof(T) == 4 ? "Single" : "Double";
  static Variant To(T value) { return value; }
  static T From(const Variant& value) {
    const std::optional<double> number = value.Number();
    if (!number) ThrowMismatch(kName, value);
    return static_cast<T>(*number);
  }
};

/// A named number. One that has no name is error 40005.
template <class T>
requires std::is_enum_v<T>
struct Convert<T> {
  static constexpr std::string_view kName = kPublicName<T>;
  static_assert(!kName.empty(), "the enumeration is not among the public names");
  static Variant To(T value) { return static_cast<std::int32_t>(value); }
  static T From(const Variant& value) {
    const std::int32_t number = Convert<std::int32_t>::From(value);
    if (!IsEnumerationValue(kName, number)) throw Error(ErrorInvalidPropertyValue, "Invalid Property Value.");
    return static_cast<T>(number);
  }
};

/// A handle; nothing is Empty.
template <std::derived_from<Object> T>
struct Convert<Ref<T>> {
  static constexpr std::string_view kName = kPublicName<T>;
  static_assert(!kName.empty(), "the class is not among the public names");
  static Variant To(const Ref<T>& value) {
    return value ? Variant(std::static_pointer_cast<Object>(value)) : Variant();
  }
  static Ref<T> From(const Variant& value) {
    if (value.IsBlank() && !value.IsString()) return nullptr;
    const Ref<Object> object = value.ToObject();
    const Ref<T> typed = std::dynamic_pointer_cast<T>(object);
    if (!typed && (object || value.Type() != VariantType::Object)) ThrowMismatch(kName, value);
    return typed;
  }
};

/// A colour is its number; both the signed and the unsigned form of a system colour are taken.
template <>
struct Convert<Color> {
  static constexpr std::string_view kName = "Color";
  static Variant To(Color color) { return static_cast<std::int64_t>(color.value); }
  static Color From(const Variant& value);
};

template <>
struct Convert<Font> {
  static constexpr std::string_view kName = "Font";
  static Font From(const Variant& value);
};

template <>
struct Convert<std::vector<std::string>> {
  static constexpr std::string_view kName = "String()";
  static Variant To(const std::vector<std::string>& texts);
  /// A single text counts as an array of one.
  static std::vector<std::string> From(const Variant& value);
};

template <>
struct Convert<std::vector<Variant>> {
  static constexpr std::string_view kName = "Variant()";
  static Variant To(std::vector<Variant> values) { return values; }
  static std::vector<Variant> From(const Variant& value);
};

/// An argument that may be left out.
template <class T>
struct Convert<std::optional<T>> {
  static constexpr std::string_view kName = Convert<T>::kName;
  static Variant To(const std::optional<T>& value) { return value ? Convert<T>::To(*value) : Variant(); }
  static std::optional<T> From(const Variant& value) {
    if (value.IsMissing() || value.IsEmpty()) return std::nullopt;
    return Convert<T>::From(value);
  }
};

}  // namespace zrqrybld
