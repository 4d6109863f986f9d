// PropertyStore: where a host application's form keeps a control's design-time properties.
#pragma once

#include <string_view>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/variant.h"

namespace zrqrybld {

class ZRQRYBLD_API PropertyStore {
 public:
  PropertyStore() = default;
  PropertyStore(const PropertyStore&) = delete;
  PropertyStore& operator=(const PropertyStore&) = delete;
  virtual ~PropertyStore() = default;

  /// The stored value, or `defaultValue` when nothing is stored under the key.
  virtual Variant Read(std::string_view key, const Variant& defaultValue) const = 0;

  /// Stores the value, unless it equals `defaultValue`; then the key is left out.
  virtual void Write(std::string_view key, const Variant& value, const Variant& defaultValue) = 0;

  /// Stores the value in any case.
  virtual void Write(std::string_view key, const Variant& value) = 0;
};

}  // namespace zrqrybld
