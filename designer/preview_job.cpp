#include "designer/preview_job.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_qt.h"

namespace zrqrybld {
namespace {

constexpr std::chrono::milliseconds kStopAgain{200};
constexpr int kMostStops = 50;

// The threads that have not ended.
struct Threads {
  std::mutex mutex;
  std::condition_variable changed;
  int running = 0;

  void Count(int change) {
    const std::lock_guard lock(mutex);
    running += change;
    changed.notify_all();
  }
};

// Never destroyed: a thread may outlive everything else.
Threads& AllThreads() {
  static Threads& threads = *new Threads;
  return threads;
}

}  // namespace

struct PreviewJob::Shared : std::enable_shared_from_this<Shared> {
  Open open;
  std::string sql;
  const Dialect& dialect;
  Receiver receiver;  // the window's thread only
  Post post;

  std::mutex mutex;
  std::condition_variable changed;
  std::shared_ptr<QueryRunner> runner;
  bool wantsMore = false;
  bool givenUp = false;
  bool ended = false;

  Shared(Open o, std::string s, const Dialect& d, Receiver r, Post p)
      : open(std::move(o)), sql(std::move(s)), dialect(d), receiver(std::move(r)), post(std::move(p)) {}

  void Tell(PreviewNews news) {
    {
      const std::lock_guard lock(mutex);
      if (givenUp) return;
    }
    post([self = shared_from_this(), told = std::move(news)]() mutable {
      if (const Receiver receive = self->receiver) receive(std::move(told));
    });
  }

  void TellFailure(Phrase message, std::optional<std::size_t> offset = std::nullopt) {
    PreviewNews news{.kind = PreviewNews::Kind::Failed, .message = std::move(message), .offset = offset};
    Tell(std::move(news));
  }
};

PreviewJob::PreviewJob(Open open, std::string sql, const Dialect& dialect, Receiver receiver, Post post)
    : shared_(
          std::make_shared<Shared>(std::move(open), std::move(sql), dialect, std::move(receiver), std::move(post))) {
  try {
    Start(&PreviewJob::Work, shared_);
  } catch (const std::exception& error) {
    shared_->TellFailure(PhraseOf(error));
  }
}

PreviewJob::~PreviewJob() {
  shared_->receiver = nullptr;
  {
    const std::lock_guard lock(shared_->mutex);
    shared_->givenUp = true;
    if (shared_->ended) return;
  }
  shared_->changed.notify_all();
  try {
    // In a thread, too: a driver asks the server to stop, and waits for one that does not answer.
    Start(&PreviewJob::StopSource, shared_);
  } catch (const std::exception&) {
    // Then the statement runs to its end; nobody waits for it.
  }
}

void PreviewJob::FetchMore() {
  {
    const std::lock_guard lock(shared_->mutex);
    shared_->wantsMore = true;
  }
  shared_->changed.notify_all();
}

void PreviewJob::Start(void (*work)(const std::shared_ptr<Shared>&), const std::shared_ptr<Shared>& shared) {
  Threads& threads = AllThreads();
  threads.Count(1);
  try {
    std::thread([work, owned = shared, &threads]() mutable {
      work(owned);
      owned.reset();
      threads.Count(-1);
    }).detach();
  } catch (...) {
    threads.Count(-1);
    throw;
  }
}

bool PreviewJob::WaitForAll(std::chrono::milliseconds time) {
  Threads& threads = AllThreads();
  std::unique_lock lock(threads.mutex);
  return threads.changed.wait_for(lock, time, [&threads] { return threads.running == 0; });
}

// --- In the job's thread ---

void PreviewJob::Work(const std::shared_ptr<Shared>& shared) {
  try {
    std::shared_ptr<QueryRunner> runner = shared->open();
    bool givenUp = false;
    {
      const std::lock_guard lock(shared->mutex);
      givenUp = shared->givenUp;
      shared->runner = runner;
    }
    if (!givenUp) Read(*shared, *runner);
  } catch (const Error& error) {
    shared->TellFailure(error.What(), error.Offset());
  } catch (const std::exception& error) {
    shared->TellFailure(PhraseOf(error));
  } catch (...) {
    shared->TellFailure(text::UnknownError);
  }
  std::shared_ptr<QueryRunner> last;  // goes when the lock is gone: closing may take long
  const std::lock_guard lock(shared->mutex);
  shared->ended = true;
  last.swap(shared->runner);
  shared->changed.notify_all();
}

void PreviewJob::Read(Shared& shared, QueryRunner& runner) {
  PreviewNews columns{.kind = PreviewNews::Kind::Columns, .columns = runner.Execute(shared.sql, shared.dialect)};
  shared.Tell(std::move(columns));
  while (true) {
    PreviewNews news;
    try {
      news.more = runner.Fetch(kBlockRows, news.rows);
      news.cutOff = !news.more && runner.WasCutOff();
    } catch (...) {
      news.failing = true;
      shared.Tell(std::move(news));  // the rows before the failure
      throw;
    }
    const bool more = news.more;
    shared.Tell(std::move(news));
    if (!more) return;
    std::unique_lock lock(shared.mutex);
    const bool asked =
        shared.changed.wait_for(lock, kPatience, [&shared] { return shared.wantsMore || shared.givenUp; });
    if (shared.givenUp) return;
    shared.wantsMore = false;
    lock.unlock();
    if (asked) continue;
    shared.Tell({.kind = PreviewNews::Kind::Closed});
    return;
  }
}

// --- In a thread that stops the source ---

void PreviewJob::StopSource(const std::shared_ptr<Shared>& shared) {
  std::unique_lock lock(shared->mutex);
  for (int i = 0; i < kMostStops && !shared->ended; ++i) {
    if (std::shared_ptr<QueryRunner> runner = shared->runner) {
      lock.unlock();
      runner->Stop();
      runner.reset();
      lock.lock();
    }
    shared->changed.wait_for(lock, kStopAgain, [&shared] { return shared->ended; });
  }
}

}  // namespace zrqrybld
