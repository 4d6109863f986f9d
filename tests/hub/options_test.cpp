// The hub's options, join properties, connecting, questions about the source, progress, renaming.
#include <cmath>

#include "tests/diagram/diagram_fixture.h"
#include "tests/error_of.h"
#include "tests/fakes/fake_connection.h"
#include "tests/stored_properties.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/language_ids.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_builder.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/platform/input.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

class HubOptions : public test::DiagramTest {
 protected:
  void SetUp() override {
    hub->SetDiagramPane(pane);
    hub->SetGridPane(grid);
    hub->SetSQLPane(sql);
  }
  HeadlessDialogs& Dialogs() const { return static_cast<HeadlessDialogs&>(hub->GetToolkit().GetDialogs()); }

  Ref<qbQueryBuilder> hub = qbQueryBuilder::Create();
  Ref<qbGridPane> grid = qbGridPane::Create();
  Ref<qbSQLPane> sql = qbSQLPane::Create();
};

// --- Options ---

std::string Options(const qbQueryBuilder& hub) {
  const auto flag = [](bool value) { return value ? "1" : "0"; };
  return std::string(flag(hub.AllowJoinProperties())) + flag(hub.ConnectOnLoad()) + flag(hub.DistinctRecords()) +
         flag(hub.GetTablesOnConnect()) + flag(hub.SaveLoadEntityItems()) + flag(hub.SaveConnectionString()) + " " +
         std::to_string(hub.RetrieveFieldOrder()) + " " + std::to_string(hub.AliasMaxLen()) + " " +
         hub.SelectTopRecords();
}

TEST_F(HubOptions, ANewControlAndAnEmptyFormHaveDefaultsOfTheirOwn) {
  EXPECT_EQ(Options(*hub), "010000 0 0 ");
  hub->InitProperties();
  EXPECT_EQ(Options(*hub), "010000 0 0 ");
  MemoryPropertyStore empty;
  hub->ReadProperties(empty);
  EXPECT_EQ(Options(*hub), "010101 0 0 ");
  hub->WriteProperties(empty);
  EXPECT_EQ(empty.Values().size(), 1u);  // the one that is always written
  EXPECT_EQ(empty.Read("AllowJoinProperties", true), Variant(false));
}

TEST_F(HubOptions, EveryOptionIsMarkedStoredAndReadBack) {
  std::string marked;
  const auto link = hub->PropertyChanged.Connect([&](std::string_view key) { marked += std::string(key) + " "; });
  hub->SetAllowJoinProperties(true);
  hub->SetConnectOnLoad(false);
  hub->SetDistinctRecords(true);
  hub->SetSelectTopRecords(" 25 %");
  hub->SetGetTablesOnConnect(false);
  hub->SetRetrieveFieldOrder(FieldOrderOrdinal);
  hub->SetSaveLoadEntityItems(true);
  hub->SetSaveConnectionString(false);
  hub->SetAliasMaxLen(32767);
  hub->SetSkipRecords(7);
  hub->SetAutoSyntax(true);
  EXPECT_EQ(test::ErrorOf([&] { hub->SetAliasMaxLen(-1); }), ErrorInvalidPropertyValue);
  EXPECT_EQ(Options(*hub), "101010 1 32767 25%");
  EXPECT_EQ(marked,
            "AllowJoinProperties ConnectOnLoad DistinctRecords SelectTopRecords GetTablesOnConnect RetrieveFieldOrder "
            "SaveLoadEntityItems SaveConnectionString AliasMaxLen SkipRecords AutoSyntax ");
  const Ref<qbQueryBuilder> other = qbQueryBuilder::Create();
  other->ReadProperties(MemoryPropertyStore());
  test::ExpectStored(hub, other,
                     {"AllowJoinProperties", "ConnectOnLoad", "DistinctRecords", "SelectTopRecords",
                      "GetTablesOnConnect", "RetrieveFieldOrder", "SaveLoadEntityItems", "SaveConnectionString",
                      "AliasMaxLen", "SkipRecords", "AutoSyntax"});
}

TEST_F(HubOptions, StoredValuesOfTheWrongKindCountAsMissing) {
  const char* const keys[] = {"AllowJoinProperties", "ConnectOnLoad",        "DistinctRecords",
                              "SelectTopRecords",    "GetTablesOnConnect",   "RetrieveFieldOrder",
                              "SaveLoadEntityItems", "SaveConnectionString", "AliasMaxLen"};
  for (const Variant& value : {Variant(), Variant::Null(), Variant::Missing(), Variant("no"), Variant(Ref<Object>(hub)),
                               Variant(std::vector<Variant>{true}), Variant("150%"), Variant("\xFF")}) {
    MemoryPropertyStore store;
    for (const char* key : keys) store.Write(key, value);
    hub->ReadProperties(store);
    EXPECT_EQ(Options(*hub), "010101 0 0 ") << value.Text();
  }
  MemoryPropertyStore store;
  for (const double number : {-1.0, 1e300, -1e300, 70'000.0, std::nan("")}) {
    store.Write("RetrieveFieldOrder", number);
    store.Write("AliasMaxLen", number);
    hub->ReadProperties(store);
    EXPECT_EQ(Options(*hub), "010101 0 0 ") << number;
  }
}

// --- Join properties ---

TEST_F(HubOptions, JoinPropertiesShowTheJoinAndTakeTheChoice) {
  const Ref<qbEntity> a = Add("%table1%");  // names that look like the other place-holder
  const Ref<qbEntity> b = Add("%Table2%");
  const Ref<qbRelationship> join = Join(a, 2, b, 2);
  EXPECT_FALSE(hub->ShowJoinProperties(join));  // nobody answers
  EXPECT_FALSE(hub->ShowJoinProperties(nullptr));
  EXPECT_TRUE(join->ItemData().IsEmpty());
  hub->SetLanguageString(LanguageJoinTable1, "%table1% and %TABLE2%");
  hub->SetLanguageString(LanguageJoinTable2, "%Table2% only");
  JoinDialog seen;
  bool accept = true;
  int choice = 0;
  Dialogs().onShowJoinProperties = [&](JoinDialog& dialog) {
    seen = dialog;
    dialog.table1Checked = (choice & 1) != 0;
    dialog.table2Checked = (choice & 2) != 0;
    return accept;
  };
  int written = 0;
  const auto link = sql->SQLChanged.Connect([&] { ++written; });
  int before = 0;
  for (const auto& [next, accepted] : std::vector<std::pair<int, bool>>{
           {1, true}, {2, true}, {3, false}, {3, true}, {2, true}, {0, true}, {1, false}}) {
    choice = next;
    accept = accepted;
    written = 0;
    EXPECT_EQ(hub->ShowJoinProperties(join), accepted);
    EXPECT_EQ(seen.table1Checked, (before & 1) != 0);  // as it was before
    EXPECT_EQ(seen.table2Checked, (before & 2) != 0);
    if (accepted) before = next;
    EXPECT_EQ(join->Kind().Bits(), before);
    EXPECT_EQ(join->RightIndicator(), (before & 1) != 0 ? IndicatorImage : IndicatorNone);
    EXPECT_EQ(join->LeftIndicator(), (before & 2) != 0 ? IndicatorImage : IndicatorNone);
    EXPECT_EQ(written, accepted ? 1 : 0) << next << sql->SQLStatement();
  }
  EXPECT_EQ(seen.caption + "," + seen.frame + "," + seen.acceptButton + "," + seen.cancelButton,
            "Join Properties,Include rows,&Accept,&Cancel");
  EXPECT_EQ(seen.allOfTable1, "%Table2% and %table1%");
  EXPECT_EQ(seen.allOfTable2, "%table1% only");
  // The join may go while the window is open.
  accept = true;
  Dialogs().onShowJoinProperties = [&](JoinDialog&) {
    pane->Clear();
    return true;
  };
  hub->ShowJoinProperties(join);
  EXPECT_FALSE(hub->ShowJoinProperties(join));
}

TEST_F(HubOptions, ADoubleClickOpensThePropertiesOnlyWhereItIsAllowed) {
  const Ref<qbEntity> a = Add("a");
  const Ref<qbEntity> b = Add("b");
  b->SetLeft(15 * 400);
  const Ref<qbRelationship> join = Join(a, 2, b, 2);
  int opened = 0;
  Dialogs().onShowJoinProperties = [&](JoinDialog&) { return ++opened > 0; };
  const auto open = [&] {
    pane->OnDoubleClick({ButtonLeft, ShiftNone, OnLine(*join)});
    Up(OnLine(*join));
    Press(KeyCodeEnter);
    return std::exchange(opened, 0);
  };
  EXPECT_EQ(open(), 0);
  hub->SetAllowJoinProperties(true);
  EXPECT_EQ(open(), 2);
  pane->OnDoubleClick({ButtonLeft, ShiftNone, OnCaption(*a)});
  EXPECT_EQ(opened, 0);
  const auto link = pane->DblClick.Connect([&] { a->Relationships()->Clear(); });
  pane->OnDoubleClick({ButtonLeft, ShiftNone, OnLine(*join)});
  EXPECT_EQ(opened, 0);
}

// --- Connecting ---

TEST_F(HubOptions, ConnectingWithoutATextAsksForOne) {
  const auto source = std::make_shared<test::FakeConnection>();
  hub->SetConnection(source);
  source->SetConnectionString("before");
  EXPECT_EQ(hub->Connect(), "");  // cancelled
  EXPECT_EQ(source->ConnectionString(), "before");
  EXPECT_FALSE(hub->IsConnected());
  std::string tried;
  Dialogs().onShowConnectionPrompt = [&](const ConnectionDialog& dialog) {
    tried = dialog.test("Provider=nobody");
    return "answer";
  };
  EXPECT_EQ(hub->Connect(), "answer");
  EXPECT_EQ(source->ConnectionString(), "answer");
  EXPECT_TRUE(hub->IsConnected());
  EXPECT_NE(tried, "");
  // A failure reaches nobody but `LastError`, and the pointer is itself again.
  source->openFailure = 77;
  for (const char* given : {"x", ""}) {
    hub->Connect(given);
    ASSERT_TRUE(hub->LastError());
    EXPECT_EQ(hub->LastError()->Number(), 77);
    EXPECT_FALSE(static_cast<HeadlessToolkit&>(hub->GetToolkit()).IsBusyPointer());
  }
  source->openFailure = 0;
  hub->Connect("again");
  EXPECT_FALSE(hub->LastError());
}

TEST_F(HubOptions, WhatAPersonTypesIsOpenedWithAWarningOnly) {
  const auto source = std::make_shared<test::FakeConnection>();
  hub->SetConnection(source);
  int warned = 0;
  bool yes = false;
  std::string tried;
  Dialogs().onConfirm = [&](std::string_view) { return ++warned, yes; };
  Dialogs().onShowConnectionPrompt = [&](const ConnectionDialog& dialog) {
    tried = dialog.test("INITSTMT=DELETE FROM victim");
    return "INITSTMT=DELETE FROM victim";
  };
  for (const bool answer : {false, true}) {
    yes = answer;
    hub->Connect();
    EXPECT_EQ(hub->IsConnected(), answer);
    EXPECT_EQ(hub->LastError().has_value(), !answer);
    EXPECT_EQ(tried.find("runs statements") != std::string::npos, !answer) << tried;
  }
  EXPECT_EQ(warned, 3) << "asked again for what was said yes to";
}

// --- Progress ---

TEST_F(HubOptions, OnlyTheOutermostOperationEndsAndItEndsOnErrorsToo) {
  std::string heard;
  const auto info = hub->Info.Connect([&](QueryBuilderInfoEnum& kind, Variant& parameter) {
    heard += std::to_string(kind) + "(" + parameter.Text() + ")@" + std::to_string(hub->state()) + " ";
  });
  int edits = 0;  // a statement that is to change, so that its writing is heard
  const auto edit = [&] { hub->SetSelectTopRecords(std::to_string(++edits)); };
  Add("a");
  heard.clear();
  const auto changed = sql->SQLChanged.Connect([&] { heard += "sql@" + std::to_string(hub->state()) + " "; });
  hub->RunOperation("Add", InfoAddTables, [&] {
    hub->RaiseInfo(InfoAddTables, 2);
    hub->RunOperation("Inner", InfoParsingSQL, [&] {
      hub->RaiseInfo(InfoParsingSQL, "x");
      edit();
    });
    edit();
  });
  EXPECT_EQ(std::exchange(heard, ""), "8(2)@8 9(x)@8 sql@0 0(8)@0 ");
  const auto fail = [&] {
    hub->RunOperation("Load", InfoLoadingQuery, [&] {
      edit();
      hub->RunOperation("Inner", InfoParsingSQL, [] { throw Error(5, "inner"); });
    });
  };
  EXPECT_EQ(test::ErrorOf(fail), 5);
  EXPECT_EQ(std::exchange(heard, ""), "sql@0 0(6)@0 ");
  // An error that is caught inside ends nothing.
  hub->RunOperation("Load", InfoLoadingQuery, [&] {
    EXPECT_EQ(test::ErrorOf([&] { hub->RunOperation("Inner", InfoParsingSQL, [] { throw Error(5, ""); }); }), 5);
    EXPECT_EQ(hub->state(), InfoLoadingQuery);
  });
  EXPECT_EQ(std::exchange(heard, ""), "0(6)@0 ");
}

}  // namespace
}  // namespace zrqrybld
