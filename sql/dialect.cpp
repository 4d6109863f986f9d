#include "sql/dialect.h"

#include <algorithm>

#include "base/text.h"

namespace zrqrybld {
namespace {

constexpr std::array<std::string_view, 4> kJoinWords = {"INNER ", "RIGHT ", "LEFT ", "FULL OUTER "};
constexpr std::array<std::string_view, 4> kEquals = {" = ", " = ", " = ", " = "};
constexpr std::array<std::string_view, 4> kNothing = {"", "", "", ""};

constexpr std::string_view kTopWords[] = {"TOP", "PERCENT"};
constexpr std::string_view kOracleWords[] = {"ROWNUM"};
constexpr std::string_view kOpenSqlWords[] = {"UP", "TO", "ROWS"};

constexpr Dialect kDialects[] = {
    {
        .syntax = SQLSyntaxGeneric,
        .name = "Generic",
        .joins = Dialect::Joins::Conditions,
        .fromParentheses = Dialect::FromParentheses::None,
        .joinWords = kNothing,
        .comparison = {" = ", " *= ", " =* ", " = "},
        .afterCondition = kNothing,
        .hasFullJoin = false,
        .limit = Dialect::Limit::Head,
        .limitBefore = "TOP ",
        .limitAfter = " ",
        .limitTakesPercent = true,
        .selectSeparator = ", ",
        .fromSeparator = ",",
        .open = "(",
        .close = ")",
        .tableAlias = " AS ",
        .words = kTopWords,
    },
    {
        .syntax = SQLSyntaxMSSQL,
        .name = "MSSQL",
        .joins = Dialect::Joins::Clauses,
        .fromParentheses = Dialect::FromParentheses::None,
        .joinWords = kJoinWords,
        .comparison = kEquals,
        .afterCondition = kNothing,
        .hasFullJoin = true,
        .limit = Dialect::Limit::Head,
        .limitBefore = "TOP ",
        .limitAfter = " ",
        .limitTakesPercent = true,
        .selectSeparator = ", ",
        .fromSeparator = ", ",
        .open = "(",
        .close = ")",
        .tableAlias = " AS ",
        .yes = "1",
        .no = "0",
        .words = kTopWords,
    },
    {
        .syntax = SQLSyntaxOracle,
        .name = "Oracle",
        .joins = Dialect::Joins::Conditions,
        .fromParentheses = Dialect::FromParentheses::None,
        .joinWords = kNothing,
        // The mark stands on the side that may be missing: behind the other table's field, or behind this one's.
        .comparison = {" = ", " = ", " (+) = ", " = "},
        .afterCondition = {"", " (+)", "", ""},
        .hasFullJoin = false,
        .limit = Dialect::Limit::Condition,
        .limitBefore = "ROWNUM <= ",
        .limitAfter = "",
        .limitTakesPercent = false,
        .selectSeparator = ", ",
        .fromSeparator = ",",
        .open = "(",
        .close = ")",
        .tableAlias = " ",
        .yes = "1",
        .no = "0",
        .words = kOracleWords,
    },
    {
        .syntax = SQLSyntaxAccess,
        .name = "Access",
        .joins = Dialect::Joins::Clauses,
        .fromParentheses = Dialect::FromParentheses::Nested,
        .joinWords = kJoinWords,
        .comparison = kEquals,
        .afterCondition = kNothing,
        .hasFullJoin = true,
        .limit = Dialect::Limit::Head,
        .limitBefore = "TOP ",
        .limitAfter = " ",
        .limitTakesPercent = true,
        .selectSeparator = ", ",
        .fromSeparator = ", ",
        .open = "(",
        .close = ")",
        .tableAlias = " AS ",
        .dateQuote = "#",
        .doubleQuotesAreTexts = true,
        .words = kTopWords,
    },
    {
        .syntax = SQLSyntaxOpenSQL,
        .name = "OpenSQL",
        .joins = Dialect::Joins::Clauses,
        .fromParentheses = Dialect::FromParentheses::Whole,
        .joinWords = kJoinWords,
        .comparison = kEquals,
        .afterCondition = kNothing,
        .hasFullJoin = true,
        .limit = Dialect::Limit::From,
        .limitBefore = "UP TO ",
        .limitAfter = " ROWS",
        .limitTakesPercent = false,
        .selectSeparator = " ",
        .fromSeparator = " ",
        .open = "( ",
        .close = " )",
        .tableAlias = " AS ",
        .yes = "'X'",
        .no = "' '",
        .words = kOpenSqlWords,
        .canBeParsed = false,
    },
};

}  // namespace

std::span<const Dialect> AllDialects() { return kDialects; }

const Dialect& DialectFor(SQLSyntaxEnum syntax) {
  const auto* found = std::ranges::find(kDialects, syntax, &Dialect::syntax);
  return found == std::ranges::end(kDialects) ? kDialects[0] : *found;
}

const Dialect* FindDialect(std::string_view name) {
  const auto* found = std::ranges::find_if(kDialects, [name](const Dialect& d) { return EqualsNoCase(d.name, name); });
  return found == std::ranges::end(kDialects) ? nullptr : found;
}

}  // namespace zrqrybld
