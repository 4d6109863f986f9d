#include "zrqrybld/sql/condition_edits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <utility>

#include "tests/data_table.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/criteria_context.h"
#include "zrqrybld/sql/criteria_formatter.h"

namespace zrqrybld::test {
namespace {

using Kind = ConditionNode::Kind;

const ConditionWords& Words() {
  static const ConditionWords kWords{
      [](const ConditionField& field, const std::string& criterion) {
        const std::string name = field.table.empty() ? field.column : field.table + "." + field.column;
        return FormatCondition(field.aggregate.empty() ? name : field.aggregate + "(" + name + ")", criterion, {});
      },
      [](std::string_view text) -> std::optional<ConditionField> {
        if (!text.starts_with("T.")) return std::nullopt;
        return ConditionField{"T", std::string(text.substr(2))};
      },
      "LIKE"};
  return kWords;
}

// "T.a = 1", "all(...; ...)", "any(...)", "!" in front of what is negated.
std::string Say(const ConditionNode& node) {
  const std::string sign = node.negated ? "!" : "";
  if (!node.IsGroup()) {
    const std::string name = (node.field.table.empty() ? "" : node.field.table + ".") + node.field.column;
    const std::string of = node.field.aggregate.empty() ? name : node.field.aggregate + "(" + name + ")";
    return sign + of + (node.criterion.empty() ? "" : " " + node.criterion);
  }
  std::string text;
  for (const ConditionNode& part : node.parts) text += (text.empty() ? "" : "; ") + Say(part);
  return sign + (node.kind == Kind::All ? "all(" : "any(") + text + ")";
}

// "T.a [grouping] > 1 | > 2": what stands behind the name are the cells; "+" in front of what is output.
QueryRow RowIn(std::string_view text) {
  QueryRow row;
  row.output = text.starts_with('+');
  if (row.output) text.remove_prefix(1);
  const std::size_t end = text.find(" [");
  const std::size_t close = text.find(']');
  std::string_view name = text.substr(0, end);
  row.grouping = ReadGrouping(text.substr(end + 2, close - end - 2), nullptr);
  if (name.starts_with("T.")) row.table = "T", name.remove_prefix(2);
  row.column = name;
  for (const std::string_view cell : Split(text.substr(close + 1), "|")) row.criteria.emplace_back(Trim(cell));
  while (!row.criteria.empty() && row.criteria.back().empty()) row.criteria.pop_back();
  return row;
}

std::string Say(const std::vector<ConditionedRow>& rows) {
  std::string text;
  for (const ConditionedRow& each : rows) {
    text += (text.empty() ? "" : "; ") + std::string(each.unused ? "-" : "") + (each.row.output ? "+" : "");
    text += (each.row.table.empty() ? "" : "T.") + each.row.column + " [" + std::string(each.row.grouping.Text()) + "]";
    for (std::size_t i = 0; i < each.row.criteria.size(); ++i) {
      text += (i == 0 ? "" : " |") + std::string(each.row.criteria[i].empty() ? "" : " ") + each.row.criteria[i];
    }
  }
  return text;
}

std::vector<QueryRow> RowsIn(const std::string& text) {
  std::vector<QueryRow> rows;
  for (const std::string_view row : Split(text, "; ")) rows.push_back(RowIn(row));
  return rows;
}

TEST(ConditionTree, RowsAsATreeAndBack) {
  for (const Record& record : ReadRecords("conditions.txt")) {
    SCOPED_TRACE(record.place);
    const std::vector<QueryRow> rows = RowsIn(record["rows"]);
    const bool grouped = record["rows"].find("[]") == std::string::npos;
    const ConditionTree tree = TreeOf(rows, Words());
    EXPECT_EQ(Say(tree.where), record["where"]);
    EXPECT_EQ(Say(tree.having), record.Has("having") ? record["having"] : "all()");
    EXPECT_EQ(Say(WithConditions(rows, tree, Words(), grouped)), record.Has("back") ? record["back"] : record["rows"]);
    EXPECT_EQ(Say(WithConditions(rows, {}, Words(), grouped)), record["without"]);
  }
}

TEST(ConditionTree, IsEdited) {
  const std::vector<QueryRow> rows = RowsIn("T.a [] > 1 | < 0; T.b [] = 2; (f(x) OR g(y) AND h(z)) [] = True");
  const ConditionTree tree = Rooted(TreeOf(rows, Words()));
  // any(all(T.a > 1; T.b = 2; any(f(x); all(g(y); h(z)))); T.a < 0)
  const ConditionNode other{Kind::Single, false, {}, {{}, "N"}, {}};
  const auto expect = [](const std::optional<ConditionTree>& result, const std::string& where) {
    EXPECT_EQ(result ? Say(Plain(result->where)) : "-", where);
  };
  const std::string inner = "any(f(x); all(g(y); h(z)))";
  expect(Without(tree, {0, 0, 1}), "any(all(T.a > 1; " + inner + "); T.a < 0)");
  expect(Without(tree, {0}), "-");
  expect(Without(tree, {0, 0, 7}), "-");
  expect(WithPart(tree, {0, 0}, 1, other), "any(all(T.a > 1; N; T.b = 2; " + inner + "); T.a < 0)");
  expect(WithPart(tree, {0, 1}, 0, other), "-");
  expect(WithPart(tree, {1}, 9, other), Say(tree.where));
  expect(WithGroup(tree, {0, 1}, Kind::All, other), "any(all(T.a > 1; T.b = 2; " + inner + "); all(T.a < 0; N))");
  expect(WithMoved(tree, {0, 1}, {0, 0}, 0), "all(T.a < 0; T.a > 1; T.b = 2; " + inner + ")");
  expect(WithMoved(tree, {0, 0, 2, 1}, {0, 0}, 0), "any(all(g(y); h(z); T.a > 1; T.b = 2; f(x)); T.a < 0)");
  expect(WithMoved(tree, {0, 0, 1}, {0, 0}, 0), "any(all(T.b = 2; T.a > 1; " + inner + "); T.a < 0)");
  expect(WithMoved(tree, {0, 0, 0}, {0, 0}, 3), "any(all(T.b = 2; " + inner + "; T.a > 1); T.a < 0)");
  expect(WithMoved(tree, {0, 0}, {0, 0, 2}, 0), "-");
  expect(WithMoved(tree, {0, 1}, {1}, 0), "-");
  expect(WithoutGroup(tree, {0, 0, 2}), "any(all(T.a > 1; T.b = 2; f(x); g(y); h(z)); T.a < 0)");
  expect(WithoutGroup(tree, {0, 0, 0}), "any(all(T.b = 2; " + inner + "); T.a > 1; T.a < 0)");
  expect(WithoutGroup(tree, {0, 1}), "-");
}

TEST(ConditionTree, ConditionsStandAsTheTreeHasThemWhereTheirRowsSayNothingElse) {
  struct Case {
    const char* rows;
    ConditionPath from;
    std::size_t before;
    const char* then;
    const char* where;
  };
  const Case cases[] = {
      {"T.a [] 1; T.b [] 2; T.c [] 3", {0, 2}, 1, "T.a [] 1; -T.b []; T.c [] 3; T.b [] 2", "all(T.a 1; T.c 3; T.b 2)"},
      {"T.a [] 1; T.b [] 2; T.c [] 3", {0, 0}, 3, "-T.a []; T.b [] 2; T.c [] 3; T.a [] 1", "all(T.b 2; T.c 3; T.a 1)"},
      // What shows a column keeps its place.
      {"T.x []; +T.a [] 1; T.b [] 2; T.c [] 3",
       {0, 2},
       0,
       "T.x []; +T.a [] 1; -T.b []; T.c [] 3; T.b [] 2",
       "all(T.a 1; T.c 3; T.b 2)"},
      // Both on one field: their cells change places.
      {"T.a [] > 1; T.a [] < 9", {0, 1}, 0, "T.a [] < 9; T.a [] > 1", "all(T.a < 9; T.a > 1)"},
      // A group that is moved keeps its text.
      {"T.a [] 1; (f OR NOT(g)) [] = True",
       {0, 1},
       0,
       "-T.a []; (f OR NOT(g)) [] = True; T.a [] 1",
       "all(any(f; !g); T.a 1)"},
      // A row of several alternatives moves with all of them, and not where they want it in two places.
      {"T.a [] 1 | 1; T.b [] 2 | 2",
       {0, 0, 1},
       0,
       "T.a [] 1 | 1; T.b [] 2 | 2",
       "any(all(T.a 1; T.b 2); all(T.a 1; T.b 2))"},
      {"T.a [] 1 | ; T.b [] 2 | 2; T.c [] | 3",
       {0, 0, 1},
       0,
       "-T.a []; T.b [] 2 | 2; -T.c []; T.a [] 1; T.c [] | 3",
       "any(all(T.b 2; T.a 1); all(T.b 2; T.c 3))"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.rows);
    const std::vector<QueryRow> rows = RowsIn(each.rows);
    const ConditionPath group(each.from.begin(), each.from.end() - 1);
    const auto moved = WithMoved(Rooted(TreeOf(rows, Words())), each.from, group, each.before);
    ASSERT_TRUE(moved);
    const std::vector<ConditionedRow> then = WithConditions(rows, *moved, Words(), false);
    EXPECT_EQ(Say(then), each.then);
    std::vector<QueryRow> left;
    for (const ConditionedRow& row : then) {
      if (!row.unused) left.push_back(row.row);
    }
    EXPECT_EQ(Say(TreeOf(left, Words()).where), each.where);
  }
}

// Rows that are there keep their places, so the order among conditions may be another.
ConditionNode Sorted(ConditionNode node) {
  for (ConditionNode& part : node.parts) part = Sorted(std::move(part));
  std::ranges::sort(node.parts, {}, [](const ConditionNode& part) { return Say(part); });
  return node;
}

// Groups by chance, five deep: what the rows hold of them is the same tree again.
TEST(ConditionTree, ByChanceComeBack) {
  std::mt19937 chance(7);
  const auto below = [&chance](unsigned count) { return static_cast<int>(chance() % count); };
  const std::function<ConditionNode(int)> make = [&](int depth) {
    ConditionNode node;
    node.negated = below(5) == 0;
    if (depth == 0 || below(3) == 0) {
      node.kind = Kind::Single;
      const bool isField = below(4) != 0;
      node.field = {isField ? "T" : "", std::string(isField ? "" : "f(x) + ") + static_cast<char>('a' + below(3))};
      if (!isField) node.field.column = "f(" + node.field.column.substr(7) + ")";
      node.criterion = std::string(below(2) == 0 ? "> " : "= ") + std::to_string(below(9));
      if (below(6) == 0) node.criterion = "IS NOT NULL";
      return node;
    }
    node.kind = below(2) == 0 ? Kind::All : Kind::Any;
    for (int i = below(3) + 2; i > 0; --i) node.parts.push_back(make(depth - 1));
    return node;
  };
  const std::vector<QueryRow> rows = RowsIn("+T.a [] > 5; T.b [] ");
  for (int i = 0; i < 60; ++i) {
    const ConditionNode where = Plain(make(5));
    std::vector<QueryRow> held;
    for (const ConditionedRow& each : WithConditions(rows, {where, {}}, Words(), false)) held.push_back(each.row);
    ASSERT_EQ(Say(Sorted(TreeOf(held, Words()).where)), Say(Sorted(where)));
  }
}

}  // namespace
}  // namespace zrqrybld::test
