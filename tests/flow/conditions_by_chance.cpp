#include "tests/flow/conditions_by_chance.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/flow/random_designs.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_conditions.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld::test {
namespace {

class ConditionsByChance {
 public:
  ConditionsByChance(const std::string& prefix, unsigned seed) : prefix_(prefix), chance_(seed) {}

  std::string Statement(int depth) {
    const std::string where =
        " FROM " + prefix_ + "t t LEFT JOIN " + prefix_ + "u u ON t.b = u.a WHERE " + Condition(depth);
    if (!chance_.OneIn(3)) return "SELECT t.a, t.c, u.d" + where;
    return "SELECT t.a, count(*)" + where + " GROUP BY t.a HAVING " + OnGroups(depth);
  }

  // The same meaning, with groups whose kind and parts are turned round here and there.
  ConditionNode Turned(ConditionNode node) {
    for (ConditionNode& part : node.parts) part = Turned(std::move(part));
    if (!node.IsGroup() || node.parts.empty() || chance_.OneIn(2)) return node;
    node.kind = node.kind == ConditionNode::Kind::All ? ConditionNode::Kind::Any : ConditionNode::Kind::All;
    node.negated = !node.negated;
    for (ConditionNode& part : node.parts) part.negated = !part.negated;
    return node;
  }

 private:
  std::string One(std::vector<std::string> choices) { return choices[chance_.Below(choices.size())]; }
  std::string Column() { return One({"t.a", "t.b", "u.a", "u.d"}); }
  std::string Number() { return One({"0", "1", "2", "-1", "1.5", "NULL"}); }
  std::string Value() {
    return One({Column() + " + " + Column(), "coalesce(" + Column() + ", 1)", "abs(" + Column() + ")",
                "CASE WHEN " + OfText() + " THEN 1 ELSE " + Column() + " END"});
  }
  std::string OfText() {
    return One({"t.c", "u.e"}) +
           One({" = 'x'", " <> 'it''s'", " LIKE 'x%'", " NOT LIKE '_'", " IS NULL", " IN ('x', 'y')", " > 'x'"});
  }

  std::string Comparison() {
    const std::string left = chance_.OneIn(4) ? Value() : Column();
    const std::string values = prefix_ + "v";
    switch (chance_.Below(9)) {
      case 0:
        return OfText();
      case 1:
        return left + One({" = ", " < "}) + Column();
      case 2:
        return left + One({" IS NULL", " IS NOT NULL"});
      case 3:
        return left + One({" BETWEEN 0 AND 1", " NOT BETWEEN 1 AND 2", " IN (1, 2)", " NOT IN (1, NULL)"});
      case 4:
        return left + One({" IN", " NOT IN", " = (SELECT max(d) FROM " + values + ") OR " + left + " IN"}) +
               " (SELECT d FROM " + values + ")";
      case 5:
        return One({"", "NOT "}) + "EXISTS (SELECT 1 FROM " + values + " v WHERE v.d = " + Column() + ")";
      case 6:
        return Number() + One({" = ", " < "}) + left;
      case 7:
        return "NOT " + left + " = " + Number();
      default:
        return left + One({" = ", " < ", " > ", " <= ", " <> "}) + Number();
    }
  }

  std::string Condition(int depth) {
    return ConditionByChance(chance_, depth, [this] { return Comparison(); });
  }

  std::string OnGroups(int depth) {
    if (depth == 0 || chance_.OneIn(3)) {
      const std::string aggregate = One({"count(*)", "sum(" + Column() + ")", "min(t.c)"});
      if (aggregate == "min(t.c)") return aggregate + One({" IS NOT NULL", " > 'x'"});
      return chance_.OneIn(4) ? "t.a IS NULL" : aggregate + One({" > 1", " <= 2", " IS NOT NULL", " BETWEEN 1 AND 3"});
    }
    if (chance_.OneIn(4)) return "NOT (" + OnGroups(depth - 1) + ")";
    return "(" + OnGroups(depth - 1) + One({" AND ", " OR "}) + OnGroups(depth - 1) + ")";
  }

  std::string prefix_;
  Chance chance_;
};

}  // namespace

std::string ConditionByChance(Chance& chance, int depth, const std::function<std::string()>& comparison) {
  const auto part = [&] { return ConditionByChance(chance, depth - 1, comparison); };
  const std::size_t kind = chance.Below(8);
  if (depth == 0 || kind <= 1) return comparison();
  if (kind == 6) return "(" + part() + ")";
  if (kind == 7) return "NOT (" + part() + ")";
  std::string text = part();
  const char* const word = kind <= 3 ? " AND " : " OR ";
  for (std::size_t i = 0; i <= chance.Below(2); ++i) text += word + part();
  return text;
}

// Seven rows each: small numbers, short texts, and Null for every fourth.
std::vector<std::string> ConditionTables(const std::string& prefix) {
  const std::pair<const char*, std::vector<std::string>> tables[] = {
      {"t", {"a", "b", "c"}}, {"u", {"a", "d", "e"}}, {"v", {"d"}}};
  const char* const texts[] = {"'x'", "'y'", "'xy'", "'Zz'", "''"};
  Chance chance(7);
  std::vector<std::string> script;
  for (const auto& [name, columns] : tables) {
    const auto isText = [](const std::string& column) { return column == "c" || column == "e"; };
    const auto list = [&columns = columns](const auto& text) {
      std::string all;
      for (const std::string& column : columns) all += (all.empty() ? " (" : ", ") + text(column);
      return all + ")";
    };
    script.push_back("CREATE TABLE " + prefix + name + list([&](const std::string& column) {
                       return column + (isText(column) ? " VARCHAR(9)" : " INTEGER");
                     }));
    for (int row = 0; row < 7; ++row) {
      script.push_back("INSERT INTO " + prefix + name + " VALUES" + list([&](const std::string& column) {
                         if (chance.OneIn(4)) return std::string("NULL");
                         return isText(column) ? texts[chance.Below(5)] : std::to_string(chance.Below(4));
                       }));
    }
  }
  return script;
}

std::string TryConditions(qbQueryBuilder& hub, const QueryTarget& target, unsigned count) {
  qbSQLPane& pane = *hub.SQLPane();
  pane.SetSQLSyntax(target.syntax);
  const auto rowsOf = [&](const std::string& sql) {
    std::vector<std::string> rows = target.run(sql);
    std::ranges::sort(rows);
    return rows;
  };
  const QueryConditions conditions(RefTo(hub));
  unsigned differs = 0;
  for (unsigned seed = 1; seed <= count; ++seed) {
    ConditionsByChance made(target.prefix, seed);
    const std::string statement = made.Statement(static_cast<int>(seed % 6));
    SCOPED_TRACE("seed " + std::to_string(seed) + "\n" + statement);
    try {
      const std::vector<std::string> expected = rowsOf(statement);
      pane.ParseSQLStatement(statement);
      const std::string read = pane.SQLStatement();
      EXPECT_EQ(rowsOf(read), expected) << read;
      ConditionTree tree = conditions.Tree();
      conditions.Set(tree);
      EXPECT_EQ(pane.SQLStatement(), read) << "set as it is, nothing changes";
      tree.where = made.Turned(std::move(tree.where));
      tree.having = made.Turned(std::move(tree.having));
      conditions.Set(tree);
      const std::string turned = pane.SQLStatement();
      if (turned == read) continue;
      ++differs;
      EXPECT_EQ(rowsOf(turned), expected) << turned;
      hub.Undo();
      EXPECT_EQ(pane.SQLStatement(), read);
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what() << "\n" << pane.SQLStatement();
      hub.SetState(InfoDone);
    }
  }
  EXPECT_GT(differs, count / 3) << "too few were turned to show much";
  return std::to_string(count) + " conditions, " + std::to_string(differs) + " of them turned round";
}

}  // namespace zrqrybld::test
