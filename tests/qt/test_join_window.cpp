#include <gtest/gtest.h>

#include <QtTest/qtestspontaneevent.h>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QWindow>
#include <algorithm>

#include "tests/qt/dialogs.h"
#include "tests/qt/modal.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/mark.h"
#include "zrqrybld/adapters/qt/qt_toolkit.h"
#include "zrqrybld/adapters/qt/theme.h"

namespace zrqrybld {
namespace {

class JoinWindowTest : public testing::Test {
 protected:
  void Open(const JoinDialog& dialog) {
    window = std::make_unique<JoinWindow>(dialog);
    window->show();
    QApplication::setActiveWindow(window.get());
    const QList<QCheckBox*> checks = window->findChildren<QCheckBox*>();
    ASSERT_EQ(checks.size(), 2);
    check1 = checks[0];
    check2 = checks[1];
  }
  bool Says(const char* text) {
    for (const QLabel* label : window->findChildren<QLabel*>()) {
      if (label->isVisible() && label->text().contains(QString::fromUtf8(text))) return true;
    }
    return false;
  }

  std::unique_ptr<JoinWindow> window;
  QCheckBox* check1 = nullptr;
  QCheckBox* check2 = nullptr;
};

// What a key does to the modal window, and what its caller then finds.
TEST(JoinDialogs, OnlyAnAcceptedChoiceComesBack) {
  struct Case {
    const char* name;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    bool accepted;
  };
  const Case cases[] = {
      {"Enter", Qt::Key_Return, Qt::NoModifier, true},
      {"access key of Accept", Qt::Key_A, Qt::AltModifier, true},
      {"Esc", Qt::Key_Escape, Qt::NoModifier, false},
      {"access key of Cancel", Qt::Key_C, Qt::AltModifier, false},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    QtToolkit toolkit;
    JoinDialog dialog = TestJoin();
    dialog.table1Checked = true;
    WhenOpen<JoinWindow>([&](JoinWindow& window) {
      EXPECT_EQ(window.windowTitle(), QStringLiteral("Join Properties"));
      EXPECT_TRUE(window.Table1Checked());
      for (QCheckBox* check : window.findChildren<QCheckBox*>()) QTest::keyClick(check, Qt::Key_Space);
      QTest::keyClick(&window, test.key, test.modifiers);
    });
    EXPECT_EQ(toolkit.GetDialogs().ShowJoinProperties(dialog), test.accepted);
    EXPECT_EQ(dialog.table1Checked, !test.accepted);
    EXPECT_EQ(dialog.table2Checked, test.accepted);
  }
}

TEST_F(JoinWindowTest, TheFrameCannotCloseItButCodeCan) {
  Open(TestJoin());
  EXPECT_FALSE(window->windowFlags().testFlag(Qt::WindowCloseButtonHint));
  QCloseEvent fromFrame;
  QSpontaneKeyEvent::setSpontaneous(&fromFrame);
  QApplication::instance()->notify(window->windowHandle(), &fromFrame);
  EXPECT_FALSE(fromFrame.isAccepted());
  EXPECT_TRUE(window->isVisible());
  EXPECT_TRUE(window->close());
  EXPECT_EQ(window->result(), QDialog::Rejected);
}

TEST_F(JoinWindowTest, AFailureToDescribeAChoiceLeavesItToBeMade) {
  JoinDialog dialog = TestJoin();
  dialog.describe = [](bool, bool) -> std::string { throw std::runtime_error("no words"); };
  const QtMessageHandler before = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  Open(dialog);
  QTest::keyClick(check1, Qt::Key_Space);
  qInstallMessageHandler(before);
  EXPECT_TRUE(window->Table1Checked());
}

TEST_F(JoinWindowTest, AnAmpersandInATablesNameIsNoAccessKey) {
  Open(TestJoin("R&D", "A & B"));
  EXPECT_EQ(check1->text(), QStringLiteral("Include all rows from R&&D"));
  EXPECT_EQ(check2->text(), QStringLiteral("Include all rows from A && B"));
  EXPECT_TRUE(Says("R&D"));
  JoinDialog escaped = TestJoin("R&D", "B");
  escaped.allOfTable1 = "All of R&&D";
  Open(escaped);
  EXPECT_EQ(check1->text(), QStringLiteral("All of R&&D"));
}

TEST_F(JoinWindowTest, LongNamesWidenItOnlySoFarAndAreToldInFull) {
  std::string name = "Größe<b>";
  for (int i = 0; i < 40; ++i) name += "_of_everything";
  Open(TestJoin(name, "B"));
  EXPECT_LE(window->width(), window->fontMetrics().averageCharWidth() * 84 + 48);
  EXPECT_EQ(check1->accessibleName(), ToQString("Include all rows from " + name));
  EXPECT_TRUE(check1->toolTip().contains(ToQString(name).toHtmlEscaped()));
  EXPECT_TRUE(check2->toolTip().isEmpty());
  for (const QLabel* label : window->findChildren<QLabel*>()) {
    EXPECT_LE(label->heightForWidth(label->width()), label->height()) << ToUtf8(label->text());
  }
  KeepPicture(Paint(*window), "join-long-names");
}

TEST_F(JoinWindowTest, ADialectThatCanWriteEverythingLeavesNoRoomForWarnings) {
  Open(TestJoin());
  const int height = window->height();
  JoinDialog dialog = TestJoin();
  dialog.warning = [](bool, bool) { return std::string(); };
  Open(dialog);
  EXPECT_LT(window->height(), height);
  EXPECT_EQ(window->findChild<Mark*>(), nullptr);
}

// The last pair cannot go, what cannot be read cannot be accepted, and a pair that is new has no origin.
TEST_F(JoinWindowTest, PairsAndConditionComeBackAsTheyWereEdited) {
  JoinDialog dialog = TestJoin("Orders", "Customers & Co");
  dialog.columns1 = {"OrderID", "CustomerID", "Pattern"};
  dialog.columns2 = {"CustomerID", "Name"};
  dialog.comparisons = {"=", "<>", "LIKE"};
  dialog.pairs = {{1, 0, 0, false, 1}, {2, 2, 1, true, 2}};
  dialog.conditionForm = frmExpressionZoom::Create(nullptr, EditedText::Expression);
  dialog.problem = [](const std::vector<JoinDialog::Pair>& pairs, const std::string&) {
    return std::string(pairs.size() > 2 ? "too many" : "");
  };
  dialog.describeCondition = [](bool all1, bool) { return std::string(all1 ? "stay" : "go"); };
  Open(dialog);
  const auto named = [this](const char* name) {
    for (QWidget* widget : window->findChildren<QWidget*>()) {
      if (widget->accessibleName() == QString::fromUtf8(name) && !widget->isHidden()) return widget;
    }
    return static_cast<QWidget*>(nullptr);
  };
  QPushButton* accept = nullptr;
  for (QPushButton* button : window->findChildren<QPushButton*>()) accept = button->isDefault() ? button : accept;
  EXPECT_EQ(window->Pairs(), dialog.pairs);
  EXPECT_FALSE(Says("stay") || Says("go"));
  ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  QTest::keyClick(window.get(), Qt::Key_P, Qt::AltModifier);  // the button is seen to go down for a moment
  ASSERT_TRUE(QTest::qWaitFor([&] { return !accept->isEnabled(); }));
  QTest::keyClick(named("Column of Orders, pair 3"), Qt::Key_Down);
  QTest::keyClick(named("Remove pair 2"), Qt::Key_Space);
  EXPECT_TRUE(accept->isEnabled());
  EXPECT_EQ(window->Pairs(), (std::vector<JoinDialog::Pair>{{1, 0, 0, false, 1}, {1, 0, 0, false, 0}}));
  QTest::keyClick(named("Remove pair 1"), Qt::Key_Space);
  EXPECT_FALSE(named("Remove pair 1")->isEnabled());
  QTest::keyClick(window.get(), Qt::Key_D, Qt::AltModifier);
  QTest::keyClicks(window->focusWidget(), "a >");
  EXPECT_FALSE(accept->isEnabled());
  QTest::keyClicks(window->focusWidget(), " 1");
  EXPECT_TRUE(accept->isEnabled() && Says("go"));
  check1->click();
  EXPECT_TRUE(Says("stay"));
  EXPECT_EQ(window->Condition(), "a > 1");
  for (const auto& [name, palette] : TestPalettes()) {
    const ScopedPalette scoped(palette);
    if (name != "light" && name != "dark") continue;
    Open(dialog);
    for (const int scale : {1, 2}) KeepPicture(Paint(*window, scale), "join-pairs-" + name + std::to_string(scale));
  }
}

// The second table asks about the first in questions 1 and 2, the other way round in 3 and 4.
TEST_F(JoinWindowTest, AQuestionReturnsRowsOfWhoAsksAndEachChoiceIsCountedOnce) {
  JoinDialog dialog = TestJoin();
  dialog.questions = {"Rows of both tables", "Only Customers with a row in Orders",
                      "Only Customers without a row in Orders", "Only Orders with a row in Customers",
                      "Only Orders without a row in Customers"};
  dialog.describeQuestion = [](std::size_t question) { return "Question " + std::to_string(question); };
  dialog.warnOfQuestion = [](std::size_t question) { return std::string(question == 2 ? "left out" : ""); };
  dialog.groupText = "&Join these two first, in parentheses";
  dialog.countStatement = [](bool all1, bool all2, std::size_t question) {
    return std::to_string(all1) + std::to_string(all2) + std::to_string(question);
  };
  std::string counted;
  const RowCounter counter = [&](const std::string& statement, const auto& tell) {
    counted += statement + " ";
    tell(statement == "002" ? std::nullopt : std::optional<std::int64_t>(7000));
    return nullptr;
  };
  for (const auto& [name, palette] : TestPalettes()) {
    const ScopedPalette scoped(palette);
    const Theme theme(palette);
    counted.clear();
    window = std::make_unique<JoinWindow>(dialog, nullptr, EnglishTexts(), counter);
    window->show();
    auto* questions = window->findChild<QComboBox*>();
    const QList<QCheckBox*> checks = window->findChildren<QCheckBox*>();
    auto* picture = window->findChild<QWidget*>(QStringLiteral("picture"));
    ASSERT_EQ(checks.size(), 3);
    for (const int question : {2, 1, 0, 3, 4, 2}) {
      SCOPED_TRACE(name + std::to_string(question));
      questions->setCurrentIndex(question);
      EXPECT_EQ(window->Question(), static_cast<std::size_t>(question));
      EXPECT_EQ(checks[0]->isEnabled(), question == 0);
      EXPECT_TRUE(Says(question == 0 ? "Only rows that match" : ("Question " + std::to_string(question)).c_str()));
      EXPECT_EQ(Says("left out"), question == 2);
      EXPECT_TRUE(Says(question == 2 ? "takes too long" : "7,000 rows"));
      const QImage image = Paint(*picture);
      const int line = picture->fontMetrics().height();
      const QPoint middle(picture->width() / 2, picture->height() - 12 - 9 * line / 4);
      const auto filled = [&](int offset) {
        return image.pixelColor(middle + QPoint(offset, 0)) == theme.Of(ColorRole::JoinSelected);
      };
      EXPECT_EQ(filled(0), question % 2 == 1 || question == 0);
      EXPECT_EQ(filled(2 * line), question == 2);
      EXPECT_EQ(filled(-2 * line), question == 4);
    }
    EXPECT_EQ(counted, "000 002 001 003 004 ");
    questions->setCurrentIndex(1);
    if (name == "light" || name == "dark") KeepPicture(Paint(*window, 2), "join-counts-" + name);
    questions->setCurrentIndex(2);
    checks[2]->click();
    EXPECT_TRUE(window->GroupChecked());
    EXPECT_FALSE(Says("too long"));  // it is another query now
    if (name != "light" && name != "dark") continue;
    for (const int scale : {1, 2}) KeepPicture(Paint(*window, scale), "join-asks-" + name + std::to_string(scale));
  }
}

// The style mixes the outline itself, so it is measured where it is painted.
TEST_F(JoinWindowTest, AnEmptyCheckBoxIsSeenInEveryColourScheme) {
  for (const auto& [name, palette] : TestPalettes()) {
    const ScopedPalette scoped(palette);
    Open(TestJoin());
    check2->setFocus();
    const QImage image = Paint(*window);
    const QPoint at = check1->mapTo(window.get(), QPoint(0, check1->height() / 2));
    double strongest = 1;
    for (int x = -2; x < 6; ++x) {
      strongest = std::max(strongest,
                           Theme::Contrast(image.pixelColor(at + QPoint(x, 0)), image.pixelColor(at - QPoint(4, 0))));
    }
    EXPECT_GE(strongest, 3.0) << name;
  }
}

// The part of the picture that is filled is the part that is returned, at every scale and in every colour scheme.
TEST_F(JoinWindowTest, ThePictureFillsWhatIsReturned) {
  for (const auto& [name, palette] : TestPalettes()) {
    const ScopedPalette scoped(palette);
    const Theme theme(palette);
    for (const int scale : {1, 2}) {
      for (int choice = 0; choice < 4; ++choice) {
        SCOPED_TRACE(name + " choice " + std::to_string(choice) + " scale " + std::to_string(scale));
        JoinDialog dialog = TestJoin();
        dialog.table1Checked = (choice & 1) != 0;
        dialog.table2Checked = (choice & 2) != 0;
        Open(dialog);
        auto* picture = window->findChild<QWidget*>(QStringLiteral("picture"));
        ASSERT_NE(picture, nullptr);
        const QImage image = Paint(*picture, scale);
        const int line = picture->fontMetrics().height();
        const QPoint middle(picture->width() / 2, picture->height() - 12 - 9 * line / 4);
        const auto filled = [&](int offset) {
          return image.pixelColor((middle + QPoint(offset, 0)) * scale) == theme.Of(ColorRole::JoinSelected);
        };
        EXPECT_TRUE(filled(0)) << "what matches is always returned";
        EXPECT_EQ(filled(-2 * line), dialog.table1Checked);
        EXPECT_EQ(filled(2 * line), dialog.table2Checked);
        EXPECT_FALSE(filled(-4 * line)) << "outside the circles";
        const std::string file = "join-" + name + "-" + std::to_string(100 * scale) + "-" + std::to_string(choice);
        if (name == "light" || name == "dark") KeepPicture(Paint(*window, scale), file);
      }
    }
  }
}

}  // namespace
}  // namespace zrqrybld
