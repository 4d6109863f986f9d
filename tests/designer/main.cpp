// The tests run without a screen unless the caller chooses a platform.
#include <gtest/gtest.h>

#include <QApplication>
#include <QStyleFactory>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  return RUN_ALL_TESTS();
}
