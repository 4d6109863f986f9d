// Object: the common base of everything an application can hold a handle to.
//
// Handles are reference counted. Collections own their items; links upwards
// (item to collection, pane to hub) are weak, so either side may die first.
#pragma once

#include <memory>
#include <string_view>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// A counted handle. An empty handle is "nothing".
template <class T>
using Ref = std::shared_ptr<T>;

/// A link that does not keep its object alive.
template <class T>
using WeakRef = std::weak_ptr<T>;

/// Base of all public controls, collections and items.
class ZRQRYBLD_API Object : public std::enable_shared_from_this<Object> {
 public:
  Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object() = default;

  /// The class name as an application knows it, for instance "qbEntity".
  virtual std::string_view TypeName() const = 0;
};

/// A counted handle to `object` itself, in the type it is asked for.
template <class T>
Ref<T> RefTo(T& object) {
  return std::static_pointer_cast<T>(object.shared_from_this());
}

}  // namespace zrqrybld
