// Variant: one value of any of the kinds that cross the library's public boundary.
//
// There is one text form, one number reading and one comparison across numeric kinds, so that a
// value read from a file, a cell or a handler behaves the same everywhere.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"

namespace zrqrybld {

/// A point in time: days since 30 December 1899, the fraction being the time of day.
struct DateValue {
  double days = 0;
  friend bool operator==(DateValue a, DateValue b) { return a.days == b.days; }
};

/// What a `Variant` holds.
enum class VariantType : std::uint8_t {
  Empty,    ///< never set
  Null,     ///< a database null
  Missing,  ///< an optional argument that was not given
  Boolean,
  Int16,
  Int32,
  Int64,
  Single,
  Double,
  Date,
  String,  ///< UTF-8
  Object,  ///< a handle, possibly nothing
  Array,
};

/// A value of one of the kinds above.
class ZRQRYBLD_API Variant {
 public:
  // None of these is inline: what the standard library's variant makes of them takes every file that includes this a
  // second to compile.
  Variant();
  Variant(const Variant& other);
  Variant(Variant&& other) noexcept;
  Variant& operator=(const Variant& other);
  Variant& operator=(Variant&& other) noexcept;
  ~Variant();
  Variant(bool value);
  Variant(std::int16_t value);
  Variant(std::int32_t value);
  Variant(std::int64_t value);
  Variant(float value);
  Variant(double value);
  Variant(DateValue value);
  Variant(std::string value);
  Variant(std::string_view value);
  Variant(const char* value);
  Variant(const void*) = delete;  ///< any other pointer would silently become True
  Variant(Ref<Object> value);
  Variant(std::vector<Variant> value);

  static Variant Null();
  static Variant Missing();

  VariantType Type() const { return static_cast<VariantType>(value_.index()); }
  bool IsEmpty() const { return Type() == VariantType::Empty; }
  bool IsNull() const { return Type() == VariantType::Null; }
  bool IsMissing() const { return Type() == VariantType::Missing; }
  bool IsString() const { return Type() == VariantType::String; }

  /// Whether nothing a person could see is held: Empty, Null, Missing or "".
  bool IsBlank() const;

  /// The text held, or nullptr when this is no string. For comparing cells without copying.
  const std::string* StringIf() const { return std::get_if<std::string>(&value_); }

  /// The text form: True/False, shortest decimal numbers, dates as yyyy-mm-dd hh:nn:ss; "" for
  /// Empty, Null, Missing, objects and arrays.
  std::string Text() const;

  /// The number held or written in a string; True is -1, False is 0. None for everything else.
  std::optional<double> Number() const;

  /// As `Number`, rounded to an integer; error 13 when there is no number or it is out of range.
  std::int32_t ToInt32() const;

  /// The truth held: a Boolean, a number (non-zero is true) or the text "True"/"False" in any case;
  /// error 13 for everything else.
  bool ToBoolean() const;

  /// The handle held; nothing when this is no object.
  Ref<Object> ToObject() const;

  /// The date, or the integer of this size, held; nullptr when this is none.
  const DateValue* DateIf() const { return std::get_if<DateValue>(&value_); }
  const std::int32_t* Int32If() const { return std::get_if<std::int32_t>(&value_); }
  const std::int64_t* Int64If() const { return std::get_if<std::int64_t>(&value_); }

  /// The elements held; none when this is no array.
  const std::vector<Variant>* ArrayIf() const { return std::get_if<std::vector<Variant>>(&value_); }

  /// Equal values: numbers of any numeric kind by value, texts exactly, objects by identity. A text
  /// never equals a number.
  friend bool operator==(const Variant& a, const Variant& b);

 private:
  struct NullTag {
    friend bool operator==(NullTag, NullTag) = default;
  };
  struct MissingTag {
    friend bool operator==(MissingTag, MissingTag) = default;
  };
  using Storage = std::variant<std::monostate, NullTag, MissingTag, bool, std::int16_t, std::int32_t, std::int64_t,
                               float, double, DateValue, std::string, Ref<Object>, std::vector<Variant>>;
  explicit Variant(Storage value);
  bool IsNumeric() const;
  static bool IsInteger(const Variant& number, std::int64_t integer);

  Storage value_;
};

}  // namespace zrqrybld
