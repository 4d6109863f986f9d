#include "zrqrybld/host/catalogs.h"

#include "zrqrybld/base/text.h"

namespace zrqrybld {

template class Catalog<qbDBKeyword>;
template class Catalog<qbDBOperator>;
template class Catalog<qbDBFunction>;

namespace {

template <class Field>
Ref<qbDBFunction> FirstWith(const qbDBFunctions& functions, std::string_view text, Field field) {
  for (const Ref<qbDBFunction>& function : functions) {
    if (EqualsNoCase(((*function).*field)(), text)) return function;
  }
  return nullptr;
}

}  // namespace

Ref<qbDBFunction> qbDBFunctions::Find(const std::optional<std::string>& shortDescription,
                                      const std::optional<std::string>& description,
                                      const std::optional<std::string>& syntax) const {
  if (shortDescription) return FirstWith(*this, *shortDescription, &qbDBFunction::ShortDescription);
  if (description) return FirstWith(*this, *description, &qbDBFunction::Description);
  if (syntax) return FirstWith(*this, *syntax, &qbDBFunction::Syntax);
  return nullptr;
}

Ref<qbDBFunction> qbDBFunctions::FindGroupBy(std::string_view text) const {
  if (text.empty()) return nullptr;
  const Ref<qbDBFunction> byShortDescription = FirstWith(*this, text, &qbDBFunction::ShortDescription);
  return byShortDescription ? byShortDescription : FindByName(text);
}

}  // namespace zrqrybld
