// What the tests of the designer's window share: the window on the sample database, and the places in it that a user
// would aim at.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QMessageBox>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <functional>
#include <string>

#include "designer/main_window.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/units.h"

namespace zrqrybld {

class QueryDesignerWidget;
class qbEntityItem;
class qbEntityList;
class qbGridPane;
class qbQueryBuilder;

namespace test {

inline std::string Utf8(const QString& text) { return text.toStdString(); }

/// Keeps settings and copies in case of a crash in a folder, in the places where the designer itself keeps them.
void KeepIn(const QString& folder);
/// The copies that are kept.
QStringList RecoveryFiles();

class DesignerWindow : public testing::Test {
 protected:
  DesignerWindow();

  void OpenSample();
  void OpenSampleWith(const QStringList& tables);

  QueryDesignerWidget& Designer();
  qbQueryBuilder& Hub();
  qbGridPane& Grid();
  QWidget* Diagram();
  std::string Statement();
  qbEntityList& Box(const char* caption);
  Ref<qbEntityItem> Item(const char* caption, const char* column);

  /// The rows of the grid that hold something, as "Table.Column", with "-" before those that are no output.
  std::string GridRows();

  /// Where a point of the diagram's surface is seen in its window.
  QPoint InView(TwipsPoint point);

  /// The middle of a row's check box.
  QPoint CheckBox(const char* caption, const char* column);

  QPoint RowText(const char* caption, const char* column);

  QPoint Caption(const char* caption);

  void Click(QPoint place);

  /// Runs `answer` on the dialog that `open` opens. Fails when none comes.
  void WithDialog(const std::function<void()>& open, const std::function<void(QDialog&)>& answer);

  /// The text of the message that `open` brings up.
  std::string MessageOf(const std::function<void()>& open);

  MainWindow window;
};

}  // namespace test
}  // namespace zrqrybld
