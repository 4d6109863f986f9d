// The tests run without a screen unless the caller chooses a platform.
#include <gtest/gtest.h>

#include <QApplication>
#include <QStyleFactory>

#include "designer/appearance.h"

#ifdef __SANITIZE_ADDRESS__
// On a real display the toolkit looks for a message bus; the bus's library keeps what it has read of its settings.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() { return "leak:libdbus-1"; }
#endif

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  zrqrybld::SetAppearance(zrqrybld::Appearance::System);
  return RUN_ALL_TESTS();
}
