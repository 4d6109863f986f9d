#include "zrqrybld/adapters/odbc/odbc_runner.h"

#include <algorithm>
#include <atomic>
#include <optional>
#include <utility>

#include "zrqrybld/adapters/odbc/driver_source.h"
#include "zrqrybld/adapters/odbc/odbc_handle.h"
#include "zrqrybld/adapters/odbc/odbc_text.h"
#include "zrqrybld/adapters/odbc/odbc_types.h"
#include "zrqrybld/adapters/run/source_sql.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_run.h"

namespace zrqrybld {
namespace odbc {
namespace {

SQLPOINTER NumberAttribute(std::uintptr_t value) { return reinterpret_cast<SQLPOINTER>(value); }

struct Preparation {
  SourceFamily family;
  std::string_view statement;
};

// What makes a server itself refuse to write.
constexpr Preparation kPreparations[] = {
    {SourceFamily::PostgreSql, "SET SESSION CHARACTERISTICS AS TRANSACTION READ ONLY"},
    {SourceFamily::MariaDb, "SET SESSION TRANSACTION READ ONLY"},
    {SourceFamily::Sqlite, "PRAGMA query_only = 1"},
    {SourceFamily::Oracle, "SET TRANSACTION READ ONLY"},
};

// What a session tells about how it reads a text: the mode, the character set, and whether its transaction only reads.
struct ModeQuestion {
  SourceFamily family;
  std::string_view statement;
};
constexpr ModeQuestion kModeQuestions[] = {
    {SourceFamily::PostgreSql,
     "SELECT current_setting('standard_conforming_strings'), current_setting('client_encoding'), "
     "current_setting('transaction_read_only')"},
    {SourceFamily::MariaDb, "SELECT @@sql_mode, @@character_set_client, 'on'"},
};

// How much of an answer a driver may hold: all that a server sends on one request.
constexpr std::size_t kAnswerBytes = std::size_t{64} << 20;
constexpr std::size_t kBatchBytes = std::size_t{8} << 20;
constexpr std::size_t kFirstBatch = 8;     // rows
constexpr std::size_t kLargestBatch = 64;  // the next rows may be much wider than those before
constexpr std::size_t kFewestRows = 64;
constexpr std::string_view kCursor = "zrqrybld_preview";

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

// Whether a driver for MariaDB or MySQL hands an answer on row by row. Others hold it as a whole.
bool Streams(const DriverConnection& connection) {
  const std::string driver = connection.InfoText(SQL_DRIVER_NAME);
  if (FindNoCase(driver, "maodbc") == std::string::npos) return true;
  return connection.InfoText(SQL_DRIVER_VER) >= "03.02";
}

class OdbcRunner final : public QueryRunner {
 public:
  explicit OdbcRunner(DriverSource source)
      : connection_(source.text, std::move(source.secrets)),
        name_(connection_.InfoText(SQL_DBMS_NAME)),
        mode_(ModeOf(name_)),
        statement_(std::in_place, connection_) {
    for (const Preparation& preparation : kPreparations) {
      if (preparation.family == mode_.family) Ask(preparation.statement);
    }
    // Functions that a SELECT calls may write after all, where a server is not told: nothing of it stays. SQLite's
    // driver reads row by row only outside of a transaction, and its server is the file, which was told.
    if (mode_.family != SourceFamily::Sqlite) {
      SQLSetConnectAttrW(connection_.Get(), SQL_ATTR_AUTOCOMMIT, NumberAttribute(SQL_AUTOCOMMIT_OFF), SQL_IS_UINTEGER);
    }
    LearnMode();
    // PostgreSQL is read through a cursor, and MariaDB's driver would write a limit behind the statement.
    if (mode_.family != SourceFamily::PostgreSql && mode_.family != SourceFamily::MariaDb) {
      SQLSetStmtAttrW(statement_->Get(), SQL_ATTR_MAX_ROWS, NumberAttribute(kMostRows), SQL_IS_UINTEGER);
    }
  }

  ~OdbcRunner() override {
    // A driver that reads row by row would read all that is left before it lets go.
    if (open_ && streams_) SQLCancel(statement_->Get());
    statement_.reset();
    SQLEndTran(SQL_HANDLE_DBC, connection_.Get(), SQL_ROLLBACK);
  }

  void Stop() override {
    stopped_ = true;
    SQLCancel(statement_->Get());
  }

  std::string SourceName() const override { return name_; }
  bool WasCutOff() const override { return limit_ != 0 && rows_ >= limit_; }

 private:
  SourceMode Mode() const override { return mode_; }

  // Runs a statement of ours; the first row's values, if any.
  std::vector<std::string> Ask(std::string_view sql) const {
    const Statement statement(connection_);
    std::u16string text = ToUtf16(sql);
    statement.Check(SQLExecDirectW(statement.Get(), Wide(text), static_cast<SQLINTEGER>(text.size())));
    SQLSMALLINT count = 0;
    statement.Check(SQLNumResultCols(statement.Get(), &count));
    std::vector<std::string> values;
    if (count == 0) return values;
    statement.Check(SQLFetch(statement.Get()));
    for (SQLSMALLINT column = 1; column <= count; ++column) {
      std::u16string value(1024, u'\0');
      SQLLEN length = 0;
      const auto size = static_cast<SQLLEN>((value.size() - 1) * sizeof(char16_t));
      statement.Check(
          SQLGetData(statement.Get(), static_cast<SQLUSMALLINT>(column), SQL_C_WCHAR, value.data(), size, &length));
      values.push_back(ToUtf8(std::u16string_view(value).substr(0, value.find(u'\0'))));
    }
    return values;
  }

  // It is asked within the transaction that the statement runs in: PostgreSQL makes none writable that has read.
  void LearnMode() {
    for (const ModeQuestion& question : kModeQuestions) {
      if (question.family != mode_.family) continue;
      const std::vector<std::string> answer = Ask(question.statement);
      if (answer.size() != 3 || answer[2] != "on") {
        throw Error(ErrorConnectionFailed, text::SourceWouldWrite);
      }
      mode_ = ModeOf(name_, answer[0]);
      mode_.unicode = EqualsNoCase(std::string_view(answer[1]).substr(0, 3), "UTF");
    }
  }

  // A failure after a stop is the stop; also a success, with which a driver may end what it has cancelled.
  void Check(SQLRETURN result) const {
    if (stopped_) throw QueryStopped();
    statement_->Check(result);
  }

  // --- Beginning ---

  std::vector<std::string> Start(std::string_view sql) override {
    Check(SQL_SUCCESS);
    if (mode_.family == SourceFamily::PostgreSql) {
      // Its driver would send several statements as one text.
      Prepare("DECLARE " + std::string(kCursor) + " NO SCROLL CURSOR FOR " + WithoutSemicolons(sql, mode_));
      Check(SQLExecute(statement_->Get()));
      NextBatch(0);  // tells the columns
      return Describe();
    }
    Prepare(sql);
    std::vector<std::string> names = Describe();
    if (mode_.family == SourceFamily::MariaDb) LimitAnswer(sql);
    Check(SQLExecute(statement_->Get()));
    open_ = true;
    return names;
  }

  // A prepared statement is one statement: servers refuse a second one in it.
  void Prepare(std::string_view sql) {
    std::u16string text = ToUtf16(sql);
    Check(SQLPrepareW(statement_->Get(), Wide(text), static_cast<SQLINTEGER>(text.size())));
    SQLSMALLINT parameters = 0;
    if (SQL_SUCCEEDED(SQLNumParams(statement_->Get(), &parameters)) && parameters > 0) {
      throw Error(ErrorParsingText, text::ParametersWithoutValues);
    }
  }

  std::vector<std::string> Describe() {
    SQLSMALLINT count = 0;
    Check(SQLNumResultCols(statement_->Get(), &count));
    if (count == 0) throw Error(ErrorParsingText, text::NoColumnsReturned);
    std::vector<std::string> names;
    for (SQLSMALLINT column = 1; column <= count; ++column) {
      std::u16string name(1024, u'\0');
      SQLSMALLINT length = 0;
      SQLSMALLINT type = 0;
      SQLULEN size = 0;
      Check(SQLDescribeColW(statement_->Get(), static_cast<SQLUSMALLINT>(column), Wide(name),
                            static_cast<SQLSMALLINT>(name.size() - 1), &length, &type, &size, nullptr, nullptr));
      names.push_back(ToUtf8(std::u16string_view(name).substr(0, name.find(u'\0'))));
      kinds_.push_back(KindOf(FactsOf(type).code));
      declaredBytes_ += std::min(static_cast<std::size_t>(size), kAnswerBytes);
    }
    return names;
  }

  // --- Answers of any length ---

  // A driver that holds the whole answer is asked for no more rows than it can hold, by the columns' declared widths.
  void LimitAnswer(std::string_view sql) {
    limit_ = kMostRows;
    streams_ = Streams(connection_);
    if (!streams_) {
      limit_ = std::clamp(kAnswerBytes / std::max<std::size_t>(declaredBytes_, 1), kFewestRows, kMostRows);
    }
    const std::string limit = std::to_string(limit_);
    Ask("SET SESSION sql_select_limit = " + limit);
    if (FindNoCase(sql, "LIMIT") == std::string::npos && FindNoCase(sql, "FETCH") == std::string::npos) return;
    // A limit of the statement's own goes before the session's. Not every such statement can stand in parentheses.
    try {
      Prepare("(" + std::string(sql) + ") LIMIT " + limit);
    } catch (const Error&) {
      Prepare(sql);
    }
  }

  // Asks the cursor for so many rows.
  void NextBatch(std::size_t rows) {
    SQLFreeStmt(statement_->Get(), SQL_CLOSE);
    std::u16string text = ToUtf16("FETCH " + std::to_string(rows) + " FROM " + std::string(kCursor));
    Check(SQLExecDirectW(statement_->Get(), Wide(text), static_cast<SQLINTEGER>(text.size())));
    batch_ = rows;
    batchRows_ = 0;
    batchBytes_ = 0;
  }

  // More of them while they are narrow.
  bool ReadOn() {
    if (mode_.family != SourceFamily::PostgreSql || batchRows_ < batch_) return false;
    const std::size_t width = std::max<std::size_t>(batchRows_ == 0 ? 1 : batchBytes_ / batchRows_, 1);
    const std::size_t most = batch_ == 0 ? kFirstBatch : std::min(batch_ * 2, kLargestBatch);
    NextBatch(std::clamp<std::size_t>(kBatchBytes / width, 1, most));
    return true;
  }

  // Goes to the next row, in a further batch where there may be one.
  bool GoToNextRow() {
    SQLRETURN result = SQLFetch(statement_->Get());
    if (result == SQL_NO_DATA && !stopped_ && ReadOn()) result = SQLFetch(statement_->Get());
    Check(result);
    if (result != SQL_NO_DATA) return true;
    connection_.RequireAlive();  // some drivers tell a connection that was cut as the end of the answer
    open_ = false;
    return false;
  }

  bool Next(RowBuilder& row) override {
    if (!GoToNextRow()) return false;
    row.Reserve(kinds_.size());
    for (std::size_t column = 0; column < kinds_.size(); ++column) row.Add(ValueAt(column));
    ++rows_;
    ++batchRows_;
    return true;
  }

  ResultValue ValueAt(std::size_t index) {
    const auto column = static_cast<SQLUSMALLINT>(index + 1);
    SQLLEN length = SQL_NULL_DATA;  // of the whole value, in bytes
    if (kinds_[index] == ResultKind::Binary) {
      char beginning[kShownBytes] = {};
      Check(SQLGetData(statement_->Get(), column, SQL_C_BINARY, beginning, sizeof beginning, &length));
      if (length == SQL_NULL_DATA) return {};
      CountBytes(length);
      const auto shown =
          length < 0 ? sizeof beginning : std::min<std::size_t>(static_cast<std::size_t>(length), sizeof beginning);
      return BinaryValue({beginning, shown}, length < 0 ? -1 : static_cast<std::int64_t>(length));
    }
    const auto size = static_cast<SQLLEN>(buffer_.size() * sizeof(char16_t));
    Check(SQLGetData(statement_->Get(), column, SQL_C_WCHAR, buffer_.data(), size, &length));
    if (length == SQL_NULL_DATA) return {};
    CountBytes(length);
    const std::size_t most = buffer_.size() - 1;  // the last unit is the closing zero
    const bool cut = length < 0 || static_cast<std::size_t>(length) / sizeof(char16_t) > most;
    const std::size_t units = cut ? most : static_cast<std::size_t>(length) / sizeof(char16_t);
    std::u16string_view text = std::u16string_view(buffer_).substr(0, units);
    if (cut) text = text.substr(0, text.find(u'\0'));  // "not known" may be said of a short text, too
    return TextValue(kinds_[index], ToUtf8(text), cut && text.size() == most);
  }

  // The whole value's length, where the driver knows it; otherwise what was read of it.
  void CountBytes(SQLLEN length) { batchBytes_ += length < 0 ? kLongestText : static_cast<std::size_t>(length); }

  DriverConnection connection_;
  std::string name_;
  SourceMode mode_;
  std::optional<Statement> statement_;
  std::vector<ResultKind> kinds_;  // by column
  std::u16string buffer_ = std::u16string(kLongestText / 2, u'\0');
  std::size_t declaredBytes_ = 0;  // of a row
  std::size_t limit_ = 0;          // of rows; 0 when the answer is not limited
  std::size_t rows_ = 0;           // given so far
  std::size_t batch_ = 0;          // rows asked for at once; 0 when the driver reads on by itself
  std::size_t batchRows_ = 0;
  std::size_t batchBytes_ = 0;
  bool streams_ = false;  // the driver of MariaDB reads row by row
  bool open_ = false;     // an answer that has not been read to its end
  std::atomic<bool> stopped_ = false;
};

}  // namespace
}  // namespace odbc

std::unique_ptr<QueryRunner> OpenOdbcRunner(const ConnectionString& connectionString) {
  return std::make_unique<odbc::OdbcRunner>(odbc::MakeDriverSource(connectionString, {}, {}, odbc::Purpose::Rows));
}

}  // namespace zrqrybld
