// What diagram and grid tell assistive technology and tool tips: each object is found again where it was told, every
// action that is told can be done, and what is gone is nothing any more.
#include "zrqrybld/platform/accessible.h"

#include <gtest/gtest.h>

#include <set>

#include "tests/hub_fixture.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/join_line.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

constexpr AccessibleAction kActions[] = {AccessibleAction::Focus, AccessibleAction::Press, AccessibleAction::Toggle,
                                         AccessibleAction::ShowMenu};

class AccessibleTest : public test::HubTest {
 protected:
  AccessibleTest() {
    source->Table("Things", {});
    const struct {
      const char* name;
      DataTypeCode type;
    } kColumns[] = {{"Number", DataTypeCode::Integer}, {"Label", DataTypeCode::VarWChar},
                    {"Since", DataTypeCode::DbDate},   {"Sold", DataTypeCode::Boolean},
                    {"Photo", DataTypeCode::Binary},   {"Key", DataTypeCode::Guid}};
    int position = 0;
    for (const auto& column : kColumns) source->Column("Things", column.name, ++position, {}, column.type);
    Use();
    sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
    sql->ParseSQLStatement(
        "SELECT Customers.Name, Number FROM Customers INNER JOIN Orders ON Customers.CustomerID = Orders.CustomerID, "
        "Things WHERE Customers.Name > 'M'");
  }

  // The innermost first.
  static std::vector<AccessibleId> Everything(const AccessibleTree& tree, const AccessibleId& from = {}) {
    std::vector<AccessibleId> found;
    for (std::size_t i = 0; i < tree.ChildCount(from); ++i) {
      const AccessibleId child = tree.ChildAt(from, i);
      EXPECT_EQ(tree.IndexOf(child), i);
      EXPECT_EQ(tree.ParentOf(child), from);
      EXPECT_TRUE(tree.Contains(child));
      const std::vector<AccessibleId> below = Everything(tree, child);
      found.insert(found.end(), below.begin(), below.end());
      found.push_back(child);
    }
    EXPECT_TRUE(tree.ChildAt(from, tree.ChildCount(from)).IsControl()) << "behind the last one";
    return found;
  }
  static HeadlessSurface& SurfaceOf(Control& control) { return static_cast<HeadlessSurface&>(control.GetSurface()); }
  AccessibleTree& Diagram() const { return *diagram->Accessible(); }
  AccessibleTree& Grid() const { return *grid->Grid()->Accessible(); }
  static AccessibleId Named(const AccessibleTree& tree, std::string_view name, AccessibleRole role) {
    for (const AccessibleId& id : Everything(tree)) {
      const AccessibleInfo info = tree.Describe(id);
      if (info.role == role && info.name.find(name) != std::string::npos) return id;
    }
    ADD_FAILURE() << "no " << name;
    return {};
  }
  Ref<qbRelationship> OnlyJoin() const {
    for (const Ref<qbEntity>& entity : *diagram->Entities()) {
      if (entity->Relationships()->Count() > 0) return entity->Relationships()->Item(1);
    }
    return nullptr;
  }
};

TEST_F(AccessibleTest, EachObjectIsFoundAgainWhereItWasTold) {
  for (AccessibleTree* tree : {&Diagram(), &Grid()}) {
    EXPECT_FALSE(tree->IndexOf({}));
    EXPECT_TRUE(tree->Contains({}));
    const std::vector<AccessibleId> all = Everything(*tree);
    EXPECT_GT(all.size(), 15u);
    for (const AccessibleId& id : all) {
      const AccessibleInfo info = tree->Describe(id);
      SCOPED_TRACE(info.name);
      EXPECT_FALSE(info.name.empty() && info.role != AccessibleRole::Cell);
      if (info.state.offscreen || info.role == AccessibleRole::Join) continue;
      const PixelPoint middle{info.bounds.CenterX(), info.bounds.CenterY()};
      const AccessibleId there = tree->ObjectAt(middle);
      EXPECT_TRUE(there == id || tree->ParentOf(there) == id || tree->Describe(there).name != info.name);
    }
  }
  std::string kinds;
  for (const AccessibleId& id : Everything(Diagram())) {
    const AccessibleInfo info = Diagram().Describe(id);
    if (info.role == AccessibleRole::CheckItem && Diagram().Describe(Diagram().ParentOf(id)).name.find("Things") == 0)
      kinds += info.name + ": " + info.description + "; ";
  }
  for (const char* told : {"Number: number", "Label: text", "Since: date", "Sold: yes/no", "Photo: binary"}) {
    EXPECT_NE(kinds.find(told), std::string::npos) << told << " of " << kinds;
  }
}

TEST_F(AccessibleTest, EveryKindIsToldForWhatItIs) {
  source->Table("Recent", {"OrderID", "Total"}, {}, "VIEW");
  diagram->SetShowMinimap(true);
  sql->ParseSQLStatement(
      "SELECT c.Name, SUM(Orders.Total), r.OrderID, q.CustomerID, Things.Label FROM Customers c "
      "LEFT JOIN Orders ON c.CustomerID = Orders.CustomerID AND c.Name = Orders.OrderID, Recent r "
      "LEFT JOIN Things ON r.OrderID = Things.Label, (SELECT CustomerID FROM Orders) q "
      "WHERE Things.Label <> '' AND EXISTS (SELECT * FROM Customers k WHERE k.CustomerID = r.OrderID) "
      "GROUP BY c.Name, r.OrderID, q.CustomerID, Things.Label ORDER BY c.Name DESC, r.OrderID");
  std::string told;
  for (const AccessibleId& id : Everything(Diagram())) {
    const AccessibleInfo info = Diagram().Describe(id);
    if (info.role != AccessibleRole::CheckItem || info.description.find(',') != std::string::npos)
      told += info.name + ": " + info.description + "\n";
    Diagram().Perform(id, AccessibleAction::Focus);
    EXPECT_EQ(Diagram().Current() == id, info.role != AccessibleRole::Minimap) << info.name;
    if (info.role == AccessibleRole::Minimap) {
      EXPECT_EQ(Diagram().ObjectAt({info.bounds.CenterX(), info.bounds.CenterY()}), id);
    }
  }
  EXPECT_EQ(
      told,
      "CustomerID: number, joined\n"
      "Name: number, joined, Group By, sorted descending 1\n"
      "c: table Customers\n"
      "OrderID: primary key, number, joined\n"
      "CustomerID: number, joined\n"
      "Total: number, Sum\n"
      "Orders: table\n"
      "OrderID: number, joined, Group By, sorted ascending 2\n"
      "r: view Recent\n"
      "Label: text, joined, Group By, has criteria\n"
      "Things: table\n"
      "CustomerID: number, Group By\n"
      "q: query\n"
      "CustomerID: number, joined\n"
      "k: table Customers\n"
      "join c.CustomerID = Orders.CustomerID and c.Name = Orders.OrderID: All rows from c, and the matching rows "
      "from Orders.\n"
      "join r.OrderID = Things.Label: All rows from r, and the matching rows from Things. The two columns hold "
      "different types of data.\n"
      "join r.OrderID = k.CustomerID: Only rows from r that have a row in k. Each comes once, and no columns of k "
      "come back.\n");
  const auto& points = OnlyJoin()->Line()->Points(ScreenScale{});
  const PixelPoint onLine{(points[1].x + points[2].x) / 2 + 12_px, (points[1].y + points[2].y) / 2 + 12_px};
  EXPECT_EQ(Diagram().Describe(Diagram().ObjectAt(onLine)).role, AccessibleRole::Join);
}

TEST_F(AccessibleTest, WhatIsGoneIsNothingAnyMore) {
  const std::vector<AccessibleId> boxes = Everything(Diagram());
  const std::vector<AccessibleId> cells = Everything(Grid());
  diagram->Clear();
  grid->Grid()->Columns()->Item(2)->SetHidden(true);
  for (AccessibleTree* tree : {&Diagram(), &Grid()}) {
    for (const AccessibleId& id : tree == &Grid() ? cells : boxes) {
      if (tree->Contains(id)) continue;
      EXPECT_FALSE(tree->IndexOf(id));
      EXPECT_FALSE(tree->PlaceOf(id));
      EXPECT_EQ(tree->ChildCount(id), 0u);
      EXPECT_EQ(tree->Describe(id).role, tree->Describe({}).role);
      for (const AccessibleAction action : kActions) EXPECT_FALSE(tree->Perform(id, action));
    }
    EXPECT_FALSE(tree->Contains((tree == &Grid() ? cells : boxes).front()) && tree == &Diagram());
  }
  EXPECT_GT(Everything(Grid()).size(), 0u);
}

// Each thing can do what it tells, and nothing else; a window that opens is closed again.
TEST_F(AccessibleTest, EveryActionThatIsToldCanBeDone) {
  for (const bool ofGrid : {false, true}) {
    const std::size_t count = Everything(ofGrid ? Grid() : Diagram()).size();
    for (std::size_t i = 0; i < count; ++i) {
      AccessibleTree& tree = ofGrid ? Grid() : Diagram();
      const std::vector<AccessibleId> all = Everything(tree);
      if (i >= all.size()) break;
      const AccessibleInfo info = tree.Describe(all[i]);
      for (const AccessibleAction action : kActions) {
        if (!tree.Contains(all[i])) break;
        const bool isTold = std::ranges::find(info.actions, action) != info.actions.end();
        if (!isTold && action != AccessibleAction::Toggle) continue;
        EXPECT_EQ(tree.Perform(all[i], action), isTold) << info.name << " " << static_cast<int>(action);
        grid->Grid()->CancelEdit();
      }
    }
  }
}

TEST_F(AccessibleTest, ActionsDoWhatTheUserDoes) {
  const Ref<qbEntity> orders = diagram->Entities()->Item("Orders");
  const auto perform = [&](AccessibleTree& tree, const AccessibleId& id, AccessibleAction action) {
    EXPECT_TRUE(tree.Perform(id, action));
  };
  perform(Diagram(), Named(Diagram(), "Orders", AccessibleRole::List), AccessibleAction::Press);
  EXPECT_TRUE(orders->EntityBox()->Minimized());
  perform(Diagram(), Named(Diagram(), "Orders", AccessibleRole::List), AccessibleAction::ShowMenu);
  EXPECT_FALSE(SurfaceOf(*diagram).LastMenu().empty());
  const AccessibleId number = Named(Diagram(), "Label", AccessibleRole::CheckItem);
  perform(Diagram(), number, AccessibleAction::Press);
  EXPECT_TRUE(Item("Things", "Label")->Checked());
  perform(Diagram(), number, AccessibleAction::ShowMenu);
  EXPECT_EQ(Diagram().Current(), number);
  hub->SetAllowJoinProperties(true);
  bool opened = false;
  toolkit->GetDialogs().onShowJoinProperties = [&](JoinDialog&) { return !(opened = true); };
  const AccessibleId join = Named(Diagram(), "Customers", AccessibleRole::Join);
  perform(Diagram(), join, AccessibleAction::Focus);
  EXPECT_EQ(diagram->SelectedObject(), OnlyJoin());
  perform(Diagram(), join, AccessibleAction::Press);
  EXPECT_TRUE(opened);

  const Ref<zrGrid> cells = grid->Grid();
  perform(Grid(), Grid().RowHeader(1), AccessibleAction::Press);
  EXPECT_EQ(cells->Selection().first, 2u);
  perform(Grid(), Grid().RowHeader(0), AccessibleAction::ShowMenu);
  const Menu ofRow = SurfaceOf(*cells).LastMenu();
  EXPECT_FALSE(ofRow.empty());
  for (std::size_t column = 0; column < Grid().CellCounts().columns; ++column) {
    const AccessibleId cell = Grid().CellAt(0, column);
    if (!Grid().Describe(cell).state.checkable) continue;
    const bool before = Grid().Describe(cell).state.checked;
    perform(Grid(), cell, AccessibleAction::Toggle);
    EXPECT_NE(Grid().Describe(cell).state.checked, before);
  }
  perform(Grid(), Grid().CellAt(0, 0), AccessibleAction::Press);
  EXPECT_TRUE(cells->IsEditing());
  perform(Grid(), Grid().CellAt(1, 0), AccessibleAction::ShowMenu);
  EXPECT_EQ(cells->Row(), 2);
}

TEST_F(AccessibleTest, ToolTipsTellWhatIsNotSeen) {
  const Ref<zrGrid> cells = grid->Grid();
  const auto tipOf = [&](std::int32_t row, const char* column) {
    const PixelRect cell = cells->GetRowColumnXY(row, column);
    return cells->ToolTipAt({cell.left + 5_px, cell.CenterY()});
  };
  EXPECT_EQ(tipOf(1, "column"), "") << "it can be seen whole";
  cells->GotoRowCol(1, "column");
  Set(3, "column", "Orders.CustomerID * 1000000 + Orders.OrderID * 1000000 + Orders.CustomerID");
  EXPECT_EQ(tipOf(3, "column"), "Orders.CustomerID * 1000000 + Orders.OrderID * 1000000 + Orders.CustomerID");
  cells->GotoRowCol(4, "column");
  ASSERT_TRUE(cells->EditCell());
  SurfaceOf(*cells).FocusedEditor()->Type("1 + (");
  cells->CommitEdit();
  EXPECT_EQ(tipOf(4, "column"), "An expression is expected at the end of the text.") << "what is wrong comes first";
  EXPECT_EQ(tipOf(1, "output"), "");
  cells->Columns()->Item("criteria")->SetWidth(600);
  const PixelRect narrow = cells->GetRowColumnXY(1, "criteria");
  EXPECT_EQ(cells->ToolTipAt({narrow.left + 5_px, 5_px}), cells->Columns()->Item("criteria")->Caption());
  EXPECT_EQ(cells->ToolTipAt({1_px, narrow.CenterY()}), "") << "a row header";
  Set(1, "criteria", "IN (SELECT Name FROM Customers)");
  cells->SetHasCellButtons(true);
  const auto buttonTip = [&](const char* column) {
    const PixelRect cell = cells->GetRowColumnXY(1, column);
    cells->GotoRowCol(1, column);
    return cells->ToolTipAt({cell.Right() - 8_px, cell.CenterY()});
  };
  cells->Columns()->Item("criteria")->SetWidth(3000);
  EXPECT_NE(buttonTip("criteria").find("F12"), std::string::npos) << buttonTip("criteria");
  EXPECT_NE(buttonTip("column").find("Ctrl+F2"), std::string::npos) << buttonTip("column");

  const auto& points = OnlyJoin()->Line()->Points(ScreenScale{});
  const PixelPoint onLine{(points[1].x + points[2].x) / 2 + 12_px, (points[1].y + points[2].y) / 2 + 12_px};
  const std::string joined = diagram->ToolTipAt(onLine);
  EXPECT_NE(joined.find("CustomerID"), std::string::npos) << joined;
  EXPECT_NE(joined.find('\n'), std::string::npos);
  EXPECT_EQ(diagram->ToolTipAt({5000_px, 5000_px}), "");
}

}  // namespace
}  // namespace zrqrybld
