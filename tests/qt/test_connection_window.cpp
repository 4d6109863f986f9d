#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>

#include "tests/qt/dialogs.h"
#include "tests/qt/modal.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/name_list.h"
#include "zrqrybld/adapters/qt/qt_toolkit.h"
#include "zrqrybld/adapters/qt/theme.h"

namespace zrqrybld {
namespace {

// Everything that Qt and the library log.
QString g_log;
void Log(QtMsgType, const QMessageLogContext&, const QString& message) { g_log += message + QLatin1Char('\n'); }

class ConnectionWindowTest : public testing::Test {
 protected:
  void SetUp() override {
    UseSettingsIn(folder.path());
    QSettings().clear();
    g_log.clear();
    messagesBefore = qInstallMessageHandler(Log);
  }
  void TearDown() override { qInstallMessageHandler(messagesBefore); }

  ConnectionDialog Dialog() {
    return {.dataSources = {"Archive", "Sales", "Sales (old)", "Größen"}, .test = [this](const std::string& given) {
              tested.push_back(given);
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

TEST_F(ConnectionWindowTest, OnlyWhatIsAcceptedIsGiven) {
  for (const auto& [key, modifiers, given] :
       {std::tuple{Qt::Key_Return, Qt::NoModifier, "Provider=SQLite;Data Source=a.db"},
        std::tuple{Qt::Key_Escape, Qt::NoModifier, ""}, std::tuple{Qt::Key_A, Qt::AltModifier, ""}}) {
    QtToolkit toolkit;
    tested.clear();
    WhenOpen<ConnectionWindow>([&, k = key, m = modifiers](ConnectionWindow& shown) {
      QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("a.db"));
      EXPECT_EQ(shown.Text(), "Provider=SQLite;Data Source=a.db");
      QTest::keyClick(&shown, k, m);
    });
    EXPECT_EQ(toolkit.GetDialogs().ShowConnectionPrompt(Dialog()), given);
    EXPECT_EQ(tested.empty(), *given == '\0');
  }
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
