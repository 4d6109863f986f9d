#include "adapters/run/source_mode.h"

#include <array>
#include <span>
#include <string>
#include <utility>

#include "base/text.h"

namespace zrqrybld {
namespace {

constexpr Reading kReadings[] = {
    {.family = SourceFamily::Sqlite, .variables = true, .brackets = true, .backticks = true},
    {.family = SourceFamily::PostgreSql,
     .prefixedLiterals = true,
     .literalsContinue = true,
     .returnEndsComment = true,
     .commentsNest = true,
     .dollarLiterals = true},
    {.family = SourceFamily::MariaDb,
     .hashComments = true,
     .blankAfterDashes = true,
     .commentsHoldCode = true,
     .backticks = true},
    {.family = SourceFamily::SqlServer,
     .commentsNest = true,
     .brackets = true,
     .bracketsDouble = true,
     .statementsWithoutSign = true},
    {.family = SourceFamily::Oracle, .freeLiterals = true},
    {.family = SourceFamily::Access, .brackets = true, .backticks = true},
};

std::span<const bool> Choices(const std::optional<bool>& known) {
  static constexpr std::array kBoth = {false, true};
  return known ? std::span(kBoth).subspan(*known ? 1 : 0, 1) : std::span(kBoth);
}

bool HasWord(std::string_view list, std::string_view word) {
  for (const std::string_view each : Split(list, ",")) {
    if (EqualsNoCase(Trim(each), word)) return true;
  }
  return false;
}

// The reading in every mode that the session may be in.
void AddModes(Reading reading, const SourceMode& mode, std::vector<Reading>& readings) {
  for (const bool backslashes : Choices(mode.backslashes)) {
    reading.backslashes = backslashes;
    if (reading.family == SourceFamily::PostgreSql) {
      readings.push_back(reading);
      continue;
    }
    for (const bool quotedNames : Choices(mode.quotedNames)) {
      for (const bool brackets : Choices(mode.brackets)) {
        reading.backslashesInQuotes = backslashes && !quotedNames;
        reading.brackets = brackets;
        readings.push_back(reading);
      }
    }
  }
}

}  // namespace

SourceFamily FamilyOf(std::string_view sourceName) {
  constexpr std::pair<std::string_view, SourceFamily> kNames[] = {
      {"sqlite", SourceFamily::Sqlite}, {"postgres", SourceFamily::PostgreSql},  {"mariadb", SourceFamily::MariaDb},
      {"mysql", SourceFamily::MariaDb}, {"sql server", SourceFamily::SqlServer}, {"oracle", SourceFamily::Oracle},
      {"access", SourceFamily::Access}};
  for (const auto& [name, family] : kNames) {
    if (FindNoCase(sourceName, name) != std::string::npos) return family;
  }
  return SourceFamily::Other;
}

SourceMode ModeOf(std::string_view sourceName, std::optional<std::string_view> told) {
  SourceMode mode;
  mode.family = FamilyOf(sourceName);
  if (!told) return mode;
  if (mode.family == SourceFamily::PostgreSql) {
    const bool on = EqualsNoCase(*told, "on");
    if (on || EqualsNoCase(*told, "off")) mode.backslashes = !on;
  } else if (mode.family == SourceFamily::MariaDb) {
    mode.backslashes = !HasWord(*told, "NO_BACKSLASH_ESCAPES");
    mode.quotedNames = HasWord(*told, "ANSI_QUOTES");
    mode.brackets = HasWord(*told, "MSSQL");
  }
  return mode;
}

std::vector<Reading> ReadingsOf(const SourceMode& mode) {
  std::vector<Reading> readings;
  for (const Reading& reading : kReadings) {
    if (mode.family != SourceFamily::Other && mode.family != reading.family) continue;
    const bool hasModes = reading.family == SourceFamily::PostgreSql || reading.family == SourceFamily::MariaDb;
    if (hasModes) {
      AddModes(reading, mode, readings);
    } else {
      readings.push_back(reading);
    }
  }
  return readings;
}

}  // namespace zrqrybld
