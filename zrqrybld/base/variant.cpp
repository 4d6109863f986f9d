#include "zrqrybld/base/variant.h"

#include <charconv>
#include <cmath>
#include <iterator>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_base.h"

namespace zrqrybld {
namespace {

// At least so many characters, with zeros in front.
std::string Digits(std::int64_t number, std::size_t fewest) {
  std::string text = std::to_string(number);
  const std::size_t sign = number < 0 ? 1 : 0;
  if (text.size() < fewest) text.insert(sign, fewest - text.size(), '0');
  return text;
}

// Days since 1899-12-30 as text, by the proleptic Gregorian calendar.
std::string DateText(DateValue date) {
  constexpr std::int64_t kDaysFrom0000To1899 = 693899;  // 0000-03-01 to 1899-12-30
  constexpr double kFurthest = 3'000'000;
  if (!(std::fabs(date.days) < kFurthest)) return {};
  const auto seconds = static_cast<std::int64_t>(std::llround(date.days * 86400));
  std::int64_t day = seconds / 86400;
  std::int64_t rest = seconds % 86400;
  if (rest < 0) {
    --day;
    rest += 86400;
  }
  const std::int64_t z = day + kDaysFrom0000To1899;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const std::int64_t dayOfEra = z - era * 146097;
  const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t shifted = (5 * dayOfYear + 2) / 153;
  const auto dayOfMonth = static_cast<int>(dayOfYear - (153 * shifted + 2) / 5 + 1);
  const auto month = static_cast<int>(shifted < 10 ? shifted + 3 : shifted - 9);
  const auto year = static_cast<int>(yearOfEra + era * 400 + (month <= 2 ? 1 : 0));
  std::string text = Digits(year, 4);
  const std::int64_t parts[] = {month, dayOfMonth, rest / 3600, rest / 60 % 60, rest % 60};
  for (std::size_t i = 0; i < std::size(parts); ++i) {
    text += "-- ::"[i];
    text += Digits(parts[i], 2);
  }
  return text;
}

[[noreturn]] void ThrowTypeMismatch() { throw Error(ErrorTypeMismatch, text::WrongKindOfValue); }

}  // namespace

Variant::Variant() = default;
// By assignment: when memory runs out in its copy constructor, the standard library's variant (libstdc++ 12) destroys
// what it has not made.
Variant::Variant(const Variant& other) { value_ = other.value_; }
Variant::Variant(Variant&&) noexcept = default;
Variant& Variant::operator=(const Variant&) = default;
Variant& Variant::operator=(Variant&&) noexcept = default;
Variant::~Variant() = default;
Variant::Variant(bool value) : value_(value) {}
Variant::Variant(std::int16_t value) : value_(value) {}
Variant::Variant(std::int32_t value) : value_(value) {}
Variant::Variant(std::int64_t value) : value_(value) {}
Variant::Variant(float value) : value_(value) {}
Variant::Variant(double value) : value_(value) {}
Variant::Variant(DateValue value) : value_(value) {}
Variant::Variant(std::string value) : value_(std::move(value)) {}
Variant::Variant(std::string_view value) : value_(std::string(value)) {}
Variant::Variant(const char* value) : value_(std::string(value)) {}
Variant::Variant(Ref<Object> value) : value_(std::move(value)) {}
Variant::Variant(std::vector<Variant> value) : value_(std::move(value)) {}
Variant::Variant(Storage value) : value_(std::move(value)) {}

Variant Variant::Null() { return Variant(Storage(NullTag{})); }
Variant Variant::Missing() { return Variant(Storage(MissingTag{})); }

bool Variant::IsNumeric() const {
  const VariantType type = Type();
  return type >= VariantType::Boolean && type <= VariantType::Date;
}

bool Variant::IsBlank() const {
  if (const std::string* text = StringIf()) return text->empty();
  return Type() <= VariantType::Missing;
}

std::string Variant::Text() const {
  switch (Type()) {
    case VariantType::Boolean:
      return std::get<bool>(value_) ? "True" : "False";
    case VariantType::Int16:
      return std::to_string(std::get<std::int16_t>(value_));
    case VariantType::Int32:
      return std::to_string(std::get<std::int32_t>(value_));
    case VariantType::Int64:
      return std::to_string(std::get<std::int64_t>(value_));
    case VariantType::Single: {
      // The shortest text of the single, not of the double that holds it: 0.1, not 0.10000000149.
      char buffer[64];
      const auto result = std::to_chars(std::begin(buffer), std::end(buffer), std::get<float>(value_));
      const std::string_view shortest(buffer, static_cast<std::size_t>(result.ptr - buffer));
      const std::optional<double> number = ParseNumber(shortest);
      return number ? NumberText(*number) : std::string(shortest);
    }
    case VariantType::Double:
      return NumberText(std::get<double>(value_));
    case VariantType::Date:
      return DateText(std::get<DateValue>(value_));
    case VariantType::String:
      return std::get<std::string>(value_);
    default:
      return {};
  }
}

std::optional<double> Variant::Number() const {
  switch (Type()) {
    case VariantType::Boolean:
      return std::get<bool>(value_) ? -1.0 : 0.0;
    case VariantType::Int16:
      return std::get<std::int16_t>(value_);
    case VariantType::Int32:
      return std::get<std::int32_t>(value_);
    case VariantType::Int64:
      return static_cast<double>(std::get<std::int64_t>(value_));
    case VariantType::Single:
      return static_cast<double>(std::get<float>(value_));
    case VariantType::Double:
      return std::get<double>(value_);
    case VariantType::Date:
      return std::get<DateValue>(value_).days;
    case VariantType::String:
      return ParseNumber(std::get<std::string>(value_));
    default:
      return std::nullopt;
  }
}

std::int32_t Variant::ToInt32() const {
  const std::optional<double> number = Number();
  if (!number) ThrowTypeMismatch();
  const double rounded = std::nearbyint(*number);
  if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0)) ThrowTypeMismatch();
  return static_cast<std::int32_t>(rounded);
}

bool Variant::ToBoolean() const {
  if (const auto* truth = std::get_if<bool>(&value_)) return *truth;
  if (const std::string* text = StringIf()) {
    if (EqualsNoCase(*text, "True")) return true;
    if (EqualsNoCase(*text, "False")) return false;
  }
  if (const std::optional<double> number = Number()) return *number != 0;
  ThrowTypeMismatch();
}

Ref<Object> Variant::ToObject() const {
  const auto* object = std::get_if<Ref<Object>>(&value_);
  return object ? *object : nullptr;
}

// A double cannot tell large neighbouring integers apart, so the number is turned into an integer, not the other way.
bool Variant::IsInteger(const Variant& number, std::int64_t integer) {
  if (const auto* other = std::get_if<std::int64_t>(&number.value_)) return *other == integer;
  constexpr double kBehindLargest = 9223372036854775808.0;
  const double value = number.Number().value_or(kBehindLargest);
  return value >= -kBehindLargest && value < kBehindLargest && std::trunc(value) == value &&
         static_cast<std::int64_t>(value) == integer;
}

bool operator==(const Variant& a, const Variant& b) {
  if (a.Type() == b.Type()) return a.value_ == b.value_;
  if (!a.IsNumeric() || !b.IsNumeric()) return false;
  if (const auto* integer = std::get_if<std::int64_t>(&a.value_)) return Variant::IsInteger(b, *integer);
  if (const auto* integer = std::get_if<std::int64_t>(&b.value_)) return Variant::IsInteger(a, *integer);
  return a.Number() == b.Number();
}

}  // namespace zrqrybld
