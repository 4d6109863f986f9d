// SqliteProvider: SQLite database files as a data source.
//
// An application registers it with its provider list. A session reads the file's own catalog and
// never writes: the library designs statements, it does not run them.
#pragma once

#include <memory>
#include <string_view>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/provider.h"

namespace zrqrybld {

/// Opens `Provider=SQLite;Data Source=<path>`; `Database` and `DBQ` are other words for `Data Source`.
/// The path is UTF-8, counts from the current folder when it is relative, and is always the name of a
/// file: "file:..." and ":memory:" mean nothing special.
class ZRQRYBLD_API SqliteProvider final : public Provider {
 public:
  /// "SQLite".
  std::string_view Name() const override { return "SQLite"; }

  /// Whether the string names a file by `Data Source`, `Database` or `DBQ` and nothing that belongs to
  /// another way of access: a driver, a configured data source or a server.
  bool Accepts(const ConnectionString& connectionString) const override;

  /// Opens the file for reading only; user and password are ignored, because SQLite has none. A file of
  /// 0 bytes is a database without tables. Nothing is created, except that SQLite keeps its "-shm" and
  /// "-wal" files beside a database in write-ahead mode.
  ///
  /// Errors name the file and the reason: 3706 when the string names no file, when there is no such
  /// file or when it is no ordinary file; SQLite's own
  /// number otherwise, for instance 14 when the file may not be read and 26 when it is no database.
  ///
  /// The session's row sets hold their rows, so they outlive the session. Its rows:
  /// - All names are spelled as in the database. A restriction to a table matches as SQLite does,
  ///   without regard to the case of ASCII letters; an unknown table gives no rows.
  /// - There are no catalogs, and the only schema is "main", which rows leave Null. A restriction to
  ///   any other catalog or schema gives no rows.
  /// - Tables come by type, then name. "SYSTEM TABLE" are SQLite's own tables and those in which a
  ///   virtual table keeps its content.
  /// - Columns, primary keys and foreign keys come by table, then in the order of the columns, of the
  ///   key, and of declaration. Hidden columns of virtual tables are left out, generated ones are not;
  ///   those and the columns of views are not writable.
  /// - A view that cannot be read (its table is gone) gives no columns when all columns are asked for,
  ///   and SQLite's error when it is asked for by name.
  /// - A foreign key that does not name columns refers to the parent's primary key; it gives no rows
  ///   when there is no such key of as many columns. Names of keys are Null: SQLite does not tell them.
  std::unique_ptr<Session> Open(const ConnectionString& connectionString, std::string_view user,
                                std::string_view password) override;
};

}  // namespace zrqrybld
