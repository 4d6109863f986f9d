#include "zrqrybld/adapters/odbc/driver_source.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <span>
#include <system_error>
#include <utility>
#include <vector>

#include "zrqrybld/adapters/odbc/data_sources.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/file.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_run.h"

namespace zrqrybld::odbc {
namespace {

using Parts = std::vector<std::pair<std::string, std::string>>;

constexpr std::string_view kSourceKeys[] = {"DSN", "Driver", "FileDSN"};
constexpr std::string_view kUserKeys[] = {"UID", "User", "Username", "User ID"};

// What this way of access is told in other words, and what only the layer above the driver understands.
constexpr std::pair<std::string_view, std::string_view> kOtherWords[] = {
    {"Data Source", "DSN"}, {"User ID", "UID"}, {"Password", "PWD"}, {"Initial Catalog", "Database"}};
constexpr std::string_view kNotForTheDriver[] = {"Provider", "Persist Security Info", "Mode", "Extended Properties"};

bool IsOneOf(std::string_view key, std::span<const std::string_view> keys) {
  return std::ranges::any_of(keys, [key](std::string_view other) { return EqualsNoCase(key, other); });
}

std::optional<std::string> Find(const Parts& parts, std::string_view key) {
  const auto part = std::ranges::find_if(parts, [key](const auto& p) { return EqualsNoCase(p.first, key); });
  if (part == parts.end()) return std::nullopt;
  return part->second;
}

void Remove(Parts& parts, std::span<const std::string_view> keys) {
  std::erase_if(parts, [keys](const auto& part) { return IsOneOf(part.first, keys); });
}

// The parts as the driver takes them.
Parts DriverParts(const ConnectionString& connectionString, std::string_view user, std::string_view password) {
  Parts parts;
  const bool throughLayer = connectionString.Get("Provider").has_value();
  for (const auto& [key, value] : connectionString.Parts()) {
    if (!throughLayer) {
      parts.emplace_back(key, value);
      continue;
    }
    if (IsOneOf(key, kNotForTheDriver)) continue;
    const auto* word =
        std::ranges::find_if(kOtherWords, [&name = key](const auto& pair) { return EqualsNoCase(name, pair.first); });
    parts.emplace_back(word != std::end(kOtherWords) ? std::string(word->second) : key, value);
  }
  if (throughLayer) {
    const ConnectionString inner(connectionString.Get("Extended Properties").value_or(""));
    for (const auto& part : inner.Parts()) {
      if (!Find(parts, part.first)) parts.push_back(part);
    }
  }
  if (!user.empty()) {
    Remove(parts, kUserKeys);
    parts.emplace_back("UID", user);
  }
  if (!password.empty()) {
    std::erase_if(parts, [](const auto& part) { return ConnectionString::IsPasswordKey(part.first); });
    parts.emplace_back("PWD", password);
  }
  return parts;
}

// Only what needs braces gets them: not every driver takes them off. Passwords are safer in them, because some
// drivers decode what stands without.
std::string WriteValue(std::string_view key, const std::string& value) {
  const bool isWord = std::ranges::all_of(value, IsWordByte);
  const bool plain =
      value.find(';') == std::string::npos && !value.starts_with('{') && Trim(value).size() == value.size();
  const bool braces = EqualsNoCase(key, "Driver") || (ConnectionString::IsSecretKey(key) ? !isWord : !plain);
  return braces ? "{" + ReplaceAll(value, "}", "}}") + "}" : value;
}

std::string WriteParts(const Parts& parts) {
  std::string text;
  for (const auto& [key, value] : parts) text += key + "=" + WriteValue(key, value) + ";";
  return text;
}

Secrets SecretsOf(const Parts& parts) {
  Secrets secrets;
  for (const auto& [key, value] : parts) {
    if (ConnectionString::IsSecretKey(key)) secrets.Add(value);
  }
  return secrets;
}

void AddIfMissing(Parts& parts, std::string_view key, std::string_view value) {
  if (!Find(parts, key)) parts.emplace_back(key, value);
}

// --- Files of SQLite ---

std::string ReadBeginning(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text(4096, '\0');
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(file.gcount()));
  return text;
}

// Whether the driver's name holds the word, as far as it can be told without connecting.
bool DriverHasName(const Parts& parts, const std::vector<DataSourceName>& sources, std::string_view word) {
  const auto holdsName = [word](const std::string& text) { return FindNoCase(text, word) != std::string::npos; };
  if (const auto driver = Find(parts, "Driver")) return holdsName(*driver);
  if (const auto file = Find(parts, "FileDSN")) return holdsName(ReadBeginning(PathOf(*file)));
  const std::optional<std::string> name = Find(parts, "DSN");
  return name && std::ranges::any_of(sources, [&](const DataSourceName& source) {
           return EqualsNoCase(source.name, *name) && holdsName(source.driver);
         });
}

[[noreturn]] void ThrowCannotOpen(std::string_view file, const Phrase& reason) {
  throw Error(ErrorConnectionFailed, Phrase(text::FileCannotBeOpened, file, reason));
}

// The driver opens any file at once and says little about one that cannot be read.
void CheckFile(const std::string& name) {
  if (name.find(';') != std::string::npos) ThrowCannotOpen(name, text::SemicolonInName);
  std::error_code failure;
  const std::filesystem::path path = PathOf(name);
  const std::filesystem::file_status status = std::filesystem::status(path, failure);
  if (status.type() == std::filesystem::file_type::not_found) ThrowCannotOpen(name, text::NoSuchFile);
  if (failure) ThrowCannotOpen(name, failure.message());
  if (status.type() != std::filesystem::file_type::regular) ThrowCannotOpen(name, text::NoOrdinaryFile);
  errno = 0;
  if (!std::ifstream(path, std::ios::binary)) {
    ThrowCannotOpen(name, errno != 0 ? std::generic_category().message(errno) : Phrase(text::CannotBeRead));
  }
  // The driver would show any other file as a database without tables.
  const std::string beginning = ReadBeginning(path);
  if (!beginning.empty() && !beginning.starts_with("SQLite format 3")) ThrowCannotOpen(name, text::NoDatabase);
}

// The driver makes a file that is missing, unless it is told not to.
void PrepareForSqlite(Parts& parts) {
  constexpr std::string_view kNoCreate[] = {"NoCreat"};
  Remove(parts, kNoCreate);
  parts.emplace_back("NoCreat", "1");
  AddIfMissing(parts, "Timeout", "2000");  // milliseconds; a locked file would hold up a catalogue call for 100 seconds
  if (const auto file = Find(parts, "Database"); file && !file->empty()) CheckFile(*file);
}

// --- Silent servers ---

// Its driver takes no time-out from ODBC. None for reading: when the rows of an answer are cut it ends the process.
void PrepareForMariaDb(Parts& parts) {
  const std::string seconds = std::to_string(kPatienceSeconds);
  AddIfMissing(parts, "CONN_TIMEOUT", seconds);
  AddIfMissing(parts, "WRITE_TIMEOUT", seconds);
}

// --- Rows ---

// What a driver is told when rows are to be read: one statement at a time, and row by row where it can.
struct RowsPart {
  std::string_view key;
  std::string_view value;
};
struct RowsDriver {
  std::array<std::string_view, 2> names;  // one of which stands in the driver's name
  std::array<RowsPart, 5> parts;
};
constexpr RowsDriver kRowsDrivers[] = {
    // A cursor is made by hand: the driver's own would send the statement in one text with others.
    {{"postgre", "psqlodbc"}, {{{"UseDeclareFetch", "0"}, {"UseServerSidePrepare", "1"}}}},
    {{"maria", "maodbc"}, {{{"OPTION", "0"}, {"OPTIONS", "0"}, {"STREAMRS", "1"}, {"FORWARDONLY", "1"}}}},
    {{"mysql", "myodbc"},
     {{{"OPTION", "0"}, {"MULTI_STATEMENTS", "0"}, {"NO_SSPS", "0"}, {"NO_CACHE", "1"}, {"FORWARD_CURSOR", "1"}}}},
    {{"sqlite", "sqlite"}, {{{"StepAPI", "1"}}}},
};

void PrepareForRows(Parts& parts, const std::vector<DataSourceName>& sources) {
  for (const RowsDriver& driver : kRowsDrivers) {
    const bool meant =
        std::ranges::any_of(driver.names, [&](std::string_view name) { return DriverHasName(parts, sources, name); });
    if (!meant) continue;
    for (const auto& [key, value] : driver.parts) {
      if (key.empty()) continue;
      Remove(parts, {&key, 1});
      parts.emplace_back(key, value);
    }
  }
}

}  // namespace

bool NamesSource(const ConnectionString& connectionString) {
  return std::ranges::any_of(kSourceKeys, [&](std::string_view key) { return connectionString.Get(key).has_value(); });
}

DriverSource MakeDriverSource(const ConnectionString& connectionString, std::string_view user,
                              std::string_view password, Purpose purpose) {
  Parts parts = DriverParts(connectionString, user, password);
  const bool namesSource =
      std::ranges::any_of(kSourceKeys, [&](std::string_view key) { return Find(parts, key).has_value(); });
  if (!namesSource) {
    throw Error(ErrorConnectionFailed, text::NoSourceInString);
  }
  Secrets secrets = SecretsOf(parts);
  const std::vector<DataSourceName> sources = ConfiguredSources();
  if (DriverHasName(parts, sources, "sqlite")) PrepareForSqlite(parts);
  if (DriverHasName(parts, sources, "maria")) PrepareForMariaDb(parts);
  if (purpose == Purpose::Rows) PrepareForRows(parts, sources);
  return {WriteParts(parts), std::move(secrets)};
}

}  // namespace zrqrybld::odbc
