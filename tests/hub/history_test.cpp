// Undo and redo: what is a step and what is none, and what undoing must leave alone.
#include <sstream>

#include "diagram/table_picker.h"
#include "tests/data_table.h"
#include "tests/hub/hub_fixture.h"

namespace zrqrybld {
namespace {

using test::ErrorOf;

class Undoing : public test::HubTest {
 protected:
  void SetUp() override {
    Use();
    sql->AttachTextArea(&area);
    hub->SetSaveLoadEntityItems(true);
    hub->Steps().SetClock([this] { return now; });
  }
  void TearDown() override { sql->AttachTextArea(nullptr); }

  std::string Design() {
    std::string text;
    hub->SaveQuery(text, true);
    return text;
  }
  void Pass(int milliseconds) { now += std::chrono::milliseconds(milliseconds); }
  void Type(std::int32_t row, const char* column, const std::string& text) {
    grid->Grid()->GotoRowCol(row, column);
    grid->Grid()->OnKeyDown({KeyCodeBack, ShiftNone});
    for (const char c : text) {
      static_cast<HeadlessSurface&>(grid->Grid()->GetSurface()).FocusedEditor()->SetSelText(std::string(1, c));
    }
    grid->Grid()->CommitEdit();
  }
  void Drag(const qbEntity& table, PixelPoint from, PixelPoint by, bool cancelled) {
    const PixelRect box = ScreenScale{}.ToPixels(table.EntityBox()->Bounds());
    const PixelPoint start{box.left + kSurfaceMargin + from.x, box.top + kSurfaceMargin + from.y};
    diagram->OnMouseDown({ButtonLeft, ShiftNone, start});
    for (const double part : {0.5, 1.0}) {
      diagram->OnMouseMove({ButtonLeft, ShiftNone, start + PixelPoint{by.x * part, by.y * part}});
    }
    if (cancelled) diagram->OnKeyDown({KeyCodeEscape, ShiftNone});
    diagram->OnMouseUp({ButtonLeft, ShiftNone, start + by});
  }
  // Which box covers which is no part of a step, so of the picture only its size counts.
  std::string DesignAndPicture() { return Design() + std::to_string(diagram->PictureSvg().size()); }
  void Act(const std::string& what, const std::string& with);

  std::chrono::steady_clock::time_point now;
  HeadlessTextArea area;
};

void Undoing::Act(const std::string& what, const std::string& with) {
  std::istringstream words(with);
  std::string name, other, third;
  words >> name >> other >> third;
  const Ref<qbEntity> table = diagram->Entities()->Item(name);
  const auto number = [](const std::string& text) { return Variant(text).ToInt32(); };
  const auto pixels = [](const std::string& text) { return Pixels(*Variant(text).Number()); };
  const std::size_t dot = name.find('.');
  const auto select = [&] {
    grid->Grid()->SelectRows(static_cast<std::size_t>(number(name)), static_cast<std::size_t>(number(other)));
  };
  const auto join = [&] {
    return diagram->Entities()->Item(Captions().substr(0, Captions().find(' ')))->Relationships()->Item(1);
  };
  const std::map<std::string, std::function<void()>, std::less<>> actions{
      {"add", [&] { hub->AddTable(with); }},
      {"pick", [&] { TablePicker(hub).AddTables({with}); }},
      {"select", [&] { diagram->SelectObject(table); }},
      {"zoom", [&] { diagram->SetZoom(*Variant(with).Number(), {}); }},
      {"wait", [&] { Pass(5000); }},
      {"tick", [&] { Tick(name.substr(0, dot), name.substr(dot + 1)); }},
      {"drag",
       [&] {
         Drag(*table, {30_px, 10_px}, {pixels(other), pixels(third)}, false);
       }},
      {"drag and Esc",
       [&] {
         Drag(*table, {30_px, 10_px}, {pixels(other), pixels(third)}, true);
       }},
      {"size",
       [&] {
         const Pixels right = ScreenScale{}.PixelsX(table->EntityBox()->Bounds().width);
         Drag(*table, {right, 40_px}, {pixels(other), 0_px}, false);
       }},
      {"key",
       [&] {
         diagram->SelectObject(table);
         diagram->OnKeyDown({number(other), number(third)});
       }},
      {"cell", [&] { Type(number(name), other.c_str(), third); }},
      {"go", [&] { grid->Grid()->GotoRowCol(number(name), "alias"); }},
      {"paste", [&] { grid->Grid()->PasteText(with); }},
      {"delete rows", [&] { select(), grid->Grid()->DeleteSelectedRows(); }},
      {"insert rows", [&] { select(), grid->Grid()->InsertRows(); }},
      {"move rows", [&] { select(), grid->Grid()->MoveRows(1); }},
      {"sort", [&] { hub->SortByColumn(name.substr(0, dot), name.substr(dot + 1), other); }},
      {"group", [&] { hub->GroupColumn(name.substr(0, dot), name.substr(dot + 1), other); }},
      {"group by", [&] { grid->SetShowGroupBy(with == "True"); }},
      {"distinct", [&] { hub->SetDistinctRecords(with == "True"); }},
      {"top", [&] { hub->SetSelectTopRecords(with); }},
      {"dialect",
       [&] {
         sql->SetSQLSyntax(static_cast<SQLSyntaxEnum>(number(with)));
         sql->Refresh();
       }},
      {"rename", [&] { table->SetCaption(other); }},
      {"kind",
       [&] {
         toolkit->GetDialogs().onShowJoinProperties = [&](JoinDialog& dialog) {
           return dialog.table2Checked = with == "2";
         };
         hub->ShowJoinProperties(join());
       }},
      {"delete join",
       [&] {
         diagram->SelectObject(join());
         diagram->OnKeyDown({KeyCodeDelete, ShiftNone});
       }},
      {"joins", [&] { hub->RefreshAutoJoins(); }},
      {"apply",
       [&] {
         area.Type(with);
         if (!sql->ApplyEditedText()) sql->RevertEditedText();
       }},
      {"load",
       [&] {
         const std::string text = Design();
         const StepScope step(hub, kStepLoadQuery);
         diagram->Clear();
         hub->SetDistinctRecords(true);
         hub->LoadQuery(text, true);
         hub->AddTable("Orders");
       }},
      {"arrange", [&] { diagram->Arrange(); }},
      {"clear", [&] { diagram->Clear(); }},
  };
  ASSERT_TRUE(actions.contains(what)) << what;
  actions.at(what)();
}

TEST_F(Undoing, EveryVisibleChangeIsANamedStep) {
  std::vector<std::string> designs{DesignAndPicture()};
  for (const test::Row& row : test::ReadRows("history.txt")) {
    SCOPED_TRACE(row.place);
    const std::size_t before = hub->Steps().Count();
    Pass(5000);
    Act(row[0], row[1]);
    const bool isStep = row[2] != "-";
    ASSERT_EQ(hub->Steps().Count(), before + (isStep ? 1 : 0)) << hub->UndoText();
    if (!isStep) {
      if (row[0] != "dialect") {
        EXPECT_EQ(DesignAndPicture(), designs.back());
      }
      designs.back() = DesignAndPicture();
      continue;
    }
    EXPECT_EQ(hub->UndoText(), row[2]);
    designs.push_back(DesignAndPicture());
    EXPECT_TRUE(hub->Undo());
    EXPECT_EQ(DesignAndPicture(), designs[designs.size() - 2]);
    EXPECT_EQ(hub->RedoText(), row[2]);
    EXPECT_TRUE(hub->Redo());
    EXPECT_EQ(DesignAndPicture(), designs.back());
  }
}

TEST_F(Undoing, WhatAListenerPreventsIsNoStep) {
  const auto noAdding =
      diagram->Entities()->BeforeAdd.Connect([](const std::string& key, bool& cancel) { cancel = key == "Customers"; });
  EXPECT_FALSE(hub->AddTable("Customers"));
  EXPECT_FALSE(hub->CanUndo());
  hub->AddTable("Orders");
  Tick("Orders", "Total");
  const std::string design = Design();
  const auto noDeleting = diagram->BeforeDeleteObject.Connect([](const Ref<Object>&, bool& cancel) { cancel = true; });
  const auto noChange =
      grid->Grid()->BeforeChange.Connect([](std::int32_t, std::int32_t, bool& cancel) { cancel = true; });
  const auto noRows =
      grid->Grid()->BeforeDelete.Connect([](std::int32_t, std::int32_t, bool& cancel) { cancel = true; });
  for (const char* action : {"key|Orders 46 0", "cell|1 alias A", "paste|B", "delete rows|1 1"}) {
    const std::string_view text = action;
    Act(std::string(text.substr(0, text.find('|'))), std::string(text.substr(text.find('|') + 1)));
  }
  EXPECT_EQ(hub->UndoText(), "Tick Orders.Total");
  EXPECT_EQ(hub->Steps().Count(), 2u);
  // Undoing asks nobody, so nobody prevents it.
  EXPECT_TRUE(hub->Undo() && hub->Undo());
  EXPECT_EQ(Captions() + Rows(), "");
  EXPECT_TRUE(hub->Redo() && hub->Redo());
  EXPECT_EQ(Design(), design);
}

TEST_F(Undoing, WhatListenersChangeBelongsToTheStepItHappensIn) {
  const auto ticks = diagram->Entities()->EntityAdd.Connect([this](const std::string& key) {
    if (key == "Orders") hub->SetDistinctRecords(true);
  });
  hub->AddTable("Orders");
  EXPECT_EQ(hub->Steps().Count(), 1u);
  hub->Undo();
  EXPECT_FALSE(hub->DistinctRecords());
  hub->Redo();
  EXPECT_TRUE(hub->DistinctRecords());
  // The statement is written when the step is over: what is changed then is a step of its own.
  auto once = sql->SQLChanged.Connect([this] { hub->SetSelectTopRecords("5"); });
  Tick("Orders", "Total");
  once.Disconnect();
  EXPECT_EQ(hub->UndoText(), "Row limit");
  hub->Undo();
  EXPECT_EQ(hub->UndoText(), "Tick Orders.Total");
  EXPECT_EQ(Ticked(), "Orders.Total");
}

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

TEST_F(Undoing, RowsThatAreSortedAgainCount) {
  hub->AddTable("Orders");
  hub->SortByColumn("Orders", "Total", "Ascending");
  hub->SortByColumn("Orders", "Total", "");
  hub->Undo();
  hub->SortByColumn("Orders", "OrderID", "Ascending");
  EXPECT_EQ(Cell(1, "sort_order") + Cell(2, "sort_order"), "12");
}

TEST_F(Undoing, TypingInOneCellWithinASecondIsOneStep) {
  hub->AddTable("Orders");
  Tick("Orders", "Total");
  const std::size_t before = hub->Steps().Count();
  const auto type = [&](std::int32_t row, const char* column, const char* text, int wait) {
    Pass(wait);
    Set(row, column, text);
    return hub->Steps().Count() - before;
  };
  EXPECT_EQ(type(1, "alias", "S", 5000), 1u);
  EXPECT_EQ(type(1, "alias", "Su", 900), 1u);
  EXPECT_EQ(type(1, "alias", "Sum", 900), 1u);
  EXPECT_EQ(type(1, "criteria", "1", 10), 2u) << "another cell";
  EXPECT_EQ(type(1, "criteria", "2", 1100), 3u) << "too late";
  hub->Undo();
  EXPECT_EQ(type(1, "criteria", "3", 10), 3u) << "after an undo";
  hub->Undo(), hub->Undo(), hub->Undo();
  EXPECT_EQ(Cell(1, "alias"), "");
  EXPECT_EQ(hub->UndoText(), "Tick Orders.Total");
  EXPECT_EQ(type(1, "alias", "S", 5000), 1u);
  EXPECT_EQ(type(1, "alias", "", 100), 0u) << "nothing is left to undo";
  // A key that is held is one step, too.
  diagram->SelectObject(diagram->Entities()->Item(1));
  for (int i = 0; i < 20; ++i, Pass(30)) diagram->OnKeyDown({KeyCodeRight, ShiftAlt});
  EXPECT_EQ(hub->Steps().Count(), before + 1);
  hub->Undo();
  EXPECT_EQ(diagram->Entities()->Item(1)->Left(), 0);
}

TEST_F(Undoing, TypedTextIsNeverLost) {
  hub->AddTable("Orders");
  Tick("Orders", "OrderID");
  area.Type("SELECT my work");
  EXPECT_TRUE(hub->Undo());
  EXPECT_EQ(Ticked(), "");
  EXPECT_EQ(area.Text(), "SELECT my work") << "it is not part of the step";
  EXPECT_TRUE(sql->IsEdited());
  Tick("Orders", "Total");
  EXPECT_EQ(Sql(), "SELECT Orders.TotalFROM Orders");
  EXPECT_TRUE(hub->Undo());
  EXPECT_EQ(area.Text(), "SELECT my work") << "the step had written over it";
  EXPECT_TRUE(sql->IsEdited());
  sql->RevertEditedText();
  // A text in an open cell is a step of its own, which can be redone.
  grid->Grid()->GotoRowCol(1, "alias");
  grid->Grid()->OnKeyDown({'A', ShiftNone, "A"});
  EXPECT_TRUE(hub->Undo());
  EXPECT_EQ(Cell(1, "alias"), "");
  hub->Redo();
  EXPECT_EQ(Cell(1, "alias"), "A");
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
  // Handles of what stays go on to work.
  const Ref<qbEntity> orders = diagram->Entities()->Item("Orders");
  const Ref<zrGridRow> row = grid->Grid()->Rows()->Item(1);
  hub->Redo();
  EXPECT_EQ(diagram->Entities()->Item("Orders"), orders);
  EXPECT_EQ(row->Value("column").Text(), "Total");
}

TEST_F(Undoing, StepsHaveNamesInTheUsersLanguage) {
  hub->SetLanguageString(kStepAddTable.id, "%NAME% einfügen");
  hub->AddTable("Orders");
  EXPECT_EQ(hub->UndoText(), "Orders einfügen");
  hub->BeginStep("Two columns");
  Tick("Orders", "Total");
  Tick("Orders", "OrderID");
  hub->EndStep();
  EXPECT_EQ(hub->UndoText(), "Two columns");
  hub->Undo();
  EXPECT_EQ(hub->RedoText(), "Two columns");
  EXPECT_EQ(Rows(), "");
  hub->ClearHistory();
  EXPECT_EQ(hub->UndoText() + hub->RedoText(), "");
  EXPECT_FALSE(hub->Undo());
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

}  // namespace
}  // namespace zrqrybld
