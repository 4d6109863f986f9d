// The hub: options, connection, adding tables, automatic joins, and who is told what.
#include <fstream>

#include "tests/data_table.h"
#include "tests/hub_fixture.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/data_types.h"
#include "zrqrybld/host/language_ids.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

class Hub : public test::HubTest {};
using test::ErrorOf;

// --- Adding tables ---

TEST_F(Hub, WithoutConnectionOrDiagramATableIsBareOrNothing) {
  EXPECT_EQ(hub->AddTable("Orders")->Items()->Count(), 0);
  Use();
  const auto cancel = diagram->Entities()->BeforeAdd.Connect([](const std::string&, bool& stop) { stop = true; });
  EXPECT_EQ(hub->AddTable("Orders"), nullptr);
  hub->SetDiagramPane(nullptr);
  EXPECT_EQ(hub->AddTable("Orders"), nullptr);
}

TEST_F(Hub, ThePickerListsTablesAndViewsAndAddsWhatIsPicked) {
  source->Literal("SCHEMA_SEPARATOR", ".");
  source->Table("v", {"x"}, "dbo", "View");
  source->Table("s", {"x"}, "", "SYSTEM TABLE");
  Use();
  std::string infos;
  const auto link = hub->Info.Connect([&](QueryBuilderInfoEnum& info, Variant&) {
    infos += std::to_string(info) + "/" + std::to_string(hub->state()) + " ";
  });
  auto& dialogs = static_cast<HeadlessDialogs&>(toolkit->GetDialogs());
  dialogs.onShowTables = [&](const TablesDialog& dialog) {
    EXPECT_EQ(dialog.tables, (std::vector<std::string>{"Customers", "Orders"}));
    EXPECT_EQ(dialog.views, std::vector<std::string>{"dbo.v"});
    EXPECT_EQ(dialog.tablesTab, "&Tables");
    EXPECT_EQ(Changes([&] { dialog.add({"Customers", "Orders", "dbo.v"}, {}); }), 1);
    source->failures[SchemaKind::Columns] = 5;
    dialog.add({"Orders"}, {});
  };
  hub->ShowTables();
  EXPECT_EQ(Joins(), "Orders.CustomerID>Customers.CustomerID");
  EXPECT_EQ(Captions(), "Customers Orders dbo.v");
  EXPECT_TRUE(infos.starts_with("8/8 2/8 4/8 2/8")) << infos;
  ASSERT_EQ(dialogs.messages.size(), 1u);
  EXPECT_EQ(dialogs.messages[0].text, "An error occured while adding table Orders.\r\n[5] no schema");
  EXPECT_EQ(hub->state(), InfoDone);
}

// --- Connecting ---

TEST_F(Hub, ConnectingTwiceLeavesTheFactsOfTheSecondSource) {
  source->Literal("QUOTE_PREFIX", "\"");
  source->Literal("TABLE_NAME", Variant::Null(), "xyz", "0123");
  source->Literal("LIKE_PERCENT", "%");
  source->Literal("OTHER", "?");
  source->Type("DATE", DataTypeCode::DbTimeStamp, "to_date(x", "')");
  source->Type("DATES", DataTypeCode::Date, "to_dates('", "'");
  source->Type("TEXT", DataTypeCode::LongVarChar, "'", "'", true);
  source->Type("INT", DataTypeCode::Integer, Variant::Null(), Variant::Null(), Variant::Null());
  grid->SetDateFormat("yyyy");
  hub->SetGetTablesOnConnect(true);
  std::string infos;
  const auto link = hub->Info.Connect([&](QueryBuilderInfoEnum& info, Variant& thing) {
    infos += std::to_string(info) + ":" + thing.Text() + "/" + std::to_string(hub->state()) + " ";
  });
  for (int i = 0; i < 2; ++i) {
    Use();
    EXPECT_EQ(infos, "1:Fake=1/1 0:1/0 ");  // no password
    infos.clear();
    EXPECT_EQ(hub->Properties()->Count(), 5);
    EXPECT_EQ(*hub->Properties()->Find("_QBDSFLAGS"), Variant(0));
    EXPECT_EQ(hub->Properties()->FindText("INVALID_TABLE_STARTING_CHARS"), "0123");
    ASSERT_EQ(hub->DataTypes()->Count(), 4);
    EXPECT_EQ(hub->DataTypes()->Item("date")->PrefixLetters, "TO_DATE('");
    EXPECT_EQ(hub->DataTypes()->Item("date")->SuffixLetters, "','yyyy')");
    EXPECT_EQ(hub->DataTypes()->Item("dates")->PrefixLetters, "to_dates('");
    EXPECT_EQ(hub->DataTypes()->FindByIndicatorLong(201, false), nullptr);
    EXPECT_TRUE(hub->DataTypes()->FindByIndicatorLong(201, true)->IsLong);
    EXPECT_EQ(hub->SourceTables().size(), 2u);
    EXPECT_EQ(hub->SourceTables().back().columns.size(), 3u);
    EXPECT_EQ(hub->state(), InfoDone);
  }
  const auto other = std::make_shared<test::FakeConnection>();
  other->Open("", "");
  other->failures = {{SchemaKind::Literals, 1}, {SchemaKind::ProviderTypes, ErrorSchemaNotSupported}};
  hub->SetGetTablesOnConnect(false);
  hub->SetConnection(other);
  EXPECT_EQ(hub->Properties()->Count(), 1);
  EXPECT_EQ(hub->DataTypes()->Count(), 0);
  EXPECT_TRUE(hub->SourceTables().empty());
  EXPECT_EQ(other->asked, (std::vector<std::string>{"31", "22"}));
}

TEST_F(Hub, ConnectThrowsNothingAndRemembersWhy) {
  source->Close();
  Use();
  EXPECT_TRUE(source->asked.empty());
  source->openFailure = 77;
  hub->Connect("Source=a");
  ASSERT_TRUE(hub->LastError());
  EXPECT_EQ(hub->LastError()->Number(), 77);
  EXPECT_FALSE(toolkit->IsBusyPointer());
  source->openFailure = 0;
  hub->Connect("Source=b");
  EXPECT_FALSE(hub->LastError());
  EXPECT_EQ(source->ConnectionString(), "Source=b");
  hub->Connect("Source=c");  // an open connection is closed first
  EXPECT_FALSE(hub->LastError());
  hub->Disconnect();
  EXPECT_EQ(ErrorOf([&] { hub->Disconnect(); }), ErrorConnectionClosed);
  const Ref<qbQueryBuilder> fresh = qbQueryBuilder::Create();
  fresh->Connect("Provider=None");
  EXPECT_EQ(fresh->LastError()->Number(), ErrorConnectionFailed);
  EXPECT_EQ(ErrorOf([&] { fresh->Disconnect(); }), ErrorConnectionClosed);
}

// --- Panes ---

TEST_F(Hub, WorksWithAnyPaneMissing) {
  for (int mask = 0; mask < 8; ++mask) {
    SCOPED_TRACE(mask);
    hub->SetDiagramPane(mask & 1 ? diagram : nullptr);
    hub->SetGridPane(mask & 2 ? grid : nullptr);
    hub->SetSQLPane(mask & 4 ? sql : nullptr);
    EXPECT_EQ(diagram->QueryBuilder(), mask & 1 ? hub : nullptr);
    EXPECT_EQ(grid->QueryBuilder(), mask & 2 ? hub : nullptr);
    EXPECT_EQ(sql->QueryBuilder(), mask & 4 ? hub : nullptr);
    Use();
    const Ref<qbEntity> orders = hub->AddTable("Orders");
    EXPECT_EQ(orders != nullptr, (mask & 1) != 0);
    hub->AddTable("Customers");
    hub->RefreshAutoJoins();
    hub->SetDistinctRecords(mask % 2 == 0);
    hub->SetAliasMaxLen(5);
    grid->SetFieldOutput("Total", true, "Orders");
    grid->RefreshTables();
    if (orders) orders->Items()->Item("Total")->SetChecked(true);
    sql->Refresh();
    EXPECT_EQ(Sql().find("Orders.Total") != std::string::npos, mask == 7) << Sql();
    diagram->Clear();
    grid->ResetRows();
  }
}

TEST_F(Hub, APaneThatIsReplacedIsTold) {
  const Ref<qbGridPane> other = qbGridPane::Create();
  hub->SetGridPane(other);
  EXPECT_EQ(grid->QueryBuilder(), nullptr);
  EXPECT_EQ(other->QueryBuilder(), hub);
  hub->SetGridPane(other);
  EXPECT_EQ(other->QueryBuilder(), hub);
  // The hub goes first: its panes stand alone.
  hub = nullptr;
  EXPECT_EQ(other->QueryBuilder(), nullptr);
  diagram->Entities()->Add("a")->Items()->Add("x", "x")->SetChecked(true);
  diagram->Clear();
  sql->Refresh();
  EXPECT_EQ(sql->SQLStatement(), "");
}

// --- Captions ---

TEST_F(Hub, LanguageFilesReplaceCaptionsLineByLine) {
  const std::string path = testing::TempDir() + "zrqrybld_language.txt";
  const auto caption = [&](const char* key) { return grid->Grid()->Columns()->Item(key)->Caption(); };
  for (const test::Record& record : test::ReadRecords("languages.txt")) {
    SCOPED_TRACE(record.place);
    std::ofstream(path, std::ios::binary) << record["file"];
    EXPECT_EQ(ErrorOf([&] { hub->LoadLanguageFile(path); }), record.Has("fails") ? ErrorInvalidResFile : 0);
    EXPECT_EQ(caption("column") + "," + caption("alias") + "," + caption("or2"), record["captions"]);
    EXPECT_EQ(hub->GetLanguageString(200), record.Has("200") ? record["200"] : "Join Properties");
  }
  EXPECT_EQ(ErrorOf([&] { hub->LoadLanguageFile(path + ".missing"); }), ErrorInvalidResFile);
  EXPECT_EQ(caption("column"), "Column");
  hub->SetLanguageString(LanguageGridAlias, "Name");
  EXPECT_EQ(caption("alias"), "Name");
  hub->SetLanguageString(LanguageGridAlias, "");
  EXPECT_EQ(caption("alias"), "Alias");
  EXPECT_EQ(hub->GetLanguageString(-5), "");
}

TEST_F(Hub, PanesHaveOneHubAndObjectsOneDiagram) {
  Use();
  Tick(hub->AddTable("Orders")->Caption(), "Total");
  const Ref<qbQueryBuilder> other = qbQueryBuilder::Create();
  other->SetDiagramPane(diagram);
  other->SetGridPane(grid);
  EXPECT_EQ(hub->DiagramPane(), nullptr);
  EXPECT_EQ(hub->GridPane(), nullptr);
  EXPECT_FALSE(hub->Undo());
  hub->SetGridPane(nullptr);
  const Ref<qbDiagramPane> second = qbDiagramPane::Create();
  hub->SetDiagramPane(second);
  EXPECT_EQ(diagram->QueryBuilder(), other);
  EXPECT_EQ(grid->QueryBuilder(), other);
  diagram->Clear();
  EXPECT_TRUE(other->Undo());
  EXPECT_EQ(Rows() + " " + Ticked(), "Orders.Total Orders.Total");

  const Ref<qbEntity> foreign = diagram->Entities()->Item(1);
  const Ref<qbEntity> own = hub->AddTable("Orders");
  second->SelectObject(own);
  EXPECT_EQ(ErrorOf([&] { second->SelectObject(foreign); }), ErrorInvalidCall);
  EXPECT_EQ(second->SelectedObject(), own);
  EXPECT_EQ(ErrorOf([&] { own->Relationships()->Add(foreign); }), ErrorInvalidCall);
  EXPECT_EQ(own->Relationships()->Count(), 0);
  EXPECT_TRUE(hub->Undo());
}

}  // namespace
}  // namespace zrqrybld
