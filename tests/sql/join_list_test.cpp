#include "zrqrybld/sql/join_list.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "tests/data_table.h"
#include "tests/error_of.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

// "A.x=B.y:2" is a join from A's column x to B's column y with kind 2; tables are one letter each, and
// a missing column makes the join incomplete.
QuerySnapshot DesignOf(std::string_view tables, std::string_view joins) {
  QuerySnapshot query;
  for (const char c : tables) query.tables.push_back({Identifier(std::string(1, c)), {}, false});
  for (std::string_view text : Split(joins, " ")) {
    if (text.empty()) continue;
    const auto end = [&](std::string_view part, std::size_t& table, std::optional<Identifier>& column) {
      table = tables.find(part[0]);
      if (part.size() > 2) column = Identifier(std::string(part.substr(2)));
    };
    SnapshotJoin join;
    const std::size_t equals = text.find('=');
    const std::size_t colon = text.find(':');
    end(text.substr(0, equals), join.source, join.sourceColumn);
    end(text.substr(equals + 1, colon - equals - 1), join.target, join.targetColumn);
    if (colon != std::string_view::npos) join.kind = JoinKind::FromBits(text[colon + 1] - '0');
    query.joins.push_back(join);
  }
  return query;
}

std::string Described(const QuerySnapshot& query) {
  std::string text;
  const Ref<qbJoins> joins = BuildJoinList(query);
  for (const Ref<qbJoin>& entry : *joins) {
    text += (text.empty() ? "" : "; ") + entry->Caption();
    for (std::int32_t i = 1; i <= entry->JoinTables()->Count(); ++i) {
      const qbJoinTable& condition = *entry->JoinTables()->Item(i);
      text += " " + condition.LeftTable + "." + condition.LeftField + "=" + condition.RightTable + "." +
              condition.RightField + ":" + std::to_string(condition.JoinType);
    }
  }
  return text;
}

TEST(JoinList, OrdersTablesAndGivesConditionsToTheLater) {
  for (const test::Row& row : test::ReadRows("join_lists.txt")) {
    SCOPED_TRACE(row.place);
    EXPECT_EQ(Described(DesignOf(row[0], row[1])), row[2]);
  }
}

QuerySnapshot TablesWithoutJoins(std::size_t count) {
  QuerySnapshot query;
  for (std::size_t t = 0; t < count; ++t) query.tables.push_back({Identifier(std::to_string(t)), {}, false});
  return query;
}

// Every table stands once; every usable join stands once, at the later of its tables.
TEST(JoinList, KeepsEveryTableAndEveryJoin) {
  std::mt19937 random(2);
  for (int run = 0; run < 300; ++run) {
    QuerySnapshot query = TablesWithoutJoins(1 + random() % 9);
    std::int32_t usable = 0;
    for (std::size_t j = random() % 14; j > 0; --j) {
      SnapshotJoin join{random() % query.tables.size(), random() % query.tables.size(),
                        Identifier("s" + std::to_string(j)), std::nullopt,
                        JoinKind::FromBits(static_cast<std::int32_t>(random() % 4))};
      if (random() % 5 != 0) join.targetColumn = Identifier("t");
      usable += join.targetColumn && join.source != join.target ? 1 : 0;
      query.joins.push_back(join);
    }
    std::set<std::string> placed;
    std::int32_t conditions = 0;
    const Ref<qbJoins> joins = BuildJoinList(query);
    for (const Ref<qbJoin>& entry : *joins) {
      ASSERT_FALSE(placed.contains(entry->Caption()));
      for (std::int32_t i = 1; i <= entry->JoinTables()->Count(); ++i) {
        ASSERT_EQ(entry->JoinTables()->Item(i)->LeftTable, entry->Caption());
        ASSERT_TRUE(placed.contains(entry->JoinTables()->Item(i)->RightTable));
        ++conditions;
      }
      placed.insert(entry->Caption());
    }
    ASSERT_EQ(placed.size(), query.tables.size());
    ASSERT_EQ(conditions, usable);
  }
}

TEST(JoinList, FollowsALongChainWithoutDeepCalls) {
  QuerySnapshot query = TablesWithoutJoins(10'000);
  for (std::size_t i = 0; i + 1 < query.tables.size(); ++i) {
    query.joins.push_back({i + 1, i, Identifier("a"), Identifier("b"), {.allOfSource = true}});
  }
  const Ref<qbJoins> joins = BuildJoinList(query);
  ASSERT_EQ(joins->Count(), 10'000);
  EXPECT_EQ((*std::prev(joins->end()))->Caption(), "9999");
  EXPECT_EQ((*std::prev(joins->end()))->JoinTables()->At(1).JoinType, JoinAllOfThis);
}

TEST(JoinList, AddingBesideAnotherMovesAnEntryAndKeepsItsConditions) {
  qbJoins joins;
  const auto order = [&joins] {
    std::string captions;
    for (const Ref<qbJoin>& entry : joins) captions += entry->Caption();
    return captions;
  };
  for (const char* caption : {"a", "b", "c"}) joins.Add(caption);
  joins.Add("d", "a");
  joins.Add("e", {}, "a");
  EXPECT_EQ(order(), "daebc");
  joins.Add("c", "d")->JoinTables()->Add("c", "x", "d", "y");
  joins.Add("c");
  joins.Add("c", {}, "c");
  EXPECT_EQ(order(), "cdaeb");
  EXPECT_EQ(joins.Item(1)->JoinTables()->Item("[c].[x] = [d].[y]")->RightField, "y");
  EXPECT_EQ(joins.Item("c")->JoinTables()->Add("c", "x", "d", "y"), joins.Item(1)->JoinTables()->Item(1));
  joins.Item("c")->JoinTables()->Remove(1);
  EXPECT_TRUE(joins.Item("c")->JoinTables()->Empty());
  joins.Remove("a");
  EXPECT_EQ(order(), "cdeb");
  for (const Variant& missing : {Variant("a"), Variant(0), Variant(5)}) {
    EXPECT_EQ(test::ErrorOf([&] { joins.Item(missing); }), ErrorNoSuchItem);
  }
}

}  // namespace
}  // namespace zrqrybld
