#include "zrqrybld/adapters/sqlite/sqlite_runner.h"

#include <atomic>
#include <optional>
#include <utility>

#include "zrqrybld/adapters/run/source_effects.h"
#include "zrqrybld/adapters/sqlite/sqlite_database.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_run.h"

namespace zrqrybld {
namespace sqlite {
namespace {

constexpr int kLongestValue = 128 << 20;   // bytes
constexpr int kStepsBetweenChecks = 4000;  // of SQLite's virtual machine: well below a millisecond

// Whether texts in a column of this declared type are points in time: SQLite has no type of its own for them.
bool HoldsDates(const char* declaration) {
  return declaration != nullptr &&
         (FindNoCase(declaration, "DATE") != std::string::npos || FindNoCase(declaration, "TIME") != std::string::npos);
}

class SqliteRunner final : public QueryRunner {
 public:
  explicit SqliteRunner(DatabaseHandle database) : database_(std::move(database)) {
    Statement(database_.get(), "PRAGMA query_only = 1").Step();
    // SQLite holds a value as a whole while it is read, and a query can make one of any length.
    sqlite3_limit(database_.get(), SQLITE_LIMIT_LENGTH, kLongestValue);
    sqlite3_set_authorizer(database_.get(), Authorize, nullptr);
    // Asked while a statement runs, so that a stop also counts when it comes before the first step.
    sqlite3_progress_handler(
        database_.get(), kStepsBetweenChecks,
        [](void* stopped) { return static_cast<const std::atomic<bool>*>(stopped)->load() ? 1 : 0; }, &stopped_);
  }

  void Stop() override {
    stopped_ = true;
    sqlite3_interrupt(database_.get());
  }

  std::string SourceName() const override { return "SQLite"; }

 private:
  // The file is open for reading only; this holds back what does not write into it. Views and virtual tables are asked
  // for, too, which the statement's text does not show.
  static int Authorize(void*, int action, const char*, const char* name, const char*, const char*) {
    const bool leaves = action == SQLITE_ATTACH || action == SQLITE_DETACH || action == SQLITE_TRANSACTION ||
                        action == SQLITE_SAVEPOINT;
    const bool acts = action == SQLITE_FUNCTION && name != nullptr && HasEffectInSqlite(name);
    return leaves || acts ? SQLITE_DENY : SQLITE_OK;
  }

  bool Next(RowBuilder& row) override {
    if (!Guarded([this] { return statement_->Step(); })) return false;
    row.Reserve(dates_.size());
    for (std::size_t column = 0; column < dates_.size(); ++column) row.Add(ValueAt(column));
    return true;
  }

  std::vector<std::string> Start(std::string_view sql) override {
    Guarded([&] {
      try {
        statement_.emplace(database_.get(), sql);
      } catch (const Error& error) {
        throw Error(error.Number(), error.What(), PlaceOfLastError());
      }
    });
    sqlite3_stmt* handle = statement_->Get();
    const int count = sqlite3_column_count(handle);
    if (count == 0 || sqlite3_stmt_readonly(handle) == 0) throw Error(SQLITE_READONLY, text::OnlySelect);
    if (sqlite3_bind_parameter_count(handle) > 0) {
      throw Error(SQLITE_MISUSE, text::ParametersWithoutValues);
    }
    std::vector<std::string> names;
    for (int column = 0; column < count; ++column) {
      names.emplace_back(sqlite3_column_name(handle, column));
      dates_.push_back(HoldsDates(sqlite3_column_decltype(handle, column)));
    }
    return names;
  }

  std::optional<std::size_t> PlaceOfLastError() const {
#if SQLITE_VERSION_NUMBER >= 3038000
    const int offset = sqlite3_error_offset(database_.get());
    if (offset >= 0) return static_cast<std::size_t>(offset);
#endif
    return std::nullopt;
  }

  ResultValue ValueAt(std::size_t index) const {
    sqlite3_stmt* handle = statement_->Get();
    const int column = static_cast<int>(index);
    switch (sqlite3_column_type(handle, column)) {
      case SQLITE_NULL:
        return {};
      case SQLITE_BLOB: {
        const auto* bytes = static_cast<const char*>(sqlite3_column_blob(handle, column));
        const auto size = static_cast<std::size_t>(sqlite3_column_bytes(handle, column));
        return BinaryValue({bytes, bytes != nullptr ? size : 0}, static_cast<std::int64_t>(size));
      }
      case SQLITE_TEXT:
        return TextValue(dates_[index] ? ResultKind::Date : ResultKind::Text, TextAt(column));
      default:
        return TextValue(ResultKind::Number, TextAt(column));
    }
  }

  std::string_view TextAt(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_->Get(), column));
    if (text == nullptr) throw Error(SQLITE_NOMEM, text::OutOfMemory);
    return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement_->Get(), column))};
  }

  // A failure after a stop is the stop.
  template <class Work>
  auto Guarded(Work work) -> decltype(work()) {
    if (stopped_) throw QueryStopped();
    try {
      return work();
    } catch (const Error&) {
      if (stopped_) throw QueryStopped();
      throw;
    }
  }

  DatabaseHandle database_;
  std::optional<Statement> statement_;  // goes before the database
  std::vector<bool> dates_;             // by column
  std::atomic<bool> stopped_ = false;
};

}  // namespace
}  // namespace sqlite

std::unique_ptr<QueryRunner> OpenSqliteRunner(const ConnectionString& connectionString) {
  return std::make_unique<sqlite::SqliteRunner>(sqlite::OpenDatabase(connectionString));
}

}  // namespace zrqrybld
