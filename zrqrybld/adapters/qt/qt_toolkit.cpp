#include "zrqrybld/adapters/qt/qt_toolkit.h"

#include <QGuiApplication>

#include "zrqrybld/adapters/files/system_files.h"

namespace zrqrybld {

QtToolkit::QtToolkit(QWidget* parent) : dialogs_(*this, parent) { SetFiles(SystemFiles()); }

QtToolkit::~QtToolkit() {
  while (busyDepth_ > 0) SetBusyPointer(false);
}

// Qt keeps a stack of pointers, which the application may use, too: never take away more than was put there.
void QtToolkit::SetBusyPointer(bool busy) {
  if (busy) {
    ++busyDepth_;
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  } else if (busyDepth_ > 0) {
    --busyDepth_;
    QGuiApplication::restoreOverrideCursor();
  }
}

}  // namespace zrqrybld
