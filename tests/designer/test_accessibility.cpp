#include <QFile>
#include <algorithm>
#include <fstream>
#include <sstream>

#include "tests/designer/designer_window_test.h"
#include "tests/qt/accessible_dump.h"
#include "zrqrybld/adapters/qt/access_events.h"
#include "zrqrybld/adapters/qt/query_designer_widget.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld::test {
namespace {

// What assistive technology is told.
struct Told {
  QAccessible::Event event;
  std::string name;
};
std::vector<Told> told;

// Listens from before the window is made until after it is gone.
struct Listening {
  Listening() {
    SetAccessListener([](QAccessibleEvent& event) {
      QAccessibleInterface* object = event.accessibleInterface();
      if (object && object->isValid()) told.push_back({event.type(), Utf8(object->text(QAccessible::Name))});
    });
  }
  ~Listening() { SetAccessListener({}); }
};

class Accessibility : private Listening, public DesignerWindow {
 protected:
  Accessibility() { OpenSampleWith({"Customers", "Order"}); }

  static QAccessibleInterface& Of(QObject& object) { return *QAccessible::queryAccessibleInterface(&object); }
  QAccessibleInterface& DiagramAccess() { return Of(Designer().DiagramView()); }
  QAccessibleInterface& GridAccess() { return Of(Designer().GridView()); }

  static QAccessibleInterface* Find(QAccessibleInterface& parent, const char* name) {
    for (int i = 0; i < parent.childCount(); ++i) {
      if (Utf8(parent.child(i)->text(QAccessible::Name)) == name) return parent.child(i);
    }
    return nullptr;
  }
  static std::string Said(QAccessible::Event event) {
    QApplication::processEvents();
    const auto last = std::find_if(told.rbegin(), told.rend(), [&](const Told& one) { return one.event == event; });
    const std::string name = last == told.rend() ? "" : last->name;
    told.clear();
    return name;
  }
};

// The kept text is what people who cannot see the designer have of it: read it when it changes.
TEST_F(Accessibility, TheWholeDesignerReadsAsKept) {
  for (const char* column : {"OrderID", "Freight", "OrderDate"}) Item("Order", column)->SetChecked(true);
  Grid().SortRow(2, "Descending");
  Grid().SetValue(2, "criteria", "> 10");
  Grid().Grid()->GotoRowCol(2, "criteria");
  Item("Customers", "CompanyName")->SetChecked(true);
  Item("Customers", "City")->SetToolTipText("City: where they are");  // says nothing of the type
  Hub().DiagramPane()->SelectObject(Hub().Entities()->Item("Customers"));
  Designer().DiagramView().setFocus();
  std::string text;
  for (QObject* pane :
       std::initializer_list<QObject*>{&Designer().DiagramView(), &Designer().GridView(), &Designer().SqlView()}) {
    text += pane == &Designer().SqlView() ? Line(Of(*pane)) : Dump(Of(*pane));
  }
  std::ifstream file(ZRQRYBLD_TEST_DATA "/accessible.txt", std::ios::binary);
  std::stringstream kept;
  kept << file.rdbuf();
  std::ofstream(ZRQRYBLD_ACCESSIBLE, std::ios::binary) << text;
  EXPECT_EQ(text, kept.str()) << "the text of now is in " ZRQRYBLD_ACCESSIBLE;
}

// Whatever is seen is found again at its own middle, and knows its place among its siblings.
TEST_F(Accessibility, PlacesOnTheScreenAreRightAtEveryZoom) {
  for (const double zoom : {1.0, 0.5, 2.0}) {
    Hub().DiagramPane()->SetZoom(zoom, {});
    int found = 0;
    const std::function<void(QAccessibleInterface&)> check = [&](QAccessibleInterface& parent) {
      for (int i = 0; i < parent.childCount(); ++i) {
        QAccessibleInterface& child = *parent.child(i);
        EXPECT_EQ(parent.indexOfChild(&child), i);
        EXPECT_EQ(child.parent(), &parent);
        const bool leaf = child.childCount() == 0 && child.role() != QAccessible::Graphic;
        const QPoint middle = child.rect().center();
        if (leaf && !child.state().offscreen && Of(Designer().DiagramView()).rect().contains(middle)) {
          ++found;
          EXPECT_EQ(DiagramAccess().childAt(middle.x(), middle.y()), &child) << Line(child) << " at zoom " << zoom;
        }
        check(child);
      }
    };
    check(DiagramAccess());
    EXPECT_GE(found, 5) << zoom;
  }
  QAccessibleInterface& cell = *GridAccess().tableInterface()->cellAt(1, 2);
  EXPECT_EQ(GridAccess().childAt(cell.rect().center().x(), cell.rect().center().y()), &cell);
}

TEST_F(Accessibility, ActionsDoWhatTheUserWould) {
  QAccessibleInterface& orders = *Find(DiagramAccess(), "Order");
  Find(orders, "Freight")->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
  EXPECT_EQ(GridRows(), "Order.Freight");
  EXPECT_EQ(Said(QAccessible::ObjectShow), "query column Order.Freight added");
  Find(orders, "OrderDate")->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
  EXPECT_EQ(Said(QAccessible::Focus), "OrderDate");
  EXPECT_EQ(Utf8(DiagramAccess().focusChild()->text(QAccessible::Name)), "OrderDate");
  QTest::keyClick(&Designer().DiagramView(), Qt::Key_Down);
  EXPECT_EQ(Said(QAccessible::Focus), "RequiredDate");
  QTest::keyClick(&Designer().DiagramView(), Qt::Key_Space);
  EXPECT_EQ(Said(QAccessible::StateChanged), "RequiredDate");

  GridAccess().tableInterface()->cellAt(0, 6)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  QApplication::processEvents();
  ASSERT_TRUE(Grid().Grid()->IsEditing());
  EXPECT_EQ(Utf8(Of(*QApplication::focusWidget()).text(QAccessible::Name)), "Criteria, row 1");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);

  // The header's box unticks all columns, and ticks them again; no other header has one.
  const auto toggleHeader = [this](const char* name) {
    Find(GridAccess(), name)->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    return Grid().Value(1, "output").Text() + Grid().Value(2, "output").Text();
  };
  EXPECT_EQ(toggleHeader("Output"), "FalseFalse");
  EXPECT_EQ(toggleHeader("Output"), "TrueTrue");
  EXPECT_EQ(toggleHeader("Criteria"), "TrueTrue");

  // Joins go with their table, all in one sentence, and what was asked for before is gone.
  const QAccessible::Id join = QAccessible::uniqueId(DiagramAccess().child(2));
  told.clear();
  QTest::keyClick(&Designer().DiagramView(), Qt::Key_Delete);
  EXPECT_EQ(Said(QAccessible::ObjectShow),
            "table Order removed, join Order.CustomerID = Customers.CustomerID removed, 2 query columns removed");
  EXPECT_EQ(DiagramAccess().childCount(), 1);
  EXPECT_EQ(QAccessible::accessibleInterface(join), nullptr);
}

}  // namespace
}  // namespace zrqrybld::test
