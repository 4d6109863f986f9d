#include "zrqrybld/adapters/qt/event_boundary.h"

#include <QtGlobal>
#include <stdexcept>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_qt.h"

namespace zrqrybld {
namespace {

void Show(const ErrorHandler& handler, const std::exception& error) {
  if (handler) {
    handler(error);
  } else {
    qWarning("%s", error.what());
  }
}

}  // namespace

void EventBoundary::Report(const ErrorHandler& handler, std::exception_ptr failure) noexcept {
  try {
    try {
      std::rethrow_exception(std::move(failure));
    } catch (const std::exception& error) {
      Show(handler, error);
    } catch (...) {
      Show(handler, Error(0, text::UnknownError));
    }
  } catch (...) {
    qWarning("An error handler failed.");
  }
}

}  // namespace zrqrybld
