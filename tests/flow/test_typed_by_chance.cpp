// Statements made by chance as people type them, over small tables full of Nulls: what the designer writes anew gives
// the rows of the original.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>

#include "tests/flow/conditions_by_chance.h"
#include "tests/flow/headless_designer.h"
#include "tests/flow/random_designs.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_pane.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

using test::Chance;

struct Table {
  std::string name;
  std::vector<std::string> columns;
};

const std::vector<Table>& Tables() {
  static const std::vector<Table> tables{
      {"t", {"a", "b", "c"}}, {"u", {"a", "d", "e"}}, {"v", {"d", "f"}}, {"\"my tab\"", {"\"x y\"", "\"group\"", "b"}}};
  return tables;
}

// Seven rows each: small numbers, in columns c and e short texts, and Null for every fourth.
std::string Script() {
  Chance chance(7);
  std::string script;
  for (const Table& table : Tables()) {
    script += "CREATE TABLE " + table.name + " (";
    for (const std::string& column : table.columns) {
      script += (column == table.columns.front() ? "" : ", ") + column;
      script += column == "c" || column == "e" ? " TEXT" : " INTEGER";
    }
    script += ");";
    for (int row = 0; row < 7; ++row) {
      script += "INSERT INTO " + table.name + " VALUES (";
      for (const std::string& column : table.columns) {
        const char* const texts[] = {"'x'", "'y'", "'xy'", "'Zz'", "''"};
        script += column == table.columns.front() ? "" : ", ";
        if (chance.OneIn(4)) {
          script += "NULL";
        } else if (column == "c" || column == "e") {
          script += texts[chance.Below(5)];
        } else {
          script += std::to_string(chance.Below(4));
        }
      }
      script += ");";
    }
  }
  return script;
}

class StatementByChance {
 public:
  explicit StatementByChance(unsigned seed) : chance_(seed) {}

  std::string Make() {
    const std::string from = From();
    const bool grouped = chance_.OneIn(3);
    std::string text = chance_.OneIn(4) ? "SELECT DISTINCT " : "SELECT ";
    std::string tail = chance_.OneIn(3) ? "" : " WHERE " + Condition(2);
    std::vector<std::string> items;
    if (grouped) {
      std::vector<std::string> keys;
      for (std::size_t i = chance_.Below(3); i > 0; --i) keys.push_back(Column());
      items = keys;
      items.insert(items.begin() + static_cast<std::ptrdiff_t>(chance_.Below(items.size() + 1)), Aggregate());
      if (!keys.empty()) tail += " GROUP BY " + Joined(keys, ", ");
      if (!keys.empty() && chance_.OneIn(2)) {
        tail += " HAVING " + Aggregate() + One({" > 1", " >= 2", " IS NOT NULL"});
        if (chance_.OneIn(2)) tail += One({" AND ", " OR "}) + keys.front() + One({" = 1", " > 0", " IS NULL"});
      }
    } else if (chance_.OneIn(6)) {
      items = {One({"*", tables_.front().name + ".*"})};
    } else {
      for (std::size_t i = 0; i <= chance_.Below(3); ++i) items.push_back(chance_.OneIn(2) ? Column() : Value(2));
    }
    const bool hasStar = items.front().ends_with('*');
    std::vector<std::string> sorting;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (!hasStar) sorting.push_back(std::to_string(i + 1) + One({"", " DESC", " ASC"}));
      if (!hasStar && chance_.OneIn(4)) items[i] += One({" AS ", " "}) + "al" + std::to_string(i);
    }
    isSorted_ = !hasStar && chance_.OneIn(3);
    if (isSorted_) tail += " ORDER BY " + Joined(sorting, ", ");
    return text + Joined(items, ", ") + " FROM " + from + tail;
  }

  // Sorted by all columns of the result, so that the order of its rows is certain.
  bool IsSorted() const { return isSorted_; }

 private:
  std::string One(std::vector<std::string> choices) { return choices[chance_.Below(choices.size())]; }

  static std::string Joined(const std::vector<std::string>& parts, const std::string& separator) {
    std::string text;
    for (const std::string& part : parts) text += (text.empty() ? "" : separator) + part;
    return text;
  }

  // --- FROM ---

  std::string From() {
    const std::size_t count = 1 + chance_.Below(4);
    if (!chance_.OneIn(4)) return Joins(count);
    std::vector<std::string> list;
    for (std::size_t i = 0; i < count; ++i) list.push_back(Joins(1));
    return Joined(list, ", ");
  }

  std::string Joins(std::size_t count) {
    if (count == 1) {
      Table table = Tables()[chance_.Below(Tables().size())];
      const bool isUsed = std::ranges::find(tables_, table.name, &Table::name) != tables_.end();
      const std::string alias = isUsed || chance_.OneIn(3) ? "x" + std::to_string(tables_.size()) : "";
      const std::string text = table.name + (alias.empty() ? "" : One({" AS ", " "}) + alias);
      if (!alias.empty()) table.name = alias;
      tables_.push_back(std::move(table));
      return text;
    }
    const std::size_t leftCount = 1 + chance_.Below(count - 1);
    const std::size_t first = tables_.size();
    std::string left = Joins(leftCount);
    const std::size_t middle = tables_.size();
    std::string right = Joins(count - leftCount);
    if (leftCount > 1 && chance_.OneIn(2)) left = "(" + left + ")";
    if (count - leftCount > 1) right = "(" + right + ")";
    if (chance_.OneIn(8)) return left + " CROSS JOIN " + right;
    std::string on = chance_.OneIn(12) ? OnlyJoined(first) : Pair(first, middle);
    if (chance_.OneIn(4)) on += " AND " + Pair(first, middle);
    if (chance_.OneIn(3)) on += " AND " + OnlyJoined(first);
    if (chance_.OneIn(6)) on = "(" + on + ")";
    return left + One({" INNER JOIN ", " JOIN ", " LEFT JOIN ", " LEFT OUTER JOIN ", " RIGHT JOIN ", " FULL JOIN "}) +
           right + " ON " + on;
  }

  std::string Pair(std::size_t first, std::size_t middle) {
    std::string left = ColumnOf(tables_[first + chance_.Below(middle - first)]);
    std::string right = ColumnOf(tables_[middle + chance_.Below(tables_.size() - middle)]);
    if (chance_.OneIn(3)) std::swap(left, right);
    if (chance_.OneIn(12)) return left + " BETWEEN " + right + " AND " + right;
    return left + One({" = ", " = ", " = ", " = ", " < ", " >= ", " <> ", " LIKE ", " IS "}) + right;
  }

  // A condition over the tables from `first` on.
  std::string OnlyJoined(std::size_t first) {
    const auto column = [&] { return ColumnOf(tables_[first + chance_.Below(tables_.size() - first)]); };
    const std::string left = column();
    switch (chance_.Below(6)) {
      case 0:
        return left + " IS NULL";
      case 1:
        return "(" + left + " = 1 OR " + column() + " IS NULL)";
      case 2:
        return left + " = " + column() + " + 1";
      case 3:
        return "EXISTS (SELECT 1 FROM v w WHERE w.d = " + left + ")";
      default:
        return left + One({" > 1", " = 'x'", " NOT IN (1, 2)"});
    }
  }

  std::string ColumnOf(const Table& table) {
    return table.name + "." + table.columns[chance_.Below(table.columns.size())];
  }

  // --- Expressions over the tables of FROM ---

  std::string Column() { return ColumnOf(tables_[chance_.Below(tables_.size())]); }
  std::string Literal() { return One({"0", "1", "2", "NULL", "'x'", "'it''s'", "1.5", "-1"}); }

  std::string Value(int depth) {
    const std::size_t kind = chance_.Below(depth > 0 ? 8 : 2);
    if (kind == 0) return Literal();
    if (kind == 1) return Column();
    if (kind == 2) return Value(depth - 1) + One({" + ", " - ", " * ", " || "}) + Value(depth - 1);
    if (kind == 3) return "coalesce(" + Value(depth - 1) + ", " + Value(depth - 1) + ")";
    if (kind == 4)
      return "CASE WHEN " + Condition(1) + " THEN " + Value(depth - 1) + " ELSE " + Value(depth - 1) + " END";
    if (kind == 5) return "(" + Value(depth - 1) + ")";
    if (kind == 6) return One({"abs(", "length(", "-("}) + Column() + ")";
    return "CAST(" + Column() + One({" AS INTEGER)", " AS TEXT)"});
  }

  std::string Comparison() {
    const std::string left = chance_.OneIn(4) ? Value(1) : Column();
    const std::size_t kind = chance_.Below(10);
    if (kind <= 2) return left + One({" = ", " < ", " > ", " <= ", " <> ", " != "}) + Literal();
    if (kind == 3) return left + One({" = ", " < "}) + Column();
    if (kind == 4) return left + One({" IS NULL", " IS NOT NULL", " LIKE 'x%'", " NOT LIKE '_'"});
    if (kind == 5) return left + One({" BETWEEN 0 AND 1", " NOT BETWEEN 1 AND 2", " IN (1, 2)", " NOT IN (1, NULL)"});
    if (kind == 6) return left + One({" IN (SELECT d FROM v)", " = (SELECT max(d) FROM v)"});
    if (kind == 7) {
      return One({"", "NOT "}) + "EXISTS (SELECT 1 FROM v q" +
             One({" WHERE q.d = ", " JOIN u r ON r.d = q.d WHERE r.a >= ",
                  ", u r WHERE r.d < q.f AND r.a = 1 AND q.d = "}) +
             Column() + ")";
    }
    if (kind == 8) return Literal() + One({" = ", " < "}) + left;
    return "NOT " + left + " = " + Literal();
  }

  std::string Condition(int depth) {
    return test::ConditionByChance(chance_, depth, [this] { return Comparison(); });
  }

  std::string Aggregate() {
    const std::string column = Column();
    return One({"count(*)", "COUNT(" + column + ")", "sum(" + column + ")", "MIN(" + column + ")",
                "count(DISTINCT " + column + ")", "sum(" + column + ") + 1"});
  }

  Chance chance_;
  std::vector<Table> tables_;
  bool isSorted_ = false;
};

std::vector<std::string> Lines(const std::string& text, bool sorted) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  if (!sorted) std::ranges::sort(lines);
  return lines;
}

// What the designer cannot show, and says.
bool IsKnownRefusal(const std::string& message) {
  const char* const known[] = {"can be shown in the designer", "cannot be shown in the designer",
                               "may be one of several"};
  return std::ranges::any_of(known, [&](const char* part) { return message.find(part) != std::string::npos; });
}

// SQLite alone takes a comma in FROM for a join like others, so it reads a RIGHT or FULL JOIN behind one in another
// way.
bool IsReadInAnotherWay(const std::string& statement) {
  const std::size_t from = statement.find("FROM");
  const std::string tables = statement.substr(from, statement.find("WHERE", from) - from);
  return tables.find(',') != std::string::npos &&
         (tables.find("RIGHT JOIN") != std::string::npos || tables.find("FULL OUTER JOIN") != std::string::npos);
}

TEST(TypedByChance, WhatIsWrittenAnewGivesTheRowsOfTheOriginal) {
  const char* const wished = std::getenv("ZRQRYBLD_TYPED_STATEMENTS");
  const unsigned count = wished ? static_cast<unsigned>(std::atoi(wished)) : 200;
  const test::DatabaseFile file(Script());
  const test::Connection source(file.Path());
  const auto connect = [&](const test::HeadlessDesigner& designer) {
    designer.Hub().Connect("Provider=SQLite;Data Source=" + file.Path());
  };
  test::HeadlessDesigner designer, reader;
  connect(designer);
  connect(reader);
  qbSQLPane& pane = *designer.Hub().SQLPane();
  const auto parse = [](qbSQLPane& into, SQLSyntaxEnum syntax, const std::string& sql) {
    into.SetSQLSyntax(syntax);
    try {
      into.ParseSQLStatement(sql);
    } catch (const Error& error) {
      into.QueryBuilder()->SetState(InfoDone);
      return error.Description();
    }
    return std::string();
  };
  std::map<std::string, unsigned> figures;
  for (unsigned seed = 1; seed <= count; ++seed) {
    StatementByChance made(seed);
    const std::string statement = made.Make();
    const std::vector<std::string> expected = Lines(source.Query(statement), made.IsSorted());
    for (const SQLSyntaxEnum syntax :
         {SQLSyntaxMSSQL, SQLSyntaxAccess, SQLSyntaxGeneric, SQLSyntaxOracle, SQLSyntaxSQLite}) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", " + std::string(DialectFor(syntax).name) + "\n" + statement);
      const std::string refusal = parse(pane, syntax, statement);
      if (!refusal.empty()) {
        EXPECT_TRUE(IsKnownRefusal(refusal)) << refusal;
        ++figures["refused"];
        continue;
      }
      std::string written = pane.SQLStatement();
      const bool marksJoins = syntax == SQLSyntaxGeneric || syntax == SQLSyntaxOracle;
      if (marksJoins && statement.find("FULL JOIN") != std::string::npos) {
        ++figures["without words for a full join"];
        continue;
      }
      // What SQLite cannot run is read by another designer, and written as it can.
      const auto isOpen = [](const SQLDiagnostic& remark) { return remark.kind == DiagnosticParentheses; };
      if (marksJoins || std::ranges::any_of(pane.Diagnostics(), isOpen)) {
        const std::string unread = parse(*reader.Hub().SQLPane(), marksJoins ? SQLSyntaxMSSQL : syntax, written);
        if (!unread.empty()) {
          EXPECT_TRUE(marksJoins && IsKnownRefusal(unread)) << unread << "\n" << written;
          ++figures["that only marks can say"];
          continue;
        }
        reader.Hub().SQLPane()->SetSQLSyntax(SQLSyntaxMSSQL);
        reader.Hub().SQLPane()->Refresh();
        written = reader.Hub().SQLPane()->SQLStatement();
      }
      if (IsReadInAnotherWay(written)) {
        ++figures["with a comma that SQLite reads in another way"];
        continue;
      }
      EXPECT_EQ(Lines(source.Query(written), made.IsSorted()), expected) << written;
      ++figures["same"];
      const std::string own = pane.SQLStatement();
      EXPECT_EQ(parse(pane, syntax, own), "");
      EXPECT_EQ(pane.SQLStatement(), own) << "read once more, it is another";
    }
  }
  EXPECT_GT(figures["same"], count * 2) << "too few to show much";
  for (const auto& [what, number] : figures) std::cout << number << " " << what << "\n";
}

// ZRQRYBLD_CONDITIONS=3000 test_flow --gtest_filter=*GridAndTree goes on.
TEST(TypedByChance, ConditionsMeanTheSameInGridAndTree) {
  const char* const wished = std::getenv("ZRQRYBLD_CONDITIONS");
  std::string script;
  for (const std::string& line : test::ConditionTables("")) script += line + ";";
  const test::DatabaseFile file(script);
  const test::Connection source(file.Path());
  test::HeadlessDesigner designer;
  designer.Hub().Connect("Provider=SQLite;Data Source=" + file.Path());
  const test::QueryTarget target{.syntax = SQLSyntaxSQLite,
                                 .run = [&](const std::string& sql) { return Lines(source.Query(sql), false); }};
  std::cout << test::TryConditions(designer.Hub(), target, wished ? static_cast<unsigned>(std::atoi(wished)) : 150)
            << "\n";
}

}  // namespace
}  // namespace zrqrybld
