// Runs statements through ODBC, for what the library itself never does: making tables and reading rows.
#pragma once

#include <stdexcept>
#include <string>

#include "zrqrybld/adapters/odbc/odbc_handle.h"
#include "zrqrybld/adapters/odbc/odbc_text.h"

namespace zrqrybld::test {

/// One connection that may write. Failures are std::runtime_error with the driver's words.
class OdbcExecutor {
 public:
  explicit OdbcExecutor(const std::string& connectionString) : connection_(environment_.Get()) {
    std::u16string text = odbc::ToUtf16(connectionString);
    std::u16string completed(1024, u'\0');
    SQLSMALLINT length = 0;
    Check(SQLDriverConnectW(connection_.Get(), nullptr, odbc::Wide(text), static_cast<SQLSMALLINT>(text.size()),
                            odbc::Wide(completed), 1000, &length, SQL_DRIVER_NOPROMPT),
          SQL_HANDLE_DBC, connection_.Get());
  }
  OdbcExecutor(const OdbcExecutor&) = delete;
  OdbcExecutor& operator=(const OdbcExecutor&) = delete;
  ~OdbcExecutor() { SQLDisconnect(connection_.Get()); }

  void Execute(const std::string& sql) { Query(sql); }

  /// Every row of the answer on a line, the values with "|" between them, "NULL" for null.
  std::string Query(const std::string& sql) {
    const odbc::Handle<SQL_HANDLE_STMT> statement(connection_.Get());
    std::u16string text = odbc::ToUtf16(sql);
    SQLRETURN result = SQLExecDirectW(statement.Get(), odbc::Wide(text), SQL_NTS);
    if (result != SQL_NO_DATA) Check(result, SQL_HANDLE_STMT, statement.Get());
    SQLSMALLINT columns = 0;
    SQLNumResultCols(statement.Get(), &columns);
    std::string rows;
    while (columns > 0 && (result = SQLFetch(statement.Get())) != SQL_NO_DATA) {
      Check(result, SQL_HANDLE_STMT, statement.Get());
      for (SQLUSMALLINT column = 1; column <= columns; ++column) {
        std::u16string value(4096, u'\0');
        SQLLEN length = 0;
        Check(SQLGetData(statement.Get(), column, SQL_C_WCHAR, value.data(), 8190, &length), SQL_HANDLE_STMT,
              statement.Get());
        if (!rows.empty() && rows.back() != '\n') rows += '|';
        rows += length == SQL_NULL_DATA ? "NULL" : odbc::ToUtf8(value.substr(0, value.find(u'\0')));
      }
      rows += '\n';
    }
    return rows;
  }

 private:
  static void Check(SQLRETURN result, SQLSMALLINT type, SQLHANDLE handle) {
    if (SQL_SUCCEEDED(result)) return;
    std::u16string state(6, u'\0'), message(2048, u'\0');
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    SQLGetDiagRecW(type, handle, 1, odbc::Wide(state), &native, odbc::Wide(message), 2000, &length);
    throw std::runtime_error(odbc::ToUtf8(message.substr(0, message.find(u'\0'))));
  }

  odbc::Environment environment_;
  odbc::Handle<SQL_HANDLE_DBC> connection_;
};

}  // namespace zrqrybld::test
