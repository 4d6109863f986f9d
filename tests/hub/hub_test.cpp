// The hub: options, connection, adding tables, automatic joins, and who is told what.
#include <fstream>

#include "tests/data_table.h"
#include "tests/hub/hub_fixture.h"

namespace zrqrybld {
namespace {

class Hub : public test::HubTest {
 protected:
  // What `Info` reports from now on: the number, the thing concerned and the state meanwhile.
  void Record() {
    link_ = hub->Info.Connect([this](QueryBuilderInfoEnum& info, Variant& thing) {
      if (!infos.empty()) infos += " ";
      infos += std::to_string(info) + ":";
      const Ref<Object> object = thing.ToObject();
      if (const auto entity = std::dynamic_pointer_cast<qbEntity>(object)) infos += entity->Caption();
      if (std::dynamic_pointer_cast<qbRelationship>(object)) infos += "join";
      infos += thing.Text() + "/" + std::to_string(hub->state());
    });
  }
  std::string infos;

 private:
  EventConnection link_;
};
using test::ErrorOf;

TEST_F(Hub, TheRowLimitIsANumberOrAPercentage) {
  for (const test::Row& row : test::ReadRows("row_limits.txt")) {
    SCOPED_TRACE(row.place);
    hub->SetSelectTopRecords("7");
    const std::int32_t error = ErrorOf([&] { hub->SetSelectTopRecords(row[0]); });
    EXPECT_EQ(error, row[1] == "-" ? ErrorInvalidPropertyValue : 0);
    EXPECT_EQ(hub->SelectTopRecords(), row[1] == "-" ? "7" : row[1]);
  }
}

// --- Adding tables ---

TEST_F(Hub, AddTableReportsEachStepAndEndsIdle) {
  Use();
  Record();
  std::string order;
  const auto added = diagram->Entities()->EntityAdd.Connect([&](const std::string& key) { infos += "add:" + key; });
  EXPECT_EQ(Changes([&] {
              const Ref<qbEntity> entity = hub->AddTable("Orders");
              EXPECT_EQ(Items(*entity), "* OrderID! CustomerID Total");
              EXPECT_EQ(entity->TagVariant(), Variant("Orders"));
              EXPECT_EQ(entity->Properties()->FindText("_ADO_SCHEMA_TABLE_TYPE"), "TABLE");
              EXPECT_EQ(*entity->Items()->Item("Total")->Properties()->Find("data_type"), Variant(3));
              EXPECT_EQ(*entity->Items()->Item("Total")->Properties()->Find("is_long"), Variant(false));
            }),
            1);
  EXPECT_EQ(infos, "add:Orders 2:Orders/4 4:Orders/4");
  EXPECT_EQ(hub->state(), InfoDone);
  EXPECT_FALSE(toolkit->IsBusyPointer());
  infos.clear();
  EXPECT_EQ(Changes([&] { diagram->Entities()->Remove("Orders"); }), 1);
  EXPECT_EQ(infos, "7:Orders/0");
}

TEST_F(Hub, AFailingSourceIsError40004AndLeavesTheHubIdle) {
  Use();
  source->failures[SchemaKind::Columns] = 1234;
  try {
    hub->AddTable("Orders");
    ADD_FAILURE() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), ErrorAddingTable);
    EXPECT_EQ(error.Description(), "An error occured while adding table Orders.\r\n[1234] no schema");
  }
  EXPECT_EQ(hub->state(), InfoDone);
  EXPECT_FALSE(toolkit->IsBusyPointer());
  EXPECT_EQ(Captions(), "Orders");  // half made, it stays
  source->failures = {{SchemaKind::PrimaryKeys, ErrorSchemaNotSupported}};
  EXPECT_EQ(Items(*hub->AddTable("Orders")), "* OrderID CustomerID Total");
  source->failures = {{SchemaKind::PrimaryKeys, 7}};
  EXPECT_EQ(ErrorOf([&] { hub->AddTable("Orders"); }), ErrorAddingTable);
}

TEST_F(Hub, WithoutConnectionOrDiagramATableIsBareOrNothing) {
  EXPECT_EQ(hub->AddTable("Orders")->Items()->Count(), 0);
  Use();
  const auto cancel = diagram->Entities()->BeforeAdd.Connect([](const std::string&, bool& stop) { stop = true; });
  EXPECT_EQ(hub->AddTable("Orders"), nullptr);
  hub->SetDiagramPane(nullptr);
  EXPECT_EQ(hub->AddTable("Orders"), nullptr);
}

TEST_F(Hub, EachCopyOfATableGetsAKeyOfItsOwn) {
  Use();
  for (int i = 0; i < 3; ++i) hub->AddTable("Orders");
  EXPECT_EQ(Captions(), "Orders Orders1 Orders2");
  EXPECT_EQ(diagram->Entities()->Item(3)->TagVariant(), Variant("Orders"));
  diagram->Entities()->Remove("Orders1");
  hub->AddTable("orders");
  EXPECT_EQ(Captions(), "Orders Orders2 orders1");
  diagram->Clear();
  source->Literal("SCHEMA_SEPARATOR", ".");
  source->Table("Orders", {"a", "b"}, "dbo");
  Use();
  for (int i = 0; i < 3; ++i) hub->AddTable("dbo.Orders");
  EXPECT_EQ(Captions(), "dbo.Orders dbo_Orders1 dbo_Orders2");
  EXPECT_EQ(Items(*diagram->Entities()->Item(2)), "* a b");
  Tick("dbo_Orders1", "a");
  EXPECT_TRUE(Sql().ends_with("FROM dbo.Orders,dbo.Orders AS dbo_Orders1,dbo.Orders AS dbo_Orders2")) << Sql();
}

TEST_F(Hub, NamesMayBeQuotedAndMayHoldTheSeparator) {
  source->Literal("SCHEMA_SEPARATOR", ".");
  source->Literal("QUOTE_PREFIX", "[");
  source->Table("Order Details", {"x"}, "dbo");
  source->Table("my.table", {"y"});
  Use();
  EXPECT_EQ(Items(*hub->AddTable("[dbo].[Order Details]")), "* x");
  const Ref<qbEntity> dotted = hub->AddTable("\"my.table\"");
  EXPECT_EQ(dotted->Caption(), "my.table");
  EXPECT_EQ(Items(*dotted), "* y");
  Tick("my.table", "y");
  EXPECT_EQ(Sql(), "SELECT [my.table].yFROM dbo.[Order Details],[my.table]");
  EXPECT_TRUE(hub->HasTable("dbo.Order Details"));
  EXPECT_TRUE(hub->HasTable("[my.table]"));
  for (const char* missing : {"dbo.Orders", "nothing", "", "dbo.", "[]", "."}) {
    EXPECT_FALSE(hub->HasTable(missing)) << missing;
    EXPECT_EQ(Items(*hub->AddTable(missing)), "*") << missing;
  }
}

TEST_F(Hub, ColumnsStandAsTheSourceListsThemOrByPosition) {
  struct {
    const char* positions;  // of columns a, b, c; "-" is Null
    const char* byOrdinal;  // "" is error 40004
  } const cases[] = {{"123", "* a b c"}, {"312", "* b c a"}, {"---", "* a b c"}, {"12-", "* a b c"},
                     {"124", ""},        {"112", ""},        {"023", ""},        {"-31", ""}};
  Use();
  for (const auto& test : cases) {
    SCOPED_TRACE(test.positions);
    source->Forget(SchemaKind::Columns);
    for (int i = 0; i < 3; ++i) {
      const char digit = test.positions[i];
      source->Column("Orders", std::string(1, static_cast<char>('a' + i)),
                     digit == '-' ? Variant::Null() : Variant(digit - '0'));
    }
    hub->SetRetrieveFieldOrder(FieldOrderDefault);
    EXPECT_EQ(Items(*hub->AddTable("Orders")), "* a b c");
    hub->SetRetrieveFieldOrder(FieldOrderOrdinal);
    std::string items;
    const std::int32_t error = ErrorOf([&] { items = Items(*hub->AddTable("Orders")); });
    EXPECT_EQ(items, test.byOrdinal);
    EXPECT_EQ(error, items.empty() ? ErrorAddingTable : 0);
  }
  source->Column("Blob", "long", 1, "", DataTypeCode::LongVarBinary, ColumnLong | ColumnNullable);
  hub->SetRetrieveFieldOrder(FieldOrderDefault);
  EXPECT_EQ(*hub->AddTable("Blob")->Items()->Item("long")->Properties()->Find("is_long"), Variant(true));
}

TEST_F(Hub, ATextSourceHasDotsInItsNamesAndBracketsAsQuotes) {
  source->Literal("SCHEMA_SEPARATOR", ".");
  source->Literal("QUOTE_PREFIX", "`");
  source->Literal("QUOTE_SUFFIX", "`");
  source->Table("data.csv", {"a"});
  source->SetConnectionString("provider=msdasql;DRIVER=x;fil=text;");
  Use();
  EXPECT_EQ(*hub->Properties()->Find("_QBDSFLAGS"), Variant(1));
  EXPECT_EQ(Items(*hub->AddTable("data.csv")), "* a");
  hub->AddTable("[data.csv]");
  EXPECT_EQ(Captions(), "data_csv data_csv1");
  EXPECT_TRUE(Sql().ends_with("FROM [data.csv] AS data_csv,[data.csv] AS data_csv1")) << Sql();
  source->SetConnectionString("x");
  Use();
  EXPECT_EQ(*hub->Properties()->Find("_QBDSFLAGS"), Variant(0));
}

TEST_F(Hub, ThePickerListsTablesAndViewsAndAddsWhatIsPicked) {
  source->Literal("SCHEMA_SEPARATOR", ".");
  source->Table("v", {"x"}, "dbo", "View");
  source->Table("s", {"x"}, "", "SYSTEM TABLE");
  Use();
  Record();
  toolkit->GetDialogs();
  auto& dialogs = static_cast<HeadlessDialogs&>(toolkit->GetDialogs());
  dialogs.onShowTables = [&](const TablesDialog& dialog) {
    EXPECT_EQ(dialog.tables, (std::vector<std::string>{"Customers", "Orders"}));
    EXPECT_EQ(dialog.views, std::vector<std::string>{"dbo.v"});
    EXPECT_EQ(dialog.tablesTab, "&Tables");
    EXPECT_EQ(Changes([&] { dialog.add({"Customers", "Orders", "dbo.v"}); }), 1);
    source->failures[SchemaKind::Columns] = 5;
    dialog.add({"Orders"});
  };
  hub->ShowTables();
  EXPECT_EQ(Joins(), "Orders.CustomerID>Customers.CustomerID");
  EXPECT_EQ(Captions(), "Customers Orders dbo.v Orders1");
  EXPECT_TRUE(infos.starts_with("2:Customers/8 4:Customers/8 2:Orders/8")) << infos;
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
  Record();
  for (int i = 0; i < 2; ++i) {
    Use();
    EXPECT_EQ(infos, "1:Fake=1/1");  // no password
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

// --- Automatic joins ---

TEST_F(Hub, AutomaticJoinsFollowTheForeignKeysOnce) {
  Use();
  for (const char* table : {"Customers", "Orders"}) hub->AddTable(table);
  EXPECT_EQ(Joins(), "");  // adding draws none
  Record();
  EXPECT_EQ(Changes([&] { hub->RefreshAutoJoins(); }), 1);
  EXPECT_EQ(infos, "3:join/0");
  EXPECT_EQ(Joins(), "Orders.CustomerID>Customers.CustomerID");
  EXPECT_EQ(diagram->Entities()->Item("Orders")->Relationships()->Item(1)->SourceItemIndex(), Variant(3));
  EXPECT_EQ(source->Asked("27.Orders"), 1);
  EXPECT_EQ(source->Asked("27.Customers"), 1);
  EXPECT_EQ(Changes([&] { hub->RefreshAutoJoins(); }), 0);
  EXPECT_EQ(Joins(), "Orders.CustomerID>Customers.CustomerID");
  source->failures = {{SchemaKind::ForeignKeys, ErrorSchemaNotSupported}};
  hub->RefreshAutoJoins();
  source->failures = {{SchemaKind::ForeignKeys, 9999}};
  EXPECT_EQ(ErrorOf([&] { hub->RefreshAutoJoins(); }), 9999);
  source->Close();
  hub->RefreshAutoJoins();
}

TEST_F(Hub, AutomaticJoinsKnowSchemasCompositeKeysAndSelfReferences) {
  source->Literal("SCHEMA_SEPARATOR", ".");
  source->Table("Orders", {"id", "at"}, "a");
  source->Table("Lines", {"id", "at", "no"}, "a");
  source->ForeignKey("Lines", "id", "Orders", "id", "a", "a");
  source->ForeignKey("Lines", "at", "Orders", "at", "a", "a");
  source->ForeignKey("Lines", "no", "Orders", "OrderID", "a", "");
  source->ForeignKey("Lines", "no", "Orders", "no such column", "a", "a");
  source->Table("Staff", {"id", "boss"});
  source->ForeignKey("Staff", "boss", "Staff", "id");
  Use();
  for (const char* table : {"Orders", "a.Lines", "a.Orders"}) hub->AddTable(table);
  hub->RefreshAutoJoins();
  EXPECT_EQ(Joins(), "a.Lines.id>a.Orders.id a.Lines.at>a.Orders.at a.Lines.no>Orders.OrderID");
  EXPECT_EQ(source->Asked("27.a.Lines"), 1);
  diagram->Clear();
  hub->AddTable("Staff");
  hub->RefreshAutoJoins();
  EXPECT_EQ(Joins(), "");  // never from a box to itself
  hub->AddTable("Staff");
  for (int i = 0; i < 2; ++i) hub->RefreshAutoJoins();
  EXPECT_EQ(Joins(), "Staff.boss>Staff1.id");  // the later copy is the parent
}

TEST_F(Hub, AListenerMayRemoveTablesWhileJoinsAreDrawn) {
  Use();
  for (const char* table : {"Orders", "Customers", "Customers", "Orders"}) hub->AddTable(table);
  const auto link = hub->Info.Connect([&](QueryBuilderInfoEnum& info, Variant&) {
    if (info == InfoRelationshipAdded) diagram->Entities()->Remove("Customers1");
  });
  hub->RefreshAutoJoins();
  EXPECT_EQ(Joins(), "Orders.CustomerID>Customers.CustomerID Orders1.CustomerID>Customers.CustomerID");
}

// --- One statement for one action ---

TEST_F(Hub, EachActionOfTheUserWritesTheStatementOnce) {
  Use();
  for (const char* table : {"Orders", "Customers"}) hub->AddTable(table);
  const Ref<qbEntity> orders = diagram->Entities()->Item("Orders");
  const Ref<qbEntity> customers = diagram->Entities()->Item("Customers");
  struct {
    const char* name;
    std::function<void()> action;
    int changes;
  } const actions[] = {
      {"tick", [&] { Tick("Orders", "Total"); }, 1},
      {"tick what is ticked", [&] { Tick("Orders", "Total"); }, 0},
      {"joins", [&] { hub->RefreshAutoJoins(); }, 1},
      {"kind alone", [&] { orders->Relationships()->Item(1)->SetItemData(2); }, 0},
      {"remove join", [&] { orders->Relationships()->Remove(1); }, 1},
      {"first index", [&] { orders->Relationships()->Add(customers)->SetTargetItemIndex(2); }, 0},
      {"second index", [&] { orders->Relationships()->Item(1)->SetSourceItemIndex(3); }, 1},
      {"alias", [&] { Set(1, "alias", "t"); }, 1},
      {"same alias", [&] { Set(1, "alias", "t"); }, 0},
      {"output off", [&] { Set(1, "output", false); }, 1},
      {"output on", [&] { Set(1, "output", "True"); }, 1},
      {"group", [&] { grid->SetShowGroupBy(true); }, 1},
      {"no group", [&] { grid->SetShowGroupBy(false); }, 1},
      {"limit", [&] { hub->SetSelectTopRecords("5"); }, 1},
      {"same limit", [&] { hub->SetSelectTopRecords(" 5 "); }, 0},
      {"distinct", [&] { hub->SetDistinctRecords(true); }, 1},
      {"dialect alone", [&] { sql->SetSQLSyntax(SQLSyntaxOracle); }, 0},
      {"refresh", [&] { sql->Refresh(); }, 1},
      {"rename", [&] { customers->SetCaption("c"); }, 1},
      {"more conditions", [&] { EXPECT_TRUE(sql->AddWhereClause("", "x").ends_with("AND \r\n\tx")); }, 0},
      {"remove table", [&] { diagram->Entities()->Remove("c"); }, 1},
      {"untick", [&] { Tick("Orders", "Total", false); }, 1},
      {"clear", [&] { diagram->Clear(); }, 1},
      {"typed", [&] { sql->SetSQLStatement("SELECT 1"); }, 1},
  };
  for (const auto& test : actions) EXPECT_EQ(Changes(test.action), test.changes) << test.name;
}

TEST_F(Hub, TheStatementRestsWhileTheHubIsBusy) {
  Use();
  hub->AddTable("Orders");
  hub->SetState(InfoLoadingQuery);
  EXPECT_EQ(Changes([&] { Tick("Orders", "Total"); }), 0);
  EXPECT_EQ(sql->AddWhereClause("a"), "");
  sql->Refresh();
  EXPECT_EQ(sql->SQLStatement(), "");
  hub->SetState(InfoDone);
  sql->Refresh();
  EXPECT_EQ(Sql(), "SELECT Orders.TotalFROM Orders");
  EXPECT_FALSE(sql->Cartesian());
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
    bool result = true;
    const std::int32_t error = ErrorOf([&] { result = hub->LoadLanguageFile(path); });
    EXPECT_EQ(error, record.Has("fails") ? ErrorInvalidResFile : 0);
    EXPECT_EQ(result, record.Has("fails"));  // False is the answer of success
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

TEST_F(Hub, NamesOfCatalogsAreReservedAsLongAsTheyStandThere) {
  Use();
  source->Table("T", {"Avg", "Zebra"});
  hub->AddTable("T");
  Tick("T", "Avg");
  Tick("T", "Zebra");
  EXPECT_EQ(Sql(), "SELECT T.[Avg], T.ZebraFROM T");
  hub->DBFunctions()->Remove("AVG");
  hub->DBKeywords()->Add("zebra");
  hub->QuotedIdentifiers()->Add("T");
  sql->Refresh();
  EXPECT_EQ(Sql(), "SELECT [T].Avg, [T].[Zebra]FROM [T]");
}

}  // namespace
}  // namespace zrqrybld
