// The data sources that the designer was connected to, kept in the application's settings. Never a password.
#pragma once

#include <QList>
#include <QString>
#include <string>

#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

struct RecentConnection {
  std::string text;           ///< the connection string without its passwords
  bool asksPassword = false;  ///< it had one, so the user has to be asked again
  std::string dialect;        ///< the name of the dialect that the user chose for it; "" for the source's own
};

/// The last ones, the newest first.
QList<RecentConnection> RecentConnections();

/// Whether the string may hold another secret than a password, such as a token, also in a string within it.
bool MayHoldSecret(const std::string& connectionString);

/// Whether the user has been connected by this string before, as far as is remembered; its secrets do not count.
bool WasUsed(const std::string& connectionString);

/// Counts the string as used as long as the program runs.
void NoteUsed(const std::string& connectionString);

/// Keeps the dialect that the user has chosen for a source that is remembered; "" for the source's own.
void RememberDialect(const std::string& connectionString, const std::string& dialect);
/// The dialect that is kept for the source; "" for none.
std::string RememberedDialect(const std::string& connectionString);

/// Puts a source in front of the others. One that may hold a secret is not kept at all.
void RememberConnection(const std::string& connectionString);

/// The string with a password that the user has typed.
std::string WithPassword(const std::string& connectionString, const std::string& password);

/// What a source is called in the window: its file, its name or its place. Passwords are taken out first, also those
/// inside a value. A general name when the string tells none.
QString SourceName(const std::string& connectionString, const TextSource& texts = EnglishTexts());

/// The same with what tells two sources of one name apart, for a menu: the file's folder, or the server.
QString SourceTitle(const std::string& connectionString, const TextSource& texts = EnglishTexts());

}  // namespace zrqrybld
