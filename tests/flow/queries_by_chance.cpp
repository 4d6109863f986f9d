#include "tests/flow/queries_by_chance.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

#include "tests/flow/random_designs.h"
#include "tests/link_panes.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/queries.h"
#include "zrqrybld/hub/query_builder.h"

namespace zrqrybld::test {
namespace {

struct Table {
  const char* name;
  std::vector<std::string> columns;
};
const Table kTables[] = {{"qt", {"a", "b", "c"}}, {"qu", {"a", "d"}}, {"qv", {"d", "f"}}};

// A source of rows in FROM.
struct Named {
  std::string name;
  std::vector<std::string> columns;
};

class QueryByChance {
 public:
  QueryByChance(const QueryTarget& target, unsigned seed) : target_(target), chance_(seed) {}

  // Every kind of query inside of every other, three deep, and rarely four: those take a server seconds.
  std::string Make() {
    const std::size_t depth = chance_.OneIn(20) ? 4 : 1 + chance_.Below(3);
    return Query(static_cast<int>(depth), 1 + chance_.Below(3), true);
  }

 private:
  std::string One(std::vector<std::string> choices) { return choices[chance_.Below(choices.size())]; }

  // A query with so many columns, called c1, c2 and so on.
  std::string Query(int depth, std::size_t columns, bool isWhole) {
    const std::size_t known = common_.size();
    std::string text;
    if (depth > 0 && chance_.OneIn(3)) text = With(depth);
    const std::size_t members = depth > 0 && chance_.OneIn(3) ? 1 + chance_.Below(3) : 0;
    std::string compound = Select(depth, columns);
    for (std::size_t i = 0; i < members; ++i) {
      if (target_.hasParentheses && i > 0 && chance_.OneIn(3)) compound = "(" + compound + ")";
      compound += One({" UNION ALL ", " UNION ", " INTERSECT ", " EXCEPT "});
      const bool nests = target_.hasParentheses && depth > 1 && chance_.OneIn(3);
      compound += nests ? "(" + Query(depth - 1, columns, false) + ")" : Select(depth, columns);
    }
    text += compound;
    const bool sorts = chance_.OneIn(3) && (isWhole || target_.hasParentheses);
    if (sorts) text += Sorting(columns);
    common_.resize(known);
    return text;
  }

  // By all columns, so that a limit keeps certain rows.
  std::string Sorting(std::size_t columns) {
    std::string text;
    for (std::size_t i = 1; i <= columns; ++i) {
      text +=
          (text.empty() ? " ORDER BY " : ", ") + One({std::to_string(i), "c" + std::to_string(i)}) + One({"", " DESC"});
    }
    return text + (chance_.OneIn(2) ? " LIMIT " + std::to_string(1 + chance_.Below(5)) : "");
  }

  std::string With(int depth) {
    if (chance_.OneIn(4)) return Recursive();
    std::string text;
    for (std::size_t i = 0; i <= chance_.Below(2); ++i) {
      Named named{"w" + std::to_string(++number_), {}};
      const std::size_t columns = 1 + chance_.Below(3);
      const bool renames = chance_.OneIn(4);
      std::string list;
      for (std::size_t column = 1; column <= columns; ++column) {
        named.columns.push_back((renames ? "n" : "c") + std::to_string(column));
        list += (list.empty() ? "" : ", ") + named.columns.back();
      }
      text += (text.empty() ? "WITH " : ", ") + named.name + (renames ? " (" + list + ")" : "") + " AS (" +
              Query(depth - 1, columns, false) + ")";
      common_.push_back(std::move(named));
    }
    return text + " ";
  }

  std::string Recursive() {
    const std::string name = "w" + std::to_string(++number_);
    common_.push_back({name, {"n"}});
    return "WITH RECURSIVE " + name + " (n) AS (SELECT max(t.b) AS one FROM " + target_.prefix +
           "qt AS t UNION ALL SELECT " + name + ".n + 1 AS more FROM " + name + " WHERE " + name + ".n < 6) ";
  }

  std::string Select(int depth, std::size_t columns) {
    std::vector<Named> sources;
    std::string from;
    for (std::size_t i = 0; i <= chance_.Below(3); ++i) {
      Named source{"s" + std::to_string(++number_), {}};
      std::string item, names;
      if (depth > 0 && chance_.OneIn(3)) {
        const std::size_t inner = 1 + chance_.Below(3);
        item = "(" + Query(depth - 1, inner, false) + ")";
        const bool renames = target_.namesColumns && chance_.OneIn(3);
        for (std::size_t column = 1; column <= inner; ++column) {
          source.columns.push_back((renames ? "n" : "c") + std::to_string(column));
          if (renames) names += (names.empty() ? " (" : ", ") + source.columns.back();
        }
        if (renames) names += ")";
      } else if (!common_.empty() && chance_.OneIn(2)) {
        const Named& common = common_[chance_.Below(common_.size())];
        item = common.name;
        source.columns = common.columns;
      } else {
        const Table& table = kTables[chance_.Below(std::size(kTables))];
        item = target_.prefix + table.name;
        source.columns = table.columns;
      }
      item += " AS " + source.name + names;
      sources.push_back(std::move(source));
      if (from.empty()) {
        from = item;
        continue;
      }
      from += One({" JOIN ", " LEFT JOIN "}) + item + " ON " + ColumnOf(sources.back()) + " = " +
              ColumnOf(sources[chance_.Below(sources.size() - 1)]);
      if (chance_.OneIn(8)) from += " AND " + ColumnOf(sources.back()) + " IN (" + List(depth) + ")";
    }
    const auto column = [&] { return ColumnOf(sources[chance_.Below(sources.size())]); };
    std::string text = chance_.OneIn(5) ? "SELECT DISTINCT " : "SELECT ";
    const bool groups = chance_.OneIn(4);
    const std::string key = column();
    for (std::size_t i = 1; i <= columns; ++i) {
      const std::string value = groups             ? One({"count(*)", "max(" + column() + ")", key})
                                : chance_.OneIn(8) ? "(" + Single(column()) + ")"
                                                   : One({column(), column(), column() + " + 1", "7"});
      text += (i == 1 ? "" : ", ") + value + " AS c" + std::to_string(i);
    }
    text += " FROM " + from;
    if (chance_.OneIn(2)) text += " WHERE " + Condition(depth, column(), column());
    if (!groups) return text;
    text += " GROUP BY " + key;
    if (chance_.OneIn(3)) text += " HAVING " + One({"count(*)", "max(" + column() + ")"}) + " >= (" + Single() + ")";
    return text;
  }

  std::string ColumnOf(const Named& source) {
    return source.name + "." + source.columns[chance_.Below(source.columns.size())];
  }

  // A table, or a query of WITH, and a column of it.
  std::pair<std::string, std::string> Inner() {
    if (common_.empty() || chance_.OneIn(2)) return {target_.prefix + "qv", "d"};
    return {common_.back().name, common_.back().columns.front()};
  }

  // One value, by chance one of those that belong to a column of the query around.
  std::string Single(const std::string& outer = {}) {
    const auto [inner, column] = Inner();
    std::string text = "SELECT " + One({"count(*)", "max(i." + column + ")"}) + " FROM " + inner + " AS i";
    if (!outer.empty() && chance_.OneIn(2)) text += " WHERE i." + column + " = " + outer;
    return text;
  }

  // Values of one column.
  std::string List(int depth) {
    if (depth > 1 && chance_.OneIn(3) && target_.hasParentheses) return Query(depth - 1, 1, false);
    const auto [inner, column] = Inner();
    return "SELECT " + column + " FROM " + inner + One({"", " WHERE " + column + " IS NOT NULL"});
  }

  std::string Condition(int depth, const std::string& left, const std::string& right) {
    const auto [inner, column] = Inner();
    switch (chance_.Below(8)) {
      case 0:
        return left + One({" IN (", " NOT IN ("}) + List(depth) + ")";
      case 1:
        return One({"", "NOT "}) + "EXISTS (SELECT 1 FROM " + inner + " AS i WHERE i." + column + " = " + left + ")";
      case 2:
        return left + " IS NOT NULL OR " + right + " = 2";
      case 3:
        return left + One({" < (", " >= ("}) + Single(right) + ")";
      case 4:
        // Asked in what is asked: the innermost names a column of the outermost.
        return left + " IN (SELECT i." + column + " FROM " + inner + " AS i WHERE EXISTS (SELECT 1 FROM " +
               target_.prefix + "qu AS j WHERE j.d = i." + column + " AND j.a <= " + right + "))";
      case 5:
        if (target_.hasAnyAndAll) return left + One({" = ANY (", " <> ALL (", " <= ALL ("}) + List(depth) + ")";
        [[fallthrough]];
      default:
        return left + One({" > 0", " <> 1", " BETWEEN 0 AND 2"});
    }
  }

  const QueryTarget& target_;
  Chance chance_;
  std::vector<Named> common_;
  int number_ = 0;
};

std::string Refusal(qbSQLPane& pane, const std::string& sql) {
  try {
    pane.ParseSQLStatement(sql);
  } catch (const Error& error) {
    pane.QueryBuilder()->SetState(InfoDone);
    return error.Description();
  }
  return {};
}

// Shows the queries of one place, which `open` opens by their numbers, one after the other. How many there are.
unsigned LookInto(qbQuery& main, const std::function<void(std::int32_t number)>& open) {
  for (std::int32_t number = 1;; ++number) {
    try {
      open(number);
    } catch (const Error& error) {
      if (error.Number() == ErrorNoSuchItem) return static_cast<unsigned>(number) - 1;
      throw;
    }
    main.Open();
  }
}

// The queries in the cells of the grid and in the conditions of joins, as people look at them.
unsigned LookIntoCells(qbQueryBuilder& hub) {
  unsigned seen = 0;
  const Ref<qbQuery> main = hub.Queries()->Item(1);
  for (std::int32_t row = 1; row <= hub.GridPane()->RowCount(); ++row) {
    for (std::int32_t column = 1; column <= hub.GridPane()->ColumnCount(); ++column) {
      seen += LookInto(*main, [&](std::int32_t number) { hub.Queries()->OpenInCell(row, column, number); });
    }
  }
  const auto tables = hub.Entities()->Count();
  for (std::int32_t table = 1; table <= tables; ++table) {
    const auto joins = [&] { return hub.Entities()->Item(table)->Relationships(); };
    for (std::int32_t join = 1; join <= joins()->Count(); ++join) {
      seen += LookInto(*main, [&](std::int32_t number) { hub.Queries()->OpenInJoin(joins()->Item(join), number); });
    }
  }
  return seen;
}

std::vector<std::string> Sorted(std::vector<std::string> lines) {
  std::ranges::sort(lines);
  return lines;
}

}  // namespace

std::vector<std::string> QueryTables(const std::string& prefix) {
  std::vector<std::string> script;
  Chance chance(11);
  for (const Table& table : kTables) {
    std::string columns;
    for (const std::string& column : table.columns) columns += (columns.empty() ? "" : ", ") + column + " INTEGER";
    script.push_back("CREATE TABLE " + prefix + table.name + " (" + columns + ")");
    for (int row = 0; row < 6; ++row) {
      std::string values;
      for (std::size_t i = 0; i < table.columns.size(); ++i) {
        values += (values.empty() ? "" : ", ") + (chance.OneIn(5) ? "NULL" : std::to_string(chance.Below(4)));
      }
      script.push_back("INSERT INTO " + prefix + table.name + " VALUES (" + values + ")");
    }
  }
  return script;
}

std::string TryQueries(qbQueryBuilder& hub, const QueryTarget& target, unsigned count, unsigned seed) {
  qbSQLPane& pane = *hub.SQLPane();
  pane.SetSQLSyntax(target.syntax);
  std::map<std::string, unsigned> figures;
  for (unsigned i = 0; i < count; ++i) {
    const std::string statement = QueryByChance(target, seed + i).Make();
    SCOPED_TRACE("seed " + std::to_string(seed + i) + "\n" + statement);
    std::vector<std::string> expected;
    try {
      expected = Sorted(target.run(statement));
    } catch (const std::exception&) {
      ++figures["that the server does not take as it is typed"];  // WITH in parentheses has its limits
      continue;
    }
    const std::string refusal = Refusal(pane, statement);
    if (!refusal.empty()) {
      ADD_FAILURE() << refusal;
      continue;
    }
    const std::string written = pane.SQLStatement();
    try {
      EXPECT_EQ(Sorted(target.run(written)), expected) << written;
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what() << "\n" << written;
      continue;
    }
    ++figures[hub.Queries()->Count() > 1 ? "of several queries" : "of one"];
    EXPECT_EQ(Refusal(pane, written), "") << written;
    EXPECT_EQ(pane.SQLStatement(), written) << "read once more, it is another";
    const Ref<qbQueryBuilder> loaded = qbQueryBuilder::Create();
    LinkPanes(*loaded);
    loaded->SetConnection(hub.Connection());
    loaded->LoadQuery(hub.SaveQueryToText(), true);
    EXPECT_EQ(loaded->SQLPane()->SQLStatement(), written) << "loaded, it is another";
    // Each query can be shown, and nothing changes by that.
    for (const Ref<qbQuery>& query : *hub.Queries()) query->Open();
    hub.Queries()->Item(1)->Open();
    figures["in cells"] += LookIntoCells(hub);
    EXPECT_EQ(pane.SQLStatement(), written) << "looked at, it is another";
    if (i % 8 == 0) {
      hub.Undo();
      hub.Redo();
      EXPECT_EQ(pane.SQLStatement(), written) << "undone and made again, it is another";
    }
  }
  EXPECT_GT(figures["of several queries"], count / 3) << "too few to show much";
  std::string line;
  for (const auto& [what, number] : figures) line += std::to_string(number) + " " + what + "; ";
  return line;
}

}  // namespace zrqrybld::test
