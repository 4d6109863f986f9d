// Drives a modal window from inside its own event loop.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QTimer>

namespace zrqrybld {

/// Runs `drive` once the next modal window is open and active. A window that is then still open after a
/// while is a failure, and is closed, so that no test waits for ever.
template <class Window, class Drive>
void WhenOpen(Drive drive) {
  QTimer::singleShot(0, [drive] {
    auto* window = qobject_cast<Window*>(QApplication::activeModalWidget());
    ASSERT_NE(window, nullptr);
    QApplication::setActiveWindow(window);
    QTimer::singleShot(3000, window, [window] {
      ADD_FAILURE() << "the window is still open";
      static_cast<QDialog*>(window)->done(QDialog::Rejected);
    });
    drive(*window);
  });
}

}  // namespace zrqrybld
