#include "zrqrybld/platform/connection_policy.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <unordered_set>
#include <vector>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_platform.h"
#include "zrqrybld/platform/connection_string.h"

namespace zrqrybld {
namespace {

// Longer ones are no connection strings; drivers take 32,000 characters at most.
constexpr std::size_t kLongest = 32'000;

// A key in the form in which keys are compared: small letters and figures only. No blank, line or letter case that one
// driver passes over gets a key by.
using PlainKey = std::string;

PlainKey Plain(std::string_view key) {
  PlainKey plain;
  for (const char c : FoldCase(key)) {
    if (IsWordByte(c) && c != '_') plain += c;
  }
  return plain;
}

struct Harm {
  std::string_view key;
  TextId does;
};

constexpr TextId kRuns = text::KeyRunsStatements;
constexpr TextId kLoads = text::KeyLoadsLibrary;
constexpr TextId kFiles = text::KeyUsesFile;
constexpr TextId kProgram = text::KeyStartsProgram;

constexpr Harm kHarms[] = {
    // Statements, under the names that drivers give them; "A6" is PostgreSQL's short form.
    {"a6", kRuns},
    {"afterconnectsql", kRuns},
    {"connectionsettings", kRuns},
    {"connectsql", kRuns},
    {"connsettings", kRuns},
    {"initcommand", kRuns},
    {"initialsql", kRuns},
    {"initializationstring", kRuns},
    {"initsql", kRuns},
    {"initstatement", kRuns},
    {"initstmt", kRuns},
    {"initstring", kRuns},
    {"journalmode", kRuns},
    {"loginsql", kRuns},
    {"sqlinit", kRuns},
    {"stmt", kRuns},
    {"syncpragma", kRuns},
    // What is handed on to a library below the driver, which has keys of its own.
    {"conninfo", kRuns},
    {"pgoptions", kRuns},
    {"pqopt", kRuns},
    // Libraries.
    {"authenticationplugin", kLoads},
    {"columnencryption", kLoads},
    {"defaultauth", kLoads},
    {"driverunicodetranslation", kLoads},
    {"extension", kLoads},
    {"extensions", kLoads},
    {"keystorelocation", kLoads},
    {"keystoreproviderlibrary", kLoads},
    {"loadext", kLoads},
    {"loadextension", kLoads},
    {"plugin", kLoads},
    {"plugindir", kLoads},
    {"pluginlib", kLoads},
    {"plugins", kLoads},
    {"sslengine", kLoads},
    {"translationdll", kLoads},
    {"translationname", kLoads},
    {"translationoption", kLoads},
    // Files.
    {"attachdbfilename", kFiles},
    {"commlog", kFiles},
    {"configfile", kFiles},
    {"debug", kFiles},
    {"defaultextrafile", kFiles},
    {"defaultfile", kFiles},
    {"defaultsfile", kFiles},
    {"filedsn", kFiles},
    {"initfile", kFiles},
    {"localinfile", kFiles},
    {"logdir", kFiles},
    {"logfile", kFiles},
    {"optionfile", kFiles},
    {"optionsfile", kFiles},
    {"passfile", kFiles},
    {"querylogfile", kFiles},
    {"readdefaultgroup", kFiles},
    {"savefile", kFiles},
    {"statslogfile", kFiles},
    {"trace", kFiles},
    {"tracefile", kFiles},
    {"usemycnf", kFiles},
    // Programs.
    {"argv0", kProgram},
    {"envs", kProgram},
    {"program", kProgram},
};

// Keys of drivers that only say where the source is, who asks, and how values are told.
constexpr std::string_view kHarmless[] = {
    // of the layer above the driver
    "provider", "datasource", "extendedproperties", "initialcatalog", "mode", "persistsecurityinfo", "userid",
    // common
    "driver", "dsn", "server", "servername", "host", "hostname", "address", "addr", "port", "database", "db", "dbname",
    "dbq", "uid", "user", "username", "pwd", "password", "passwd", "description", "readonly", "charset", "timeout",
    "encoding", "language", "app", "applicationname", "wsid", "protocol", "socket", "network", "schema", "logintimeout",
    "connecttimeout", "connectiontimeout", "querytimeout", "conntimeout", "readtimeout", "writetimeout",
    // SQLite
    "nocreat", "stepapi", "notxn", "shortnames", "longnames", "nowchar", "fksupport", "oemcp", "bigint", "jdconv",
    // PostgreSQL
    "sslmode", "boolsaschar", "byteaaslongvarbinary", "fakeoidindex", "fetch", "fetchrefcursors", "ignoretimeout",
    "keepalivetime", "keepaliveinterval", "lfconversion", "lowercaseidentifier", "maxlongvarcharsize", "maxvarcharsize",
    "numericas", "optionalerrors", "parse", "rowversioning", "showoidcolumn", "showsystemtables", "textaslongvarchar",
    "trueisminus1", "uniqueindex", "unknownsaslongvarchar", "unknownsizes", "updatablecursors", "usedeclarefetch",
    "useserversideprepare",
    // MariaDB and MySQL
    "autoreconnect", "forcetls", "forwardonly", "interactive", "noprompt", "option", "options", "schemanoerror",
    "sslverify", "tcpip", "tlsversion",
    // SQL Server
    "applicationintent", "clientcharset", "encrypt", "hostnameincertificate", "marsconnection", "multisubnetfailover",
    "tdsversion", "trustedconnection", "trustservercertificate",
    // Oracle's places: (DESCRIPTION=(ADDRESS=(PROTOCOL=TCP)...)
    "addresslist", "connectdata", "instancename", "servicename", "sid",
    // Text files
    "fil", "driverid"};

// Keys that send the password of a configured data source somewhere else, or in the open.
constexpr std::string_view kLeadsElsewhere[] = {"server",
                                                "servername",
                                                "host",
                                                "hostname",
                                                "address",
                                                "addr",
                                                "port",
                                                "socket",
                                                "tcpip",
                                                "network",
                                                "protocol",
                                                "addresslist",
                                                "dbq",
                                                "sslmode",
                                                "encrypt",
                                                "forcetls",
                                                "sslverify",
                                                "tlsversion",
                                                "hostnameincertificate",
                                                "trustservercertificate"};

// In MySQL's and MariaDB's `OPTION`: read the options of a file, several statements at once, write a log.
constexpr std::uint64_t kHarmfulOptionBits = 65536u | 67108864u | 524288u;

bool Holds(std::span<const std::string_view> keys, std::string_view key) {
  return std::ranges::find(keys, key) != keys.end();
}

// What ends a value in some driver's reading, and what may stand before a key in one.
constexpr bool EndsValue(char c) {
  return std::string_view(";{}\"'\r\n").find(c) != std::string_view::npos || c == '\0';
}
constexpr bool EndsKey(char c) { return EndsValue(c) || c == '=' || c == '(' || c == ')'; }

// A key and its value, as some driver may read them.
struct Reading {
  PlainKey key;
  std::string value;
};

// Everything in the text that stands before a "=", whatever quotes and braces are around it: drivers do not agree on
// them, so a value that holds `;Key=` may be another key to one of them.
std::vector<Reading> AllReadings(std::string_view text) {
  std::vector<Reading> readings;
  for (std::size_t equals = text.find('='); equals != std::string_view::npos; equals = text.find('=', equals + 1)) {
    std::size_t start = equals;
    while (start > 0 && !EndsKey(text[start - 1])) --start;
    PlainKey key = Plain(text.substr(start, equals - start));
    if (key.empty()) continue;
    std::size_t from = equals + 1;
    while (from < text.size() &&
           (IsWhite(text[from]) || text[from] == '{' || text[from] == '"' || text[from] == '\'')) {
      ++from;
    }
    std::size_t end = from;
    while (end < text.size() && !EndsValue(text[end])) ++end;
    readings.push_back({std::move(key), std::string(TrimWhite(text.substr(from, end - from)))});
  }
  return readings;
}

// The same for keys without a value, which count as switched on for some drivers, and for our own reading.
void AppendOwnReading(const ConnectionString& parsed, std::vector<Reading>& readings) {
  for (const auto& [key, value] : parsed.Parts()) readings.push_back({Plain(key), value});
}

bool IsConfigured(std::string_view driver, std::span<const std::string> drivers) {
  const bool isPath = driver.find_first_of("/\\") != std::string_view::npos;
  return !isPath && std::ranges::any_of(drivers, [&](const std::string& name) { return EqualsNoCase(name, driver); });
}

bool HasHarmfulOption(std::string_view value) {
  const std::optional<double> number = ParseNumber(value);
  return !number || !(*number >= 0 && *number < 4294967296.0) ||
         (static_cast<std::uint64_t>(*number) & kHarmfulOptionBits) != 0;
}

std::optional<TextId> HarmOf(const Reading& reading) {
  const bool isOption = reading.key == "option" || reading.key == "options";
  if (isOption && HasHarmfulOption(reading.value)) return kRuns;
  const auto* harm = std::ranges::find(kHarms, reading.key, &Harm::key);
  return harm == std::end(kHarms) ? std::nullopt : std::optional(harm->does);
}

// Whether a driver is to be given the string; otherwise a provider of the application reads keys of its own.
bool IsForDriver(const std::vector<Reading>& readings) {
  return std::ranges::any_of(readings, [](const Reading& reading) {
    return reading.key == "driver" || reading.key == "dsn" || reading.key == "filedsn" ||
           (reading.key == "provider" && EqualsNoCase(reading.value, "MSDASQL"));
  });
}

// Whether the string names a data source of the person, in the words of the driver or of the layer above it.
bool NamesDataSource(const std::vector<Reading>& readings) {
  return std::ranges::any_of(
      readings, [](const Reading& reading) { return reading.key == "dsn" || reading.key == "datasource"; });
}

std::string_view Shown(std::string_view key) { return FirstCharacters(key, 40); }

// Why a file may not hold the string for a driver; nothing when it may.
Phrase RefusalOfFile(const ConnectionString& parsed, const std::vector<Reading>& readings) {
  const bool dataSource = NamesDataSource(readings);
  for (const Reading& reading : readings) {
    const bool secret = ConnectionString::IsSecretKey(reading.key);
    if (!secret && !Holds(kHarmless, reading.key)) {
      return {text::KeyUnknown, Shown(reading.key)};
    }
    if (dataSource && Holds(kLeadsElsewhere, reading.key)) {
      return {text::KeyLeadsElsewhere, Shown(reading.key)};
    }
  }
  std::unordered_set<PlainKey> keys;
  for (const auto& [key, value] : parsed.Parts()) {
    if (!keys.insert(Plain(key)).second) return {text::KeyGivenTwice, Shown(Plain(key))};
  }
  return {};
}

}  // namespace

ConnectionJudgement JudgeConnection(std::string_view connectionString, ConnectionOrigin origin,
                                    std::span<const std::string> drivers) {
  if (origin == ConnectionOrigin::Program) return {};
  if (connectionString.size() > kLongest) {
    return {ConnectionVerdict::Refuse, text::StringTooLong};
  }
  const ConnectionString parsed(connectionString);
  std::vector<Reading> readings = AllReadings(connectionString);
  AppendOwnReading(parsed, readings);
  for (const Reading& reading : readings) {
    if (reading.key == "driver" && !IsConfigured(reading.value, drivers)) {
      return {ConnectionVerdict::Refuse, text::DriverNotConfigured};
    }
  }
  for (const Reading& reading : readings) {
    const std::optional<TextId> harm = HarmOf(reading);
    if (!harm) continue;
    const bool fromFile = origin == ConnectionOrigin::File;
    return {fromFile ? ConnectionVerdict::Refuse : ConnectionVerdict::Warn, Phrase(*harm, Shown(reading.key))};
  }
  if (origin == ConnectionOrigin::File && IsForDriver(readings)) {
    Phrase refusal = RefusalOfFile(parsed, readings);
    if (!refusal.Empty()) return {ConnectionVerdict::Refuse, std::move(refusal)};
  }
  return {};
}

}  // namespace zrqrybld
