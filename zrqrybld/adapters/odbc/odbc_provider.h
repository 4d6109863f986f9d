// OdbcProvider: every source that has an ODBC driver.
//
// An application registers it with its provider list. A session asks the driver's catalogue functions
// and never runs a statement of its own.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/provider.h"

namespace zrqrybld {

/// Opens `DSN=<name>`, `Driver={<name>};<what the driver wants>`, `FileDSN=<file>`, each also behind
/// `Provider=MSDASQL;`. There `Data Source`, `User ID`, `Password` and `Initial Catalog` are other words for
/// `DSN`, `UID`, `PWD` and `Database`, and `Extended Properties` holds a whole string for the driver.
class ZRQRYBLD_API OdbcProvider final : public Provider {
 public:
  /// "MSDASQL".
  std::string_view Name() const override { return "MSDASQL"; }

  /// Whether the string names a driver or a configured data source.
  bool Accepts(const ConnectionString& connectionString) const override;

  /// Connects without asking anybody, for at most eight seconds, for reading only where the driver knows
  /// such a thing. `user` and `password` take the place of those of the string. A file of SQLite is never created.
  ///
  /// Error 3706, whatever the reason: only the five characters of the SQLSTATE, in brackets before the driver's
  /// own words, mean the same in all drivers. Passwords are "***" in all messages.
  ///
  /// The session's rows:
  /// - A restriction matches exactly, or without regard to case where nothing matches exactly and the driver
  ///   finds it so. No character in it is a pattern. An unknown table gives no rows.
  /// - A table restriction without a schema means one table where the source has schemas: the one that the source
  ///   itself finds by that name, else the one in the first schema that has it.
  /// - Where databases hold tables without schemas between, the database is the schema, and only the connection's
  ///   own is listed when no schema is asked for. There are no catalogs then.
  /// - Tables come by type, then schema and name. Those of the source's own schemas are "SYSTEM TABLE";
  ///   materialised views are "VIEW".
  /// - Columns come by table, then position. Whether one can be written is not told: that flag is never set. Those
  ///   of the whole source cost one question, and the list of the tables where the source has schemas.
  /// - A default that is NULL counts as none.
  /// - Keys without a table restriction cost a question a table, for a driver answers for one table only.
  /// - A foreign key of one column that does not name the parent's is to the parent's primary key. One of several
  ///   is left out then: some drivers number a key's columns by their places in the table, so they cannot be paired.
  /// - Characters that a source would fold are told as invalid in names without quotes.
  /// - Names are cut at 2047 UTF-16 units, texts of defaults at 32767.
  ///
  /// A session asks in a thread of its own, and gives a driver eight seconds for each call. One that takes longer, or
  /// whose connection is cut, is closed from then on (`IsOpen`), and the error is 3706.
  ///
  /// Errors of a session: 3251 when the driver lacks a catalogue function, otherwise the driver's own number, or
  /// 3706 when it has none.
  std::unique_ptr<Session> Open(const ConnectionString& connectionString, std::string_view user,
                                std::string_view password) override;

  /// The data sources of this user and of the system. Error 3706 when the driver manager cannot be used. unixODBC
  /// lists those with names beyond ASCII, but does not find them when they are opened.
  std::vector<DataSourceName> DataSources() override;

  /// The names under which drivers are configured. Error 3706 as above.
  std::vector<std::string> Drivers() override;
};

}  // namespace zrqrybld
