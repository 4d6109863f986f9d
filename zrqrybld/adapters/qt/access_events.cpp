#include "zrqrybld/adapters/qt/access_events.h"

#include <utility>

namespace zrqrybld {
namespace {

std::function<void(QAccessibleEvent&)>& Listener() {
  static std::function<void(QAccessibleEvent&)> listener;
  return listener;
}

}  // namespace

bool AccessIsHeard() { return Listener() || QAccessible::isActive(); }

void TellAccess(QAccessibleEvent& event) {
  if (Listener()) {
    Listener()(event);
  } else {
    QAccessible::updateAccessibility(&event);
  }
}

void SetAccessListener(std::function<void(QAccessibleEvent&)> listener) { Listener() = std::move(listener); }

}  // namespace zrqrybld
