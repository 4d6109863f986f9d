#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QSettings>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <map>

#include "designer/main_window.h"
#include "tests/qt/modal.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/qt/connection_window.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/platform/connection_string.h"

namespace zrqrybld {
namespace {

class MainWindowTest : public testing::Test {
 protected:
  void SetUp() override {
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, ToQString(settings.Path().string()));
    QCoreApplication::setOrganizationName(QStringLiteral("zrqrybld"));
    QCoreApplication::setApplicationName(QStringLiteral("test_designer"));
    QSettings().clear();
    window.show();
    QApplication::setActiveWindow(&window);
  }
  void DesignAQuery() {
    ASSERT_EQ(window.OpenDatabase(ToQString(first.Path())), QString());
    ASSERT_EQ(window.AddTables({QStringLiteral("Orders")}), QStringList());
    ASSERT_EQ(window.TickColumn(QStringLiteral("Orders.Id")), QString());
  }
  // All texts of the window that tell about its source.
  QString Texts() {
    QString texts = window.windowTitle() + window.statusBar()->currentMessage();
    for (const QLabel* label : window.statusBar()->findChildren<QLabel*>()) texts += label->text();
    return texts;
  }

  test::TemporaryFolder settings;
  test::DatabaseFile first{"CREATE TABLE Orders (Id INTEGER PRIMARY KEY)", "first.db"};
  test::DatabaseFile second{"CREATE TABLE Parts (Id INTEGER PRIMARY KEY)", "<b>second; it's.db"};
  MainWindow window;
};

TEST_F(MainWindowTest, ThePromptConnectsToWhatWasGiven) {
  DesignAQuery();
  WhenOpen<ConnectionWindow>([&](ConnectionWindow& prompt) {
    QTest::keyClicks(QApplication::focusWidget(), ToQString(second.Path()));
    QTimer::singleShot(200, [] {
      auto* question = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      ASSERT_NE(question, nullptr) << "the query was not saved";
      question->button(QMessageBox::Discard)->click();
    });
    QTest::keyClick(&prompt, Qt::Key_Return);
  });
  QTest::keyClick(&window, Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_TRUE(Texts().contains(QStringLiteral("<b>second; it's.db"))) << ToUtf8(Texts());
  EXPECT_FALSE(window.Statement().contains(QStringLiteral("Orders"))) << "that was the other source's query";
  EXPECT_EQ(window.AddTables({QStringLiteral("Parts")}), QStringList());
  for (const QLabel* label : window.statusBar()->findChildren<QLabel*>()) EXPECT_EQ(label->textFormat(), Qt::PlainText);
}

TEST_F(MainWindowTest, APromptThatIsCancelledOrFailsChangesNothing) {
  DesignAQuery();
  const QString statement = window.Statement();
  const QString texts = Texts();
  WhenOpen<ConnectionWindow>([&](ConnectionWindow& prompt) {
    QTest::keyClicks(QApplication::focusWidget(), ToQString(second.Path() + ".missing"));
    QTest::keyClick(&prompt, Qt::Key_Return);
    EXPECT_TRUE(prompt.isVisible()) << "there is no such file";
    EXPECT_NE(prompt.Text(), "");
    QTest::keyClick(&prompt, Qt::Key_Escape);
  });
  QTest::keyClick(&window, Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(window.Statement(), statement);
  EXPECT_EQ(Texts(), texts);
}

TEST_F(MainWindowTest, AConnectionThatFailsCostsTheUserNothing) {
  DesignAQuery();
  const QString statement = window.Statement();
  const QString texts = Texts();
  for (const char* failing : {"", "Provider=Nowhere;PWD=s3cret", "Provider=SQLite;Data Source=/nowhere.db;PWD=s3cret",
                              "DSN=unknown;UID=ann;PWD=s3cret", "Provider=SQLite", ";;=", "PWD=s3cret"}) {
    SCOPED_TRACE(failing);
    const QString error = window.OpenConnection(failing);
    EXPECT_NE(error, QString());
    EXPECT_FALSE(error.contains(QStringLiteral("s3cret"))) << ToUtf8(error);
    EXPECT_EQ(window.Statement(), statement);
    EXPECT_EQ(Texts(), texts);
  }
  EXPECT_EQ(window.AddTables({QStringLiteral("Orders")}), QStringList()) << "the earlier connection is still there";
}

TEST_F(MainWindowTest, NoPasswordIsShownWithTheSource) {
  const std::string source = "Data Source=" + ConnectionString::QuoteValue(second.Path());
  for (const std::string& text : {"Provider=SQLite;" + source + ";PWD=s3cret", "PWD=s3cret;" + source,
                                  "Provider=SQLite;Password='s3cret';" + source}) {
    ASSERT_EQ(window.OpenConnection(text), QString()) << text;
    EXPECT_TRUE(Texts().contains(QStringLiteral("second"))) << ToUtf8(Texts());
    EXPECT_FALSE(Texts().contains(QStringLiteral("s3cret"))) << ToUtf8(Texts());
  }
}

// The letter behind the ampersand of a menu's text; null without one.
QChar AccessKey(const QString& text) {
  const QString plain = QString(text).remove("&&");
  const qsizetype at = plain.indexOf(QLatin1Char('&'));
  return at < 0 ? QChar() : plain[at + 1].toLower();
}

TEST(MainWindowMenus, NoAccessKeyStandsTwiceInAMenu) {
  for (const char* language : {"", ZRQRYBLD_DOCS "/../samples/languages/german.txt"}) {
    const MainWindow window((QString(language)));
    QMenuBar& bar = *window.findChild<QMenuBar*>();
    QList<const QWidget*> menus{&bar};
    for (const QMenu* menu : bar.findChildren<QMenu*>()) menus.push_back(menu);
    EXPECT_GT(menus.size(), 5);
    for (const QWidget* menu : menus) {
      std::map<QChar, QString> keys;
      for (const QAction* action : menu->actions()) {
        const QChar key = AccessKey(action->text());
        if (key.isNull()) continue;
        const auto [other, isNew] = keys.emplace(key, action->text());
        EXPECT_TRUE(isNew) << ToUtf8(action->text()) << " and " << ToUtf8(other->second);
      }
    }
  }
}

}  // namespace
}  // namespace zrqrybld
