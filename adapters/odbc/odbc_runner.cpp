#include "adapters/odbc/odbc_runner.h"

#include <atomic>
#include <optional>
#include <utility>

#include "adapters/odbc/driver_source.h"
#include "adapters/odbc/odbc_handle.h"
#include "adapters/odbc/odbc_text.h"
#include "adapters/odbc/odbc_types.h"
#include "adapters/run/source_sql.h"
#include "base/error.h"

namespace zrqrybld {
namespace odbc {
namespace {

SQLPOINTER NumberAttribute(std::uintptr_t value) { return reinterpret_cast<SQLPOINTER>(value); }

struct Preparation {
  SourceFamily family;
  std::string_view statement;
};

static_assert(QueryRunner::kMostRows == 50'000, "as in the statement for MariaDB");

// What makes a server itself refuse to write, take a text for what it was looked at as, and give no more than is shown.
constexpr Preparation kPreparations[] = {
    {SourceFamily::PostgreSql, "SET SESSION CHARACTERISTICS AS TRANSACTION READ ONLY"},
    {SourceFamily::PostgreSql, "SET standard_conforming_strings = on"},
    {SourceFamily::MariaDb, "SET SESSION TRANSACTION READ ONLY"},
    {SourceFamily::MariaDb, "SET SESSION sql_select_limit = 50000"},  // its driver reads the whole answer at once
    {SourceFamily::Sqlite, "PRAGMA query_only = 1"},
    {SourceFamily::Oracle, "SET TRANSACTION READ ONLY"},
};

ResultKind KindOf(DataTypeCode code) {
  switch (ValueKindOf(static_cast<std::int32_t>(code))) {
    case ValueKind::Number:
      return ResultKind::Number;
    case ValueKind::Date:
      return ResultKind::Date;
    case ValueKind::Binary:
      return ResultKind::Binary;
    default:
      return ResultKind::Text;
  }
}

class OdbcRunner final : public QueryRunner {
 public:
  explicit OdbcRunner(DriverSource source)
      : connection_(source.text, std::move(source.secrets)),
        name_(connection_.InfoText(SQL_DBMS_NAME)),
        statement_(std::in_place, connection_) {
    for (const Preparation& preparation : kPreparations) {
      if (preparation.family == FamilyOf(name_)) Run(preparation.statement);
    }
    // Functions that a SELECT calls may write after all, where a server is not told: nothing of it stays.
    SQLSetConnectAttrW(connection_.Get(), SQL_ATTR_AUTOCOMMIT, NumberAttribute(SQL_AUTOCOMMIT_OFF), SQL_IS_UINTEGER);
    // PostgreSQL's driver reads piece by piece, and MariaDB's would write a limit behind the statement.
    const SourceFamily family = FamilyOf(name_);
    if (family != SourceFamily::PostgreSql && family != SourceFamily::MariaDb) {
      SQLSetStmtAttrW(statement_->Get(), SQL_ATTR_MAX_ROWS, NumberAttribute(kMostRows), SQL_IS_UINTEGER);
    }
  }

  ~OdbcRunner() override {
    statement_.reset();
    SQLEndTran(SQL_HANDLE_DBC, connection_.Get(), SQL_ROLLBACK);
  }

  bool Fetch(std::size_t most, std::vector<ResultRow>& rows) override {
    for (std::size_t i = 0; i < most; ++i) {
      const SQLRETURN result = SQLFetch(statement_->Get());
      if (result == SQL_NO_DATA && !stopped_) return false;
      Check(result);
      ResultRow row;
      row.reserve(kinds_.size());
      for (std::size_t column = 0; column < kinds_.size(); ++column) row.push_back(ValueAt(column));
      rows.push_back(std::move(row));
    }
    return true;
  }

  void Stop() override {
    stopped_ = true;
    SQLCancel(statement_->Get());
  }

  std::string SourceName() const override { return name_; }

 private:
  void Run(std::string_view sql) {
    const Statement statement(connection_);
    std::u16string text = ToUtf16(sql);
    statement.Check(SQLExecDirectW(statement.Get(), Wide(text), static_cast<SQLINTEGER>(text.size())));
  }

  // A failure after a stop is the stop; also a success, with which a driver may end what it has cancelled.
  void Check(SQLRETURN result) const {
    if (stopped_) throw QueryStopped();
    statement_->Check(result);
  }

  std::vector<std::string> Start(std::string_view sql) override {
    Check(SQL_SUCCESS);
    std::u16string text = ToUtf16(sql);
    Check(SQLExecDirectW(statement_->Get(), Wide(text), static_cast<SQLINTEGER>(text.size())));
    SQLSMALLINT count = 0;
    Check(SQLNumResultCols(statement_->Get(), &count));
    if (count == 0) throw Error(ErrorParsingText, "The statement returns no columns.");
    std::vector<std::string> names;
    for (SQLSMALLINT column = 1; column <= count; ++column) {
      std::u16string name(1024, u'\0');
      SQLSMALLINT length = 0;
      SQLSMALLINT type = 0;
      Check(SQLDescribeColW(statement_->Get(), static_cast<SQLUSMALLINT>(column), Wide(name),
                            static_cast<SQLSMALLINT>(name.size() - 1), &length, &type, nullptr, nullptr, nullptr));
      names.push_back(ToUtf8(std::u16string_view(name).substr(0, name.find(u'\0'))));
      kinds_.push_back(KindOf(FactsOf(type).code));
    }
    return names;
  }

  ResultValue ValueAt(std::size_t index) {
    const auto column = static_cast<SQLUSMALLINT>(index + 1);
    SQLLEN length = SQL_NULL_DATA;  // of the whole value, in bytes
    if (kinds_[index] == ResultKind::Binary) {
      char beginning[kShownBytes] = {};
      Check(SQLGetData(statement_->Get(), column, SQL_C_BINARY, beginning, sizeof beginning, &length));
      if (length == SQL_NULL_DATA) return {};
      const auto shown =
          length < 0 ? sizeof beginning : std::min<std::size_t>(static_cast<std::size_t>(length), sizeof beginning);
      return BinaryValue({beginning, shown}, length < 0 ? -1 : static_cast<std::int64_t>(length));
    }
    const auto size = static_cast<SQLLEN>(buffer_.size() * sizeof(char16_t));
    Check(SQLGetData(statement_->Get(), column, SQL_C_WCHAR, buffer_.data(), size, &length));
    if (length == SQL_NULL_DATA) return {};
    const std::size_t most = buffer_.size() - 1;  // the last unit is the closing zero
    const bool cut = length < 0 || static_cast<std::size_t>(length) / sizeof(char16_t) > most;
    const std::size_t units = cut ? most : static_cast<std::size_t>(length) / sizeof(char16_t);
    std::u16string_view text = std::u16string_view(buffer_).substr(0, units);
    if (cut) text = text.substr(0, text.find(u'\0'));  // "not known" may be said of a short text, too
    return TextValue(kinds_[index], ToUtf8(text), cut && text.size() == most);
  }

  DriverConnection connection_;
  std::string name_;
  std::optional<Statement> statement_;
  std::vector<ResultKind> kinds_;  // by column
  std::u16string buffer_ = std::u16string(kLongestText / 2, u'\0');
  std::atomic<bool> stopped_ = false;
};

}  // namespace
}  // namespace odbc

std::unique_ptr<QueryRunner> OpenOdbcRunner(const ConnectionString& connectionString) {
  return std::make_unique<odbc::OdbcRunner>(odbc::MakeDriverSource(connectionString, {}, {}, odbc::Purpose::Rows));
}

}  // namespace zrqrybld
