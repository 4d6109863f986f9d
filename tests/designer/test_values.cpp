// Values from the data in a criterion: asked in the background, offered below the cell, written as literals.
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

}  // namespace
}  // namespace zrqrybld
