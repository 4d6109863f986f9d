// What the functions of the C interface share: handles, values, and errors as numbers.
//
// No exception leaves a function that runs its work in `Guard`. One call runs at a time: what another thread calls
// meanwhile waits, while the same thread may call again from a handler.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "zrqrybld/automation/handle_table.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/zrqrybld.h"

namespace zrqrybld {

/// The handles of the process.
HandleTable& Handles();

/// Held by every call of the interface, and by what calls the caller's functions from elsewhere.
std::recursive_mutex& CallLock();

/// Error 5: the call makes no sense.
[[noreturn]] void ThrowInvalid(const char* why);

/// The value that a caller has passed. Error 5 for one that makes no sense.
Variant FromC(const zrq_value& value, int depth = 0);

/// Texts that a caller passes where there must be one. Error 5 for nothing and for bytes that are no UTF-8.
std::string_view TextFromC(const char* text);

/// Values for a caller to read, freed with their scope.
class OwnedValues {
 public:
  explicit OwnedValues(std::span<const Variant> from);
  OwnedValues(const OwnedValues&) = delete;
  OwnedValues& operator=(const OwnedValues&) = delete;
  ~OwnedValues() { Clear(); }
  /// As many as were given.
  const zrq_value* Data() const { return values_.data(); }
  /// Hands the values on; they are the caller's now.
  void MoveTo(zrq_value* to);

 private:
  void Clear();
  std::vector<zrq_value> values_;
};

/// What `zrq_last_error` tells of this thread.
std::int32_t LastCallError(const char** description);

/// Runs a call with its argument; every exception becomes the number of the thread's last error.
std::int32_t RunGuarded(void (*call)(void*), void* argument) noexcept;

/// Runs one call of the interface and turns every exception into an error number.
template <class F>
std::int32_t Guard(F&& call) noexcept {
  using Call = std::remove_reference_t<F>;
  return RunGuarded([](void* given) { (*static_cast<Call*>(given))(); }, &call);
}

/// Lets go of a handle: later, when somebody is in the middle of work that its end would take away.
/// False when it is not valid.
bool ReleaseHandle(zrq_handle handle);

/// While it lives, handles that are released are kept until the call that goes on is done.
class [[nodiscard]] KeepHandles {
 public:
  KeepHandles();
  KeepHandles(const KeepHandles&) = delete;
  KeepHandles& operator=(const KeepHandles&) = delete;
  ~KeepHandles();
};

}  // namespace zrqrybld
