// ScopedValue: sets a variable for the length of a scope and puts the old value back, also when
// the scope is left by an exception.
#pragma once

#include <utility>

namespace zrqrybld {

template <class T>
class [[nodiscard]] ScopedValue {
 public:
  ScopedValue(T& variable, T value) : variable_(variable), saved_(std::exchange(variable, std::move(value))) {}
  ScopedValue(const ScopedValue&) = delete;
  ScopedValue& operator=(const ScopedValue&) = delete;
  ~ScopedValue() { variable_ = std::move(saved_); }

 private:
  T& variable_;
  T saved_;
};

}  // namespace zrqrybld
