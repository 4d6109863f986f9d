#include <gtest/gtest.h>

#include <QCalendarWidget>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <algorithm>

#include "tests/qt/modal.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/parameters_window.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/qt_text_area.h"
#include "zrqrybld/adapters/qt/qt_toolkit.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/parameter_form.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kSql =
    "SELECT Orders.OrderID, Orders.OrderDate\r\nFROM Orders\r\nWHERE Orders.OrderDate >= ?PARAM(From which day, "
    "2020-01-01, FromDay, date) AND Orders.Freight > ?PARAM(Least freight,,,number) AND\r\n"
    "      Orders.ShipName LIKE '%?PARAM(Part of the ship's name,Ernst)%' AND Orders.Paid = ?PARAM(Paid & sent,,,bit)";

// The fields that are typed into.
std::vector<QLineEdit*> Lines(const ParametersWindow& window) {
  std::vector<QLineEdit*> lines;
  for (QLineEdit* line : window.findChildren<QLineEdit*>()) {
    if (line->isVisible()) lines.push_back(line);
  }
  return lines;
}

class ParametersWindowTest : public testing::Test {
 protected:
  std::shared_ptr<QtToolkit> toolkit = std::make_shared<QtToolkit>();
  Ref<qbQueryBuilder> hub = qbQueryBuilder::Create(toolkit);
};

TEST_F(ParametersWindowTest, ValuesAreTypedWithTheStatementInView) {
  WhenOpen<ParametersWindow>([](ParametersWindow& window) {
    const auto lines = Lines(window);
    const auto* statement = window.findChild<QtTextArea*>();
    const QPushButton* accept = window.findChildren<QPushButton*>().front();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_TRUE(lines[0]->hasFocus());
    EXPECT_FALSE(accept->isEnabled()) << "two values are missing";
    EXPECT_NE(statement->Text().find("> ?PARAM(Least freight"), std::string::npos);

    QTest::keyClicks(lines[1], QStringLiteral("1,5"));
    const auto labels = window.findChildren<QLabel*>();
    EXPECT_TRUE(std::ranges::any_of(labels, [](const QLabel* label) {
      return label->text() == QStringLiteral("Least freight: This is no number. Write fractions with a point: 1.5.");
    }));
    lines[1]->setText(QStringLiteral("1.5"));
    window.findChild<QComboBox*>()->setCurrentIndex(1);
    EXPECT_TRUE(accept->isEnabled());
    EXPECT_NE(statement->Text().find("> 1.5 AND"), std::string::npos) << statement->Text();

    QTest::keyClick(lines[0], Qt::Key_Down, Qt::AltModifier);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    auto* calendar = QApplication::activePopupWidget()->findChild<QCalendarWidget*>();
    ASSERT_NE(calendar, nullptr);
    EXPECT_EQ(calendar->selectedDate(), QDate(2020, 1, 1));
    calendar->setSelectedDate(QDate(2021, 3, 4));
    QTest::keyClick(calendar->findChild<QTableView*>(), Qt::Key_Return);
    QTest::keyClick(lines[0], Qt::Key_Return);
  });
  const auto values = AskParameters(*hub, kSql);
  ASSERT_TRUE(values);
  const std::string sql = PutInLiterals(kSql, *values, LiteralRulesOf(*hub));
  EXPECT_TRUE(
      sql.ends_with("OrderDate >= '2021-03-04' AND Orders.Freight > 1.5 AND\r\n"
                    "      Orders.ShipName LIKE '%Ernst%' AND Orders.Paid = True"))
      << sql;
}

TEST_F(ParametersWindowTest, IsPaintedInEveryPalette) {
  for (const NamedPalette& named : TestPalettes()) {
    const ScopedPalette palette(named.palette);
    WhenOpen<ParametersWindow>([&](ParametersWindow& window) {
      Lines(window).at(1)->setText(QStringLiteral("1,5"));
      KeepPicture(Paint(window), "parameters-" + named.name);
      QTest::keyClick(&window, Qt::Key_Escape);
    });
    EXPECT_FALSE(AskParameters(*hub, kSql)) << "Esc cancels";
  }
}

}  // namespace
}  // namespace zrqrybld
