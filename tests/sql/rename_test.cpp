// Renaming a table inside texts that somebody typed.
#include <gtest/gtest.h>

#include "tests/data_table.h"
#include "tests/sql/name_rules.h"
#include "zrqrybld/sql/rename.h"

namespace zrqrybld {
namespace {

TEST(RenameQualifier, TouchesTheTableWhereItQualifiesAColumnAndNothingElse) {
  for (const test::Row& row : test::ReadRows("renames.txt")) {
    SCOPED_TRACE(row.place);
    const NameRules rules = test::RulesOf(row[0]);
    const SqlText after = QuoteWhenNeeded(Identifier(row[2]), rules);
    const std::string renamed = RenameQualifier(row[3], row[1], after, rules);
    EXPECT_EQ(renamed, row[4] == "=" ? row[3] : row[4]);
    // What was renamed is renamed back by its new name.
    EXPECT_TRUE(renamed == row[3] || RenameQualifier(renamed, row[2], "zz", rules) != renamed);
  }
}

TEST(RenameSource, TouchesTheTableInFromOfQueriesAndWhatItQualifies) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"IN (SELECT c FROM r)", "IN (SELECT c FROM [s t])"},
      {"> (SELECT r.c FROM o, R JOIN [r] ON f(r.c, o.r) = 1)",
       "> (SELECT [s t].c FROM o, [s t] JOIN [s t] ON f([s t].c, o.r) = 1)"},
      {"IN (SELECT r.c FROM r x, o r) /* FROM r */", "IN (SELECT r.c FROM [s t] x, o r) /* FROM r */"},
      {"IN (SELECT r FROM (o JOIN r ON 1 = 1) UNION SELECT r FROM o WHERE 'FROM r' = EXTRACT(DAY FROM r))",
       "IN (SELECT r FROM (o JOIN [s t] ON 1 = 1) UNION SELECT r FROM o WHERE 'FROM r' = EXTRACT(DAY FROM r))"},
      {"(SELECT a, (SELECT MAX(c) FROM (SELECT c FROM r) d), r FROM x.r)",
       "(SELECT a, (SELECT MAX(c) FROM (SELECT c FROM [s t]) d), r FROM x.r)"},
      {"IN (WITH r AS (SELECT 1) SELECT * FROM r)", "IN (WITH r AS (SELECT 1) SELECT * FROM r)"},
      {"r.c FROM r", "r.c FROM r"},
      {"= r.c + (SELECT MAX(r.c) FROM r)", "= r.c + (SELECT MAX([s t].c) FROM [s t])"},
      {"IN (SELECT c FROM r", "IN (SELECT c FROM r"},
  };
  const NameRules rules = test::RulesOf("brackets");
  for (const auto& [text, renamed] : cases) {
    EXPECT_EQ(RenameSource(text, "r", QuoteWhenNeeded(Identifier("s t"), rules), rules), renamed);
  }
}

TEST(RenameQualifier, WritesTheNewNameAsItIsGiven) {
  EXPECT_EQ(
      RenameQualifier("o.x", "o", RenderQualified({Identifier("dbo"), Identifier("T")}, test::RulesOf("brackets")),
                      test::RulesOf("brackets")),
      "dbo.T.x");
}

}  // namespace
}  // namespace zrqrybld
