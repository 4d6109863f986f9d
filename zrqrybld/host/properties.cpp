#include "zrqrybld/host/properties.h"

namespace zrqrybld {

Ref<qbProperty> qbProperties::Add(Variant value, std::string_view key, const Variant& before, const Variant& after) {
  const std::size_t place = PlaceFor(items_, before, after);
  return items_.Insert(Ref<qbProperty>(new qbProperty(std::string(key), std::move(value))), key, place);
}

const Variant* qbProperties::Find(std::string_view key) const {
  const Ref<qbProperty>* item = items_.Find(key);
  return item ? &(*item)->Value() : nullptr;
}

std::optional<std::string> qbProperties::FindText(std::string_view key) const {
  const Variant* value = Find(key);
  if (!value || value->IsNull()) return std::nullopt;
  return value->Text();
}

void qbProperties::Set(std::string_view key, Variant value) {
  if (const Ref<qbProperty>* item = items_.Find(key)) {
    (*item)->SetValue(std::move(value));
  } else {
    Add(std::move(value), key);
  }
}

void qbProperties::RemoveIfPresent(std::string_view key) {
  const std::size_t position = items_.PositionOf(key);
  if (position != items_.kNone) items_.RemoveAt(position);
}

}  // namespace zrqrybld
