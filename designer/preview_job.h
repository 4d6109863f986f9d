// PreviewJob: one statement that runs in a thread of its own, and the news about it.
//
// It belongs to the window's thread, which never waits for the source: not when it starts a job, not when it stops one
// and not when it ends. The thread of a job that was given up ends by itself as soon as the source lets it.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "designer/window_thread.h"
#include "zrqrybld/adapters/run/query_runner.h"
#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

/// What a job has to tell.
struct PreviewNews {
  enum class Kind { Columns, Rows, Failed, Closed };
  Kind kind = Kind::Rows;
  std::vector<std::string> columns = {};   ///< of Columns, which comes once and first
  std::vector<ResultRow> rows = {};        ///< of Rows
  bool more = false;                       ///< of Rows: there may be further ones, see `FetchMore`
  bool failing = false;                    ///< of Rows: the source has failed behind them; the next news is Failed
  bool cutOff = false;                     ///< of Rows: there are further ones, which the source cannot give
  Phrase message = {};                     ///< of Failed, the last news
  std::optional<std::size_t> offset = {};  ///< of Failed: where in the statement, when that is known
};

class PreviewJob {
 public:
  /// How many rows are read at a time.
  static constexpr std::size_t kBlockRows = 500;
  /// Rows that nobody asks for are no longer kept at hand after this time (news: Closed), because an open answer may
  /// keep others from writing.
  static constexpr std::chrono::seconds kPatience{60};

  /// Opens the source; called in the job's thread.
  using Open = std::function<std::unique_ptr<QueryRunner>()>;
  /// Called in the window's thread; not after the job is gone.
  using Receiver = std::function<void(PreviewNews)>;
  /// Has work done in the window's thread, in the order in which it comes; called in any thread.
  using Post = std::function<void(std::function<void()> work)>;

  /// Starts at once. A failure to start is news like any other.
  PreviewJob(Open open, std::string sql, const Dialect& dialect, Receiver receiver, Post post = InWindowThread);
  PreviewJob(const PreviewJob&) = delete;
  PreviewJob& operator=(const PreviewJob&) = delete;
  /// Gives up: no news comes any more, and the source is told to stop.
  ~PreviewJob();

  /// Asks for the next rows; nothing when there are none.
  void FetchMore();

  /// Waits until the threads of all jobs have ended, at most so long. Whether they have.
  static bool WaitForAll(std::chrono::milliseconds time);

 private:
  struct Shared;
  static void Work(const std::shared_ptr<Shared>& shared);
  static void Read(Shared& shared, QueryRunner& runner);
  static void StopSource(const std::shared_ptr<Shared>& shared);
  static void Start(void (*work)(const std::shared_ptr<Shared>&), const std::shared_ptr<Shared>& shared);

  std::shared_ptr<Shared> shared_;
};

}  // namespace zrqrybld
