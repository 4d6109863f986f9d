// Values from the data in a criterion: asked in the background, offered below the cell, written as literals.
#include <QCalendarWidget>
#include <QLineEdit>
#include <QListView>

#include "designer/data_values.h"
#include "tests/designer/designer_window_test.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld {
namespace {

using test::Utf8;

class Values : public test::DesignerWindow {
 protected:
  ~Values() override { EXPECT_TRUE(PreviewJob::WaitForAll(std::chrono::seconds(10))); }
  qbGridPane& Pane() { return *Hub().GridPane(); }
  // Opens the criterion of the first row.
  QLineEdit* Edit(const char* column) {
    Pane().Grid()->CancelEdit();
    Pane().SetValue(1, "column", column);
    Pane().Grid()->GotoRowCol(1, "criteria");
    Designer().GridView().setFocus();
    EXPECT_TRUE(Pane().Grid()->EditCell());
    return qobject_cast<QLineEdit*>(QApplication::focusWidget());
  }
  QListView* List() {
    for (QWidget* each : QApplication::topLevelWidgets()) {
      auto* list = qobject_cast<QListView*>(each);
      if (!list) list = each->findChild<QListView*>();
      if (list && list->isVisible() && !window.isAncestorOf(list)) return list;
    }
    return nullptr;
  }
  static void Click(QAbstractScrollArea& view, QPoint place) {
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, place);
  }
  QString First() { return List() ? List()->model()->index(0, 0).data().toString() : QString(); }
  bool Offers(const QString& text) {
    return QTest::qWaitFor([&] { return First() == text; }, 5000);
  }
};

TEST_F(Values, AreOfferedBelowTheCellAndWrittenAsLiterals) {
  OpenSample();
  Hub().AddTable("Customers");
  Hub().AddTable("Orders");
  QLineEdit* editor = Edit("Customers.Country");
  ASSERT_TRUE(editor);
  QTest::keyClick(editor, Qt::Key_Space, Qt::ControlModifier);
  ASSERT_TRUE(Offers("France")) << Utf8(First());
  KeepPicture(Paint(*List()), "values");
  QTest::keyClicks(editor, "uni");
  EXPECT_EQ(Utf8(First()), "United Kingdom");
  QTest::keyClick(editor, Qt::Key_Enter);
  EXPECT_EQ(Utf8(editor->text()), "'United Kingdom'");
  QTest::keyClick(editor, Qt::Key_Enter);
  EXPECT_EQ(Pane().Value(1, "criteria").Text(), "= 'United Kingdom'");
}

// With real keys and clicks: a cell of the first row is clicked, written, and left by Tab; the next column is another.
TEST_F(Values, NameTheRowsThatAreReferredToAndLetDaysBeChosen) {
  OpenSample();
  Hub().AddTable("Order");
  Hub().AddTable("Products");
  const auto click = [this](const char* column) {
    const PixelRect cell = Pane().Grid()->GetRowColumnXY(1, column);
    Click(Designer().GridView(), {qRound(cell.CenterX().Value()), qRound(cell.CenterY().Value())});
    return qobject_cast<QLineEdit*>(QApplication::focusWidget());
  };
  const auto begin = [&](const char* column) {
    QLineEdit* field = click("column");
    if (!field) return field;
    field->selectAll();
    QTest::keyClicks(field, column);
    QTest::keyClick(field, Qt::Key_Return);
    field = click("criteria");
    if (field) QTest::keyClick(field, Qt::Key_Space, Qt::ControlModifier);
    return field;
  };
  QLineEdit* editor = begin("Order.CustomerID");
  ASSERT_TRUE(editor);
  EXPECT_EQ(Pane().Value(1, "column").Text(), "CustomerID");
  ASSERT_TRUE(Offers("CA031")) << Utf8(First());
  KeepPicture(Paint(*List()), "values-foreign-key");
  QTest::keyClicks(editor, "castle bi");
  ASSERT_TRUE(List() && List()->model()->rowCount() == 2) << "by the names of the rows";
  QTest::keyClick(editor, Qt::Key_Down);
  QTest::keyClick(editor, Qt::Key_Return);
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_EQ(Pane().Value(1, "criteria").Text(), "= 'CA051'");

  // The column is another: so are its values.
  Pane().SetValue(1, "criteria", "");
  editor = begin("Products.Discontinued");
  ASSERT_TRUE(editor && Offers("True"));
  QTest::keyClick(editor, Qt::Key_Escape);
  editor = begin("Order.OrderDate");
  const auto hasDays = [&] { return List() && List()->model()->index(1, 0).data().toString().startsWith("20"); };
  ASSERT_TRUE(editor && QTest::qWaitFor(hasDays, 5000));
  KeepPicture(Paint(*List()), "values-date");
  EXPECT_EQ(Utf8(First()), "Choose a date...");
  QTest::keyClicks(editor, "2024-02-28");
  QTest::keyClick(editor, Qt::Key_Space, Qt::ControlModifier);
  QTest::keyClick(editor, Qt::Key_Return);
  QWidget* popup = QApplication::activePopupWidget();
  auto* calendar = popup ? popup->findChild<QCalendarWidget*>() : nullptr;
  ASSERT_TRUE(calendar);
  EXPECT_EQ(calendar->selectedDate(), QDate(2024, 2, 28));
  KeepPicture(Paint(*popup), "values-calendar");
  QWidget* days = calendar->findChild<QAbstractItemView*>();
  QTest::keyClick(days, Qt::Key_Right);
  QTest::keyClick(days, Qt::Key_Return);
  EXPECT_EQ(Utf8(editor->text()), "'2024-02-29'");
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_EQ(Pane().Value(1, "criteria").Text(), "= '2024-02-29'");
}

}  // namespace
}  // namespace zrqrybld
