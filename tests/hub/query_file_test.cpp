#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <span>
#include <sstream>

#include "tests/data_table.h"
#include "tests/hub_fixture.h"
#include "zrqrybld/base/file.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/properties.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

using test::Designer;
using test::ErrorOf;

std::string Saved(const Designer& designer) { return designer.hub->SaveQueryToText(); }

// What a file makes of the line breaks in a value.
std::string OneLine(const std::string& text) {
  return ReplaceAll(ReplaceAll(ReplaceAll(text, "\r\n", " "), "\r", " "), "\n", " ");
}

// A folder of its own for each test, gone at its end.
class QueryFiles : public testing::Test {
 protected:
  QueryFiles()
      : folder_(std::filesystem::temp_directory_path() / ("zrqrybld-" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directory(folder_);
  }
  ~QueryFiles() override { std::filesystem::remove_all(folder_); }
  std::string Path(const char* name) const {
    const std::u8string path = (folder_ / PathOf(name)).u8string();
    return {path.begin(), path.end()};
  }

  std::filesystem::path folder_;
};

TEST(QueryFile, HostileAndOddTextsAreReadOrRefusedWithTheirLine) {
  for (const test::Record& record : test::ReadRecords("query_files.txt")) {
    SCOPED_TRACE(record.place + ": " + record["what"]);
    Designer designer;
    designer.Use();
    std::string error = "-";
    try {
      EXPECT_TRUE(designer.hub->LoadQuery(record["text"], true));
    } catch (const Error& caught) {
      EXPECT_EQ(caught.Number(), ErrorLoadingQuery);
      const std::string sentence = "An error occured while loading the query.\r\n";
      ASSERT_TRUE(caught.Description().starts_with(sentence));
      error = caught.Description().substr(sentence.size());
    }
    // Of errors that others word, the number and the line.
    const std::string& expected = record["error"];
    const std::size_t words = expected.find("] (line");
    if (words != std::string::npos && error.find(" (line") != std::string::npos) {
      error = error.substr(0, error.find(']')) + "]" + error.substr(error.rfind(" (line"));
    }
    EXPECT_EQ(error, expected);
    EXPECT_EQ(std::string(Trim(designer.Captions() + " / " + designer.Rows() + " / " + designer.Joins())),
              std::string(Trim(ReplaceAll(record["holds"], "/ /", "/  /"))));
    EXPECT_EQ(designer.hub->state(), InfoDone);
    EXPECT_TRUE(designer.LastRowIsEmpty());
    if (record.Has("sorts")) {
      EXPECT_EQ(designer.Cell(1, "sort_type"), record["sorts"]);
    }
    std::string remarks;
    for (const std::string& remark : designer.hub->LoadRemarks()) remarks += (remarks.empty() ? "" : " ") + remark;
    EXPECT_EQ(remarks, record.Has("remarks") ? record["remarks"] : "");
  }
}

TEST(QueryFile, WhatIsReadIsWhatWasMeant) {
  Designer designer;
  designer.Use();
  const Ref<qbEntity> orders = designer.hub->AddTable("Orders");
  const float height = orders->Height();
  orders->Properties()->Add("one", "Key");
  orders->Properties()->Add("two", "KEY");
  const Ref<qbRelationship> join = orders->Relationships()->Add(designer.hub->AddTable("Customers"));
  join->SetSourceItemIndex("CustomerID");
  join->SetTargetItemIndex("2");
  join->SetItemData("abc");
  designer.diagram->SetMinimized(*orders, true);
  designer.Tick("Orders", "Total");
  designer.grid->SortRow(1, "Descending, nulls last");
  std::string text = Saved(designer);
  EXPECT_NE(text.find("    sort_type,1=Descending\r\n"), std::string::npos) << "a word that every reader knows";
  Designer loaded;
  loaded.Use();
  loaded.hub->LoadQuery(text, true);
  const Ref<qbEntity> read = loaded.diagram->Entities()->Item("Orders");
  EXPECT_EQ(read->Properties()->Item("Key")->Value(), "one");
  EXPECT_EQ(read->Properties()->Item("KEY")->Value(), "two");
  EXPECT_EQ(read->Relationships()->Item(1)->SourceItemIndex(), Variant(std::int32_t{3})) << "a key is its position";
  EXPECT_EQ(read->Relationships()->Item(1)->TargetItemIndex(), Variant(std::int32_t{2}));
  EXPECT_EQ(read->Relationships()->Item(1)->ItemData(), Variant(std::int32_t{0})) << "no number is 0";
  EXPECT_EQ(loaded.Joins(), "Orders.CustomerID>Customers.CustomerID");
  EXPECT_EQ(loaded.Cell(1, "sort_type"), "Descending, nulls last");
  EXPECT_EQ(read->Height(), orders->Height());
  loaded.diagram->SetMinimized(*read, false);
  EXPECT_EQ(read->Height(), height);

  // The results are set as soon as they are met, and stay as they were where they are not.
  std::string statement = "given", connection = "given";
  loaded.hub->LoadQuery(text.substr(0, text.find("    SQLStatement=")) + "End SQLData", true, true, &statement,
                        &connection);
  EXPECT_EQ(statement + connection, "givengiven");
  EXPECT_THROW(
      loaded.hub->LoadQuery("ConnectionString=\r\n" + text + "\r\nEnd SQLData", true, true, &statement, &connection),
      Error);
  EXPECT_EQ(statement, OneLine(designer.sql->SQLStatement()));
  EXPECT_EQ(connection, "");
}

TEST(QueryFile, MoreThanIsBoundedIsRefusedWithItsLine) {
  const auto repeated = [](const std::string& text, int count) {
    std::string all;
    for (int i = 1; i <= count; ++i) all += ReplaceAll(text, "#", std::to_string(i));
    return all;
  };
  const std::string tables = repeated("Begin Entity\nTagVariant=T#\nEnd Entity\n", 2);
  const struct {
    std::string text;
    const char* error;
  } kCases[] = {
      {repeated("Begin Entity\nTagVariant=T#\nEnd Entity\n", 5001), "tables. (line 15003)"},
      {repeated("Begin InnerQuery\nId=#\nParent=0\nKind=2\nName=q#\nLineCount=1\nLine1=x\nEnd InnerQuery\n", 1000),
       "(line 8000)"},
      {tables + repeated("Begin Relationship\nSource=T1\nTarget=T2\nEnd Relationship\n", 5), ""},
  };
  for (const auto& one : kCases) {
    Designer designer;
    std::string told;
    try {
      designer.hub->LoadQuery(one.text, true);
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorLoadingQuery);
      told = error.Description();
    }
    EXPECT_TRUE(told.ends_with(one.error)) << told;
    EXPECT_EQ(told.empty(), *one.error == 0) << told;
  }
}

class RandomDesign {
 public:
  RandomDesign(Designer& designer, std::uint32_t seed) : designer_(designer), random_(seed) {}

  void Make() {
    qbQueryBuilder& hub = *designer_.hub;
    hub.SetSaveLoadEntityItems(Chance(2));
    hub.SetSaveConnectionString(Chance(3));
    designer_.grid->SetShowGroupBy(Chance(2));
    for (std::size_t n = random_() % 6; n > 0; --n) {
      const Ref<qbEntity> entity = hub.AddTable(Chance(2)   ? "Orders"
                                                : Chance(2) ? "Customers"
                                                            : Text() + std::to_string(n));
      if (Chance(3)) entity->SetCaption(Text() + std::to_string(n));
      if (Chance(3)) entity->SetLeft(static_cast<float>(random_() % 90000) / 7);
      if (Chance(4)) entity->Properties()->Set("key " + Text(), Text());
      if (Chance(3) && entity->Items()->Count() > 1) entity->Items()->Item(2)->SetChecked(true);
    }
    const Ref<qbEntities> entities = designer_.diagram->Entities();
    for (std::size_t n = random_() % 4; n > 0 && entities->Count() > 0; --n) {
      const Ref<qbRelationship> join = AnyEntity()->Relationships()->Add(AnyEntity());
      join->SetItemData(static_cast<std::int32_t>(random_() % 4));
      join->SetSourceItemIndex(static_cast<std::int32_t>(random_() % 3));
      if (Chance(2)) join->SetTargetItemIndex(static_cast<std::int32_t>(random_() % 3));
      if (Chance(2)) join->SetRightIndicator(IndicatorImage);
    }
    constexpr std::string_view kKeys[] = {"column",     "alias",    "table",    "sort_type",
                                          "sort_order", "group_by", "criteria", "or2"};
    for (std::size_t n = random_() % 12; n > 0; --n) {
      const auto row = static_cast<std::int32_t>(1 + random_() % static_cast<std::size_t>(designer_.grid->RowCount()));
      designer_.Set(row, std::string(kKeys[random_() % std::size(kKeys)]), Text());
    }
    designer_.grid->SetDateFormat(Text());
    hub.SetSelectTopRecords(Chance(2) ? "" : Chance(2) ? "25" : "5%");
    hub.SetDistinctRecords(Chance(2));
    designer_.sql->SetSQLSyntax(static_cast<SQLSyntaxEnum>(random_() % 5));
    designer_.sql->Refresh();
  }

 private:
  bool Chance(unsigned oneIn) { return random_() % oneIn == 0; }
  Ref<qbEntity> AnyEntity() {
    const Ref<qbEntities> entities = designer_.diagram->Entities();
    return entities->Item(static_cast<std::int32_t>(1 + random_() % static_cast<std::size_t>(entities->Count())));
  }
  std::string Text() {
    constexpr std::string_view kPieces[] = {"a",  "Ä",    "=",          ",", " ", "  b", "\n",
                                            "\t", "\xC3", "End Entity", "'", "]", "1",   "x.y"};
    std::string text;
    for (std::size_t n = 1 + random_() % 3; n > 0; --n) text += kPieces[random_() % std::size(kPieces)];
    return text;
  }

  Designer& designer_;
  std::mt19937 random_;
};

// Through text and through a file, connected or not: what was loaded is saved byte for byte as it was.
TEST_F(QueryFiles, RandomDesignsMakeTheRoundTrip) {
  for (std::uint32_t seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE(seed);
    Designer designer;
    designer.Use();
    RandomDesign(designer, seed).Make();
    const std::string text = Saved(designer);
    designer.hub->SaveQuery(Path("query"));
    ASSERT_EQ(ReadWholeFile(Path("query"), 1 << 20), text + "\r\n");
    for (const bool file : {false, true}) {
      Designer loaded;
      loaded.Use();
      loaded.hub->SetConnectOnLoad(false);
      loaded.hub->SetSaveLoadEntityItems(designer.hub->SaveLoadEntityItems());
      loaded.hub->SetSaveConnectionString(designer.hub->SaveConnectionString());
      std::string statement;
      ASSERT_TRUE(loaded.hub->LoadQuery(file ? Path("query") : text, !file, false, &statement));
      ASSERT_EQ(Saved(loaded), text);
      ASSERT_EQ(loaded.Rows(), OneLine(designer.Rows()));
      ASSERT_EQ(statement, OneLine(designer.sql->SQLStatement()));
    }
  }
}

TEST(QueryFile, CaptionsThatDifferInTheirLineBreaksStayApart) {
  Designer designer;
  designer.Use();
  for (const char* caption : {"a b", "a\nb", "a\r\nb"}) designer.hub->AddTable("Orders")->SetCaption(caption);
  designer.diagram->Entities()->Item(2)->Relationships()->Add(designer.diagram->Entities()->Item(3));
  designer.Set(1, "table", "a\nb");
  Designer loaded;
  loaded.Use();
  loaded.hub->LoadQuery(Saved(designer), true);
  EXPECT_EQ(loaded.Captions(), "a b a b 2 a b 3");
  EXPECT_EQ(loaded.Cell(1, "table"), "a b 2");
  EXPECT_EQ(loaded.diagram->Entities()->Item(2)->Relationships()->Item(1)->Target()->Caption(), "a b 3");
}

TEST(QueryFile, TheFileOfTheFirstReleaseIsLoadedForEver) {
  const std::string path = std::string(ZRQRYBLD_TEST_DATA) + "/first_release.zrq";
  Designer designer;
  designer.Use();
  designer.hub->SetSaveLoadEntityItems(true);
  designer.hub->SetSaveConnectionString(true);
  designer.hub->SetConnectOnLoad(false);
  std::string statement, connection;
  ASSERT_TRUE(designer.hub->LoadQuery(path, false, false, &statement, &connection));
  EXPECT_EQ(connection, "Fake=1");
  EXPECT_EQ(designer.Captions(), "Customers O");
  EXPECT_EQ(designer.Rows(), "Customers.Name O.Total:1");
  EXPECT_EQ(designer.Joins(), "O.CustomerID>Customers.CustomerID");
  EXPECT_EQ(designer.diagram->Entities()->Item("O")->Relationships()->Item(1)->Kind().Bits(), JoinAllOfSource);
  EXPECT_EQ(designer.diagram->Entities()->Item("O")->Left(), 3600);
  EXPECT_TRUE(designer.Item("Customers", "Name")->Checked());
  EXPECT_FALSE(designer.Item("Customers", "CustomerID")->Checked());
  EXPECT_EQ(designer.grid->DateFormat(), "yyyy-mm-dd");
  EXPECT_EQ(designer.hub->SelectTopRecords(), "25%");
  EXPECT_TRUE(designer.hub->DistinctRecords());
  EXPECT_EQ(designer.sql->SQLSyntax(), SQLSyntaxMSSQL);
  EXPECT_NE(statement.find("RIGHT JOIN Orders AS O ON"), std::string::npos);
  // The statement is written anew, so it may change with the generator; a join's key is its column's position now.
  const std::string again = ReplaceAll(Saved(designer), "SourceItemIndex=3", "SourceItemIndex=CustomerID");
  EXPECT_TRUE(ReadWholeFile(path, 1 << 20).starts_with(again.substr(0, again.find("    SQLStatement="))));
}

TEST(QueryFile, TheConnectionIsMadeAsTheHostWants) {
  const std::string text =
      "ConnectionString=Nothing=1\r\nBegin Entity\r\nTagVariant=Orders\r\nEnd Entity\r\nBegin SQLData\r\n"
      "SQLStatement=SELECT a=b\r\nEnd SQLData";
  const struct {
    bool connect, parametersOnly, result;
    std::int32_t tables;
    const char* statement;
  } kCases[] = {{true, false, false, 0, ""},
                {false, false, true, 1, "SELECT a=b"},
                {true, true, true, 0, "SELECT a=b"},
                {false, true, true, 0, "SELECT a=b"}};
  for (const auto& c : kCases) {
    Designer designer;
    designer.hub->SetConnectOnLoad(c.connect);
    std::string statement, connection;
    std::vector<int> infos;
    const auto link = designer.hub->Info.Connect([&](QueryBuilderInfoEnum& info, Variant&) {
      if (info != InfoTableAdded && info != InfoRetrieveTableInfo) infos.push_back(info);
    });
    const int changes = designer.Changes(
        [&] { EXPECT_EQ(designer.hub->LoadQuery(text, true, c.parametersOnly, &statement, &connection), c.result); });
    EXPECT_EQ(designer.diagram->Entities()->Count(), c.tables);
    EXPECT_EQ(statement, c.statement);
    EXPECT_EQ(connection, "Nothing=1");
    EXPECT_EQ(infos, (std::vector<int>{InfoLoadingQuery, InfoDone}));
    EXPECT_EQ(changes, c.tables);
  }
  Designer designer;
  designer.Use();
  designer.hub->SetSaveConnectionString(true);
  EXPECT_EQ(Saved(designer).find("secret"), std::string::npos);
  designer.hub->SetSavePassword(true);
  EXPECT_NE(Saved(designer).find("ConnectionString=Fake=1;PWD=secret\r\n"), std::string::npos);
}

// A string that came with a file: the library's own refusal, the host's, and a password that was not saved.
TEST(QueryFile, ItsConnectionIsOpenedOnlyWhenNothingSpeaksAgainstIt) {
  struct {
    const char* connection;
    bool veto;
    const char* says;
  } const cases[] = {{"Fake=1;ConnSettings=DELETE FROM victim", false, "runs statements"},
                     {"Driver=/tmp/libevil.so", false, "configured"},
                     {"Fake=1", true, "does not allow"},
                     {"UID=ada", false, "holds no password"},
                     {"Fake=1", false, ""}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.connection);
    Designer designer;
    designer.Use();
    const bool refused =
        c.veto || std::string_view(c.says) == "runs statements" || std::string_view(c.says) == "configured";
    designer.source->openFailure = std::string_view(c.says) == "holds no password" ? 77 : 0;
    std::string asked;
    const auto link = designer.hub->BeforeConnect.Connect([&](const std::string& text, bool fromFile, bool& cancel) {
      asked = text + (fromFile ? " from file" : " by program");
      cancel = c.veto;
    });
    const std::string text = std::string("ConnectionString=") + c.connection + "\r\n";
    EXPECT_EQ(designer.hub->LoadQuery(text, true), *c.says == '\0');
    EXPECT_EQ(designer.hub->LastError().has_value(), *c.says != '\0');
    if (designer.hub->LastError()) {
      EXPECT_NE(designer.hub->LastError()->Description().find(c.says), std::string::npos)
          << designer.hub->LastError()->Description();
    }
    EXPECT_EQ(designer.source->ConnectionString(), refused ? "Fake=1;PWD=secret" : c.connection);
    EXPECT_EQ(designer.hub->IsConnected(), refused || *c.says == '\0');
    // The application's own call is free, but for the veto.
    designer.source->openFailure = 0;
    designer.hub->Connect(c.connection);
    EXPECT_EQ(asked, std::string(c.connection) + " by program");
    EXPECT_EQ(designer.hub->LastError().has_value(), c.veto);
  }
}

// A line may be missing, stand twice, or hold what its key does not take: the file is loaded without it or refused with
// the line. What is loaded can be saved and loaded again.
TEST(QueryFile, AnyLineMayBeMissingTwiceOrWrong) {
  Designer maker;
  maker.Use();
  maker.sql->SetSQLSyntax(SQLSyntaxPostgreSQL);
  maker.sql->ParseSQLStatement(
      "WITH r AS (SELECT Name, CustomerID FROM Customers) SELECT DISTINCT r.Name, COUNT(Orders.Total) AS n FROM r "
      "LEFT JOIN (Orders INNER JOIN Customers AS c ON Orders.CustomerID = c.CustomerID AND Orders.Total > 1) "
      "ON r.CustomerID = Orders.CustomerID WHERE c.Name IN (SELECT Name FROM Customers) GROUP BY r.Name "
      "UNION SELECT Name, 1 FROM Customers");
  const Ref<qbEntityItem> item = maker.diagram->Entities()->Item("Orders")->Items()->Item(2);
  item->SetBold(true);
  item->SetColor(Color::Rgb(1, 2, 3));
  item->SetToolTipText("tip");
  item->SetSmallIcon(2);
  item->Properties()->Add("mine", "1");
  maker.hub->SetSaveLoadEntityItems(true);
  const std::string whole = Saved(maker);
  std::vector<std::string_view> lines = Split(whole, "\r\n");
  ASSERT_GT(lines.size(), 100u);
  int refused = 0;
  int loaded = 0;
  std::set<std::string> seen;
  for (std::size_t at = 0; at < lines.size(); ++at) {
    const std::size_t equals = lines[at].find('=');
    std::string kind(lines[at].substr(0, equals));
    std::erase_if(kind, IsDigit);
    if (!seen.insert(kind).second) continue;  // lines of one kind are read in one way
    std::vector<std::string> instead{"", std::string(lines[at]) + "\r\n" + std::string(lines[at])};
    for (const char* value : {"", "x", "2.5", "1e99"}) {
      if (equals != std::string_view::npos) instead.push_back(std::string(lines[at].substr(0, equals + 1)) + value);
    }
    for (const std::string& other : instead) {
      SCOPED_TRACE(std::string(lines[at]) + " -> " + other);
      std::string damaged;
      for (std::size_t i = 0; i < lines.size(); ++i) damaged += (i == at ? other : std::string(lines[i])) + "\r\n";
      Designer reader;
      reader.Use();
      reader.hub->SetSaveLoadEntityItems(true);
      try {
        reader.hub->LoadQuery(damaged, true);
        ++loaded;
      } catch (const Error& error) {
        ++refused;
        EXPECT_NE(error.Description().find("line"), std::string::npos) << error.Description();
        EXPECT_EQ(error.Number(), ErrorLoadingQuery);
        EXPECT_EQ(reader.hub->state(), InfoDone);
        continue;
      }
      const std::string after = Saved(reader);
      Designer again;
      again.Use();
      again.hub->SetSaveLoadEntityItems(true);
      again.hub->LoadQuery(after, true);
      EXPECT_TRUE(Saved(again) == after);
    }
  }
  EXPECT_GT(refused, 100);
  EXPECT_GT(loaded, 100);
}

TEST_F(QueryFiles, AFailingWriteLeavesTheOldFileAndSaysWhy) {
  const Designer designer;
  const std::string path = Path("query");
  WriteWholeFile(path, "old");
  designer.hub->SaveQuery(path);
  EXPECT_EQ(ReadWholeFile(path, 1 << 20), Saved(designer) + "\r\n");
  for (const std::string& bad : {folder_.string(), Path("no/such/folder"), std::string("/dev/full")}) {
    if (bad == "/dev/full" && !std::filesystem::exists(bad)) continue;
    try {
      designer.hub->SaveQuery(bad);
      ADD_FAILURE() << bad;
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorFileAccess);
      EXPECT_TRUE(error.Description().starts_with("Cannot write " + bad + ": ")) << error.Description();
      EXPECT_EQ(error.Description().find("unknown"), std::string::npos) << error.Description();
    }
    EXPECT_EQ(designer.hub->state(), InfoDone);
  }
  EXPECT_THROW(ReadWholeFile(path, 3), Error);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 1) << "a file was left behind";
}

// GCC's library for Windows sets no modes, makes no symbolic links and counts one name for every file.
#ifndef _WIN32
TEST_F(QueryFiles, ModesAndLinksStay) {
  const std::string path = Path("query");
  WriteWholeFile(path, "old");
  const auto mode = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
  std::filesystem::permissions(path, mode);
  WriteWholeFile(path, "new");
  EXPECT_EQ(std::filesystem::status(path).permissions(), mode);
  std::filesystem::create_symlink(path, Path("link"));
  WriteWholeFile(Path("link"), "through the link");
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
  EXPECT_EQ(ReadWholeFile(path, 100), "through the link");
  std::filesystem::create_hard_link(path, Path("other name"));
  WriteWholeFile(path, "by both names");
  EXPECT_EQ(ReadWholeFile(Path("other name"), 100), "by both names");
  EXPECT_EQ(std::filesystem::hard_link_count(path), 2);
}
#endif

// Writes as the library does, and notes what it is asked for.
class NotedFiles : public FileSystem {
 public:
  bool Create(const std::filesystem::path& file, bool isPrivate) const override {
    notes += isPrivate ? "create private" : "create";
    return FileSystem::Create(file, isPrivate);
  }
  bool Flush(const std::filesystem::path& file) const override {
    const bool folder = std::filesystem::is_directory(file);
    const bool isNew = file.string().find(".new-") != std::string::npos;
    notes += folder ? ", flush folder" : isNew ? ", flush new" : ", flush old";
    return flushes;
  }
  bool GiveOwner(const std::filesystem::path&, const std::filesystem::path&) const override { return givesOwner; }

  mutable std::string notes;
  bool flushes = true;
  bool givesOwner = true;
};

TEST_F(QueryFiles, ASavedFileIsOnTheDiskPrivateAndWhoseItWas) {
  const std::string path = Path("query");
  const struct {
    bool exists, flushes, givesOwner, isPrivate;
    const char* notes;
    const char* holds;
  } kCases[] = {
      {false, true, true, false, "create, flush new, flush folder", "new"},
      {false, true, true, true, "create private, flush new, flush folder", "new"},
      {true, true, true, false, "create private, flush new, flush folder", "new"},
      {true, true, false, false, "create private, flush new, flush old", "new"},
      {true, false, true, false, "create private, flush new", "old"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.notes);
    std::filesystem::remove(path);
    if (c.exists) WriteWholeFile(path, "old");
    NotedFiles files;
    files.flushes = c.flushes;
    files.givesOwner = c.givesOwner;
    EXPECT_EQ(ErrorOf([&] { WriteWholeFile(path, "new", files, c.isPrivate); }), c.flushes ? 0 : ErrorFileAccess);
    EXPECT_EQ(files.notes, c.notes);
    EXPECT_EQ(ReadWholeFile(path, 100), c.holds);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_), {}), 1) << "a file was left behind";
  }
  // A password goes into a file that is its owner's alone.
  Designer designer;
  designer.Use();
  const auto files = std::make_shared<NotedFiles>();
  designer.toolkit->SetFiles(files);
  designer.hub->SetSaveConnectionString(true);
  designer.hub->SetSavePassword(true);
  designer.hub->SaveQuery(Path("secret"));
  EXPECT_EQ(files->notes, "create private, flush new, flush folder");
}

TEST_F(QueryFiles, LongNamesStayAndLeftoversGo) {
  for (const std::string& name : {std::string(250, 'q'), ReplaceAll(std::string(120, '.'), ".", "ä") + "123456789x"}) {
    WriteWholeFile(Path(name.c_str()), "old");
    WriteWholeFile(Path(name.c_str()), "new");
    EXPECT_EQ(ReadWholeFile(Path(name.c_str()), 100), "new");
    std::filesystem::remove(PathOf(Path(name.c_str())));
  }
  const std::string path = Path("query");
  WriteWholeFile(path, "old");
  const auto yesterday = std::filesystem::file_time_type::clock::now() - std::chrono::hours(24);
  const char* const kLeft[] = {"query.new-0123abcd", "query.new-89abcdef"};
  const char* const kStays[] = {"query.new-0123abcde", "query.new-0123abcx", "query2.new-0123abcd",
                                "a.query.new-0123abcd"};
  for (const auto& names : {std::span<const char* const>(kLeft), std::span<const char* const>(kStays)}) {
    for (const char* name : names) {
      std::ofstream(Path(name)) << "x";
      std::filesystem::last_write_time(Path(name), yesterday);
    }
  }
  std::ofstream(Path("query.new-00000000")) << "somebody writes it now";
  WriteWholeFile(path, "new");
  for (const char* name : kLeft) EXPECT_FALSE(std::filesystem::exists(Path(name))) << name;
  for (const char* name : kStays) EXPECT_TRUE(std::filesystem::exists(Path(name))) << name;
  EXPECT_TRUE(std::filesystem::exists(Path("query.new-00000000")));
}

// Time and memory stay bounded whatever is in the file.
TEST(QueryFile, HalfAMillionLinesAreReadInAMoment) {
  std::string joins = "Begin Entity\nTagVariant=Orders\nEnd Entity\n";
  for (int i = 0; i < 10'000; ++i) {
    joins +=
        "Begin Relationship\nSource=Orders\nTarget=Orders\nSourceItemIndex=1\nTargetItemIndex=1\nEnd Relationship\n";
  }
  const auto start = std::chrono::steady_clock::now();
  Designer twins;
  EXPECT_TRUE(twins.hub->LoadQuery(joins, true));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << "joins of one pair of columns";
  std::string text = "Begin Entity\n";
  for (int i = 0; i < 500'000; ++i) text += "Key" + std::to_string(i) + "=v\n";
  text += "TagVariant=Orders\nEnd Entity\n";
  Designer designer;
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_TRUE(designer.hub->LoadQuery(text, true));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
  EXPECT_EQ(designer.diagram->Entities()->Count(), 1);
  EXPECT_THROW(designer.hub->LoadQuery(std::string("/dev/zero")), Error);
}

}  // namespace
}  // namespace zrqrybld
