// WhileAlive: a function for windows that may still be open when whoever asked has gone.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace zrqrybld {

/// A function that keeps the owner alive while it runs, and that does nothing, and returns an empty value, once the
/// owner has gone.
template <class Owner, class Function>
auto WhileAlive(std::weak_ptr<Owner> owner, Function function) {
  return [owner = std::move(owner), function = std::move(function)](auto&&... arguments) {
    using Result = decltype(function(std::forward<decltype(arguments)>(arguments)...));
    const std::shared_ptr<Owner> alive = owner.lock();
    if constexpr (std::is_void_v<Result>) {
      if (alive) function(std::forward<decltype(arguments)>(arguments)...);
    } else {
      return alive ? function(std::forward<decltype(arguments)>(arguments)...) : Result();
    }
  };
}

}  // namespace zrqrybld
