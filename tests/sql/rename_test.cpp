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

TEST(RenameQualifier, WritesTheNewNameAsItIsGiven) {
  EXPECT_EQ(
      RenameQualifier("o.x", "o", RenderQualified({Identifier("dbo"), Identifier("T")}, test::RulesOf("brackets")),
                      test::RulesOf("brackets")),
      "dbo.T.x");
}

}  // namespace
}  // namespace zrqrybld
