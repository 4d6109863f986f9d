// Statements as people write them: what the designer writes anew gives the same rows, run next to the original.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/flow/headless_designer.h"
#include "tests/flow/kept_statements.h"
#include "tests/flow/store_rows.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

// In the dialects whose texts SQLite can run, in a designer that still shows the statement before.
TEST(KeptStatements, GiveTheRowsOfTheOriginal) {
  const test::Store store;
  test::HeadlessDesigner designer;
  qbSQLPane& pane = *designer.Hub().SQLPane();
  std::size_t withRows = 0;
  const std::vector<std::string> statements = test::KeptStatements();
  for (const std::string& statement : statements) {
    const std::string expected = store.RunToDigest(statement);
    withRows += store.Run(statement).empty() ? 0 : 1;
    for (const SQLSyntaxEnum syntax : {SQLSyntaxMSSQL, SQLSyntaxAccess, SQLSyntaxSQLite}) {
      pane.SetSQLSyntax(syntax);
      try {
        pane.ParseSQLStatement(statement);
      } catch (const Error& error) {
        ADD_FAILURE() << statement << "\n" << error.Description();
        designer.Hub().SetState(InfoDone);
        continue;
      }
      // Parentheses that stay open no source can read; the pane says so.
      const auto isOpen = [](const SQLDiagnostic& remark) { return remark.kind == DiagnosticParentheses; };
      if (std::ranges::any_of(pane.Diagnostics(), isOpen)) continue;
      EXPECT_EQ(store.RunToDigest(pane.SQLStatement()), expected) << statement << "\n" << pane.SQLStatement();
    }
  }
  EXPECT_GT(statements.size(), 300u);
  EXPECT_GT(withRows, statements.size() / 2) << "statements without rows show little";
}

}  // namespace
}  // namespace zrqrybld
