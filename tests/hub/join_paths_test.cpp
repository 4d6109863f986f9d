// Ways from the tables of the diagram to another one, over sources with one way, several and none.
#include "zrqrybld/diagram/join_paths.h"

#include <gtest/gtest.h>

#include "tests/hub_fixture.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/hub/hub.h"

namespace zrqrybld {
namespace {

struct PathCase {
  std::string keys;     // "child>parent", separated by blanks
  std::string diagram;  // tables, separated by blanks
  std::string wanted;
  std::string paths;  // "from:table,table", separated by blanks
};

std::string PathsOf(const PathCase& given) {
  test::Designer designer;
  for (const std::string_view key : Split(given.keys, " ")) {
    const std::vector<std::string_view> ends = Split(key, ">");
    designer.source->ForeignKey(std::string(ends[0]), "x", std::string(ends[1]), "y");
  }
  for (const char* name : {"A", "B", "C", "D", "E", "F"}) designer.source->Table(name, {"x", "y"});
  designer.Use();
  for (const std::string_view table : Split(given.diagram, " ")) {
    if (!table.empty()) designer.hub->AddTable(std::string(table));
  }
  std::string text;
  for (const JoinPath& path : PathsTo(*designer.hub, {"", given.wanted})) {
    text += (text.empty() ? "" : " ") + path.from + ":";
    for (const std::string& table : path.tables) text += (text.ends_with(':') ? "" : ",") + table;
  }
  return text;
}

TEST(JoinPaths, AreTheShortestAlongKeysInBothDirections) {
  const PathCase cases[] = {
      {"A>B B>C", "A", "C", "A:B,C"},
      {"A>B B>C", "C", "A", "C:B,A"},
      {"A>B A>B", "A", "B", "A:B"},                  // two keys between two tables are one way
      {"A>B A>C B>D C>D", "A", "D", "A:B,D A:C,D"},  // both
      {"A>B A>C B>D C>E E>D", "A", "D", "A:B,D"},    // not the longer one
      {"A>B C>D", "A", "D", ""},                     // no way
      {"A>B B>C", "A C", "C", ""},                   // it is there
      {"A>B B>C D>C", "A D", "C", "D:C"},            // from the nearest table
      {"A>A A>B B>B", "A", "B", "A:B"},              // tables that reference themselves
      {"A>B B>A B>C C>B", "A", "C", "A:B,C"},        // circles
      {"A>B", "", "B", ""},                          // from nowhere
  };
  for (const PathCase& one : cases) EXPECT_EQ(PathsOf(one), one.paths) << one.keys << " to " << one.wanted;
}

TEST(JoinPaths, AreAtMostTwelve) {
  test::Designer designer;
  designer.source->Table("From", {"x"});
  designer.source->Table("To", {"x"});
  for (int i = 0; i < 30; ++i) {
    const std::string name = "T" + std::to_string(i);
    designer.source->Table(name, {"x"});
    designer.source->ForeignKey(name, "x", "From", "x");
    designer.source->ForeignKey(name, "x", "To", "x");
  }
  designer.Use();
  designer.hub->AddTable("From");
  EXPECT_EQ(PathsTo(*designer.hub, {"", "To"}).size(), 12u);
}

}  // namespace
}  // namespace zrqrybld
