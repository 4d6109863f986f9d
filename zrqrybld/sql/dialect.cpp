#include "zrqrybld/sql/dialect.h"

#include <algorithm>
#include <iterator>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/dialect_words.h"

namespace zrqrybld {
namespace {

constexpr std::array<std::string_view, 4> kNoWords = {"", "", "", ""};

constexpr std::string_view kTopWords[] = {"PERCENT", "TOP"};
constexpr std::string_view kOracleWords[] = {"ROWNUM"};
constexpr std::string_view kOpenSqlWords[] = {"ROWS", "TO", "UP"};

constexpr RowLimit kTop{.place = RowLimit::Place::Head, .rows = "TOP @n ", .percent = "TOP @n PERCENT "};
constexpr RowLimit kFetch{.place = RowLimit::Place::End,
                          .rows = "FETCH FIRST @n ROWS ONLY",
                          .percent = "FETCH FIRST @n PERCENT ROWS ONLY",
                          .offset = "OFFSET @m ROWS",
                          .rowsAndOffset = "OFFSET @m ROWS FETCH NEXT @n ROWS ONLY"};
constexpr RowLimit Limit(std::string_view offset) {
  return {.place = RowLimit::Place::End,
          .rows = "LIMIT @n",
          .percent = {},
          .offset = offset,
          .rowsAndOffset = "LIMIT @n OFFSET @m",
          .takesPercent = false};
}

// What most dialects write; each row says what is different.
constexpr Dialect kBase{
    .syntax = SQLSyntaxMSSQL,
    .name = {},
    .joins = Dialect::Joins::Clauses,
    .fromParentheses = Dialect::FromParentheses::None,
    .joinWords = {"INNER ", "RIGHT ", "LEFT ", "FULL OUTER "},
    .comparison = {" = ", " = ", " = ", " = "},
    .afterCondition = kNoWords,
    .hasFullJoin = true,
    .limit = kTop,
    .selectSeparator = ", ",
    .fromSeparator = ", ",
    .open = "(",
    .close = ")",
    .tableAlias = " AS ",
    .words = kTopWords,
};

constexpr Dialect Generic() {
  Dialect d = kBase;
  d.syntax = SQLSyntaxGeneric;
  d.name = "Generic";
  d.parameterSigns = "?";
  d.joins = Dialect::Joins::Conditions;
  d.joinWords = kNoWords;
  d.comparison = {" = ", " *= ", " =* ", " = "};
  d.hasFullJoin = false;
  d.hasJoinGroups = false;
  d.fromSeparator = ",";
  d.queries.namesColumns = true;
  return d;
}

constexpr Dialect MsSql() {
  Dialect d = kBase;
  d.name = "MSSQL";
  d.missingWords = " FILTER NULLS GROUPS NTH_VALUE RANGE ";
  d.queries.namesColumns = true;
  d.parameterSigns = "@";
  d.concatenation = "+";
  d.values.yes = "1";
  d.values.no = "0";
  d.queries.nestsWith = false;
  d.queries.recursive = {};
  d.queries.countsRows = false;
  return d;
}

constexpr Dialect Oracle() {
  Dialect d = kBase;
  d.syntax = SQLSyntaxOracle;
  d.today = "Oracle12";
  d.name = "Oracle";
  d.missingWords = " FILTER GROUPS ";
  d.parameterSigns = ":";
  d.joins = Dialect::Joins::Conditions;
  d.joinWords = kNoWords;
  // The mark stands on the side that may be missing: behind the other table's field, or behind this one's.
  d.comparison = {" = ", " = ", " (+) = ", " = "};
  d.afterCondition = {"", " (+)", "", ""};
  d.marksColumns = true;
  d.hasFullJoin = false;
  d.hasJoinGroups = false;
  d.limit = {
      .place = RowLimit::Place::Condition, .rows = "ROWNUM <= @n", .percent = "ROWNUM <= @n%", .takesPercent = false};
  d.fromSeparator = ",";
  d.tableAlias = " ";
  d.aliasStandsBare = true;
  d.values.yes = "1";
  d.values.no = "0";
  d.caseBlindLike = "";
  d.concatenation = "||";
  d.words = kOracleWords;
  d.queries = {.recursive = {}, .exceptWord = "MINUS", .countsRows = false, .intersectFirst = false};
  return d;
}

constexpr Dialect Access() {
  Dialect d = kBase;
  d.syntax = SQLSyntaxAccess;
  d.name = "Access";
  d.missingWords = " FILTER WITHIN OVER GROUPING ROLLUP CUBE NULLS GROUPS NTH_VALUE ";
  d.hasComments = false;
  d.concatenation = "&";
  d.fromParentheses = Dialect::FromParentheses::Nested;
  d.hasJoinGroups = false;
  d.leavesParenthesesOpen = true;
  d.values.dateQuote = "#";
  d.doubleQuotesAreTexts = true;
  d.unknownNamesAsk = true;
  d.queries = {
      .hasWith = false, .intersectWord = {}, .exceptWord = {}, .membersInParentheses = false, .mixesKinds = true};
  return d;
}

constexpr Dialect OpenSql() {
  Dialect d = kBase;
  d.syntax = SQLSyntaxOpenSQL;
  d.name = "OpenSQL";
  d.hasComments = false;
  d.fromParentheses = Dialect::FromParentheses::Whole;
  d.hasJoinGroups = false;
  d.limit = {
      .place = RowLimit::Place::From, .rows = "UP TO @n ROWS", .percent = "UP TO @n% ROWS", .takesPercent = false};
  d.selectSeparator = " ";
  d.fromSeparator = " ";
  d.open = "( ";
  d.close = " )";
  d.values.yes = "'X'";
  d.values.no = "' '";
  d.caseBlindLike = "";
  d.words = kOpenSqlWords;
  d.canBeParsed = false;
  d.queries = {.hasWith = false, .intersectWord = {}, .exceptWord = {}, .membersInParentheses = false};
  return d;
}

constexpr Dialect PostgreSql() {
  Dialect d = kBase;
  d.syntax = SQLSyntaxPostgreSQL;
  d.name = "PostgreSQL";
  d.queries.namesColumns = true;
  d.parameterSigns = ":$";
  d.needsTables = false;
  d.ownSigns = " #> #>> #- @> <@ && ? ?| ?& @@ @? ~* !~ !~* ";
  d.hasSubscripts = true;
  d.hasNullsPlace = true;
  d.limit = Limit("OFFSET @m");
  d.values = {.date = "DATE '@'", .time = "TIME '@'", .timestamp = "TIMESTAMP '@'", .yes = "TRUE", .no = "FALSE"};
  d.caseBlindLike = "ILIKE";
  d.namePrefix = d.nameSuffix = "\"";
  d.plainNames = Dialect::PlainNames::Lower;
  d.readsAs = "PostgreSQL";
  d.sameValue = "IS NOT DISTINCT FROM";
  d.concatenation = "||";
  d.sharedColumns = Dialect::SharedColumns::FirstAsListed;
  d.words = dialect_words::PostgreSql();
  d.offersWords = true;
  return d;
}

constexpr Dialect MySql() {
  Dialect d = kBase;
  d.syntax = SQLSyntaxMySQL;
  d.name = "MySQL";
  d.missingWords = " FILTER GROUPING ROLLUP CUBE NULLS GROUPS ";
  d.queries.mixesKinds = true;
  d.parameterSigns = "?";
  d.needsTables = false;
  d.hasFullJoin = false;
  // It has no offset without a limit; this is the largest one.
  d.limit = Limit("LIMIT 18446744073709551615 OFFSET @m");
  d.values = {.date = "DATE '@'", .time = "TIME '@'", .timestamp = "TIMESTAMP '@'", .yes = "TRUE", .no = "FALSE"};
  d.namePrefix = d.nameSuffix = "`";
  d.doubleQuotesAreTexts = true;
  d.readsAs = "MySQL";
  d.sameValue = "<=>";
  d.concatenation = "CONCAT(@Text1, @Text2)";
  d.pipesMayBeOr = true;
  d.misreadsDates = true;
  d.sharedColumns = Dialect::SharedColumns::FirstAsInTable;
  d.words = dialect_words::MySql();
  d.offersWords = true;
  return d;
}

constexpr Dialect Sqlite() {
  Dialect d = kBase;
  d.syntax = SQLSyntaxSQLite;
  d.name = "SQLite";
  d.missingWords = " WITHIN GROUPING ROLLUP CUBE ";
  d.queries.mixesKinds = true;
  d.parameterSigns = "?:@$";
  d.needsTables = false;
  d.hasNullsPlace = true;
  d.limit = Limit("LIMIT -1 OFFSET @m");
  d.values = {.date = "'@'", .time = "'@'", .timestamp = "'@'", .yes = "1", .no = "0"};
  d.namePrefix = d.nameSuffix = "\"";
  d.doubleQuotesAreTexts = true;
  d.readsAs = "SQLite";
  d.sameValue = "IS";
  d.commaJoins = true;
  d.misreadsDates = true;
  d.concatenation = "||";
  d.words = dialect_words::Sqlite();
  d.offersWords = true;
  d.queries.countsRows = false;
  d.queries.intersectFirst = false;
  d.queries.membersInParentheses = false;
  return d;
}

constexpr Dialect SqlServer() {
  Dialect d = kBase;
  d.syntax = SQLSyntaxSQLServer;
  d.name = "SQLServer";
  d.missingWords = " FILTER NULLS GROUPS NTH_VALUE RANGE ";
  d.queries.namesColumns = true;
  d.parameterSigns = "@";
  d.needsTables = false;
  d.limit = {.place = RowLimit::Place::Head,
             .rows = "TOP (@n) ",
             .percent = "TOP (@n) PERCENT ",
             .offset = "OFFSET @m ROWS",
             .rowsAndOffset = "OFFSET @m ROWS FETCH NEXT @n ROWS ONLY",
             .offsetNeedsOrder = true};
  // By the numbers of the styles no language of a session can turn day and month.
  d.values = {.date = "CONVERT(date, '@', 23)",
              .time = "CONVERT(time, '@', 108)",
              .timestamp = "CONVERT(datetime2, '@', 121)",
              .yes = "1",
              .no = "0"};
  d.namePrefix = "[";
  d.nameSuffix = "]";
  d.readsAs = "SQL Server";
  d.concatenation = "+";
  d.words = dialect_words::SqlServer();
  d.offersWords = true;
  d.queries.nestsWith = false;
  d.queries.recursive = {};
  d.queries.countsRows = false;
  return d;
}

constexpr Dialect Ansi() {
  Dialect d = kBase;
  d.syntax = SQLSyntaxANSI;
  d.name = "ANSI";
  d.queries.namesColumns = true;
  d.parameterSigns = "?:";
  d.sameValue = "IS NOT DISTINCT FROM";
  d.hasNullsPlace = true;
  d.limit = kFetch;
  d.values = {.date = "DATE '@'", .time = "TIME '@'", .timestamp = "TIMESTAMP '@'", .yes = "TRUE", .no = "FALSE"};
  d.caseBlindLike = "";
  d.plainNames = Dialect::PlainNames::Upper;
  d.concatenation = "||";
  d.sharedColumns = Dialect::SharedColumns::FirstAsListed;
  d.words = dialect_words::Ansi();
  d.offersWords = true;
  return d;
}

constexpr Dialect Oracle12() {
  Dialect d = Ansi();
  d.syntax = SQLSyntaxOracle12;
  d.name = "Oracle12";
  d.missingWords = " FILTER GROUPS ";
  d.parameterSigns = ":";
  d.needsTables = false;
  d.emptyTable = "DUAL";
  d.tableAlias = " ";
  d.aliasStandsBare = true;
  // It has no times of day alone.
  d.values.time = "TO_DATE('@', 'HH24:MI:SS')";
  d.values.yes = "1";
  d.values.no = "0";
  d.namePrefix = d.nameSuffix = "\"";
  d.readsAs = "Oracle";
  d.sameValue = {};
  d.words = dialect_words::Oracle();
  d.queries = {.recursive = {}, .exceptWord = "MINUS", .countsRows = false, .intersectFirst = false};
  return d;
}

constexpr Dialect kDialects[] = {Generic(), MsSql(),  Oracle(),    Access(),   OpenSql(), PostgreSql(),
                                 MySql(),   Sqlite(), SqlServer(), Oracle12(), Ansi()};

// Who speaks what, by a word in the name that a server gives itself; the first that fits counts. Where the version
// decides, the row counts up to the version before `before`.
struct Speaker {
  std::string_view word;
  SQLSyntaxEnum syntax;
  int before = 0;  // 0 for all versions
};
constexpr Speaker kSpeakers[] = {
    {"sqlite", SQLSyntaxSQLite},
    {"mariadb", SQLSyntaxMySQL},
    {"mysql", SQLSyntaxMySQL},
    {"tidb", SQLSyntaxMySQL},
    {"singlestore", SQLSyntaxMySQL},
    {"postgres", SQLSyntaxPostgreSQL},
    {"cockroach", SQLSyntaxPostgreSQL},
    {"yugabyte", SQLSyntaxPostgreSQL},
    {"redshift", SQLSyntaxPostgreSQL},
    {"greenplum", SQLSyntaxPostgreSQL},
    {"timescale", SQLSyntaxPostgreSQL},
    {"materialize", SQLSyntaxPostgreSQL},
    {"duckdb", SQLSyntaxPostgreSQL},
    {"sql server", SQLSyntaxMSSQL, 11},
    {"sql server", SQLSyntaxSQLServer},
    {"azure sql", SQLSyntaxSQLServer},
    {"oracle", SQLSyntaxOracle, 12},
    {"oracle", SQLSyntaxOracle12},
    {"access", SQLSyntaxAccess},
    {"ms jet", SQLSyntaxAccess},
    {"db2", SQLSyntaxANSI},
    {"firebird", SQLSyntaxANSI},
    {"derby", SQLSyntaxANSI},
    {"hsql", SQLSyntaxANSI},
    {"h2", SQLSyntaxANSI},
    {"trino", SQLSyntaxANSI},
};

}  // namespace

std::span<const Dialect> AllDialects() { return kDialects; }

const Dialect& DialectFor(SQLSyntaxEnum syntax) {
  const Dialect* found = FindDialect(static_cast<std::int32_t>(syntax));
  return found ? *found : kDialects[0];
}

const Dialect* DialectOfSource(std::string_view name, std::string_view version) {
  const double number = LeadingNumber(version);
  const auto* speaker = std::ranges::find_if(kSpeakers, [&](const Speaker& row) {
    return FindNoCase(name, row.word) != std::string_view::npos &&
           (row.before == 0 || (number > 0 && number < row.before));
  });
  // A source that an application makes up may call itself by the dialect.
  return speaker == std::end(kSpeakers) ? FindDialect(name) : &DialectFor(speaker->syntax);
}

const Dialect* FindDialect(std::int32_t number) {
  const auto* found = std::ranges::find_if(kDialects, [number](const Dialect& d) { return d.syntax == number; });
  return found == std::ranges::end(kDialects) ? nullptr : found;
}

const Dialect* FindDialect(std::string_view name) {
  const auto* found = std::ranges::find_if(kDialects, [name](const Dialect& d) { return EqualsNoCase(d.name, name); });
  return found == std::ranges::end(kDialects) ? nullptr : found;
}

}  // namespace zrqrybld
