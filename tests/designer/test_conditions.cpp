// The conditions beside the grid: a tree that shows what the criteria say and writes what is changed there.

#include <QAbstractItemView>
#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>

#include "tests/designer/designer_window_test.h"
#include "tests/qt/pictures.h"
#include "zrqrybld/adapters/qt/conditions_view.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

using test::Utf8;

class ConditionsTest : public test::DesignerWindow {
 protected:
  ConditionsTest() {
    OpenSample();
    window.Tab().ShowConditions(true);
  }
  ConditionsView& View() { return window.Tab().Conditions(); }
  QTreeWidget& Tree() { return View().Tree(); }
  void Apply(const char* where) {
    Hub().SQLPane()->ParseSQLStatement(std::string("SELECT c.CompanyName FROM Customers c WHERE ") + where);
    View().Refresh();
  }
  static std::string Say(const QTreeWidgetItem& item) {
    std::string text = Utf8(item.text(0));
    if (!item.text(1).isEmpty()) text += " " + Utf8(item.text(1));
    for (int i = 0; i < item.childCount(); ++i) text += (i == 0 ? " (" : "; ") + Say(*item.child(i));
    return item.childCount() > 0 ? text + ")" : text;
  }
  std::string Shown() { return Say(*Tree().topLevelItem(0)); }
  QTreeWidgetItem& Item(std::initializer_list<int> path) {
    QTreeWidgetItem* item = Tree().topLevelItem(0);
    for (const int place : path) item = item->child(place);
    return *item;
  }
  void Go(std::initializer_list<int> path) { Tree().setCurrentItem(&Item(path)); }
  // Types into the editor that is open, and takes it.
  template <class Editor>
  void Type(const QString& text) {
    QApplication::processEvents();
    auto* editor = Tree().findChild<Editor*>();
    ASSERT_TRUE(editor);
    QWidget* line = editor->focusProxy() ? editor->focusProxy() : editor;
    QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(line, text);
    if (auto* combo = qobject_cast<QComboBox*>(static_cast<QWidget*>(editor))) combo->completer()->popup()->hide();
    for (QWidget* each : QApplication::topLevelWidgets()) {
      if (each->isVisible() && each->inherits("QListView")) QTest::keyClick(line, Qt::Key_Escape);
    }
    QTest::keyClick(line, Qt::Key_Return);
    // The editor lets the key act first, then the tree is told, then it is filled anew.
    for (int hop = 0; hop < 4; ++hop) QApplication::processEvents();
  }
  void Press(Qt::Key key, Qt::KeyboardModifiers held = {}) { QTest::keyClick(&Tree(), key, held); }
};

TEST_F(ConditionsTest, ShowWhatTheCriteriaSayAndFollowThem) {
  Apply("c.Country = 'UK' AND (c.City = 'London' OR c.City LIKE 'B%' AND NOT c.Phone IS NULL) AND UPPER(c.City) > 'A'");
  EXPECT_EQ(Shown(),
            "Rows: all of these (c.Country = 'UK'; any of these (c.City = 'London'; all of these (c.City LIKE 'B%'; "
            "c.Phone IS NOT NULL)); UPPER(c.City) > 'A')");
  KeepPicture(Paint(View()), "conditions");
  KeepPicture(Paint(window), "conditions-window");
  Grid().SetValue(2, "criteria", "= 'France'");
  EXPECT_EQ(Utf8(Item({0}).text(1)), "= 'France'");
  Hub().Undo();
  EXPECT_EQ(Utf8(Item({0}).text(1)), "= 'UK'");
  for (const NamedPalette& named : TestPalettes()) {
    const ScopedPalette scoped(named.palette);
    KeepPicture(Paint(View()), "conditions-" + named.name);
  }
}

TEST_F(ConditionsTest, AreEditedInPlace) {
  Apply("c.Country = 'UK'");
  Go({0});
  Press(Qt::Key_Return);
  Type<QLineEdit>("France");
  EXPECT_EQ(Grid().Value(2, "criteria").Text(), "= 'France'");
  EXPECT_EQ(Shown(), "Rows: all of these (c.Country = 'France')");
  const std::size_t steps = Hub().CanUndo();
  Press(Qt::Key_Return);
  Type<QLineEdit>("between 1");
  EXPECT_EQ(Grid().Value(2, "criteria").Text(), "= 'France'") << "what cannot be read is told and changes nothing";
  EXPECT_EQ(Hub().CanUndo(), steps != 0);
  // A new one: its field, then what is asked of it.
  Press(Qt::Key_Insert);
  Type<QComboBox>("c.City");
  Type<QLineEdit>("like P%");
  EXPECT_EQ(Shown(), "Rows: all of these (c.Country = 'France'; c.City LIKE 'P%')");
  EXPECT_NE(Statement().find("LIKE 'P%'"), std::string::npos);
  Press(Qt::Key_Delete);
  EXPECT_EQ(Shown(), "Rows: all of these (c.Country = 'France')");
  Hub().Undo();
  View().Refresh();
  EXPECT_NE(Shown().find("c.City"), std::string::npos);
}

TEST_F(ConditionsTest, AreNegatedTurnedMovedAndTakenOut) {
  Apply("c.Country = 'UK' AND (c.City = 'London' OR c.City = 'Bath' OR c.Phone IS NULL)");
  Go({1, 0});
  View().Negate();
  EXPECT_NE(Shown().find("any of these (not c.City"), std::string::npos) << Shown();
  View().Negate();
  View().MoveTo({0, 1, 2}, {0}, 1);
  EXPECT_EQ(
      Shown(),
      "Rows: all of these (c.Country = 'UK'; c.Phone IS NULL; any of these (c.City = 'London'; c.City = 'Bath'))");
  Go({1});
  Press(Qt::Key_Delete);
  EXPECT_EQ(Statement().find("Phone"), std::string::npos);
  Hub().Undo();
  EXPECT_NE(Shown().find("c.Phone IS NULL"), std::string::npos) << Shown();
}

TEST_F(ConditionsTest, MoveAmongTheirSiblings) {
  Apply("c.Country = 'UK' AND (c.City = 'London' OR c.Phone IS NULL) AND c.City < 'M'");
  const std::string before = Statement();
  Go({0});
  Press(Qt::Key_Down, Qt::AltModifier);
  const char* const moved =
      "Rows: all of these (any of these (c.City = 'London'; c.Phone IS NULL); c.Country = 'UK'; c.City < 'M')";
  EXPECT_EQ(Shown(), moved);
  EXPECT_EQ(Tree().currentItem(), &Item({1}));
  EXPECT_LT(Statement().find("c.Phone IS NULL"), Statement().find("'UK'"));
  View().Refresh();
  EXPECT_EQ(Shown(), moved);
  Hub().Undo();
  EXPECT_EQ(Statement(), before);
  // What a shown column is asked stands where the column does.
  Apply("c.CompanyName > 'A' AND c.City < 'M'");
  Go({1});
  Press(Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(Shown(), "Rows: all of these (c.CompanyName > 'A'; c.City < 'M')");
}

TEST_F(ConditionsTest, ChooseGroupsApartFromRows) {
  Hub().SQLPane()->ParseSQLStatement(
      "SELECT c.Country, COUNT(*) FROM Customers c WHERE UPPER(c.City) = 'BATH' GROUP BY c.Country "
      "HAVING COUNT(*) > 1 AND (MAX(c.City) > 'M' OR c.Country IS NULL)");
  View().Refresh();
  EXPECT_EQ(Shown(), "Rows: all of these (UPPER(c.City) = 'BATH')");
  QTreeWidgetItem* groups = Tree().topLevelItem(1);
  ASSERT_TRUE(groups);
  EXPECT_EQ(Say(*groups), "Groups: all of these (Count(c.*) > 1; any of these (MAX(c.City) > 'M'; c.Country IS NULL))");
  Tree().setCurrentItem(groups->child(1)->child(0));
  View().Negate();
  Tree().setCurrentItem(Tree().topLevelItem(1)->child(0));
  Press(Qt::Key_Return);
  Type<QLineEdit>("> 5");
  EXPECT_NE(Statement().find("COUNT(*) > 5"), std::string::npos) << Statement();
  EXPECT_NE(Statement().find("GROUP BY \n\tc.Country\nHAVING"), std::string::npos) << Statement();
  KeepPicture(Paint(window), "conditions-groups");
}

}  // namespace
}  // namespace zrqrybld
