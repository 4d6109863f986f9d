// QueryRunner: runs one SELECT on a connection of its own, for looking at its rows.
//
// The library designs statements and runs none. An application that wants to show rows (the designer does) makes a
// runner: `OpenSqliteRunner` in adapters/sqlite, `OpenOdbcRunner` in adapters/odbc. Nothing here knows a window.
//
// Threads: a runner belongs to one thread at a time, which opens it, executes, fetches and destroys it, and waits as
// long as the source needs. Only `Stop` may be called from any other thread meanwhile.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zrqrybld/adapters/run/source_mode.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/texts_run.h"

namespace zrqrybld {

struct Dialect;

/// What a value is, as far as it is shown in another way.
enum class ResultKind : std::uint8_t { Null, Text, Number, Date, Binary };

/// One value of a row.
struct ResultValue {
  ResultKind kind = ResultKind::Null;
  bool cut = false;  ///< the text is only the beginning
  std::string text;  ///< UTF-8; of binary data its size and its first bytes; "" for null
};

using ResultRow = std::vector<ResultValue>;

/// What ends a call after `Stop`.
class ZRQRYBLD_API QueryStopped : public std::runtime_error {
 public:
  QueryStopped() : std::runtime_error(Phrase(text::StatementStopped).English()) {}
};

/// A row that is read, within bounds: the last values of a row that is too large are cut short.
class ZRQRYBLD_API RowBuilder {
 public:
  /// Beyond so many bytes a row's further values are cut to `kShortText` bytes.
  static constexpr std::size_t kLargeRow = std::size_t{4} << 20;
  static constexpr std::size_t kShortText = 64;

  void Reserve(std::size_t columns) { row_.reserve(columns); }
  void Add(ResultValue value);
  ResultRow Take() { return std::move(row_); }

 private:
  ResultRow row_;
  std::size_t bytes_ = 0;
};

class ZRQRYBLD_API QueryRunner {
 public:
  /// The longest text that is held of one value, in bytes.
  static constexpr std::size_t kLongestText = 32768;
  /// Sources that cannot be read piece by piece are asked for so many rows and no more.
  static constexpr std::size_t kMostRows = 50'000;
  /// `Fetch` ends early when the rows that it has appended hold so many bytes.
  static constexpr std::size_t kBlockBytes = std::size_t{8} << 20;

  QueryRunner() = default;
  QueryRunner(const QueryRunner&) = delete;
  QueryRunner& operator=(const QueryRunner&) = delete;
  virtual ~QueryRunner() = default;

  /// Begins the statement, once in a runner's life, and returns the names of its columns. Error 40002, with the place,
  /// for what is not one SELECT or is written as the source does not understand it: nothing was sent then. Otherwise
  /// the source's own error, with the place where the source tells it. `dialect` is the one that it is written in.
  std::vector<std::string> Execute(std::string_view sql, const Dialect& dialect);

  /// Appends the next rows, at most `most`, fewer when they are large. False when these were the last ones. The
  /// source's error when it fails; the rows until then are appended.
  bool Fetch(std::size_t most, std::vector<ResultRow>& rows);

  /// Whether there were further rows behind the last one that `Fetch` gave, which the source cannot give within bounds.
  virtual bool WasCutOff() const { return false; }

  /// Ends what runs: `Execute` and `Fetch` then throw QueryStopped, as soon as the source lets them. It may wait for
  /// the source itself. A driver may miss it at the moment when the statement begins: call it again until it has
  /// worked.
  virtual void Stop() = 0;

  /// What the source calls itself, for instance "PostgreSQL".
  virtual std::string SourceName() const = 0;

 protected:
  /// Sends a statement that was looked at, and returns the names of its columns.
  virtual std::vector<std::string> Start(std::string_view sql) = 0;

  /// Reads the next row's values into an empty row. False behind the last one.
  virtual bool Next(RowBuilder& row) = 0;

  /// How the session reads a text.
  virtual SourceMode Mode() const { return ModeOf(SourceName()); }
};

/// The bytes that a row holds.
ZRQRYBLD_API std::size_t BytesOf(const ResultRow& row);

/// The value of a text; what is longer than `QueryRunner::kLongestText` is cut behind a whole character.
ZRQRYBLD_API ResultValue TextValue(ResultKind kind, std::string_view text, bool cut = false);

/// The value of binary data: its first bytes in hexadecimal digits and its size. -1 for a size that nobody knows.
ZRQRYBLD_API ResultValue BinaryValue(std::string_view beginning, std::int64_t size);

/// How many bytes of binary data are shown.
constexpr std::size_t kShownBytes = 256;

}  // namespace zrqrybld
