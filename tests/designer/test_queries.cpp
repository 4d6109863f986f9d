// Queries within queries in the designer's window, by real mouse and keys: made, opened by boxes, bar and tree, and
// taken back.
#include <QAction>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTreeWidget>

#include "designer/member_table.h"
#include "designer/query_list.h"
#include "tests/designer/designer_window_test.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/query_bar.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationship.h"
#include "zrqrybld/grid/grid_columns.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/queries.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/hub/query_titles.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

using test::Utf8;

class QueryWindow : public test::DesignerWindow {
 protected:
  QueryBar& Bar() { return *window.Tab().findChild<QueryBar*>(); }
  QueryList& Tree() { return *window.findChild<QueryList*>(); }
  std::string Shown() { return TitleOf(Hub().QueriesNow(), Hub().QueriesNow().shown).English(); }
  std::string Flat() { return ReplaceAll(ReplaceAll(ReplaceAll(Statement(), "\n", " "), "\t", ""), "  ", " "); }

  // What the bar says: the path, then the tabs with the shown one in brackets.
  std::string Said() {
    if (Bar().isHidden()) return {};
    std::string said;
    for (const QToolButton* button : Bar().findChildren<QToolButton*>()) {
      if (button->isHidden() || !button->property("query").isValid()) continue;
      said += Utf8(button->text()) + " ";
    }
    for (int i = 0; i < Bar().Members().count(); ++i) {
      const std::string tab = Utf8(Bar().Members().tabText(i));
      said += i == Bar().Members().currentIndex() ? "[" + tab + "]" : "|" + tab + "|";
    }
    return said;
  }
  // What the tree says, the shown query with a star.
  std::string TreeSaid() {
    std::string said;
    for (QTreeWidgetItemIterator at(&Tree()); *at; ++at) {
      said += (said.empty() ? "" : ", ") + Utf8((*at)->text(0)) + ((*at)->font(0).bold() ? "*" : "");
    }
    return said;
  }
  // The columns of the members side by side, what does not fit with a sign.
  std::string Columns() {
    const MemberTable& table = *window.findChild<MemberTable*>();
    if (table.isHidden()) return {};
    std::string said;
    for (int row = 0; row < table.rowCount(); ++row) {
      for (int column = 0; column < table.columnCount(); ++column) {
        const QTableWidgetItem& cell = *table.item(row, column);
        said += (column > 0 ? "|" : "") + Utf8(cell.text()) + (cell.icon().isNull() ? "" : "!");
      }
      said += ", ";
    }
    return said;
  }
  // The part of the statement that is set off, with its white space made one blank.
  std::string SetOff() {
    const QColor ground = Designer().SqlView().GetTheme().Of(ColorRole::RowHover);
    for (const QTextEdit::ExtraSelection& mark : Designer().SqlView().extraSelections()) {
      if (mark.format.background().color() == ground) return Utf8(mark.cursor.selectedText().simplified());
    }
    return {};
  }
  // Opens the context menu at a place and goes through it by keys.
  void Choose(QPoint place, const char* entry) {
    bool chosen = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
      auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
      if (!menu || chosen) return;
      chosen = true;
      for (QAction* action : menu->actions()) {
        if (!action->text().remove('&').startsWith(entry)) continue;
        menu->setActiveAction(action);
        return QTest::keyClick(menu, Qt::Key_Return);
      }
      ADD_FAILURE() << "the menu has no " << entry;
      menu->close();
    });
    timer.start(20);
    QTest::mouseClick(Diagram(), Qt::RightButton, {}, place);
    EXPECT_TRUE(QTest::qWaitFor([&] { return chosen && !QApplication::activePopupWidget(); }));
  }
  PixelPoint Tip(const char* caption) {
    const QPoint place = Caption(caption);
    return {Pixels(place.x()), Pixels(place.y())};
  }
  QPoint Empty() { return Diagram()->rect().bottomRight() - QPoint(8, 8); }
  void Key(Qt::Key key, Qt::KeyboardModifiers held = {}) { QTest::keyClick(&Designer().DiagramView(), key, held); }
  void DoubleClick(QPoint place) {
    QTest::mouseClick(Diagram(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(Diagram(), Qt::LeftButton, {}, place);
  }
  void KeepPictures(const std::string& name) {
    for (const auto& [scheme, palette] : TestPalettes()) {
      if (scheme != "light" && scheme != "dark") continue;
      const ScopedPalette scoped(palette);
      for (const int scale : {1, 2}) {
        KeepPicture(Paint(window, scale), "queries-" + name + "-" + scheme + "-" + std::to_string(scale));
      }
    }
  }
};

TEST_F(QueryWindow, AQueryInFromAndAUnionAreBuiltAndTakenBack) {
  window.BeginSession();
  OpenSampleWith({"Customers"});
  window.TickColumn("Customers.CompanyName");
  EXPECT_EQ(Said(), "") << "nothing tells of queries where there is one";
  EXPECT_TRUE(Tree().isHidden());

  Choose(Empty(), "New Subquery");
  EXPECT_EQ(Said(), "Main Query ");
  Key(Qt::Key_Return);
  ASSERT_EQ(Shown(), "Query") << "its box is selected, and Enter opens it";
  EXPECT_EQ(Said(), "Main Query ▸ Query ");
  EXPECT_EQ(TreeSaid(), "Main Query, Query*");
  ASSERT_TRUE(window.AddTables({"Order"}).isEmpty());
  window.TickColumn("Order.CustomerID");
  window.TickColumn("Order.Freight");
  KeepPictures("inner");
  Key(Qt::Key_Escape);
  Key(Qt::Key_Left, Qt::AltModifier);
  ASSERT_EQ(Shown(), "Main Query");
  Item("Query", "Freight")->SetChecked(true);
  EXPECT_EQ(Hub().DiagramPane()->ToolTipAt(Tip("Query")), "Query\nquery");
  KeepPictures("outer");

  Choose(Empty(), "Add UNION Member");
  ASSERT_EQ(Shown(), "Query 2");
  EXPECT_EQ(Said(), "Main Query |Query 1|[UNION ALL Query 2]");
  ASSERT_TRUE(window.AddTables({"Employees"}).isEmpty());
  window.TickColumn("Employees.LastName");
  window.TickColumn("Employees.EmployeeID");
  EXPECT_EQ(Columns(), "CompanyName|LastName, Freight|EmployeeID, ");
  Item("Employees", "FirstName")->SetChecked(true);
  EXPECT_EQ(Columns(), "CompanyName|LastName, Freight|EmployeeID, —|FirstName!, ");
  KeepPictures("member");
  Hub().Undo();
  EXPECT_EQ(Flat(),
            "SELECT Customers.CompanyName, \"Query\".Freight FROM Customers, ( SELECT \"Order\".CustomerID, "
            "\"Order\".Freight FROM \"Order\" ) AS \"Query\" UNION ALL SELECT Employees.LastName, Employees.EmployeeID "
            "FROM Employees");

  EXPECT_EQ(SetOff(), "SELECT Employees.LastName, Employees.EmployeeID FROM Employees");

  // The bar by keys: the tab before, and the operator of the member.
  Bar().setFocus();
  QTest::keyClick(&Bar().Members(), Qt::Key_Left);
  EXPECT_EQ(Shown(), "Main Query");
  DoubleClick(Caption("Query"));
  EXPECT_EQ(Shown(), "Query");
  QTest::mouseClick(Bar().findChildren<QToolButton*>().front(), Qt::LeftButton);
  EXPECT_EQ(Shown(), "Main Query");

  // From the text by a key, and back by the bar.
  QtTextArea& text = Designer().SqlView();
  text.setTextCursor(text.document()->find("Order"));
  QTest::keyClick(&text, Qt::Key_F12);
  EXPECT_EQ(Shown(), "Query");
  EXPECT_EQ(SetOff(), "SELECT \"Order\".CustomerID, \"Order\".Freight FROM \"Order\"");
  QTest::mouseClick(Bar().findChildren<QToolButton*>().front(), Qt::LeftButton);
  EXPECT_EQ(Shown(), "Main Query");
  EXPECT_EQ(SetOff(), "") << "the main query is all of it";

  int steps = 0;
  for (; Hub().CanUndo() && steps < 40; ++steps) Hub().Undo();
  EXPECT_TRUE(Hub().QueriesNow().IsSingle());
  EXPECT_EQ(Said(), "");
  EXPECT_EQ(Hub().Entities()->Count(), 0);
  for (; Hub().CanRedo() && steps > 0; --steps) Hub().Redo();
  EXPECT_EQ(Hub().QueriesNow().queries.size(), 3U);
  window.Document().Reset();
  EXPECT_EQ(Said() + TreeSaid() + Columns(), "") << "an empty query is one";
}

TEST_F(QueryWindow, AQueryInACriterionIsOpenedChangedAndLeft) {
  window.BeginSession();
  OpenSampleWith({"Customers"});
  window.TickColumn("Customers.CompanyName");
  window.TickColumn("Customers.CustomerID");
  const Ref<zrGrid> grid = Hub().GridPane()->Grid();
  QAbstractScrollArea& view = Designer().GridView();
  grid->Rows()->Item(2)->SetValue(
      static_cast<std::int32_t>(kColumnCriteria),
      std::string("IN (SELECT CustomerID FROM \"Order\" WHERE Freight > 5 AND CustomerID = Customers.CustomerID)"));
  grid->GotoRowCol(2, kColumnCriteria);
  QApplication::processEvents();
  KeepPictures("cell");
  view.setFocus();
  QTest::keyClick(&view, Qt::Key_F12);
  ASSERT_EQ(Shown(), "Subquery of CustomerID");
  EXPECT_EQ(Said(), "Main Query ▸ Subquery of CustomerID ");
  EXPECT_EQ(Bar().findChild<QLabel*>()->text(), "uses Customers of the outer query");
  window.TickColumn("Order.Freight");
  EXPECT_NE(Flat().find("IN (SELECT \"Order\".CustomerID, \"Order\".Freight FROM"), std::string::npos) << Flat();
  KeepPictures("in-cell");
  QTest::keyClick(&view, Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(Shown(), "Main Query");
  EXPECT_EQ(Grid().Row(), 2);
  EXPECT_EQ(Grid().Column(), kColumnCriteria);
  // The button at the end of the cell, also of one that is not current.
  grid->GotoRowCol(1, kColumnColumn);
  const PixelRect cell = grid->GetRowColumnXY(2, kColumnCriteria);
  QTest::mouseClick(view.viewport(), Qt::LeftButton, {},
                    QPoint(int(cell.Right().Value()) - 10, int(cell.CenterY().Value())));
  EXPECT_EQ(Shown(), "Subquery of CustomerID");
}

// A query in ON and one in WHERE, by keys: from the join, from its menu, and from the place in the text.
TEST_F(QueryWindow, AQueryInAJoinIsOpenedFromTheDiagramAndFromTheText) {
  window.BeginSession();
  OpenSampleWith({"Customers"});
  Hub().SQLPane()->ParseSQLStatement(
      "SELECT Customers.CompanyName FROM Customers LEFT JOIN \"Order\" ON \"Order\".CustomerID = Customers.CustomerID "
      "AND \"Order\".Freight > (SELECT AVG(o.Freight) FROM \"Order\" o WHERE o.CustomerID = Customers.CustomerID) "
      "WHERE ((Customers.CustomerID IN (SELECT z.CustomerID FROM \"Order\" z)))");
  const std::string before = Flat();
  const auto isJoin = [&] {
    return std::dynamic_pointer_cast<qbRelationship>(Hub().DiagramPane()->SelectedObject()) != nullptr;
  };
  QWidget* diagram = &Designer().DiagramView();
  diagram->setFocus();
  for (int i = 0; i < 9 && !isJoin(); ++i) QTest::keyClick(diagram, Qt::Key_Tab);
  ASSERT_TRUE(isJoin());
  QTest::keyClick(diagram, Qt::Key_F12);
  EXPECT_EQ(Shown(), "Subquery of Customers – Order");
  EXPECT_EQ(SetOff(), "SELECT AVG(o.Freight) FROM \"Order\" o WHERE o.CustomerID = Customers.CustomerID");
  KeepPictures("in-join");
  QTest::keyClick(diagram, Qt::Key_Escape);
  QTest::keyClick(diagram, Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(Shown(), "Main Query");
  EXPECT_TRUE(isJoin()) << "back where one came from";
  EXPECT_EQ(Flat(), before);
  QtTextArea& text = Designer().SqlView();
  for (const char* place : {"AVG", "z.Cust"}) {
    text.setTextCursor(text.document()->find(place));
    QTest::keyClick(&text, Qt::Key_F12);
    EXPECT_EQ(SetOff().substr(0, 13), std::string(place) == "AVG" ? "SELECT AVG(o." : "SELECT z.Cust");
    Hub().Queries()->Item(1)->Open();
  }
  EXPECT_EQ(Flat(), before);
}

TEST_F(QueryWindow, AFileThatIsDroppedOnTheDiagramBecomesAQueryInFrom) {
  window.BeginSession();
  OpenSampleWith({"Customers"});
  window.TickColumn("Customers.CompanyName");
  QTemporaryDir folder;
  const QString file = folder.filePath("late orders.zrq");
  Hub().SaveQuery(Utf8(file));
  const auto drop = [&](const QString& path) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QDragEnterEvent enter(QPoint(300, 100), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(Diagram(), &enter);  // without it nothing is dropped
    QDropEvent event(QPointF(300, 100), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(Diagram(), &event);
  };
  drop(file);
  EXPECT_EQ(TreeSaid(), "Main Query*, late orders");
  Item("late orders", "CompanyName")->SetChecked(true);
  EXPECT_EQ(
      Flat(),
      "SELECT Customers.CompanyName, \"late orders\".CompanyName FROM Customers, ( SELECT Customers.CompanyName FROM "
      "Customers ) AS \"late orders\"");
  KeepPictures("saved");
  QFile(file).resize(40);
  const std::string message = MessageOf([&] { drop(file); });
  EXPECT_NE(message.find("The file holds no statement."), std::string::npos) << message;
  EXPECT_EQ(TreeSaid(), "Main Query*, late orders");
}

}  // namespace
}  // namespace zrqrybld
