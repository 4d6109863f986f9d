#include "platform/text_reading.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"

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
constexpr TextReading kOracle{.delimitedLiterals = true};
constexpr TextReading kAccess{
    .doubleQuotesAreTexts = true, .hashDates = true, .brackets = true, .bracketsEndAtFirst = true, .backticks = true};

constexpr TextReading With(TextReading reading, bool TextReading::*trait, bool holds) {
  reading.*trait = holds;
  return reading;
}

constexpr TextReading kKnown[] = {
    kSqlite,
    kPostgreSql,
    With(kPostgreSql, &TextReading::backslashEscapes, true),
    kMariaDb,
    With(kMariaDb, &TextReading::backslashEscapes, false),
    With(kMariaDb, &TextReading::doubleQuotesAreTexts, false),
    kSqlServer,
    With(kSqlServer, &TextReading::doubleQuotesAreTexts, true),
    kOracle,
    kAccess,
};

struct Server {
  std::string_view word;  // within its name
  TextReading reading;
};
constexpr Server kServers[] = {{"sqlite", kSqlite},           {"postgresql", kPostgreSql}, {"mariadb", kMariaDb},
                               {"mysql", kMariaDb},           {"sql server", kSqlServer},  {"oracle", kOracle},
                               {"microsoft access", kAccess}, {"ms jet", kAccess}};

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

std::optional<TextReading> UsualReading(std::string_view sourceName) {
  for (const Server& server : kServers) {
    if (FindNoCase(sourceName, server.word) != std::string_view::npos) return server.reading;
  }
  return std::nullopt;
}

std::span<const TextReading> KnownReadings() { return kKnown; }

}  // namespace zrqrybld
