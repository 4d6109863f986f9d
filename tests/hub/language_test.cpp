// The language of a designer: what panes, refusals and remarks say, by the language file of the samples.
#include <fstream>

#include "tests/hub_fixture.h"
#include "zrqrybld/base/texts.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/language.h"
#include "zrqrybld/host/language_ids.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

const std::string kGerman = std::string(ZRQRYBLD_TEST_DATA) + "/../../samples/languages/german.txt";

std::string First(const HeadlessTextArea& area) { return area.Remarks().empty() ? "" : area.Remarks().front(); }

TEST(Language, EveryNumberHasATextAndNoOtherHas) {
  LanguageTable english;
  LanguageTable german;
  german.Load(kGerman);
  std::size_t translated = 0;
  for (const TextRow& row : AllTexts()) {
    EXPECT_EQ(english.Get(row.number), row.english);
    EXPECT_EQ(english.Text(TextId{row.number}), row.english);
    translated += german.Get(row.number) == row.english ? 0 : 1;
  }
  EXPECT_GT(translated, AllTexts().size() * 9 / 10);  // "SQL" is "SQL"
  EXPECT_EQ(english.Get(1003), "Remove table %NAME%");
  for (const std::int32_t nobodys : {-1, 9, 99, 999, 32767}) EXPECT_EQ(english.Get(nobodys), "");
}

// Two designers of one process: each says everything in its own language, also when the text comes from code that
// knows no designer, and what was said before follows a change of the language.
TEST(Language, EachDesignerSpeaksItsOwn) {
  test::Designer german;
  test::Designer english;
  HeadlessTextArea germanArea;
  HeadlessTextArea englishArea;
  german.sql->AttachTextArea(&germanArea);
  english.sql->AttachTextArea(&englishArea);
  german.hub->LoadLanguageFile(kGerman);
  for (const test::Designer* designer : {&german, &english}) {
    designer->hub->SetConnection(designer->source);
    designer->hub->AddTable("Orders");
    designer->hub->AddTable("Customers");
    designer->Tick("Orders", "Total");
  }
  EXPECT_EQ(First(englishArea), "Customers is joined to no table before it: each of its rows meets all others.");
  EXPECT_EQ(First(germanArea),
            "Customers ist mit keiner Tabelle davor verknüpft: Jede ihrer Zeilen trifft auf alle anderen.");
  EXPECT_EQ(german.hub->UndoText(), "Orders.Total anhaken");
  EXPECT_EQ(german.grid->Grid()->EmptyText(), german.hub->GetLanguageString(1404));

  const std::string nested = "SELECT Total FROM Orders ORDER BY )";
  for (const test::Designer* designer : {&german, &english}) {
    designer->sql->ShowTyped(nested);
    EXPECT_FALSE(designer->sql->ApplyEditedText());
  }
  EXPECT_EQ(First(englishArea), "Line 1, column 35: An expression is expected instead of \")\".");
  EXPECT_EQ(First(germanArea), "Zeile 1, Spalte 35: Ein Ausdruck wird anstelle von \")\" erwartet.");
  english.hub->LoadLanguageFile(kGerman);
  EXPECT_EQ(First(englishArea), First(germanArea));

  // Errors are told to programs in English and can be told to people in their language.
  try {
    german.sql->ParseSQLStatement(nested);
    ADD_FAILURE();
  } catch (const Error& error) {
    EXPECT_TRUE(error.Description().starts_with("An error occured while parsing the text.\r\n[40002] Line 1,"));
    EXPECT_TRUE(german.hub->Say(error).starts_with("Beim Einlesen des Textes ist ein Fehler aufgetreten.\r\n[40002] "));
  }
  german.sql->AttachTextArea(nullptr);
  english.sql->AttachTextArea(nullptr);
}

TEST(Language, FillsInPlaceholdersOnce) {
  EXPECT_EQ(FillIn("%2 of %1, 100 %, %3 %^1%", {"a%2", "b"}), "b of a%2, 100 %, %3 A%2%");
  EXPECT_EQ(FillIn("%^1", {""}), "");
}

TEST(Language, AFileInAnotherEncodingIsRefusedWithItsLine) {
  const std::string path = testing::TempDir() + "zrqrybld_latin.txt";
  for (const std::string& faulty : {std::string("100=T\xE4"
                                                "belle"),
                                    std::string("100=Ta\0belle", 12)}) {
    std::ofstream(path, std::ios::binary) << "0=Feld\n\n" << faulty << "\n1=x\n";
    LanguageTable table;
    try {
      table.Load(path);
      ADD_FAILURE();
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorInvalidResFile);
      EXPECT_EQ(error.Description(),
                "An error occured while loading the language file.\r\n[40000] Line 3 is not UTF-8.");
    }
    EXPECT_EQ(table.Get(LanguageGridColumn), "Feld");
    EXPECT_EQ(table.Get(LanguageGridAlias), "Alias");
  }
}

}  // namespace
}  // namespace zrqrybld
