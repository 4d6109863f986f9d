#include "zrqrybld/host/data_types.h"

#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

template <class Predicate>
Ref<qbDataType> First(const std::vector<Ref<qbDataType>>& items, Predicate matches) {
  const auto found = std::ranges::find_if(items, matches);
  return found == items.end() ? nullptr : *found;
}

}  // namespace

Ref<qbDataType> qbDataTypes::Add(std::string name, std::int32_t indicator, std::string prefixLetters,
                                 std::string suffixLetters) {
  const Ref<qbDataType> type(new qbDataType());
  type->Name = std::move(name);
  type->Indicator = indicator;
  type->PrefixLetters = std::move(prefixLetters);
  type->SuffixLetters = std::move(suffixLetters);
  items_.push_back(type);
  return type;
}

Ref<qbDataType> qbDataTypes::FindByIndicator(std::int32_t indicator) const {
  return First(items_, [&](const auto& type) { return type->Indicator == indicator; });
}

Ref<qbDataType> qbDataTypes::FindByIndicatorLong(std::int32_t indicator, bool isLong) const {
  return First(items_, [&](const auto& type) { return type->Indicator == indicator && type->IsLong == isLong; });
}

std::size_t qbDataTypes::Require(const Variant& index) const {
  if (const std::string* name = index.StringIf()) {
    const auto found = std::ranges::find_if(items_, [&](const auto& type) { return EqualsNoCase(type->Name, *name); });
    if (found == items_.end()) ThrowNoSuchItem();
    return static_cast<std::size_t>(found - items_.begin());
  }
  const std::optional<double> number = index.Number();
  if (!number || !(*number >= 1 && *number <= static_cast<double>(items_.size()))) ThrowNoSuchItem();
  return static_cast<std::size_t>(*number) - 1;
}

}  // namespace zrqrybld
