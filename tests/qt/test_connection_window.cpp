#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <stdexcept>

#include "adapters/qt/connection_window.h"
#include "adapters/qt/name_list.h"
#include "adapters/qt/qt_text.h"
#include "adapters/qt/qt_toolkit.h"
#include "adapters/qt/theme.h"
#include "tests/qt/modal.h"
#include "tests/qt/pictures.h"

namespace zrqrybld {
namespace {

// Everything that Qt and the library log.
QString g_log;
void Log(QtMsgType, const QMessageLogContext&, const QString& message) { g_log += message + QLatin1Char('\n'); }

class ConnectionWindowTest : public testing::Test {
 protected:
  void SetUp() override {
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
    QCoreApplication::setOrganizationName(QStringLiteral("zrQryBld"));
    QCoreApplication::setApplicationName(QStringLiteral("test_qt"));
    QSettings().clear();
    g_log.clear();
    messagesBefore = qInstallMessageHandler(Log);
  }
  void TearDown() override { qInstallMessageHandler(messagesBefore); }

  ConnectionDialog Dialog() {
    return {.dataSources = {"Archive", "Sales", "Sales (old)", "Größen"}, .test = [this](const std::string& given) {
              tested.push_back(given);
              wasBusy = QGuiApplication::overrideCursor() != nullptr;
              return answer;
            }};
  }
  void Open(const ConnectionDialog& dialog) {
    window = std::make_unique<ConnectionWindow>(dialog);
    window->show();
    QApplication::setActiveWindow(window.get());
    tabs = window->findChild<QTabWidget*>();
    file = Field<QLineEdit>("File");
    recent = Field<QListWidget>("Recent files");
    filter = Field<QLineEdit>("Filter");
    sources = Field<NameList>("Data sources");
    user = Field<QLineEdit>("User");
    password = Field<QLineEdit>("Password");
    text = Field<QPlainTextEdit>("Keywords and values, separated by semicolons");
    status = Field<QPlainTextEdit>("Result of the test");
  }
  void Open() { Open(Dialog()); }
  template <class Widget>
  Widget* Field(const char* accessibleName) {
    for (Widget* widget : window->findChildren<Widget*>()) {
      if (widget->accessibleName() == QString::fromLatin1(accessibleName)) return widget;
    }
    ADD_FAILURE() << "no " << accessibleName;
    return nullptr;
  }
  QPushButton* Button(const char* caption) {
    for (QPushButton* button : window->findChildren<QPushButton*>()) {
      if (button->text() == QString::fromLatin1(caption)) return button;
    }
    ADD_FAILURE() << "no " << caption;
    return nullptr;
  }
  QString MakeFile(const QString& name) {
    QFile made(folder.filePath(name));
    EXPECT_TRUE(made.open(QIODevice::WriteOnly));
    return made.fileName();
  }
  // What the settings hold, in their file's own form.
  QString Stored() {
    QSettings settings;
    settings.sync();
    QFile stored(settings.fileName());
    return stored.open(QIODevice::ReadOnly) ? QString::fromUtf8(stored.readAll()) : QString();
  }
  QStringList RecentShown() {
    QStringList shown;
    for (int i = 0; i < recent->count(); ++i) shown += recent->item(i)->text();
    return shown;
  }
  void ConnectTo(const QString& path) {
    Open();
    tabs->setCurrentIndex(0);
    file->setText(path);
    Button("&Connect")->click();
  }

  QTemporaryDir folder;
  QtMessageHandler messagesBefore = nullptr;
  std::vector<std::string> tested;
  std::string answer;
  bool wasBusy = false;
  std::unique_ptr<ConnectionWindow> window;
  QTabWidget* tabs = nullptr;
  QLineEdit* file = nullptr;
  QListWidget* recent = nullptr;
  QLineEdit* filter = nullptr;
  NameList* sources = nullptr;
  QLineEdit* user = nullptr;
  QLineEdit* password = nullptr;
  QPlainTextEdit* text = nullptr;
  QPlainTextEdit* status = nullptr;
};

// --- Giving a connection ---

TEST_F(ConnectionWindowTest, NothingCanBeTriedOrConnectedWhileNothingIsGiven) {
  Open();
  const auto enabled = [&] { return Button("&Connect")->isEnabled() && Button("&Test")->isEnabled(); };
  const auto disabled = [&] { return !Button("&Connect")->isEnabled() && !Button("&Test")->isEnabled(); };
  EXPECT_TRUE(disabled());
  QTest::keyClicks(file, QStringLiteral("a.db"));
  EXPECT_TRUE(enabled());
  tabs->setCurrentIndex(1);
  EXPECT_TRUE(disabled());
  QTest::keyClicks(password, QStringLiteral("secret"));
  EXPECT_TRUE(disabled()) << "a password alone is no data source";
  QTest::keyClicks(filter, QStringLiteral("old"));
  EXPECT_TRUE(enabled()) << "the first match is chosen";
  QTest::keyClicks(filter, QStringLiteral("zzz"));
  EXPECT_TRUE(disabled());
  tabs->setCurrentIndex(2);
  EXPECT_TRUE(disabled());
  QTest::keyClicks(text, QStringLiteral("DSN=x"));
  EXPECT_TRUE(enabled());
}

TEST_F(ConnectionWindowTest, EveryWayIsGivenByTheKeyboardAlone) {
  struct Case {
    const char* name;
    std::function<void()> keys;
    std::string expected;
  };
  const auto focused = [] { return QApplication::focusWidget(); };
  const Case cases[] = {
      {"file",
       [&] {
         QTest::keyClicks(focused(), QStringLiteral("/tmp/it's.db"));
         QTest::keyClick(focused(), Qt::Key_Return);
       },
       "Provider=SQLite;Data Source=\"/tmp/it's.db\""},
      {"data source",
       [&] {
         QTest::keyClick(focused(), Qt::Key_D, Qt::AltModifier);
         QTest::keyClicks(focused(), QStringLiteral("sales"));
         QTest::keyClick(focused(), Qt::Key_Down);
         QTest::keyClick(focused(), Qt::Key_Tab);
         QTest::keyClicks(focused(), QStringLiteral("ann"));
         QTest::keyClick(focused(), Qt::Key_Tab);
         QTest::keyClicks(focused(), QStringLiteral("x;DSN=y"));
         QTest::keyClick(focused(), Qt::Key_Return);
       },
       "DSN=Sales (old);UID=ann;PWD=\"x;DSN=y\""},
      {"text",
       [&] {
         QTest::keyClick(focused(), Qt::Key_G, Qt::AltModifier);
         QTest::keyClicks(focused(), QStringLiteral("Server=a;"));
         QTest::keyClick(focused(), Qt::Key_Return);
         QTest::keyClicks(focused(), QStringLiteral("Database=b"));
         QTest::keyClick(focused(), Qt::Key_Return, Qt::ControlModifier);
       },
       "Server=a;\nDatabase=b"},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    QSettings().clear();
    QtToolkit toolkit;
    WhenOpen<ConnectionWindow>([&](ConnectionWindow&) { test.keys(); });
    EXPECT_EQ(toolkit.GetDialogs().ShowConnectionPrompt(Dialog()), test.expected);
    EXPECT_EQ(tested.back(), test.expected);
  }
}

TEST_F(ConnectionWindowTest, CancelGivesNothingWhateverWasTyped) {
  for (const Qt::KeyboardModifiers modifiers : {Qt::NoModifier, Qt::AltModifier}) {
    QtToolkit toolkit;
    WhenOpen<ConnectionWindow>([&](ConnectionWindow& shown) {
      QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("a.db"));
      EXPECT_EQ(shown.Text(), "Provider=SQLite;Data Source=a.db");
      QTest::keyClick(&shown, modifiers == Qt::NoModifier ? Qt::Key_Escape : Qt::Key_A, modifiers);
    });
    EXPECT_EQ(toolkit.GetDialogs().ShowConnectionPrompt(Dialog()), "");
  }
  EXPECT_TRUE(tested.empty());
}

// A key that two visible things share reaches neither at once.
TEST_F(ConnectionWindowTest, AccessKeysAreUniqueOnEveryTab) {
  MakeFile(QStringLiteral("a.db"));
  ConnectTo(folder.filePath(QStringLiteral("a.db")));
  Open();
  for (int tab = 0; tab < tabs->count(); ++tab) {
    tabs->setCurrentIndex(tab);
    QStringList captions;
    for (int i = 0; i < tabs->count(); ++i) captions += tabs->tabText(i);
    for (const QPushButton* button : window->findChildren<QPushButton*>()) {
      if (button->isVisible()) captions += button->text();
    }
    for (const QLabel* label : window->findChildren<QLabel*>()) {
      if (label->isVisible() && label->buddy()) captions += label->text();
    }
    QString keys;
    for (const QString& caption : captions) {
      const qsizetype mark = caption.indexOf(QLatin1Char('&'));
      ASSERT_GE(mark, 0) << ToUtf8(caption);
      const QChar key = caption[mark + 1].toUpper();
      EXPECT_FALSE(keys.contains(key)) << ToUtf8(captions.join(QLatin1Char('|')));
      keys += key;
    }
  }
}

TEST_F(ConnectionWindowTest, TheFilterKeepsTheChosenSourceWhileItMatches) {
  Open();
  tabs->setCurrentIndex(1);
  QTest::keyClicks(filter, QStringLiteral("sales"));
  QTest::keyClick(filter, Qt::Key_Down);
  EXPECT_EQ(window->Text(), "DSN=Sales (old)");
  QTest::keyClick(filter, Qt::Key_Backspace);
  EXPECT_EQ(window->Text(), "DSN=Sales (old)");
  filter->clear();
  EXPECT_EQ(window->Text(), "DSN=Sales (old)");
  filter->setText(QStringLiteral("grö"));
  EXPECT_EQ(window->Text(), "DSN=Größen");
}

TEST_F(ConnectionWindowTest, BrowsingPutsTheChosenFileIntoTheField) {
  const QString made = MakeFile(QStringLiteral("picked.db"));
  Open();
  WhenOpen<QFileDialog>([&](QFileDialog& dialog) {
    dialog.setDirectory(folder.path());
    dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(QStringLiteral("picked.db"));
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  Button("&Browse...")->click();
  EXPECT_EQ(file->text(), made);
}

// --- Testing ---

TEST_F(ConnectionWindowTest, ATestShowsItsOutcomeInTheWindow) {
  Open();
  QTest::keyClicks(file, QStringLiteral("a.db"));
  answer = "The database file \"a.db\" cannot be opened: there is no such file.";
  QTest::keyClick(window.get(), Qt::Key_T, Qt::AltModifier);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !tested.empty(); }));
  EXPECT_EQ(tested, (std::vector<std::string>{"Provider=SQLite;Data Source=a.db"}));
  EXPECT_TRUE(wasBusy);
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
  EXPECT_EQ(ToUtf8(status->toPlainText()), answer) << "the driver's own words";
  EXPECT_EQ(window->findChild<Mark*>()->Shown(), Mark::Kind::Error);
  QTest::keyClicks(file, QStringLiteral("x"));
  EXPECT_EQ(status->toPlainText(), QString()) << "that was another file";
  answer.clear();
  Button("&Test")->click();
  EXPECT_EQ(status->toPlainText(), QStringLiteral("The connection works."));
  EXPECT_EQ(window->findChild<Mark*>()->Shown(), Mark::Kind::Success);
  EXPECT_TRUE(window->isVisible());
}

TEST_F(ConnectionWindowTest, AFailingConnectionKeepsWhatWasTyped) {
  Open();
  tabs->setCurrentIndex(2);
  text->setPlainText(QStringLiteral("DSN=nowhere"));
  answer = "Data source name not found";
  Button("&Connect")->click();
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(ToUtf8(status->toPlainText()), answer);
  EXPECT_EQ(window->Text(), "DSN=nowhere");
  answer.clear();
  Button("&Test")->click();
  Button("&Connect")->click();
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(tested.size(), 2u) << "a test that has just worked is not run again";
}

TEST_F(ConnectionWindowTest, ATestThatThrowsIsAFailure) {
  ConnectionDialog dialog = Dialog();
  dialog.test = [](const std::string&) -> std::string { throw std::runtime_error("out of handles"); };
  Open(dialog);
  file->setText(QStringLiteral("a.db"));
  Button("&Connect")->click();
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(status->toPlainText(), QStringLiteral("out of handles"));
  EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(ConnectionWindowTest, ALongMessageDoesNotGrowTheWindow) {
  Open();
  file->setText(QStringLiteral("a.db"));
  QApplication::processEvents();
  const QSize size = window->size();
  for (int i = 0; i < 200; ++i) answer += "[driver] something went wrong; ";
  Button("&Test")->click();
  QApplication::processEvents();
  EXPECT_EQ(window->size(), size);
  EXPECT_EQ(ToUtf8(status->toPlainText()) + " ", answer);
}

// --- What is kept, and what is not ---

TEST_F(ConnectionWindowTest, APasswordIsNeitherShownNorLoggedNorStored) {
  const auto check = [&](const QString& secret) {
    EXPECT_FALSE(window->windowTitle().contains(secret));
    EXPECT_FALSE(g_log.contains(secret)) << ToUtf8(g_log);
    EXPECT_FALSE(Stored().contains(secret)) << ToUtf8(Stored());
    EXPECT_FALSE(status->toPlainText().contains(secret));
  };
  const QString secret = QStringLiteral("s3cret;word");
  for (const bool works : {false, true}) {
    Open();
    tabs->setCurrentIndex(1);
    sources->setCurrentIndex(sources->model()->index(0, 0));
    password->setText(secret);
    EXPECT_FALSE(password->displayText().contains(secret));
    answer = works ? "" : "login failed for DSN=Archive;PWD=" + ToUtf8(secret);
    Button("&Test")->click();
    check(secret);
    EXPECT_EQ(status->toPlainText(),
              works ? QStringLiteral("The connection works.") : QStringLiteral("login failed for DSN=Archive;PWD=***"));
    Button("&Connect")->click();
    EXPECT_EQ(window->isVisible(), !works);
    check(secret);
    window->reject();
    check(secret);

    Open();
    tabs->setCurrentIndex(2);
    text->setPlainText(QStringLiteral("DSN=Archive;PWD=s3cret2"));
    answer = works ? "" : "login failed";
    Button("&Connect")->click();
    window->reject();
    check(QStringLiteral("s3cret2"));
  }
  // Pasted into the wrong field it is no file, so it is not remembered for one.
  ConnectTo(QStringLiteral("DSN=Archive;PWD=s3cret3"));
  EXPECT_FALSE(window->isVisible());
  check(QStringLiteral("s3cret3"));
  EXPECT_TRUE(Stored().contains(QStringLiteral("way="))) << "these settings are the ones that are written";
}

TEST_F(ConnectionWindowTest, RecentFilesAreTheLatestFirstAndLimited) {
  QStringList expected;
  for (int i = 0; i < ConnectionWindow::kRecentFiles + 2; ++i) {
    const QString made = MakeFile(QStringLiteral("%1, größe & co.db").arg(i));
    ConnectTo(made);
    expected.prepend(made);
  }
  expected.resize(ConnectionWindow::kRecentFiles);
  Open();
  EXPECT_EQ(RecentShown(), expected);

  ConnectTo(folder.path() + QStringLiteral("/./") + QFileInfo(expected[3]).fileName());
  expected.move(3, 0);
  Open();
  EXPECT_EQ(RecentShown(), expected) << "a file taken again moves up";

  answer = "not a database";
  ConnectTo(MakeFile(QStringLiteral("bad.db")));
  answer.clear();
  Open();
  EXPECT_EQ(RecentShown(), expected) << "a file that could not be opened is none";

  QTest::keyClick(file, Qt::Key_R, Qt::AltModifier);
  EXPECT_TRUE(recent->hasFocus());
  QTest::keyClick(recent, Qt::Key_Home);
  QTest::keyClick(recent, Qt::Key_Down);
  EXPECT_EQ(file->text(), expected[1]);
  QTest::keyClick(recent, Qt::Key_Delete);
  expected.removeAt(1);
  EXPECT_EQ(RecentShown(), expected);
  Open();
  EXPECT_EQ(RecentShown(), expected) << "forgotten for good";

  const QPoint third = recent->visualItemRect(recent->item(2)).center();
  QTest::mouseClick(recent->viewport(), Qt::LeftButton, Qt::NoModifier, third);
  EXPECT_EQ(file->text(), expected[2]);
  EXPECT_TRUE(window->isVisible());
  QTest::mouseDClick(recent->viewport(), Qt::LeftButton, Qt::NoModifier, third);
  EXPECT_FALSE(window->isVisible());
  EXPECT_EQ(window->Text(), "Provider=SQLite;Data Source=" + ToUtf8(expected[2]));
}

TEST_F(ConnectionWindowTest, TheWayLastTakenComesFirst) {
  Open();
  EXPECT_EQ(tabs->currentIndex(), 0);
  for (const int way : {1, 2, 0}) {
    tabs->setCurrentIndex(way);
    window->reject();
    Open();
    EXPECT_EQ(tabs->currentIndex(), way);
  }
  QSettings().setValue(QStringLiteral("ConnectionPrompt/way"), QStringLiteral("nonsense"));
  Open();
  EXPECT_EQ(tabs->currentIndex(), 0);
}

// --- Looks ---

TEST_F(ConnectionWindowTest, TextsAreLegibleInEveryColourScheme) {
  for (const auto& [name, palette] : TestPalettes()) {
    SCOPED_TRACE(name);
    const ScopedPalette scoped(palette);
    Open();
    file->setText(QStringLiteral("a.db"));
    const auto contrast = [](const QWidget& widget, QPalette::ColorRole ink) {
      return Theme::Contrast(widget.palette().color(ink), widget.palette().color(QPalette::Base));
    };
    for (const bool works : {false, true}) {
      answer = works ? "" : "refused";
      Button("&Test")->click();
      EXPECT_GE(contrast(*status, QPalette::Text), 4.5);
    }
    for (const QWidget* field : {static_cast<QWidget*>(file), static_cast<QWidget*>(filter),
                                 static_cast<QWidget*>(password), static_cast<QWidget*>(text)}) {
      EXPECT_GE(contrast(*field, QPalette::PlaceholderText), 4.5);
    }
  }
}

TEST_F(ConnectionWindowTest, EveryTabHasAPictureOfItsOwn) {
  for (const char* made : {"store.db", "archive 2024.sqlite", "customers.db"}) {
    ConnectTo(MakeFile(QString::fromLatin1(made)));
  }
  for (const auto& [name, palette] : TestPalettes()) {
    if (name != "light" && name != "dark") continue;
    const ScopedPalette scoped(palette);
    for (const int scale : {1, 2}) {
      Open();
      std::vector<QImage> pictures;
      for (int tab = 0; tab < 3; ++tab) {
        tabs->setCurrentIndex(tab);
        answer.clear();
        if (tab == 0) recent->setCurrentRow(1);
        if (tab == 1) {
          sources->setCurrentIndex(sources->model()->index(1, 0));
          user->setText(QStringLiteral("ann"));
          password->setText(QStringLiteral("secret"));
          answer = "[unixODBC]FATAL:  password authentication failed for user \"ann\" (28P01)";
        }
        if (tab < 2) Button("&Test")->click();
        pictures.push_back(Paint(*window, scale));
        KeepPicture(pictures.back(),
                    "connection-" + name + "-" + std::to_string(100 * scale) + "-" + std::to_string(tab));
      }
      EXPECT_NE(pictures[0], pictures[1]);
      EXPECT_NE(pictures[1], pictures[2]);
      for (const QImage& picture : pictures) EXPECT_NE(picture.pixelColor(2, 2), QColor(Qt::magenta));
    }
  }
}

}  // namespace
}  // namespace zrqrybld
