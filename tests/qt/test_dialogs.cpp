#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <stdexcept>

#include "adapters/qt/qt_text.h"
#include "adapters/qt/qt_toolkit.h"
#include "adapters/qt/tables_window.h"

namespace zrqrybld {
namespace {

using Names = std::vector<std::string>;

class TablesWindowTest : public testing::Test {
 protected:
  TablesDialog Dialog() {
    return {.caption = "Tables",
            .tablesTab = "&Tables",
            .viewsTab = "&Views",
            .addButton = "&Add",
            .closeButton = "&Close",
            .tables = {"Customers", "Order Details", "Orders", "Größen"},
            .views = {"Order Totals"},
            .add = [this](const Names& names, const TablesDialog::Progress& progress) {
              for (std::size_t i = 1; i <= names.size(); ++i) progress(i);
              added.push_back(names);
              return names.size() - (names.size() > 3 ? 1 : 0);  // of many, the last one fails
            }};
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
  QString Counts() { return window->findChild<QLabel*>()->text(); }

  std::vector<Names> added;
  std::unique_ptr<TablesWindow> window;
  QLineEdit* filter = nullptr;
  QTabWidget* tabs = nullptr;
  QListView* list = nullptr;
};

TEST_F(TablesWindowTest, AFewLettersAndEnterAddATableAndTheWindowStays) {
  Open(Dialog());
  EXPECT_FALSE(Button("&Add")->isEnabled()) << "nothing is chosen";
  QTest::keyClicks(filter, QStringLiteral("DETA"));
  EXPECT_EQ(list->model()->rowCount(), 1);
  EXPECT_TRUE(Counts().startsWith(QStringLiteral("1 of 4"))) << ToUtf8(Counts());
  QTest::keyClick(filter, Qt::Key_Return);
  EXPECT_EQ(added, (std::vector<Names>{{"Order Details"}}));
  EXPECT_TRUE(window->isVisible());
  filter->insert(QStringLiteral("grö"));  // replaces the text, which is selected
  QTest::keyClick(filter, Qt::Key_Return);
  EXPECT_EQ(added.back(), Names{"Größen"});
  QTest::keyClick(filter, Qt::Key_Escape);
  EXPECT_FALSE(window->isVisible());
}

TEST_F(TablesWindowTest, SeveralAreAddedInTheOrderOfTheList) {
  Open(Dialog());
  QTest::keyClick(filter, Qt::Key_Down);  // into the list
  EXPECT_TRUE(list->hasFocus());
  list->selectAll();
  QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier,
                    list->visualRect(list->model()->index(1, 0)).center());
  Button("&Add")->click();
  EXPECT_EQ(added, (std::vector<Names>{{"Customers", "Orders", "Größen"}}));
  EXPECT_TRUE(Counts().contains(QStringLiteral("3 were added"))) << ToUtf8(Counts());
  list->selectAll();
  Button("Add an&d Close")->click();
  EXPECT_TRUE(Counts().contains(QStringLiteral("3 of 4 were added"))) << ToUtf8(Counts());
  EXPECT_TRUE(window->isVisible()) << "a failure is to be seen";
  added.pop_back();

  QTest::keyClick(list, Qt::Key_Home);
  QTest::keyClick(list, Qt::Key_Return);
  EXPECT_EQ(added.size(), 2u) << "Enter in the list adds once";
  EXPECT_EQ(added.back(), Names{"Customers"});

  const QPoint third = list->visualRect(list->model()->index(2, 0)).center();
  QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, third);
  QTest::mouseDClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, third);
  EXPECT_EQ(added.size(), 3u);
  EXPECT_EQ(added.back(), Names{"Orders"});
}

TEST_F(TablesWindowTest, AccessKeysReachTabsAndButtons) {
  Open(Dialog());
  QTest::keyClick(window.get(), Qt::Key_V, Qt::AltModifier);
  EXPECT_EQ(tabs->currentIndex(), 1);
  QTest::keyClicks(filter, QStringLiteral("total"));
  QTest::keyClick(window.get(), Qt::Key_D, Qt::AltModifier);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !added.empty(); })) << "a button reached by its key is shown pressed first";
  EXPECT_EQ(added, (std::vector<Names>{{"Order Totals"}})) << "the list under the chosen tab counts";
  EXPECT_FALSE(window->isVisible()) << "add and close";
}

TEST_F(TablesWindowTest, AFailureWhileAddingKeepsTheWindowOpen) {
  TablesDialog dialog = Dialog();
  dialog.add = [](const Names&, const TablesDialog::Progress&) -> std::size_t {
    throw std::runtime_error("no such table");
  };
  Open(dialog);
  std::string failure;
  window->SetErrorHandler([&](const std::exception& error) { failure = error.what(); });
  QTest::keyClicks(filter, QStringLiteral("o"));
  Button("Add an&d Close")->click();
  EXPECT_EQ(failure, "no such table");
  EXPECT_TRUE(window->isVisible());
}

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
    QTest::keyClicks(window->findChild<QLineEdit*>(), QStringLiteral("b"));
    QTest::keyClick(window, Qt::Key_Return);
    window->reject();
  });
  toolkit.GetDialogs().ShowTables({.caption = "Tables",
                                   .tablesTab = "&Tables",
                                   .viewsTab = "&Views",
                                   .addButton = "&Add",
                                   .closeButton = "&Close",
                                   .tables = {"a", "b"},
                                   .views = {},
                                   .add = [&](const Names& names, const TablesDialog::Progress&) {
                                     added = names;
                                     return names.size();
                                   }});
  EXPECT_EQ(added, Names{"b"});
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
