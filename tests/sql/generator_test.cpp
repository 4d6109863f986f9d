#include "zrqrybld/sql/generator.h"
#include "zrqrybld/sql/diagnostics.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/data_table.h"
#include "tests/error_of.h"
#include "tests/sql/name_rules.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {
namespace {

// A dialect that only this test knows: the generator must need nothing but its row of data.
constexpr Dialect kSixth = {
    .syntax = static_cast<SQLSyntaxEnum>(99),
    .name = "Sixth",
    .joins = Dialect::Joins::Clauses,
    .fromParentheses = Dialect::FromParentheses::Nested,
    .joinWords = {"", "RIGHT OUTER ", "LEFT OUTER ", "FULL "},
    .comparison = {" == ", " == ", " == ", " == "},
    .afterCondition = {"!", "", "", ""},
    .hasFullJoin = true,
    .limit = {.place = RowLimit::Place::From, .rows = "LIMIT @n;", .percent = "LIMIT @n PERCENT;"},
    .selectSeparator = " & ",
    .fromSeparator = " CROSS",
    .open = "<",
    .close = ">",
    .tableAlias = ": ",
};

std::string Cut(std::string& text, std::string_view separator) {
  const std::size_t at = text.find(separator);
  std::string piece = text.substr(0, at);
  text = at == std::string::npos ? "" : text.substr(at + separator.size());
  return std::string(Trim(piece));
}

// tables: "caption" or "caption=name", several by ", ".   joins: "A.x=B.y:kind:comparison:level", several by ", ", "E1"
// to "E4" for a kind that only asks; what they ask besides stands in asks, several by " / ", "-" for nothing. rows: one
// a line, cells between ";": table (none for an expression; "-" in front: no output), column, alias, sort type, sort
// number, group-by choice, and the criteria cells; "¶" is a blank line.
QuerySnapshot DesignOf(const test::Record& record) {
  const auto text = [&](std::string_view name) { return record.Has(name) ? record[name] : std::string(); };
  QuerySnapshot query;
  query.names = test::RulesOf("brackets");
  query.groupByMode = record.Has("group");
  query.distinct = record.Has("distinct");
  query.top = text("top");
  if (record.Has("skip")) query.skip = std::stoi(record["skip"]);
  for (std::string tables = text("tables"); !tables.empty();) {
    std::string name = Cut(tables, ", ");
    const std::string caption = Cut(name, "=");
    const bool aliased = !name.empty();
    query.tables.push_back({Identifier(caption), SplitName(aliased ? name : caption, query.names), aliased});
  }
  const auto tableAt = [&](const std::string& caption) {
    const auto found = std::ranges::find(query.tables, Identifier(caption), &SnapshotTable::caption);
    return static_cast<std::size_t>(found - query.tables.begin());
  };
  std::string conditions = text("asks");
  for (std::string joins = text("joins"); !joins.empty();) {
    std::string level = Cut(joins, ", ");
    std::string target = Cut(level, ":");
    const std::string kind = Cut(level, ":");
    const std::string comparison = Cut(level, ":");
    const std::string source = Cut(target, "=");
    const auto split = [&](const std::string& end, std::size_t& table, std::optional<Identifier>& column) {
      table = tableAt(end.substr(0, end.rfind('.')));
      if (!end.ends_with('.')) column = Identifier(end.substr(end.rfind('.') + 1));
    };
    SnapshotJoin join;
    split(source, join.source, join.sourceColumn);
    split(target, join.target, join.targetColumn);
    if (kind.starts_with('E')) {
      join.kind = JoinKind::Asking(JoinExistenceAt(kind[1] - '0'));
    } else if (!kind.empty()) {
      join.kind = JoinKind::FromBits(std::stoi(kind));
    }
    if (!comparison.empty()) join.comparison = JoinComparisonAt(std::stoi(comparison));
    if (!level.empty()) join.groupLevel = std::stoi(level);
    if (std::string asked = Cut(conditions, " / "); asked != "-") join.condition = std::move(asked);
    query.joins.push_back(join);
  }
  for (std::string rows = text("rows"); !rows.empty();) {
    std::string cells = Cut(rows, "\r\n");
    std::string table = Cut(cells, ";");
    SnapshotRow row;
    row.output = !table.starts_with('-');
    if (!row.output) table.erase(0, 1);
    if (!table.empty()) row.table = tableAt(table);
    row.column = ReplaceAll(Cut(cells, ";"), "¶", "\r\n\r\n");
    row.alias = Identifier(Cut(cells, ";"));
    const SortWord sort = ReadSort(Cut(cells, ";"));
    row.sort = {sort.direction, ReadSortPlace(Cut(cells, ";")), sort.nulls};
    row.grouping = ReadGrouping(Cut(cells, ";"), nullptr);
    while (!cells.empty()) row.criteria.push_back(Cut(cells, ";"));
    if (row.grouping.name == "Count") row.grouping.syntax = "COUNT(@field)";
    if (row.grouping.name == "Sum Both") row.grouping.syntax = "SUM(@FIELD + @field)";
    query.rows.push_back(row);
  }
  return query;
}

TEST(Generator, WritesEachDesignInItsDialects) {
  for (const test::Record& record : test::ReadRecords("generate.txt")) {
    const QuerySnapshot query = DesignOf(record);
    ExtraConditions extra;
    if (record.Has("and")) extra.andExpression = record["and"];
    if (record.Has("or")) extra.orExpression = record["or"];
    int texts = 0;
    const auto check = [&](const Dialect& dialect) {
      if (!record.Has(dialect.name)) return;
      SCOPED_TRACE(record.place + " " + std::string(dialect.name));
      ++texts;
      const GeneratedSql sql = GenerateSelect(query, dialect, extra);
      EXPECT_EQ(sql.text, record[dialect.name]);
      EXPECT_EQ(sql.cartesian, record.Has("cartesian"));
    };
    for (const Dialect& dialect : AllDialects()) check(dialect);
    check(kSixth);
    EXPECT_GT(texts, 0) << record.place;
  }
}

TEST(Generator, DoublingExpressionsEndInAnErrorNotInAllMemory) {
  QuerySnapshot query;
  query.rows.resize(8);
  for (SnapshotRow& row : query.rows) {
    for (int i = 0; i < 50; ++i) row.column += "@field+";
    row.output = true;
  }
  EXPECT_NE(test::ErrorOf([&] { GenerateSelect(query, AllDialects()[0]); }), 0);
}

TEST(Diagnostics, SayWhatTheStatementCannotSay) {
  for (const test::Record& record : test::ReadRecords("diagnostics.txt")) {
    SCOPED_TRACE(record.place);
    const QuerySnapshot query = DesignOf(record);
    const Dialect& dialect = *FindDialect(record.Has("dialect") ? record["dialect"] : "MSSQL");
    std::string said, cures;
    for (const SQLDiagnostic& diagnostic : Diagnose(query, dialect, GenerateSelect(query, dialect))) {
      said += (said.empty() ? "" : "\r\n") + std::to_string(diagnostic.kind) + " " + diagnostic.object;
      EXPECT_TRUE(diagnostic.text.starts_with(diagnostic.object)) << diagnostic.text;
      if (diagnostic.cure != CureNone) cures += std::to_string(diagnostic.cure) + diagnostic.object + " ";
    }
    EXPECT_EQ(Trim(cures), record.Has("cures") ? record["cures"] : Trim(cures));
    EXPECT_EQ(said.empty() ? "Nothing" : said, record["says"]);
  }
}

TEST(Dialects, AreFoundByNumberAndName) {
  ASSERT_EQ(AllDialects().size(), 11u);
  for (std::size_t i = 0; i < AllDialects().size(); ++i) {
    const Dialect& dialect = AllDialects()[i];
    EXPECT_EQ(static_cast<std::size_t>(dialect.syntax), i);
    EXPECT_EQ(&DialectFor(dialect.syntax), &dialect);
    EXPECT_EQ(FindDialect(UpperAscii(dialect.name)), &dialect);
    EXPECT_TRUE(std::ranges::is_sorted(dialect.words));
    // Where joins are clauses each kind has its word; where they are conditions one side carries a mark.
    const bool clauses = dialect.joins == Dialect::Joins::Clauses;
    EXPECT_TRUE(clauses || !dialect.hasFullJoin);
    EXPECT_EQ(clauses, !dialect.joinWords[JoinAllOfBoth].empty());
    const auto marked = [&](JoinTypeEnum type) {
      return std::string(dialect.comparison[type]) + std::string(dialect.afterCondition[type]);
    };
    EXPECT_EQ(clauses, marked(JoinAllOfThis) == marked(JoinAllOfEarlier));
  }
  EXPECT_EQ(&DialectFor(static_cast<SQLSyntaxEnum>(99)), &AllDialects()[0]);
  EXPECT_EQ(FindDialect("mysql 8"), nullptr);
}

TEST(Dialects, AreTheSourcesOwn) {
  struct Case {
    const char* name;
    const char* version;
    const char* dialect;  // "" where the name is not known
  };
  constexpr Case kCases[] = {{"PostgreSQL", "15.3", "PostgreSQL"},
                             {"MariaDB", "10.11.6-MariaDB", "MySQL"},
                             {"MySQL", "", "MySQL"},
                             {"SQLite", "3.40.1", "SQLite"},
                             {"Microsoft SQL Server", "10.50.1600", "MSSQL"},
                             {"Microsoft SQL Server", "16.00.1000", "SQLServer"},
                             {"Oracle", "11.02.0040", "Oracle"},
                             {"Oracle", "19.00.0000", "Oracle12"},
                             {"ACCESS", "04.00.0000", "Access"},
                             {"CockroachDB", "23", "PostgreSQL"},
                             {"DB2/LINUXX8664", "11.05", "ANSI"},
                             {"Nowhere", "1", ""}};
  for (const Case& c : kCases) {
    const Dialect* dialect = DialectOfSource(c.name, c.version);
    EXPECT_EQ(dialect ? dialect->name : "", c.dialect) << c.name << " " << c.version;
  }
}

}  // namespace
}  // namespace zrqrybld
