// What the preview shares between the window's thread and those of its statements, over SQLite: read to the end, two at
// once, given up at any moment, failing, and written to meanwhile. What goes wrong the thread sanitizer finds.
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "designer/preview_job.h"
#include "tests/sqlite/database_file.h"
#include "zrqrybld/adapters/sqlite/sqlite_runner.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/sql/dialect.h"

namespace zrqrybld {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr int kRows = 1700;  // more than three blocks
constexpr const char* kAll = "SELECT a FROM t ORDER BY a";
constexpr const char* kEndless = "SELECT count(*) FROM t x, t y, t z, t u, t v, t w";
constexpr const char* kFailing = "SELECT a, CASE WHEN a = 900 THEN abs(-9223372036854775808) END FROM t";

// A window's thread: does what the jobs post while it waits.
class Window {
 public:
  PreviewJob::Post Poster() {
    return [this](std::function<void()> work) {
      const std::lock_guard lock(mutex_);
      posted_.push_back(std::move(work));
      changed_.notify_all();
    };
  }
  bool WaitUntil(const std::function<bool()>& done, milliseconds time = seconds(60)) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (!done()) {
      std::function<void()> work;
      {
        std::unique_lock lock(mutex_);
        if (!changed_.wait_until(lock, end, [this] { return !posted_.empty(); })) return false;
        work = std::move(posted_.front());
        posted_.pop_front();
      }
      work();
    }
    return true;
  }
  void Wait(milliseconds time) {
    WaitUntil([] { return false; }, time);
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> posted_;
};

class PreviewJobs : public testing::Test {
 protected:
  // A job and what it has told so far.
  struct Watched {
    std::unique_ptr<PreviewJob> job;
    std::string columns;
    int rows = 0;
    bool inOrder = true;
    bool ended = false;
    std::string failure;
  };

  // A window outlives what is posted to it.
  ~PreviewJobs() override { EXPECT_TRUE(PreviewJob::WaitForAll(seconds(60))); }

  std::unique_ptr<Watched> Run(const std::string& sql) {
    auto watched = std::make_unique<Watched>();
    watched->job = std::make_unique<PreviewJob>(
        [path = file_.Path()] { return OpenSqliteRunner(ConnectionString("Data Source=" + path)); }, sql,
        DialectFor(SQLSyntaxSQLite), [to = watched.get()](PreviewNews news) { Hear(*to, std::move(news)); },
        window_.Poster());
    return watched;
  }
  static void Hear(Watched& to, PreviewNews news) {
    for (const std::string& column : news.columns) to.columns += column;
    for (const ResultRow& row : news.rows) to.inOrder = to.inOrder && row.front().text == std::to_string(++to.rows);
    if (news.kind == PreviewNews::Kind::Rows && news.more) to.job->FetchMore();
    if (news.kind == PreviewNews::Kind::Rows && !news.more && !news.failing) to.ended = true;
    if (news.kind == PreviewNews::Kind::Failed) {
      to.failure = news.message.English();
      to.ended = true;
    }
  }

  test::DatabaseFile file_{
      "CREATE TABLE t (a INTEGER); WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT " +
      std::to_string(kRows) + ") INSERT INTO t SELECT i FROM n"};
  Window window_;
};

TEST_F(PreviewJobs, TwoAtOnceAreReadToTheirEnds) {
  const std::array jobs{Run(kAll), Run(kAll), Run(kFailing)};
  ASSERT_TRUE(window_.WaitUntil([&] { return jobs[0]->ended && jobs[1]->ended && jobs[2]->ended; }));
  for (const auto& job : {std::cref(jobs[0]), std::cref(jobs[1])}) {
    EXPECT_EQ(job.get()->columns, "a");
    EXPECT_EQ(job.get()->rows, kRows);
    EXPECT_TRUE(job.get()->inOrder);
    EXPECT_EQ(job.get()->failure, "");
  }
  EXPECT_EQ(jobs[2]->rows, 899) << "the rows before the failure";
  EXPECT_NE(jobs[2]->failure.find("overflow"), std::string::npos) << jobs[2]->failure;
}

// At once, while the source is opened, while the statement runs, between two blocks, and when it has ended.
TEST_F(PreviewJobs, AreGivenUpAtAnyMoment) {
  for (const char* sql : {kEndless, kAll, kFailing, "SELECT nothing"}) {
    for (const milliseconds delay : {milliseconds(0), milliseconds(1), milliseconds(5), milliseconds(30)}) {
      auto first = Run(sql);
      auto second = Run(sql);
      window_.Wait(delay);
      first->job.reset();
      const int rows = first->rows;
      window_.Wait(milliseconds(5));
      EXPECT_EQ(first->rows, rows) << "news of a job that is gone: " << sql;
      second->job->FetchMore();
      second->job.reset();
      EXPECT_TRUE(PreviewJob::WaitForAll(seconds(60))) << sql;
    }
  }
}

TEST_F(PreviewJobs, TheSourceMayBeWrittenMeanwhile) {
  std::jthread writer([this](const std::stop_token& stop) {
    const test::Connection connection(file_.Path());
    connection.Execute("PRAGMA busy_timeout = 20000; PRAGMA synchronous = OFF");
    while (!stop.stop_requested()) {
      connection.Execute("UPDATE t SET a = a WHERE a = 5");
      std::this_thread::sleep_for(milliseconds(1));
    }
  });
  int whole = 0;
  for (int round = 0; round < 5; ++round) {
    const auto job = Run(kAll);
    ASSERT_TRUE(window_.WaitUntil([&] { return job->ended; }));
    EXPECT_EQ(job->rows, job->failure.empty() ? kRows : 0) << job->failure;  // who comes while it is locked is told so
    whole += job->failure.empty() ? 1 : 0;
  }
  EXPECT_GT(whole, 0);
}

}  // namespace
}  // namespace zrqrybld
