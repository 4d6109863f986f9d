#include "designer/recent_connections.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStringList>
#include <algorithm>
#include <optional>

#include "zrqrybld/adapters/qt/qt_text.h"
#include "zrqrybld/adapters/qt/say.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_designer.h"
#include "zrqrybld/platform/connection_string.h"

namespace zrqrybld {
namespace {

constexpr int kMostRecent = 8;
constexpr auto kGroup = "recentConnections";
constexpr auto kTextKey = "source";
constexpr auto kAsksKey = "asksPassword";
constexpr auto kDialectKey = "dialect";

constexpr int kDeepest = 4;  // strings within strings

// Whether a part, or one of a string within it, is another secret than a password: nobody could be asked for it again.
bool HoldsSecret(const ConnectionString& connectionString, int layers) {
  return std::ranges::any_of(connectionString.Parts(), [layers](const auto& part) {
    const bool named = ConnectionString::IsSecretKey(part.first) && !ConnectionString::IsPasswordKey(part.first);
    const bool nested = layers > 0 && part.second.find('=') != std::string::npos;
    return named || (nested && HoldsSecret(ConnectionString(part.second), layers - 1));
  });
}

std::optional<std::string> FirstOf(const ConnectionString& parts, std::initializer_list<const char*> keys) {
  for (const char* key : keys) {
    std::optional<std::string> value = parts.Get(key);
    if (value && !value->empty()) return value;
  }
  return std::nullopt;
}

// The string with the whole path where a file is named from the current folder, which is another one next time.
ConnectionString WithWholePaths(const ConnectionString& connectionString) {
  std::string text;
  for (const auto& [key, value] : connectionString.Parts()) {
    const bool isFile = EqualsNoCase(key, "Data Source") || EqualsNoCase(key, "Database") || EqualsNoCase(key, "DBQ");
    const QFileInfo file(ToQString(value));
    const bool fromHere = isFile && !value.empty() && file.isRelative() && file.isFile();
    text += key + "=" + ConnectionString::QuoteValue(fromHere ? ToUtf8(file.absoluteFilePath()) : value) + ";";
  }
  return ConnectionString(text);
}

void Store(const QList<RecentConnection>& connections) {
  QSettings settings;
  settings.remove(kGroup);
  settings.beginWriteArray(kGroup);
  for (int i = 0; i < connections.size(); ++i) {
    settings.setArrayIndex(i);
    settings.setValue(kTextKey, ToQString(connections[i].text));
    settings.setValue(kAsksKey, connections[i].asksPassword);
    settings.setValue(kDialectKey, ToQString(connections[i].dialect));
  }
  settings.endArray();
}

}  // namespace

QList<RecentConnection> RecentConnections() {
  QSettings settings;
  QList<RecentConnection> connections;
  const int count = std::min(settings.beginReadArray(kGroup), kMostRecent);
  for (int i = 0; i < count; ++i) {
    settings.setArrayIndex(i);
    RecentConnection connection{ToUtf8(settings.value(kTextKey).toString()), settings.value(kAsksKey).toBool(),
                                ToUtf8(settings.value(kDialectKey).toString())};
    if (!connection.text.empty()) connections.append(std::move(connection));
  }
  return connections;
}

bool MayHoldSecret(const std::string& connectionString) {
  return HoldsSecret(ConnectionString(connectionString), kDeepest);
}

namespace {

// In the form in which the settings keep it.
std::string Kept(const std::string& connectionString) {
  return WithWholePaths(ConnectionString(connectionString)).WithoutPassword();
}

QStringList& UsedNow() {
  static QStringList used;
  return used;
}

}  // namespace

bool WasUsed(const std::string& connectionString) {
  const std::string kept = Kept(connectionString);
  const QList<RecentConnection> recent = RecentConnections();
  return UsedNow().contains(ToQString(kept)) ||
         std::ranges::any_of(recent, [&](const RecentConnection& connection) { return connection.text == kept; });
}

void NoteUsed(const std::string& connectionString) {
  const QString kept = ToQString(Kept(connectionString));
  if (!UsedNow().contains(kept)) UsedNow().append(kept);
}

void RememberDialect(const std::string& connectionString, const std::string& dialect) {
  const std::string kept = Kept(connectionString);
  QList<RecentConnection> connections = RecentConnections();
  for (RecentConnection& connection : connections) {
    if (connection.text == kept) connection.dialect = dialect;
  }
  Store(connections);
}

std::string RememberedDialect(const std::string& connectionString) {
  const std::string kept = Kept(connectionString);
  for (const RecentConnection& connection : RecentConnections()) {
    if (connection.text == kept) return connection.dialect;
  }
  return {};
}

void RememberConnection(const std::string& connectionString) {
  if (MayHoldSecret(connectionString)) return;
  const ConnectionString parsed = WithWholePaths(ConnectionString(connectionString));
  RecentConnection connection{parsed.WithoutPassword(), false, RememberedDialect(connectionString)};
  // Compared in the same writing: that of the parts may be another than the user's.
  std::string whole;
  for (const auto& [key, value] : parsed.Parts()) {
    whole += (whole.empty() ? "" : ";") + key + "=" + ConnectionString::QuoteValue(value);
  }
  connection.asksPassword = connection.text != whole;
  QList<RecentConnection> connections = RecentConnections();
  connections.removeIf([&](const RecentConnection& other) { return other.text == connection.text; });
  connections.prepend(std::move(connection));
  while (connections.size() > kMostRecent) connections.removeLast();
  Store(connections);
}

std::string WithPassword(const std::string& connectionString, const std::string& password) {
  return connectionString + ";PWD=" + ConnectionString::QuoteValue(password);
}

QString SourceName(const std::string& connectionString, const TextSource& texts) {
  const ConnectionString parts(ConnectionString(connectionString).WithoutPassword());
  const auto name = FirstOf(parts, {"Data Source", "DSN", "Database", "DBQ", "Server", "Driver", "Provider"});
  if (!name) return Say(texts, text::ADataSource);
  const QString fileName = QFileInfo(ToQString(*name)).fileName();
  return fileName.isEmpty() ? ToQString(*name) : fileName;
}

QString SourceTitle(const std::string& connectionString, const TextSource& texts) {
  const ConnectionString parts(ConnectionString(connectionString).WithoutPassword());
  const QString name = SourceName(connectionString, texts);
  const auto place = FirstOf(parts, {"Data Source", "Database", "DBQ"});
  const QFileInfo file(ToQString(place.value_or("")));
  if (file.isAbsolute()) return name + "  (" + QDir::toNativeSeparators(file.path()) + ')';
  const auto server = FirstOf(parts, {"Server", "Servername", "Host"});
  return server ? name + "  (" + ToQString(*server) + ')' : name;
}

}  // namespace zrqrybld
