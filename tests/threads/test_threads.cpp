// Designers in threads of their own, which share nothing, and the C interface from several threads. What they must not
// share the thread sanitizer finds.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/hub_fixture.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"
#include "zrqrybld/zrqrybld.h"

namespace zrqrybld {
namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 5;

void InThreads(const std::function<void(int)>& work) {
  std::vector<std::jthread> threads;
  for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
}

// Source, diagram, grid, statement, typed text, errors, history, file and another language: what reaches far.
std::string DesignOne(SQLSyntaxEnum syntax) {
  test::Designer designer;
  designer.source->Literal("SOURCE_NAME", "PostgreSQL");
  designer.Use();
  designer.hub->AddTable("Customers");
  designer.hub->AddTable("Orders");
  designer.hub->RefreshAutoJoins();
  designer.Tick("Orders", "Total");
  designer.Set(1, "criteria", "> 5");
  designer.sql->SetSQLSyntax(syntax);
  designer.sql->Refresh();
  const std::string saved = designer.hub->SaveQueryToText();
  designer.hub->SetLanguageString(LanguageGridAlias, "Name");
  EXPECT_EQ(test::ErrorOf([&] { designer.sql->ParseSQLStatement("SELECT FROM WHERE"); }), ErrorParsingText);
  designer.sql->ParseSQLStatement("SELECT Count(*) FROM Orders");
  designer.hub->Undo();
  EXPECT_EQ(designer.hub->SaveQueryToText(), saved);
  return designer.Sql();
}

TEST(Threads, DesignersShareNothing) {
  constexpr std::array kSyntaxes{SQLSyntaxGeneric, SQLSyntaxMSSQL, SQLSyntaxPostgreSQL, SQLSyntaxSQLite};
  static_assert(kSyntaxes.size() == kThreads);
  std::array<std::string, kThreads> expected;
  for (std::size_t i = 0; i < kThreads; ++i) expected[i] = DesignOne(kSyntaxes[i]);
  InThreads([&](int i) {
    const auto mine = static_cast<std::size_t>(i);
    for (int round = 0; round < kRounds; ++round) EXPECT_EQ(DesignOne(kSyntaxes[mine]), expected[mine]);
  });
}

void Hear(void* heard, const zrq_value*, std::size_t) { ++*static_cast<int*>(heard); }

zrq_value Text(const std::string& text) {
  zrq_value value = {};
  value.type = ZRQ_STRING;
  value.as.text.data = text.data();
  value.as.text.length = text.size();
  return value;
}

// Each thread its own objects, one thread at a time in the library.
TEST(Threads, TheCInterfaceTakesThemOneByOne) {
  InThreads([](int i) {
    for (int round = 0; round < kRounds; ++round) {
      constexpr std::array kPanes{"DiagramPane", "GridPane", "SQLPane"};
      zrq_handle hub = 0;
      std::array<zrq_handle, 3> panes{};
      ASSERT_EQ(zrq_create("qbQueryBuilder", &hub), 0);
      for (std::size_t p = 0; p < panes.size(); ++p) {
        ASSERT_EQ(zrq_create(("qb" + std::string(kPanes[p])).c_str(), &panes[p]), 0);
        zrq_value pane = {};
        pane.type = ZRQ_OBJECT;
        pane.as.object = panes[p];
        ASSERT_EQ(zrq_let(hub, kPanes[p], nullptr, 0, &pane), 0);
      }
      int heard = 0;
      std::uint64_t subscription = 0;
      ASSERT_EQ(zrq_subscribe(panes[2], "SQLChanged", &Hear, nullptr, &heard, &subscription), 0);
      const std::string table = "t" + std::to_string(i);
      const std::string typed = "SELECT a FROM " + table;
      const zrq_value argument = Text(typed);
      ASSERT_EQ(zrq_call(panes[2], "ParseSQLStatement", &argument, 1, nullptr, nullptr), 0);
      EXPECT_GT(heard, 0);
      zrq_value statement = {};
      // The error is that of the thread, not of the last call of all.
      EXPECT_EQ(zrq_get(hub, table.c_str(), nullptr, 0, &statement), 438);
      const char* description = nullptr;
      EXPECT_EQ(zrq_last_error(&description), 438);
      EXPECT_NE(std::string(description).find(table), std::string::npos);
      ASSERT_EQ(zrq_get(panes[2], "SQLStatement", nullptr, 0, &statement), 0);
      EXPECT_NE(std::string(statement.as.text.data).find(table), std::string::npos);
      zrq_clear(&statement);
      zrq_unsubscribe(subscription);
      for (const zrq_handle pane : panes) zrq_release(pane);
      zrq_release(hub);
    }
  });
}

}  // namespace
}  // namespace zrqrybld
