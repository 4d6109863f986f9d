// Undo and redo: what is a step and what is none, and what undoing must leave alone.
#include "zrqrybld/hub/history.h"
#include "tests/hub_fixture.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/table_picker.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/image.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

using test::ErrorOf;

class Undoing : public test::HubTest {
 protected:
  void SetUp() override {
    Use();
    hub->SetSaveLoadEntityItems(true);
    hub->Steps().SetClock([this] { return now; });
  }

  std::string Design() { return hub->SaveQueryToText(); }

  std::chrono::steady_clock::time_point now;
};

TEST_F(Undoing, IsRefusedWhileSomethingIsGoingOn) {
  hub->AddTable("Orders");
  std::vector<std::int32_t> errors;
  const auto tries = [&] {
    errors.push_back(ErrorOf([this] { hub->Undo(); }));
    errors.push_back(ErrorOf([this] { hub->ClearHistory(); }));
  };
  const auto check = diagram->EntityItemCheck.Connect([&](const Ref<qbEntity>&, const Ref<qbEntityItem>&) { tries(); });
  const auto cell = grid->AfterChange.Connect([&](std::int32_t, std::int32_t) { tries(); });
  const auto text = sql->SQLChanged.Connect([&] { tries(); });
  const auto history = hub->HistoryChanged.Connect([&] { tries(); });
  const auto info = hub->Info.Connect([&](QueryBuilderInfoEnum& what, Variant&) {
    if (what == InfoParsingSQL) tries();
  });
  Tick("Orders", "Total");
  Set(1, "alias", "A");
  sql->ParseSQLStatement("SELECT OrderID FROM Orders");
  hub->Undo();
  EXPECT_GT(errors.size(), 12u);
  for (const std::int32_t error : errors) EXPECT_EQ(error, ErrorInvalidCall);
  EXPECT_EQ(Ticked(), "Orders.Total");
  EXPECT_EQ(ErrorOf([this] { hub->EndStep(); }), ErrorInvalidCall);
}

TEST_F(Undoing, AsksNeitherTheSourceNorListenersAndWritesTheStatementOnce) {
  TablePicker(hub).AddTables({"Orders", "Customers"});
  Tick("Orders", "Total");
  diagram->SelectObject(diagram->Entities()->Item("Orders"));
  diagram->Clear();
  source->Close();
  int calls = 0;
  const auto count = [&calls](auto&&...) { ++calls; };
  const EventConnection links[] = {diagram->Entities()->BeforeAdd.Connect(count),
                                   diagram->Entities()->EntityAdd.Connect(count),
                                   diagram->Entities()->EntityRemove.Connect(count),
                                   diagram->EntityItemCheck.Connect(count),
                                   grid->AfterChange.Connect(count),
                                   grid->Grid()->BeforeChange.Connect(count),
                                   hub->Info.Connect(count)};
  int told = 0;
  const auto history = hub->HistoryChanged.Connect([&] { ++told; });
  EXPECT_EQ(Changes([&] { hub->Undo(); }), 1);
  EXPECT_EQ(Captions() + " " + Joins() + " " + Ticked(),
            "Orders Customers Orders.CustomerID>Customers.CustomerID Orders.Total");
  EXPECT_EQ(Sql(), "SELECT Orders.TotalFROM Orders,CustomersWHERE(Customers.CustomerID = Orders.CustomerID)");
  hub->Redo();
  EXPECT_EQ(calls, 0);
  EXPECT_EQ(told, 2);
}

TEST_F(Undoing, WhatTheApplicationSetsOutsideOfStepsStays) {
  hub->AddTable("Orders");
  hub->AddTable("Customers");
  hub->RefreshAutoJoins();
  const WeakRef<qbRelationship> join = diagram->Entities()->Item("Orders")->Relationships()->Item(1);
  Tick("Orders", "Total");
  diagram->Entities()->Item("Orders")->SetLeft(3000);
  sql->SetSQLSyntax(SQLSyntaxOracle);
  diagram->Entities()->Item("Customers")->Items()->Add("Extra", "Extra");
  Tick("Customers", "Name");
  hub->Undo(), hub->Undo();
  EXPECT_EQ(Ticked(), "");
  EXPECT_EQ(diagram->Entities()->Item("Orders")->Left(), 3000);
  EXPECT_EQ(sql->SQLSyntax(), SQLSyntaxOracle);
  EXPECT_TRUE(Item("Customers", "Extra"));
  EXPECT_FALSE(join.expired()) << "a join that stays is made anew, beside its old line";
  // Handles of what stays go on to work.
  const Ref<qbEntity> orders = diagram->Entities()->Item("Orders");
  const Ref<zrGridRow> row = grid->Grid()->Rows()->Item(1);
  hub->Redo();
  EXPECT_EQ(diagram->Entities()->Item("Orders"), orders);
  EXPECT_EQ(row->Value("column").Text(), "Total");
}

// A join without columns is no step yet: it is not taken back before its table is, and must not keep that from going.
TEST_F(Undoing, AJoinThatIsNotCompleteGoesWithItsTable) {
  const Ref<qbEntity> orders = hub->AddTable("Orders");
  orders->Relationships()->Add(hub->AddTable("Customers"));
  EXPECT_TRUE(hub->Undo());
  EXPECT_EQ(orders->Relationships()->Count(), 0);
  diagram->Entities()->Remove("Orders");
  for (int steps = 0; steps < 2; ++steps) EXPECT_TRUE(hub->Undo());
  EXPECT_FALSE(hub->Undo());
}

// What cannot come back as it was is no step that would be undone next.
TEST_F(Undoing, AnIconThatIsGoneIsNoStep) {
  const auto images = std::make_shared<ImageList>();
  images->Add(std::make_shared<Image>(1, 1, std::vector<std::uint32_t>{1}), "Note");
  diagram->SetItemsImageList(images);
  hub->AddTable("Orders")->Items()->Item("Total")->SetSmallIcon("Note");
  diagram->Entities()->Remove("Orders");
  diagram->SetItemsImageList(std::make_shared<ImageList>());
  for (int steps = 0; steps < 3; ++steps) EXPECT_EQ(hub->Undo(), steps < 2) << steps;
  for (int steps = 0; steps < 3; ++steps) EXPECT_EQ(hub->Redo(), steps < 2) << steps;
}

// The memory follows what was changed, not how large the design is; and there is an end to it.
TEST_F(Undoing, TheMemoryFollowsTheChanges) {
  hub->SetConnection(std::make_shared<test::FakeConnection>());
  {
    const StepScope step(hub, "Large design");
    for (int i = 0; i < 100; ++i) {
      const Ref<qbEntity> table = diagram->Entities()->Add("T" + std::to_string(i));
      for (int j = 0; j < 100; ++j) table->Items()->Add("Column" + std::to_string(j), "Column" + std::to_string(j));
    }
  }
  const std::size_t large = hub->Steps().Bytes();
  EXPECT_GT(large, 1'000'000u);
  for (int i = 0; i < 100; ++i) Tick("T" + std::to_string(i), "Column7");
  EXPECT_EQ(hub->Steps().Count(), 101u);
  EXPECT_LT((hub->Steps().Bytes() - large) / 100, 2000u) << "of a step that ticks a column";
  for (int i = 0; i < 200; ++i) Tick("T1", "Column8", i % 2 == 0);
  EXPECT_EQ(hub->Steps().Count(), History::kMostSteps);
  EXPECT_LT(hub->Steps().Bytes(), large) << "the large step is forgotten";
  for (std::size_t i = 0; i < History::kMostSteps; ++i) EXPECT_TRUE(hub->Undo());
  EXPECT_FALSE(hub->Undo());
}

// Steps are remembered while they fit into 64 MB; the last one always.
TEST_F(Undoing, LargeStepsAreForgottenFirst) {
  hub->AddTable("Orders");
  const auto type = [&](char letter, std::size_t megabytes) {
    now += std::chrono::seconds(5);
    Set(5, "alias", std::string(megabytes << 20U, letter));
  };
  for (const char letter : {'a', 'b', 'c', 'd'}) type(letter, 20);
  EXPECT_LT(hub->Steps().Count(), 5u);
  int undone = 0;
  while (hub->Undo()) ++undone;
  EXPECT_TRUE(undone >= 1 && undone < 4) << undone;
  EXPECT_EQ(Cell(5, "alias").substr(0, 1), std::string(1, static_cast<char>('d' - undone)));
  EXPECT_EQ(Captions(), "Orders") << "the first steps cannot be undone any more";
  type('e', 70);
  EXPECT_TRUE(hub->CanUndo());
  EXPECT_TRUE(hub->Undo());
  EXPECT_FALSE(hub->CanUndo());
}

}  // namespace
}  // namespace zrqrybld
