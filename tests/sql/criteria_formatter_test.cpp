#include "zrqrybld/sql/criteria_formatter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/data_table.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/dialect.h"

namespace zrqrybld {
namespace {

bool IsColumn(const std::vector<std::string>& parts) {
  constexpr std::string_view kColumns[] = {"Orders.Total", "Orders.Unit Price", "Orders.Day", "Orders.Paid",
                                           "Customers.Name"};
  return std::ranges::any_of(kColumns, [&](std::string_view column) {
    const std::string name = parts.size() == 1 ? parts[0] : parts[0] + "." + parts[1];
    return EqualsNoCase(parts.size() == 1 ? column.substr(column.find('.') + 1) : column, name);
  });
}

CriteriaContext ContextOf(const std::string& type) {
  TextReading escaping = *UsualReading("PostgreSQL");
  escaping.backslashEscapes = true;
  const std::pair<const char*, CriteriaContext> kContexts[] = {
      {"number", {.dataType = 3}},
      {"text", {.dataType = 200, .prefix = "'", .suffix = "'"}},
      {"ntext", {.dataType = 202, .prefix = "N'", .suffix = "'"}},
      {"dtext", {.dataType = 200, .prefix = "\"", .suffix = "\""}},
      {"long", {.isLong = true}},
      {"ansi", {.dataType = 200, .quotePrefix = "\""}},
      {"ilike", {.dataType = 200, .likeOperator = "ILIKE"}},
      {"similar", {.dataType = 200, .likeOperator = "SIMILAR TO"}},
      {"expr", {}},
      {"date", {.dataType = 133, .prefix = "'", .suffix = "'"}},
      {"stamp", {.dataType = 135}},
      {"time", {.dataType = 134}},
      {"edate", {.dataType = 133, .dateFormatStyle = DateFormatEscapeSequence}},
      {"estamp", {.dataType = 135, .dateFormatStyle = DateFormatEscapeSequence}},
      {"etime", {.dataType = 134, .dateFormatStyle = DateFormatEscapeSequence}},
      {"named", {.dataType = 133, .prefix = "DATE '", .suffix = "'"}},
      {"lite", {.dataType = 133, .prefix = "'", .suffix = "'", .source = FindDialect("SQLite")}},
      {"maria", {.dataType = 135, .source = FindDialect("MySQL")}},
      {"chosen", {.dataType = 135, .dateFormatChosen = true, .source = FindDialect("MySQL")}},
      {"iso", {.dataType = 7, .dateFormat = "yyyy-mm-dd"}},
      {"hash", {.dataType = 7, .prefix = "#", .suffix = "#", .dateFormat = "mm/dd/yyyy"}},
      {"short", {.dataType = 7, .dateFormat = "d/m/yy"}},
      {"clock", {.dataType = 135, .dateFormat = "dd/mm/yyyy hh:mm am/pm"}},
      {"oracle", {.dataType = 135, .prefix = "TO_DATE('", .suffix = "','dd-mmm-yyyy')"}},
      {"later", {.dataType = 135, .prefix = "TO_DATE('", .suffix = "','dd-mmm-yyyy')", .dateFormat = "yyyy-mm-dd"}},
      {"bool", {.dataType = 11}},
      {"guid", {.dataType = 72, .prefix = "'", .suffix = "'"}},
      {"binary", {.dataType = 204, .prefix = "X'", .suffix = "'"}},
      {"bytea", {.dataType = 205, .isLong = true, .prefix = "'\\x", .suffix = "'"}},
      {"figures", {.dataType = 204, .prefix = "0x"}},
      {"bytes", {.dataType = 204}},
      {"tiny", {.dataType = 16}},
      {"count", {.dataType = 200, .aggregate = "COUNT(@field)"}},
      {"mariadb", {.dataType = 200, .quotePrefix = "`", .reading = UsualReading("MariaDB")}},
      {"escapes", {.dataType = 200, .prefix = "'", .suffix = "'", .reading = escaping}},
      {"max", {.dataType = 200, .aggregate = "MAX(@field)"}},
  };
  const auto* entry = std::ranges::find(kContexts, type, [](const auto& pair) { return std::string(pair.first); });
  if (entry == std::end(kContexts)) throw std::runtime_error("no such type: " + type);
  CriteriaContext context = entry->second;
  context.isColumn = IsColumn;
  return context;
}

// Formatted once more nothing changes, with and without knowing the columns; and a condition gives its criterion back.
void ExpectStable(const std::string& cell, CriteriaContext context) {
  EXPECT_EQ(FormatCriterion(cell, context), cell);
  context.isColumn = nullptr;
  EXPECT_EQ(FormatCriterion(cell, context), cell);
  if (cell.find("EXISTS") != std::string::npos) return;
  const std::string condition = FormatCondition("T.[a field]", cell, context);
  const auto isField = [](std::string_view left) { return left == "T.[a field]"; };
  EXPECT_EQ(CriterionOf(condition, isField, context.likeOperator), cell) << condition;
}

TEST(Criteria, AreWrittenAsTheDialectHasThem) {
  for (const test::Row& row : test::ReadRows("literals.txt")) {
    SCOPED_TRACE(row.place);
    CriteriaContext context = ContextOf(row[1]);
    context.dialect = FindDialect(row[0]);
    ASSERT_TRUE(context.dialect);
    const std::string cell = FormatCriterion(row[2], context);
    EXPECT_EQ(cell, row[3]);
    EXPECT_EQ(FormatCriterion(cell, context), cell);
    EXPECT_EQ(FormatCondition("x", cell, context), row[4]);
  }
}

TEST(Criteria, FollowAnotherWordForLike) {
  CriteriaContext context = ContextOf("text");
  context.formerLike = "ALIKE";
  EXPECT_EQ(FormatCriterion("NOT ALIKE 'a%' OR = 'ALIKE'", context), "NOT LIKE 'a%' OR = 'ALIKE'");
  context.formerLike = "LIKE";
  context.likeOperator = "SIMILAR TO";
  EXPECT_EQ(FormatCriterion("LIKE 'a%'", context), "SIMILAR TO 'a%'");
}

TEST(Criteria, TakeTheirNormalForm) {
  for (const test::Row& row : test::ReadRows("criteria.txt")) {
    SCOPED_TRACE(row.place);
    const CriteriaContext context = ContextOf(row[0]);
    try {
      const std::string cell = FormatCriterion(row[1], context);
      EXPECT_EQ(cell, row[2]);
      ExpectStable(cell, context);
    } catch (const Error& error) {
      const std::size_t character = CharacterCount(row[1].substr(0, error.Offset().value())) + 1;
      EXPECT_EQ("error " + std::to_string(character), row[2]) << error.Description();
      EXPECT_TRUE(error.Description().ends_with("(character " + std::to_string(character) + ")"));
      EXPECT_EQ(error.Number(), ErrorParsingText);
    }
  }
}

TEST(Criteria, BecomeConditionsOnTheirField) {
  const struct {
    const char* field;
    const char* cell;
    const char* condition;
  } kCases[] = {
      {"T.A", "(> 5 AND < 10) OR NOT IN (1, 2)", "(T.A > 5 AND T.A < 10) OR T.A NOT IN (1, 2)"},
      {"T.A", "NOT 5 OR NULL", "NOT T.A = 5 OR T.A IS NULL"},
      {"T.A", "EXISTS (SELECT 1) AND 5", "EXISTS (SELECT 1) AND T.A = 5"},
      {"T.A", "  ", ""},
      {"T.A + 1", "5", "T.A + 1 = 5"},
      {"Coalesce(T.A = 1, 0)", "5", "Coalesce(T.A = 1, 0) = 5"},
      {"A OR B", "5 OR 6", "(A OR B) = 5 OR (A OR B) = 6"},
      {"A = B", "5", "(A = B) = 5"},
  };
  const CriteriaContext context = ContextOf("number");
  for (const auto& c : kCases) EXPECT_EQ(FormatCondition(c.field, c.cell, context), c.condition);
  // Names in brackets get the source's quotes, an index keeps its own.
  const CriteriaContext ansi{.dataType = 3, .quotePrefix = "\""};
  EXPECT_EQ(FormatCondition("T.A", "[N] OR [a\"b]]] + f(x[1])", ansi), "T.A = \"N\" OR T.A = \"a\"\"b]\" + f(x[1])");
  EXPECT_THROW(
      FormatCondition(std::string(1 << 20, 'x'),
                      "1 OR 2" + std::string(400, ' ') + ReplaceAll(std::string(70, '#'), "#", " OR 3"), context),
      Error);

  const auto isField = [](std::string_view left) { return left == "T.A"; };
  EXPECT_EQ(CriterionOf("T.A > 5 AND T.B < 6", isField), std::nullopt);
  EXPECT_EQ(CriterionOf("T.A *= T.B", isField), std::nullopt);
  EXPECT_EQ(CriterionOf("T.A", isField), std::nullopt);
  EXPECT_EQ(CriterionOf("5 < T.A", isField), std::nullopt);
  EXPECT_EQ(CriterionOf("NOT (T.A = T.B AND NOT T.A in (select 1))", isField), "NOT (= T.B AND NOT IN (select 1))");
}

// Whatever is put together of such pieces is refused, or takes a form that stays.
TEST(Criteria, KeepTheirFormWhateverTheyAreMadeOf) {
  constexpr std::string_view kPieces[] = {
      "5",          "Smith",    "'a b'",      "O'Brien", "\"x\"", "[y]",         "Orders.Total",
      "2020-01-31", "1/2/2020", "#1/2/2020#", "=",       "<>",    ">",           "<=",
      "LIKE",       "NOT",      "IN",         "BETWEEN", "IS",    "NULL",        "AND",
      "OR",         "(",        ")",          ",",       "f(",    "?PARAM(a)",   "{ d '2020-01-31' }",
      "CASE",       "WHEN",     "END",        "ESCAPE",  "'!'",   "-",           "+",
      "*",          "%",        "--",         "/*",      "*/",    "\r\n",        "?",
      ":a",         "@b",       "N'x'",       "X'1F'",   "True",  "ÄÖ",          "\xC3",
      "EXISTS",     "(SELECT",  "::int",      "10:30",   "12",    "TO_DATE('x')"};
  const char* const kTypes[] = {"number", "text", "ntext", "expr", "date", "stamp",  "time",    "edate",
                                "estamp", "hash", "short", "bool", "guid", "binary", "similar", "oracle"};
  std::mt19937 random(5);
  int formatted = 0;
  for (int i = 0; i < 60000; ++i) {
    std::string text;
    for (std::size_t n = 1 + random() % 7; n > 0; --n) {
      text += kPieces[random() % std::size(kPieces)];
      if (random() % 4 != 0) text += ' ';
    }
    const char* const type = kTypes[random() % std::size(kTypes)];
    SCOPED_TRACE(std::string(type) + ": " + text);
    const CriteriaContext context = ContextOf(type);
    std::string cell;
    try {
      cell = FormatCriterion(text, context);
    } catch (const Error& error) {
      ASSERT_LE(error.Offset().value(), text.size());
      continue;
    }
    ++formatted;
    ExpectStable(cell, context);
    ASSERT_FALSE(HasFailure()) << cell;
  }
  EXPECT_GT(formatted, 10000);
}

}  // namespace
}  // namespace zrqrybld
