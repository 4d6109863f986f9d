// EventBoundary: where calls from Qt's event loop enter the library. No exception may travel through
// the loop, so every such call runs in here.
#pragma once

#include <exception>
#include <functional>
#include <utility>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// Shows a failure to the user or writes it to a log.
using ErrorHandler = std::function<void(const std::exception&)>;

class ZRQRYBLD_API EventBoundary {
 public:
  /// Failures go to `handler`; without one they are written as a warning.
  void SetHandler(ErrorHandler handler) { handler_ = std::move(handler); }

  /// Runs the call and hands a failure to the handler. Returns whether the call succeeded.
  template <class Call>
  bool Run(Call&& call) const {
    // The call may destroy the owner of this object, so the handler is taken along.
    const ErrorHandler handler = handler_;
    try {
      std::forward<Call>(call)();
      return true;
    } catch (...) {
      Report(handler, std::current_exception());
      return false;
    }
  }

 private:
  static void Report(const ErrorHandler& handler, std::exception_ptr failure) noexcept;

  ErrorHandler handler_;
};

}  // namespace zrqrybld
