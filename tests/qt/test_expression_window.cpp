// The expression builder's and the zoom's window, by real events.
#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

#include "tests/known_source.h"
#include "tests/qt/hands.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/expression_window.h"
#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/qt_text_area.h"
#include "zrqrybld/adapters/qt/window_page.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/host/language_ids.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

class ExpressionWindowTest : public testing::Test, protected test::KnownSource {
 protected:
  ExpressionWindowTest() {
    hub->AddTable("Orders");
    hub->AddTable("Customers");
  }

  // The window on a text, open; the builder or the zoom.
  std::unique_ptr<ExpressionWindow> Open(bool builder, std::string text) {
    const Ref<frmExpressionZoom> form =
        builder ? Ref<frmExpressionZoom>(frmExpressionBuilder::Create(hub, EditedText::Expression))
                : frmExpressionZoom::Create(hub, EditedText::Expression);
    auto window = std::make_unique<ExpressionWindow>(ExpressionDialog{form->Caption(), std::move(text), form});
    window->show();
    QApplication::setActiveWindow(window.get());
    window->Editor().setFocus();
    return window;
  }

  static QToolButton* Tool(const QWidget& window, const QString& toolTip) {
    for (QToolButton* button : window.findChildren<QToolButton*>()) {
      if (button->toolTip() == toolTip) return button;
    }
    return nullptr;
  }
};

// Search, Enter: the piece goes into the text, with the values of its parameters; the rest is stepped through.
TEST_F(ExpressionWindowTest, BuildsAnExpression) {
  const auto window = Open(true, "");
  auto* search = window->findChild<QLineEdit*>(QStringLiteral("search"));
  QTest::keyClicks(search, "between");
  window->findChild<QTableWidget*>()->item(0, 1)->setText("1");
  QTest::keyClicks(&window->Editor(), "(Total ");
  QTest::mouseClick(Tool(*window, "Insert Keyword/Function/Operator"), Qt::LeftButton);
  EXPECT_EQ(window->Text(), "(Total BETWEEN 1 AND @Expression2");
  QTest::keyClicks(&window->Editor(), "2");
  QTest::keyClick(&window->Editor(), Qt::Key_Tab);
  EXPECT_FALSE(window->findChild<QLabel*>(QStringLiteral("message"))->text().isEmpty());  // the parenthesis is open
  QTest::keyClicks(&window->Editor(), ")");
  EXPECT_TRUE(window->findChild<QLabel*>(QStringLiteral("message"))->text().isEmpty());
  EXPECT_EQ(window->Text(), "(Total BETWEEN 1 AND 2)");

  search->clear();
  QTest::keyClicks(search, "orders total");
  QTest::mouseClick(Tool(*window, "Clear Expression"), Qt::LeftButton);
  QTest::keyClick(search, Qt::Key_Return);
  EXPECT_EQ(window->Text(), "Orders.Total");
  QTest::keyClick(&window->Editor(), Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(window->result(), QDialog::Accepted);
}

// The page of functions over rows, by keyboard and mouse: what it says is written in the text, as steps that can be
// undone, and the caret leads it from one function to the next.
TEST_F(ExpressionWindowTest, BuildsAFunctionOverRows) {
  const auto window = Open(true, "Orders.Total");
  auto* pages = window->findChild<QTabWidget*>();
  QTest::keyClick(pages->tabBar(), Qt::Key_Right);
  auto* page = window->findChild<WindowPage*>();
  ASSERT_TRUE(page->isVisible());
  auto* arguments = page->findChild<QComboBox*>("windowArguments");
  EXPECT_FALSE(arguments->isEnabled());
  const auto choose = [&](const char* name, const QString& text) {
    auto* box = page->findChild<QComboBox*>(name);
    ASSERT_NE(box->findText(text), -1) << name << " " << text.toStdString();
    box->setFocus();
    box->showPopup();
    box->view()->setCurrentIndex(box->model()->index(box->findText(text), 0));
    QTest::keyClick(box->view(), Qt::Key_Return);
  };
  const auto type = [&](const char* list, int row, const char* text) {
    const auto lines = page->findChild<QWidget*>(list)->findChildren<QLineEdit*>();
    lines[row]->setFocus();
    QTest::keyClicks(lines[row], text);
    QTest::keyClick(lines[row], Qt::Key_Tab);
  };
  choose("windowFunction", "RANK");
  EXPECT_EQ(window->Text(), "RANK() OVER (ORDER BY Orders.Total)");
  choose("windowFunction", "SUM");
  EXPECT_TRUE(arguments->isEnabled());
  arguments->setFocus();
  QTest::keyClicks(arguments->lineEdit(), "Orders.Total");
  type("windowPartitions", 0, "Orders.CustomerID");
  type("windowPartitions", 1, "City");
  type("windowOrders", 1, "OrderID");
  auto* orders = page->findChild<QWidget*>("windowOrders");
  orders->findChildren<QToolButton*>()[0]->click();
  choose("windowUnit", "By rows (ROWS)");
  EXPECT_EQ(window->Text(),
            "SUM(Orders.Total) OVER (PARTITION BY Orders.CustomerID, City ORDER BY OrderID "
            "ROWS BETWEEN UNBOUNDED PRECEDING AND CURRENT ROW)");
  EXPECT_TRUE(window->findChild<QLabel*>("message")->text().isEmpty());
  EXPECT_FALSE(Tool(*window, "Insert Keyword/Function/Operator")->isEnabled());
  KeepPicture(Paint(*window), "window-page");

  // Typed, it is read back; the one that the caret stands in is shown.
  window->Editor().moveCursor(QTextCursor::End);
  QTest::keyClicks(&window->Editor(), " + LAG(City, 2) OVER (ORDER BY City DESC GROUPS 1 PRECEDING)");
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // rows that were removed
  EXPECT_EQ(page->Call().function, "LAG");
  EXPECT_EQ(arguments->currentText(), "City, 2");
  EXPECT_EQ(orders->findChildren<QComboBox*>("direction")[0]->currentText(), "Descending");
  window->Editor().moveCursor(QTextCursor::Start);
  EXPECT_EQ(page->Call().function, "SUM");
  window->Editor().SetText("Total + 1");
  EXPECT_FALSE(arguments->isEnabled());
  EXPECT_EQ(window->Text(), "Total + 1");
}

// A window opens on the page when the expression has such a function; in a dialect without OVER, and in a criterion,
// there is none.
TEST_F(ExpressionWindowTest, OffersFunctionsOverRowsWhereTheyCanStand) {
  const auto window = Open(true, "1 + AVG(Total) OVER (ORDER BY Total)");
  EXPECT_EQ(window->findChild<QTabWidget*>()->currentIndex(), 1);
  EXPECT_EQ(window->Text(), "1 + AVG(Total) OVER (ORDER BY Total)");
  const Ref<qbSQLPane> sql = qbSQLPane::Create();
  hub->SetSQLPane(sql);
  sql->SetSQLSyntax(SQLSyntaxAccess);
  const auto without = Open(true, "AVG(Total) OVER ()");
  EXPECT_FALSE(without->findChild<QTabWidget*>()->isTabEnabled(1));
  EXPECT_EQ(without->findChild<QTabWidget*>()->currentIndex(), 0);
  sql->SetSQLSyntax(SQLSyntaxMSSQL);
  const auto some = Open(true, "RANK() OVER (ORDER BY Total)");
  const auto* units = some->findChild<QComboBox*>("windowUnit");
  EXPECT_FALSE(units->model()->flags(units->model()->index(3, 0)).testFlag(Qt::ItemIsEnabled));
  EXPECT_TRUE(units->model()->flags(units->model()->index(2, 0)).testFlag(Qt::ItemIsEnabled));
  const Ref<frmExpressionZoom> criterion = frmExpressionBuilder::Create(hub, EditedText::Criterion);
  EXPECT_EQ(ExpressionWindow({criterion->Caption(), "> 1", criterion}).findChild<WindowPage*>(), nullptr);
}

// A piece that is dragged from the tree goes where it is dropped, as the button inserts it; elsewhere it is plain text.
TEST_F(ExpressionWindowTest, TakesPiecesThatAreDropped) {
  const auto window = Open(true, "1 + 2");
  QTest::keyClicks(window->findChild<QLineEdit*>(QStringLiteral("search")), "param");
  auto* tree = window->findChild<QTreeWidget*>();
  const std::unique_ptr<QMimeData> dragged(tree->model()->mimeData({tree->currentIndex()}));
  EXPECT_EQ(dragged->text(), "?PARAM(@Prompt,@Default,@Name,@DataType)");
  window->findChild<QTableWidget*>()->item(0, 1)->setText("'Year'");
  QTextCursor place = window->Editor().textCursor();
  place.setPosition(3);
  const QPoint at = window->Editor().cursorRect(place).center();
  EXPECT_TRUE(DragOnto(*window->Editor().viewport(), at, *dragged, DragEnd::Dropped));
  EXPECT_EQ(window->Text(), "1 + ?PARAM('Year',@Default,@Name,@DataType) 2");
  EXPECT_EQ(window->Editor().textCursor().selectedText(), "@Default");
}

TEST_F(ExpressionWindowTest, SpeaksTheLanguageTable) {
  hub->SetLanguageString(LanguageExprBuildCaption, "Ausdruck bauen");
  hub->SetLanguageString(LanguageZoomExprAcceptButton, "&Gut");
  EXPECT_EQ(Open(true, "")->windowTitle(), "Ausdruck bauen");
  const auto zoom = Open(false, "1");
  EXPECT_EQ(zoom->findChild<QPushButton*>()->text(), "&Gut");
  QTest::keyClick(zoom.get(), Qt::Key_Escape);
  EXPECT_EQ(zoom->result(), QDialog::Rejected);
}

// Esc closes the list of suggestions first, then the window.
TEST_F(ExpressionWindowTest, LooksRightAndClosesInOrder) {
  for (const NamedPalette& named : TestPalettes()) {
    const ScopedPalette scoped(named.palette);
    const auto window = Open(true, "COUNT(DISTINCT Orders.CustomerID) * Orders.Total + ");
    QTest::keyClicks(window->findChild<QLineEdit*>(QStringLiteral("search")), "sum");
    QTest::keyClicks(&window->Editor(), "to)");
    KeepPicture(Paint(*window), "expression-builder-" + named.name);
    QTest::keyClicks(&window->Editor(), " t");
    QTest::keyClick(&window->Editor(), Qt::Key_Escape);
    EXPECT_TRUE(window->isVisible());
    QTest::keyClick(&window->Editor(), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    const auto zoom = Open(false, "Orders.Total * 2");
    KeepPicture(Paint(*zoom), "expression-zoom-" + named.name);
    const auto page = Open(true, "AVG(Total) OVER (PARTITION BY City ORDER BY a, b DESC RANGE 3 PRECEDING) / 2");
    KeepPicture(Paint(*page), "window-page-" + named.name);
  }
}

}  // namespace
}  // namespace zrqrybld
