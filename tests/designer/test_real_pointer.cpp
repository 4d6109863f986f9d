// The same window under a pointer and a keyboard that are not Qt's own: the events come from the display, by way of the
// window manager, as those of a user do. Runs where there is a display and xdotool (see tools/with_xvfb).
#include <QGuiApplication>
#include <QListView>
#include <QProcess>
#include <QStandardPaths>
#include <QTreeWidget>

#include "tests/designer/designer_window_test.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/qt/conditions_view.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

using test::Utf8;

class RealPointer : public test::DesignerWindow {
 protected:
  void SetUp() override {
    if (QGuiApplication::platformName() != "xcb") GTEST_SKIP() << "not on an X display";
    if (QStandardPaths::findExecutable("xdotool").isEmpty()) GTEST_SKIP() << "there is no xdotool";
    OpenSampleWith({"Customers", "Order", "Order Lines"});
  }

  // Runs xdotool while the window goes on to react.
  static void Do(const QStringList& arguments) {
    QProcess process;
    process.start("xdotool", arguments);
    ASSERT_TRUE(QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }));
    ASSERT_EQ(process.exitCode(), 0) << Utf8(process.readAllStandardError());
  }
  static QStringList MoveTo(const QWidget* widget, QPoint place) {
    const QPoint global = widget->mapToGlobal(place);
    return {"mousemove", QString::number(global.x()), QString::number(global.y())};
  }
};

TEST_F(RealPointer, ClicksOnCheckBoxesMakeTheStatement) {
  for (const auto& [table, column] :
       {std::pair{"Customers", "CompanyName"}, {"Order", "OrderDate"}, {"Order Lines", "Quantity"}}) {
    Do(MoveTo(Diagram(), CheckBox(table, column)) + QStringList{"click", "1"});
    EXPECT_TRUE(QTest::qWaitFor([&, t = table, c = column] { return Item(t, c)->Checked(); })) << table;
  }
  EXPECT_EQ(GridRows(), "Customers.CompanyName Order.OrderDate Order Lines.Quantity");
  EXPECT_EQ(test::QueryText(ZRQRYBLD_SAMPLE_DB, "SELECT count(*) FROM (" + Statement() + ")"), "2970");
}

TEST_F(RealPointer, ABoxIsDraggedAndLetGo) {
  const TwipsRect before = Box("Order").Bounds();
  const QPoint from = Caption("Order");
  Do(MoveTo(Diagram(), from) + QStringList{"mousedown", "1"});
  for (const QPoint way : {QPoint(20, 10), QPoint(60, 40), QPoint(120, 70)}) Do(MoveTo(Diagram(), from + way));
  EXPECT_TRUE(QTest::qWaitFor([&] { return Box("Order").Bounds().left == before.left + Twips(120 * 15); }));
  Do({"mouseup", "1"});
  EXPECT_TRUE(QTest::qWaitFor([] { return QGuiApplication::mouseButtons() == Qt::NoButton; }));
  Do(MoveTo(Diagram(), from));
  QTest::qWait(20);
  EXPECT_EQ(Box("Order").Bounds().left, before.left + Twips(120 * 15));
  EXPECT_EQ(Box("Order").Bounds().top, before.top + Twips(70 * 15));
}

TEST_F(RealPointer, F7TypingAndEnterAddATable) {
  WithDialog(
      [&] {
        Do({"key", "F7"});
      },
      [&](QDialog& dialog) {
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
        Do({"type", "--delay", "5", "ship"});
        Do({"key", "Return"});
        EXPECT_TRUE(QTest::qWaitFor([&] { return Hub().Entities()->Count() == 4; }));
        Do({"key", "Escape"});
        EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog.isVisible(); }));
      });
  ASSERT_TRUE(Hub().Entities()->Item("Shipments"));
  EXPECT_EQ(Hub().Entities()->Item("Shipments")->Relationships()->Count(), 2);
}

// In one go: the drag runs its own loop until the button is let go.
TEST_F(RealPointer, ATableIsDraggedFromTheTreeOntoTheDiagram) {
  QTest::keyClick(&window, Qt::Key_F9);
  auto* tree = window.findChild<SchemaTree*>()->findChild<QTreeWidget*>();
  QTreeWidgetItem* item = tree->findItems("Products", Qt::MatchExactly).value(0);
  ASSERT_TRUE(item);
  tree->scrollToItem(item);
  QTest::qWait(50);
  const QPoint from = tree->visualItemRect(item).center();
  QStringList way = MoveTo(tree->viewport(), from) + QStringList{"mousedown", "1"};
  for (const int step : {8, 16, 30})
    way += QStringList{"sleep", "0.1"} + MoveTo(tree->viewport(), from + QPoint(step, 0));
  const QPoint middle = Diagram()->rect().center();
  for (const int step : {0, 6}) way += QStringList{"sleep", "0.1"} + MoveTo(Diagram(), middle + QPoint(step, 0));
  Do(way + QStringList{"sleep", "0.1", "mouseup", "1"});
  EXPECT_TRUE(QTest::qWaitFor([&] { return Hub().Entities()->Count() == 4; }));
  EXPECT_TRUE(Hub().Entities()->Item("Products"));
}

TEST_F(RealPointer, AConditionIsDraggedOutOfItsGroup) {
  window.Tab().ShowConditions(true);
  Hub().SQLPane()->ParseSQLStatement(
      "SELECT City FROM Customers WHERE Country = 'UK' AND (City = 'Bath' OR City = 'York' OR Phone IS NULL)");
  window.Tab().Conditions().Refresh();
  QTest::qWait(50);
  QTreeWidget& tree = window.Tab().Conditions().Tree();
  QTreeWidgetItem* root = tree.topLevelItem(0);
  const QRect moved = tree.visualItemRect(root->child(1)->child(2));
  const QRect first = tree.visualItemRect(root->child(0));
  const QPoint from(moved.left() + 20, moved.center().y());
  QStringList way = MoveTo(tree.viewport(), from) + QStringList{"mousedown", "1"};
  for (const int step : {6, 14, 24})
    way += QStringList{"sleep", "0.1"} + MoveTo(tree.viewport(), from + QPoint(step, 0));
  for (const int step : {2, 1})
    way += QStringList{"sleep", "0.1"} + MoveTo(tree.viewport(), {from.x(), first.center().y() - 2 - step});
  Do(way + QStringList{"sleep", "0.1", "mouseup", "1"});
  EXPECT_TRUE(QTest::qWaitFor([&] { return tree.topLevelItem(0)->childCount() == 3; }));
  EXPECT_EQ(Utf8(tree.topLevelItem(0)->child(0)->text(0)), "Customers.Phone") << "where it was let go";
  EXPECT_EQ(tree.topLevelItem(0)->child(2)->childCount(), 2);
  EXPECT_NE(Statement().find("(Customers.Phone IS NULL)"), std::string::npos) << Statement();
}

}  // namespace
}  // namespace zrqrybld
