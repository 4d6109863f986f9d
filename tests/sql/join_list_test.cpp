#include "sql/join_list.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

#include "base/text.h"
#include "tests/data_table.h"

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
    if (colon != std::string_view::npos) join.kind = text[colon + 1] - '0';
    query.joins.push_back(join);
  }
  return query;
}

std::string Described(const QuerySnapshot& query) {
  std::string text;
  for (const JoinEntry& entry : BuildJoinList(query)) {
    text += (text.empty() ? "" : "; ") + query.tables[entry.table].caption.Name();
    for (const JoinCondition& condition : entry.conditions) {
      text += " " + query.tables[condition.leftTable].caption.Name() + "." + condition.leftColumn.Name() + "=" +
              query.tables[condition.rightTable].caption.Name() + "." + condition.rightColumn.Name() + ":" +
              std::to_string(condition.type);
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

// Every table stands once; every usable join stands once, at the later of its tables.
TEST(JoinList, KeepsEveryTableAndEveryJoin) {
  std::mt19937 random(2);
  for (int run = 0; run < 300; ++run) {
    QuerySnapshot query;
    query.tables.resize(1 + random() % 9);
    std::size_t usable = 0;
    for (std::size_t j = random() % 14; j > 0; --j) {
      SnapshotJoin join{random() % query.tables.size(), random() % query.tables.size(),
                        Identifier("s" + std::to_string(j)), std::nullopt, static_cast<int>(random() % 4)};
      if (random() % 5 != 0) join.targetColumn = Identifier("t");
      usable += join.targetColumn && join.source != join.target ? 1 : 0;
      query.joins.push_back(join);
    }
    std::vector<bool> placed(query.tables.size());
    std::size_t conditions = 0;
    for (const JoinEntry& entry : BuildJoinList(query)) {
      ASSERT_FALSE(placed[entry.table]);
      for (const JoinCondition& condition : entry.conditions) {
        ASSERT_EQ(condition.leftTable, entry.table);
        ASSERT_TRUE(placed[condition.rightTable]);
        ++conditions;
      }
      placed[entry.table] = true;
    }
    ASSERT_EQ(std::accumulate(placed.begin(), placed.end(), std::size_t{0}), query.tables.size());
    ASSERT_EQ(conditions, usable);
  }
}

TEST(JoinList, FollowsALongChainWithoutDeepCalls) {
  QuerySnapshot query;
  query.tables.resize(10'000);
  for (std::size_t i = 0; i + 1 < query.tables.size(); ++i) {
    query.joins.push_back({i + 1, i, Identifier("a"), Identifier("b"), 2});
  }
  const std::vector<JoinEntry> entries = BuildJoinList(query);
  ASSERT_EQ(entries.size(), query.tables.size());
  EXPECT_EQ(entries.back().table, 9'999u);
  EXPECT_EQ(entries.back().conditions.front().type, JoinAllOfThis);
}

}  // namespace
}  // namespace zrqrybld
