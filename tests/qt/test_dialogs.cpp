#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

#include "tests/qt/dialogs.h"
#include "zrqrybld/adapters/qt/qt_toolkit.h"

namespace zrqrybld {
namespace {

using Names = std::vector<std::string>;

class TablesWindowTest : public testing::Test {
 protected:
  TablesDialog Dialog() {
    return TestTables([this](const Names& names) { added.push_back(names); });
  }
  void Open(const TablesDialog& dialog) {
    window = std::make_unique<TablesWindow>(dialog);
    window->show();
    QApplication::setActiveWindow(window.get());
    filter = window->findChild<QLineEdit*>();
    filter->setFocus();
    tabs = window->findChild<QTabWidget*>();
    list = static_cast<QListView*>(tabs->widget(0));
  }
  QPushButton* Button(const char* text) {
    for (QPushButton* button : window->findChildren<QPushButton*>()) {
      if (button->text() == QString::fromLatin1(text)) return button;
    }
    return nullptr;
  }

  std::vector<Names> added;
  std::unique_ptr<TablesWindow> window;
  QLineEdit* filter = nullptr;
  QTabWidget* tabs = nullptr;
  QListView* list = nullptr;
};

TEST_F(TablesWindowTest, EmptyListsSayWhy) {
  TablesDialog dialog = Dialog();
  dialog.tables.clear();
  Open(dialog);
  EXPECT_EQ(tabs->currentIndex(), 1) << "the tab that has something comes first";
  tabs->setCurrentIndex(0);
  const auto quiet = [&] { return list->viewport()->grab().toImage(); };
  const QImage none = quiet();
  QTest::keyClicks(filter, QStringLiteral("zzz"));
  tabs->setCurrentIndex(1);
  list = static_cast<QListView*>(tabs->widget(1));
  const QImage noMatch = quiet();
  QImage blank(noMatch.size(), noMatch.format());
  blank.fill(noMatch.pixel(0, 0));
  EXPECT_NE(noMatch, blank);
  EXPECT_NE(none, noMatch);
  EXPECT_FALSE(Button("&Add")->isEnabled());
}

TEST_F(TablesWindowTest, TenThousandNamesFilterAtTypingSpeed) {
  TablesDialog dialog = Dialog();
  dialog.tables.clear();
  for (int i = 0; i < 10000; ++i) dialog.tables.push_back("schema.table_" + std::to_string(i));
  QElapsedTimer timer;
  timer.start();
  Open(dialog);
  QTest::keyClicks(filter, QStringLiteral("table_9999"));
  QApplication::processEvents();
  EXPECT_LT(timer.elapsed(), 5000) << "generous: measuring every name would take far longer";
  EXPECT_EQ(list->model()->rowCount(), 1);
  QTest::keyClick(filter, Qt::Key_Return);
  EXPECT_EQ(added, (std::vector<Names>{{"schema.table_9999"}}));
}

TEST(QtDialogs, MessagesArePlainTextWithTheirIcon) {
  QtToolkit toolkit;
  for (const auto& [icon, expected] : {std::pair{MessageIcon::Information, QMessageBox::Information},
                                       std::pair{MessageIcon::Exclamation, QMessageBox::Warning},
                                       std::pair{MessageIcon::Critical, QMessageBox::Critical}}) {
    QMessageBox::Icon shown = QMessageBox::NoIcon;
    QString text;
    Qt::TextFormat format = Qt::AutoText;
    QTimer::singleShot(0, [&] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      ASSERT_NE(box, nullptr);
      shown = box->icon();
      text = box->text();
      format = box->textFormat();
      box->accept();
    });
    toolkit.GetDialogs().ShowMessage("Table <b> is not there.", icon);
    EXPECT_EQ(shown, expected);
    EXPECT_EQ(text, QStringLiteral("Table <b> is not there."));
    EXPECT_EQ(format, Qt::PlainText);
  }
}

TEST(QtDialogs, ShowTablesReturnsWhenTheWindowIsClosed) {
  QtToolkit toolkit;
  Names added;
  QTimer::singleShot(0, [] {
    auto* window = qobject_cast<TablesWindow*>(QApplication::activeModalWidget());
    ASSERT_NE(window, nullptr);
    QTest::keyClicks(window->findChild<QLineEdit*>(), QStringLiteral("orders"));
    QTest::keyClick(window, Qt::Key_Return);
    window->reject();
  });
  toolkit.GetDialogs().ShowTables(TestTables([&](const Names& names) { added = names; }));
  EXPECT_EQ(added, Names{"Orders"});
}

TEST(QtToolkit, TheBusyPointerNestsAndIsAlwaysTakenBack) {
  {
    QtToolkit toolkit;
    toolkit.SetBusyPointer(false);  // one too many takes nothing of the application's away
    {
      const BusyPointer outer(toolkit);
      { const BusyPointer inner(toolkit); }
      ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
      EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    }
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    toolkit.SetBusyPointer(true);
  }
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr) << "a toolkit that goes leaves no hourglass behind";
}

}  // namespace
}  // namespace zrqrybld
