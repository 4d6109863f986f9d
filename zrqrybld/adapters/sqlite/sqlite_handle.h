// Owners of SQLite's handles. Only the adapter's sources include this.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zrqrybld::sqlite {

struct DatabaseCloser {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};
using DatabaseHandle = std::unique_ptr<sqlite3, DatabaseCloser>;

/// Throws the database's last error under SQLite's own number and words.
[[noreturn]] void ThrowLastError(sqlite3* database);

/// One prepared statement. The database must outlive it.
class Statement {
 public:
  /// Prepares `sql`; SQLite's error when it does not compile.
  Statement(sqlite3* database, std::string_view sql);

  /// Binds parameter `index`, from 1: the text, or null when there is none. `value` must outlive the statement.
  void Bind(int index, const std::optional<std::string>& value);

  sqlite3_stmt* Get() const { return statement_.get(); }

  /// Goes to the next row; false after the last. SQLite's error when it fails.
  bool Step();

  /// Column `index`, from 0; none for null.
  std::optional<std::string> TextIf(int index) const;
  /// As `TextIf`, "" for null.
  std::string Text(int index) const;
  /// Column `index`, from 0; 0 for null.
  std::int32_t Integer(int index) const { return sqlite3_column_int(statement_.get(), index); }

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };

  sqlite3* database_;
  std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
};

}  // namespace zrqrybld::sqlite
