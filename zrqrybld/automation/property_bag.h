// PropertyBag: where a script keeps a control's stored properties.
#pragma once

#include <string>
#include <vector>

#include "zrqrybld/automation/public_names.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/platform/headless.h"

namespace zrqrybld {

class PropertyBag final : public Object {
 public:
  std::string_view TypeName() const override { return "PropertyBag"; }

  /// The stored value, or `defaultValue` (Empty when not given) when nothing is stored.
  Variant ReadProperty(const std::string& name, const Variant& defaultValue) const {
    return store_.Read(name, defaultValue.IsMissing() ? Variant() : defaultValue);
  }
  /// Stores the value; one that equals a given default is left out.
  void WriteProperty(const std::string& name, const Variant& value, const Variant& defaultValue) {
    if (defaultValue.IsMissing()) {
      store_.Write(name, value);
    } else {
      store_.Write(name, value, defaultValue);
    }
  }
  /// The names under which something is stored, sorted.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& [name, value] : store_.Values()) names.push_back(name);
    return names;
  }

  PropertyStore& Store() { return store_; }
  const PropertyStore& Store() const { return store_; }

 private:
  MemoryPropertyStore store_;
};

ZRQRYBLD_PUBLIC(PropertyBag);

/// What the stored properties' two members of a control do with a bag.
template <class Control>
void ReadFrom(Control& control, const PropertyBag& bag) {
  control.ReadProperties(bag.Store());
}
template <class Control>
void WriteTo(Control& control, PropertyBag& bag) {
  control.WriteProperties(bag.Store());
}

}  // namespace zrqrybld
