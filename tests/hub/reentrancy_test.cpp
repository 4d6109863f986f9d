// What listeners do while the designer is at work: every event with everything that raises events and everything that
// takes the design away underneath. Each ends in the change or in a numbered error, and the designer goes on.
#include <functional>
#include <iterator>

#include "tests/hub_fixture.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_columns.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/queries.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

using test::FakeConnection;

// A designer that nobody holds but its hub, so that what a listener lets go of is gone.
struct Scene {
  Scene() {
    source->Table("Customers", {"CustomerID", "Name"});
    source->Table("Orders", {"OrderID", "CustomerID", "Total"});
    source->Table("Staff", {"StaffID", "Boss"});
    source->ForeignKey("Orders", "CustomerID", "Customers", "CustomerID");
    source->Open("", "");
    hub->SetConnection(source);
    LinkMissing();
    hub->AddTable("Orders");
    hub->AddTable("Customers");
    hub->RefreshAutoJoins();
    Item("Orders", "Total")->SetChecked(true);
    Item("Customers", "Name")->SetChecked(true);
    Rows()->Item(1)->SetValue("criteria", "> 5");
    saved = hub->SaveQueryToText();
    Table("Orders")->SetCaption("O");
    hub->Undo();
    Panes()->SelectObject(Table("Orders"));
    Grid()->GotoRowCol(2, "alias");
  }
  // What an application has taken away, and a designer cannot do without.
  void LinkMissing() const {
    if (!hub->DiagramPane()) hub->SetDiagramPane(qbDiagramPane::Create());
    if (!hub->GridPane()) hub->SetGridPane(qbGridPane::Create());
    if (!hub->SQLPane()) hub->SetSQLPane(qbSQLPane::Create());
    if (source->State() == ConnectionClosed) source->Open("", "");
    const bool whole = hub->GridPane()->ColumnCount() == static_cast<std::int32_t>(std::size(kGridColumns));
    if (!whole) hub->SetGridPane(qbGridPane::Create());
  }

  template <class T>
  static Ref<T> There(Ref<T> object) {
    if (!object) ThrowObjectRemoved();
    return object;
  }
  Ref<qbDiagramPane> Panes() const { return There(hub->DiagramPane()); }
  Ref<qbGridPane> Pane() const { return There(hub->GridPane()); }
  Ref<qbSQLPane> Sql() const { return There(hub->SQLPane()); }
  Ref<zrGrid> Grid() const { return Pane()->Grid(); }
  Ref<zrGridRows> Rows() const { return Grid()->Rows(); }
  Ref<qbEntities> Tables() const { return Panes()->Entities(); }
  Ref<qbEntity> Table(const Variant& caption) const { return There(Tables()->Item(caption)); }
  Ref<qbEntity> Last() const { return Table(Tables()->Count()); }
  Ref<qbEntityItem> Item(const Variant& table, const Variant& column) const {
    return There(Table(table)->Items()->Item(column));
  }
  Ref<qbRelationship> Join() const { return Table(1)->Relationships()->Item(1); }
  void Delete(std::size_t first, std::size_t last) const {
    const Ref<zrGrid> grid = Grid();
    grid->SelectRows(first, last);
    grid->DeleteSelectedRows();
  }
  void Type(std::int32_t row, const char* column, const std::string& text) const {
    const Ref<zrGrid> grid = Grid();
    grid->GotoRowCol(row, column);
    grid->EditCell();
    if (auto* editor = static_cast<HeadlessSurface&>(grid->GetSurface()).FocusedEditor()) editor->Type(text);
    grid->CommitEdit();
  }

  Ref<FakeConnection> source = std::make_shared<FakeConnection>();
  Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  Ref<qbQueryBuilder> other = qbQueryBuilder::Create();
  std::string saved;
};

using Act = void (*)(Scene&);
using Hear = EventConnection (*)(Scene&, std::function<void()>);
template <class T>
struct Named {
  const char* name;
  T act;
};

#define ON(event, at)                                                                                  \
  {                                                                                                    \
    event, [](Scene& s, std::function<void()> act) { return at.Connect([act](auto&&...) { act(); }); } \
  }
#define DO(name, ...)                   \
  {                                     \
    name, [](Scene& s) { __VA_ARGS__; } \
  }

constexpr Named<Hear> kEvents[] = {
    ON("BeforeAdd", s.Tables()->BeforeAdd),
    ON("BeforeRemove", s.Tables()->BeforeRemove),
    ON("EntityAdd", s.Tables()->EntityAdd),
    ON("EntityRemove", s.Tables()->EntityRemove),
    ON("EntityItemCheck", s.Panes()->EntityItemCheck),
    ON("ObjectActivate", s.Panes()->ObjectActivate),
    ON("ObjectDeactivate", s.Panes()->ObjectDeactivate),
    ON("AfterChange", s.Pane()->AfterChange),
    ON("RowColChange", s.Pane()->RowColChange),
    ON("AfterEdit", s.Pane()->AfterEdit),
    ON("AfterEditExpressionFormat", s.Pane()->AfterEditExpressionFormat),
    ON("Grid.BeforeChange", s.Grid()->BeforeChange),
    ON("Grid.AfterChange", s.Grid()->AfterChange),
    ON("Grid.BeforeEdit", s.Grid()->BeforeEdit),
    ON("Grid.BeforeDelete", s.Grid()->BeforeDelete),
    ON("Grid.AfterDelete", s.Grid()->AfterDelete),
    ON("Grid.AfterInsert", s.Grid()->AfterInsert),
    ON("SQLChanged", s.Sql()->SQLChanged),
    ON("Info", s.hub->Info),
    ON("PropertyChanged", s.hub->PropertyChanged),
    ON("HistoryChanged", s.hub->HistoryChanged),
    ON("QueriesChanged", s.hub->QueriesChanged),
};

constexpr Named<Act> kTriggers[] = {
    DO("add a table", s.hub->AddTable("Staff")),
    DO("add to the model", s.Tables()->Add("Own")),
    DO("remove a table", s.Tables()->Remove(1)),
    DO("clear", s.Panes()->Clear()),
    DO("rename", s.Table(1)->SetCaption("Renamed")),
    DO("tick", s.Item(1, 2)->SetChecked(true)),
    DO("untick", s.Item(2, "Name")->SetChecked(false)),
    DO("rename a column", s.Item(1, "Total")->SetText("Sum")),
    DO("remove a column", s.Table(1)->Items()->Remove("Total")),
    DO("clear columns", s.Table(1)->Items()->Clear()),
    DO("end a join", s.Join()->SetSourceItemIndex({})),
    DO("remove joins", s.Table(1)->Relationships()->Clear()),
    DO("draw joins", s.Table(1)->Relationships()->Clear(); s.hub->RefreshAutoJoins()),
    DO("parse", s.Sql()->ParseSQLStatement("SELECT s.Boss, Count(o.Total) FROM Staff s, Orders o GROUP BY s.Boss")),
    DO("parse several", s.Sql()->ParseSQLStatement("WITH w AS (SELECT Boss FROM Staff) SELECT w.Boss, d.Total FROM w, "
                                                   "(SELECT Total FROM Orders) d UNION SELECT Boss, 1 FROM Staff")),
    DO("query in FROM", s.hub->Queries()->Add(QueryDerivedTable)->Open(); s.hub->AddTable("Staff");
       s.Item(1, 2)->SetChecked(true); s.hub->Queries()->Item(1)->Open(); s.hub->Queries()->Item(2)->SetName("other");
       s.hub->Queries()->Item(2)->Remove()),
    DO("query in a cell", s.Rows()->Item(1)->SetValue("criteria", "IN (SELECT StaffID FROM Staff, Orders o)");
       s.hub->Queries()->OpenInCell(1, "criteria"); s.Item(1, 2)->SetChecked(true); s.Table(1)->SetCaption("t");
       s.hub->Undo(); s.hub->Queries()->Item(1)->Open(); s.hub->Queries()->AddInCell(2, "criteria")),
    DO("add a saved query", s.hub->Queries()->AddSaved(s.saved, true)),
    DO("load", s.hub->LoadQuery(s.saved, true)),
    DO("save", s.hub->SaveQueryToText()),
    DO("undo and redo", s.hub->Undo(); s.hub->Redo()),
    DO("redo", s.hub->Redo()),
    DO("name a column", s.Rows()->Item(3)->SetValue("column", "orders.orderid")),
    DO("name another", s.Rows()->Item(1)->SetValue("column", "Orders.OrderID")),
    DO("type a column", s.Type(3, "column", "Customers.CustomerID")),
    DO("type a criterion", s.Type(1, "criteria", "between 1 and 2")),
    DO("type a place", s.Type(2, "sort_order", "1")),
    DO("finish an edit", s.Grid()->GotoRowCol(1, "sort_type"); s.Pane()->FinishEdit()),
    DO("sort", s.hub->SortByColumn("Orders", "Total", "Ascending"); s.hub->SortByColumn("Orders", "Total", "")),
    DO("group", s.hub->GroupColumn("Orders", "CustomerID", "SUM")),
    DO("go to a criterion", s.hub->GoToCriterion("Orders", "OrderID")),
    DO("paste", s.Grid()->PasteText("A\tB\r\nC\tD\r\nE")),
    DO("delete rows", s.Delete(1, 2)),
    DO("insert rows", s.Grid()->SelectRows(1, 2); s.Grid()->InsertRows()),
    DO("move rows", s.Grid()->SelectRows(1, 1); s.Grid()->MoveRows(1)),
    DO("check all rows", s.Grid()->OnMouseDown({ButtonLeft, ShiftNone, {400_px, 5_px}})),
    DO("go to a cell", s.Grid()->GotoRowCol(1, 1)),
    DO("select", s.Panes()->SelectObject(s.Table(2))),
    DO("delete by key", s.Panes()->OnKeyDown({KeyCodeDelete, ShiftNone})),
    DO("options", s.hub->SetDistinctRecords(true); s.Pane()->SetShowGroupBy(true); s.Pane()->SetShowGroupBy(false)),
};

constexpr Named<Act> kActions[] = {
    DO("clear", s.Panes()->Clear()),
    DO("remove the first table", s.Tables()->Remove(1)),
    DO("remove the last table", s.Tables()->Remove(s.Tables()->Count())),
    DO("remove all tables", while (s.Tables()->Count() > 0) s.Tables()->Remove(1)),
    DO("add a table", s.hub->AddTable("Staff")),
    DO("add to the model", s.Tables()->Add("Mine")),
    DO("rename", s.Last()->SetCaption("Other")),
    DO("tick", s.Item(s.Tables()->Count(), 2)->SetChecked(true)),
    DO("untick", s.Item(1, "Total")->SetChecked(false)),
    DO("clear columns", s.Last()->Items()->Clear()),
    DO("remove a column", s.Table(1)->Items()->Remove(4)),
    DO("rename a column", s.Item(1, "Total")->SetText("Sum")),
    DO("join", s.Table(1)->Relationships()->Add(s.Last())->SetSourceItemIndex(2)),
    DO("remove joins", s.Table(1)->Relationships()->Clear()),
    DO("add a query", s.hub->Queries()->Add(QueryCommonTable)),
    DO("show a query in a cell", s.Rows()->Item(1)->SetValue("criteria", "IN (SELECT Boss FROM Staff)");
       s.hub->Queries()->OpenInCell(1, "criteria")),
    DO("show a query", s.hub->Queries()->Item(s.hub->Queries()->Count())->Open()),
    DO("remove a query", s.hub->Queries()->Item(s.hub->Queries()->Count())->Remove()),
    DO("clear rows", s.Rows()->Clear()),
    DO("remove a row", s.Rows()->Remove(1)),
    DO("remove rows", while (s.Rows()->Count() > 1) s.Rows()->Remove(1)),
    DO("add a row", s.Rows()->Add({}, 1)),
    DO("move a row", s.Rows()->Move(1, 3)),
    DO("remove a column of the grid", s.Grid()->Columns()->Remove(s.Grid()->Columns()->Count())),
    DO("clear the grid's columns", s.Grid()->Columns()->Clear()),
    DO("write a cell", s.Pane()->SetValue(2, "criteria", "1")),
    DO("name a field", s.Rows()->Item(1)->SetValue("column", "Customers.Name")),
    DO("lock a row", s.Rows()->Item(1)->SetLocked(true)),
    DO("go to a cell", s.Grid()->GotoRowCol(3, 2)),
    DO("delete rows", s.Delete(1, 3)),
    DO("empty the grid", s.Pane()->ResetRows()),
    DO("refresh tables", s.Pane()->RefreshTables()),
    DO("no grid pane", s.hub->SetGridPane(nullptr)),
    DO("another grid pane", s.hub->SetGridPane(qbGridPane::Create())),
    DO("no diagram pane", s.hub->SetDiagramPane(nullptr)),
    DO("another diagram pane", s.hub->SetDiagramPane(qbDiagramPane::Create())),
    DO("no SQL pane", s.hub->SetSQLPane(nullptr)),
    DO("panes for another hub", s.other->SetGridPane(s.Pane()); s.other->SetDiagramPane(s.Panes())),
    DO("no pane at all", s.hub->SetSQLPane({}); s.hub->SetGridPane({}); s.hub->SetDiagramPane({})),
    DO("parse", s.Sql()->ParseSQLStatement("SELECT Boss FROM Staff")),
    DO("parse nonsense", s.Sql()->ParseSQLStatement("SELECT FROM")),
    DO("load", s.hub->LoadQuery(s.saved, true)),
    DO("refresh", s.Sql()->Refresh()),
    DO("undo", s.hub->Undo()),
    DO("redo", s.hub->Redo()),
    DO("forget", s.hub->ClearHistory()),
    DO("begin a step", s.hub->BeginStep("Mine")),
    DO("end a step", s.hub->EndStep()),
    DO("group", s.Pane()->SetShowGroupBy(!s.Pane()->ShowGroupBy())),
    DO("select", s.Panes()->SelectObject(s.Last())),
    DO("select nothing", s.Panes()->SelectObject(nullptr)),
    DO("close the source", s.source->Close()),
    DO("let go of the hub", s.hub = qbQueryBuilder::Create()),
};

#undef ON
#undef DO

// Errors have numbers; anything else is a fault.
void Try(Scene& scene, Act act) {
  try {
    act(scene);
  } catch (const Error& error) {
    EXPECT_NE(error.Number(), 0);
  }
}

std::string Saved(qbQueryBuilder& hub) { return hub.SaveQueryToText(); }

// Whatever has happened: the designer works, and the last step can be undone and made again.
void GoOn(Scene& s) {
  s.LinkMissing();
  s.hub->SetState(InfoDone);
  while (test::ErrorOf([&] { s.hub->EndStep(); }) == 0) continue;
  s.Sql()->Refresh();
  for (int i = 0; i < 4 && s.hub->Undo(); ++i) continue;
  for (int i = 0; i < 4 && s.hub->Redo(); ++i) continue;
  s.hub->SetConnection(s.source);
  const Ref<qbEntity> added = s.hub->AddTable("Staff");
  ASSERT_TRUE(added && added->Items()->Count() == 3);
  const std::string now = Saved(*s.hub);
  ASSERT_TRUE(s.hub->Undo());
  ASSERT_TRUE(s.hub->Redo());
  ASSERT_EQ(Saved(*s.hub), now);
}

class Reentrancy : public testing::TestWithParam<Named<Hear>> {};

// Runs the trigger, with the action in a listener; how often that was called.
int Play(const Named<Hear>& event, const Named<Act>& trigger, Act action) {
  Scene scene;
  int heard = 0;
  bool within = false;
  EventConnection link = event.act(scene, [&] {
    if (within || ++heard > 2) return;
    within = true;
    Try(scene, action);
    within = false;
  });
  Try(scene, trigger.act);
  link.Disconnect();
  GoOn(scene);
  return heard;
}

TEST_P(Reentrancy, EndsInTheChangeOrANumberedError) {
  int raising = 0;
  for (const Named<Act>& trigger : kTriggers) {
    if (Play(GetParam(), trigger, [](Scene&) {}) == 0) continue;
    ++raising;
    for (const Named<Act>& action : kActions) {
      SCOPED_TRACE(std::string(GetParam().name) + " while: " + trigger.name + ", action: " + action.name);
      Play(GetParam(), trigger, action.act);
      if (HasFatalFailure()) return;
    }
  }
  EXPECT_GT(raising, 0) << "nothing raises it";
}

INSTANTIATE_TEST_SUITE_P(Events, Reentrancy, testing::ValuesIn(kEvents), [](const auto& made) {
  std::string name = made.param.name;
  std::erase(name, '.');
  return name;
});

}  // namespace
}  // namespace zrqrybld
