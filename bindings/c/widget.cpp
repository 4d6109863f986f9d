// The designer as a widget: what libzrQryBldQt has more than libzrQryBld.
#include <QApplication>
#include <QThread>
#include <memory>

#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/automation/c_boundary.h"
#include "zrqrybld/automation/c_provider.h"
#include "zrqrybld/automation/dispatch.h"
#include "zrqrybld/automation/toolkit_object.h"
#include "zrqrybld/base/error.h"

using namespace zrqrybld;

int32_t zrq_widget(void* parent, void** widget, zrq_handle* designer) {
  return Guard([&] {
    if (!widget || !designer) ThrowInvalid("There is no place for the widget.");
    *widget = nullptr;
    *designer = 0;
    // An application of another copy of Qt is none for this one.
    const auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
    if (!application) {
      throw Error(ErrorCannotCreate, std::string("A widget needs a QApplication of the same Qt ") + qVersion() + ".");
    }
    if (application->thread() != QThread::currentThread())
      ThrowInvalid("Widgets are made in the application's thread.");
    auto made = std::make_unique<QueryDesignerWidget>(static_cast<QWidget*>(parent));
    ProviderList& providers = *made->QueryBuilder().GetToolkit().Providers();
    RegisterProviders(providers);
    RegisterCallerProviders(providers);
    *designer = Handles().Add(RefTo(made->QueryBuilder()));
    *widget = static_cast<QWidget*>(made.release());
  });
}

const char* zrq_qt_version(void) { return qVersion(); }
