// The functions of the databases' own languages, together with the default catalog that they stand beside.
#include "zrqrybld/sql/dialect_functions.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "zrqrybld/base/text.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_builder.h"
#include "zrqrybld/platform/headless.h"
#include "zrqrybld/sql/sql_syntax.h"
#include "zrqrybld/sql/statement_parser.h"
#include "zrqrybld/sql/syntax_error.h"

namespace zrqrybld {
namespace {

class DialectCatalog : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(All, DialectCatalog, testing::Range(5, 11));

TEST_P(DialectCatalog, EveryFunctionIsFoundByItsOwnNameAndReadBackFromItsText) {
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create(std::make_shared<HeadlessToolkit>());
  std::set<std::string> names, choices;
  for (std::size_t i = 1; i <= static_cast<std::size_t>(hub->DBFunctions()->Count()); ++i) {
    names.insert(FoldCase(hub->DBFunctions()->At(i).Name()));
    choices.insert(FoldCase(hub->DBFunctions()->At(i).DisplayText()));
  }
  const std::vector<DialectFunction> functions = DialectFunctions(static_cast<SQLSyntaxEnum>(GetParam()));
  EXPECT_GE(functions.size(), 60U);
  for (const DialectFunction& function : functions) {
    SCOPED_TRACE(function.name);
    EXPECT_TRUE(names.insert(FoldCase(function.name)).second);
    EXPECT_FALSE(function.description.empty());
    const bool isChoice = (function.flags & 1) != 0;
    EXPECT_EQ(isChoice, function.syntax.find("@field") != std::string_view::npos);
    const std::string_view shown = function.shortDescription.empty() ? function.name : function.shortDescription;
    if (isChoice) {
      EXPECT_TRUE(choices.insert(FoldCase(shown)).second) << shown;
    }
    // Where only a number or a word can stand, it is filled in.
    const std::string call = ReplaceAll(std::string(function.syntax), "INTERVAL @Count @Unit", "INTERVAL 2 DAY");
    try {
      SyntaxArena arena(1024);
      ParseExpressionText(call, arena);
    } catch (const SyntaxError& error) {
      ADD_FAILURE() << call << ": " << error.what();
    }
  }
}

TEST(DialectCatalogs, ComeAndGoWithTheDialectBesideTheApplicationsOwn) {
  const Ref<qbQueryBuilder> hub = qbQueryBuilder::Create(std::make_shared<HeadlessToolkit>());
  hub->SetSQLPane(qbSQLPane::Create());
  const auto names = [&] {
    std::string text;
    for (const Ref<qbDBKeyword>& word : *hub->DBKeywords()) text += word->Name() + " ";
    return text;
  };
  const std::string usual = names();
  for (const SQLSyntaxEnum own : {SQLSyntaxMSSQL, SQLSyntaxOracle, SQLSyntaxAccess, SQLSyntaxOpenSQL}) {
    hub->SQLPane()->SetSQLSyntax(own);
    EXPECT_EQ(names(), usual);
  }
  hub->DBKeywords()->Add("RETURNING");
  hub->SQLPane()->SetSQLSyntax(SQLSyntaxPostgreSQL);
  EXPECT_TRUE(hub->DBKeywords()->FindByName("ANALYSE"));
  EXPECT_FALSE(hub->DBKeywords()->FindByName("LIKE")) << "an operator";
  EXPECT_EQ(ReadVocabulary(*hub).operators.back().name, "||");
  hub->SQLPane()->SetSQLSyntax(SQLSyntaxMySQL);
  EXPECT_FALSE(hub->DBKeywords()->FindByName("ANALYSE"));
  EXPECT_TRUE(hub->DBKeywords()->FindByName("ZEROFILL"));
  EXPECT_EQ(ReadVocabulary(*hub).operators.size(), static_cast<std::size_t>(hub->DBOperators()->Count()))
      << "what joins texts is a function";
  EXPECT_FALSE(hub->DBKeywords()->FindByName("IF")) << "a function";
  hub->SQLPane()->SetSQLSyntax(SQLSyntaxGeneric);
  EXPECT_EQ(names(), usual + "RETURNING ");
}

TEST(DialectFunctions, WhatBelongsToNoDatabaseHasNone) {
  for (const int number : {-1, 0, 4, 11, 1 << 30}) {
    EXPECT_TRUE(DialectFunctions(static_cast<SQLSyntaxEnum>(number)).empty()) << number;
  }
}

}  // namespace
}  // namespace zrqrybld
