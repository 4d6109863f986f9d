#include "zrqrybld/automation/convert.h"

namespace zrqrybld {
namespace {

// What a value is, in the words of the boundary.
std::string_view KindOf(const Variant& value) {
  switch (value.Type()) {
    case VariantType::Empty:
      return "nothing";
    case VariantType::Null:
      return "Null";
    case VariantType::Missing:
      return "no value";
    case VariantType::Boolean:
      return "a Boolean";
    case VariantType::Int16:
    case VariantType::Int32:
    case VariantType::Int64:
    case VariantType::Single:
    case VariantType::Double:
      return "a number";
    case VariantType::Date:
      return "a date";
    case VariantType::String:
      return "a text";
    case VariantType::Object: {
      const Ref<Object> object = value.ToObject();
      return object ? object->TypeName() : "nothing";
    }
    case VariantType::Array:
      return "an array";
  }
  return "";
}

}  // namespace

void ThrowMismatch(std::string_view wanted, const Variant& value) {
  throw Error(ErrorTypeMismatch,
              "Type mismatch: " + std::string(wanted) + " wanted, " + std::string(KindOf(value)) + " given.");
}

std::string Convert<std::string>::From(const Variant& value) {
  switch (value.Type()) {
    case VariantType::Null:
    case VariantType::Object:
    case VariantType::Array:
      ThrowMismatch(kName, value);
    default:
      return value.Text();
  }
}

Color Convert<Color>::From(const Variant& value) {
  const auto number = Convert<std::int64_t>::From(value);
  if (number < std::numeric_limits<std::int32_t>::min() || number > std::numeric_limits<std::uint32_t>::max()) {
    ThrowMismatch(kName, value);
  }
  return {static_cast<std::uint32_t>(number)};
}

Font Convert<Font>::From(const Variant& value) {
  const auto font = std::dynamic_pointer_cast<FontObject>(value.ToObject());
  if (!font) ThrowMismatch(kName, value);
  return font->Value();
}

Variant Convert<std::vector<std::string>>::To(const std::vector<std::string>& texts) {
  return std::vector<Variant>(texts.begin(), texts.end());
}

std::vector<std::string> Convert<std::vector<std::string>>::From(const Variant& value) {
  const std::vector<Variant>* items = value.ArrayIf();
  if (!items) return {Convert<std::string>::From(value)};
  std::vector<std::string> texts;
  texts.reserve(items->size());
  for (const Variant& item : *items) texts.push_back(Convert<std::string>::From(item));
  return texts;
}

std::vector<Variant> Convert<std::vector<Variant>>::From(const Variant& value) {
  const std::vector<Variant>* items = value.ArrayIf();
  if (!items) ThrowMismatch(kName, value);
  return *items;
}

}  // namespace zrqrybld
