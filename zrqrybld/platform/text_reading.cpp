#include "zrqrybld/platform/text_reading.h"

#include <algorithm>
#include <iterator>

#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

struct Trait {
  std::string_view word;
  bool TextReading::*holds;
};
constexpr Trait kTraits[] = {
    {"BACKSLASH_ESCAPES", &TextReading::backslashEscapes},
    {"DOUBLE_QUOTED_TEXTS", &TextReading::doubleQuotesAreTexts},
    {"ESCAPE_LITERALS", &TextReading::escapeLiterals},
    {"UNICODE_LITERALS", &TextReading::unicodeLiterals},
    {"DOLLAR_LITERALS", &TextReading::dollarLiterals},
    {"DELIMITED_LITERALS", &TextReading::delimitedLiterals},
    {"LITERALS_JOIN", &TextReading::literalsJoin},
    {"HASH_COMMENTS", &TextReading::hashComments},
    {"HASH_DATES", &TextReading::hashDates},
    {"BLANK_AFTER_DASHES", &TextReading::blankAfterDashes},
    {"COMMENTS_NEST", &TextReading::commentsNest},
    {"COMMENTS_HOLD_CODE", &TextReading::commentsHoldCode},
    {"RETURN_ENDS_LINE", &TextReading::returnEndsLine},
    {"BRACKETS", &TextReading::brackets},
    {"BRACKETS_END_AT_FIRST", &TextReading::bracketsEndAtFirst},
    {"BACKTICKS", &TextReading::backticks},
};

constexpr TextReading kSqlite{.brackets = true, .bracketsEndAtFirst = true, .backticks = true};
constexpr TextReading kPostgreSql{.escapeLiterals = true,
                                  .unicodeLiterals = true,
                                  .dollarLiterals = true,
                                  .literalsJoin = true,
                                  .commentsNest = true,
                                  .returnEndsLine = true};
constexpr TextReading kMariaDb{.backslashEscapes = true,
                               .doubleQuotesAreTexts = true,
                               .hashComments = true,
                               .blankAfterDashes = true,
                               .commentsHoldCode = true,
                               .backticks = true};
constexpr TextReading kSqlServer{.commentsNest = true, .brackets = true};
constexpr TextReading kSqlServerWithTexts{.doubleQuotesAreTexts = true, .commentsNest = true, .brackets = true};
constexpr TextReading kOracle{.delimitedLiterals = true};
constexpr TextReading kAccess{
    .doubleQuotesAreTexts = true, .hashDates = true, .brackets = true, .bracketsEndAtFirst = true, .backticks = true};

constexpr TextReading PostgreSqlIn(bool standardStrings) {
  TextReading reading = kPostgreSql;
  reading.backslashEscapes = !standardStrings;
  return reading;
}

constexpr TextReading MariaDbIn(bool backslashes, bool quotedNames, bool brackets) {
  TextReading reading = kMariaDb;
  reading.backslashEscapes = backslashes;
  reading.doubleQuotesAreTexts = !quotedNames;
  reading.brackets = reading.bracketsEndAtFirst = brackets;
  return reading;
}

// The usual one of each family first.
constexpr KnownReading kKnown[] = {
    {SourceFamily::Sqlite, kSqlite},
    {SourceFamily::PostgreSql, PostgreSqlIn(true)},
    {SourceFamily::PostgreSql, PostgreSqlIn(false)},
    {SourceFamily::MariaDb, MariaDbIn(true, false, false)},
    {SourceFamily::MariaDb, MariaDbIn(true, false, true)},
    {SourceFamily::MariaDb, MariaDbIn(true, true, false)},
    {SourceFamily::MariaDb, MariaDbIn(true, true, true)},
    {SourceFamily::MariaDb, MariaDbIn(false, false, false)},
    {SourceFamily::MariaDb, MariaDbIn(false, false, true)},
    {SourceFamily::MariaDb, MariaDbIn(false, true, false)},
    {SourceFamily::MariaDb, MariaDbIn(false, true, true)},
    {SourceFamily::SqlServer, kSqlServer},
    {SourceFamily::SqlServer, kSqlServerWithTexts},
    {SourceFamily::Oracle, kOracle},
    {SourceFamily::Access, kAccess},
};

struct Server {
  std::string_view word;  // within its name
  SourceFamily family;
};
constexpr Server kServers[] = {{"sqlite", SourceFamily::Sqlite},        {"postgres", SourceFamily::PostgreSql},
                               {"mariadb", SourceFamily::MariaDb},      {"mysql", SourceFamily::MariaDb},
                               {"sql server", SourceFamily::SqlServer}, {"oracle", SourceFamily::Oracle},
                               {"access", SourceFamily::Access},        {"ms jet", SourceFamily::Access}};

bool HasWord(std::string_view list, std::string_view word) {
  return std::ranges::any_of(Split(list, ","),
                             [word](std::string_view each) { return EqualsNoCase(Trim(each), word); });
}

}  // namespace

std::string WordsOf(const TextReading& reading) {
  std::string words;
  for (const Trait& trait : kTraits) {
    if (reading.*trait.holds) words.append(words.empty() ? "" : " ").append(trait.word);
  }
  return words;
}

std::optional<TextReading> ReadingFromWords(std::string_view words) {
  TextReading reading;
  for (const std::string_view word : Split(words, " ")) {
    if (word.empty()) continue;
    const auto* trait = std::ranges::find_if(kTraits, [word](const Trait& t) { return EqualsNoCase(t.word, word); });
    if (trait == std::end(kTraits)) return std::nullopt;
    reading.*trait->holds = true;
  }
  return reading;
}

SourceFamily FamilyOf(std::string_view sourceName) {
  const auto* server = std::ranges::find_if(
      kServers, [&](const Server& known) { return FindNoCase(sourceName, known.word) != std::string_view::npos; });
  return server == std::end(kServers) ? SourceFamily::Other : server->family;
}

std::optional<TextReading> UsualReading(std::string_view sourceName) {
  const auto* usual = std::ranges::find(kKnown, FamilyOf(sourceName), &KnownReading::family);
  return usual == std::end(kKnown) ? std::nullopt : std::optional(usual->text);
}

std::optional<TextReading> ReadingInMode(SourceFamily family, std::string_view told) {
  if (family == SourceFamily::MariaDb) {
    return MariaDbIn(!HasWord(told, "NO_BACKSLASH_ESCAPES"), HasWord(told, "ANSI_QUOTES"), HasWord(told, "MSSQL"));
  }
  const bool on = EqualsNoCase(told, "on");
  if (family != SourceFamily::PostgreSql || !(on || EqualsNoCase(told, "off"))) return std::nullopt;
  return PostgreSqlIn(on);
}

std::span<const KnownReading> KnownReadings() { return kKnown; }

}  // namespace zrqrybld
