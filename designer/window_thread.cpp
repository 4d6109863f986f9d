#include "designer/window_thread.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <utility>

namespace zrqrybld {

void InWindowThread(std::function<void()> work) {
  QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(work), Qt::QueuedConnection);
}

}  // namespace zrqrybld
