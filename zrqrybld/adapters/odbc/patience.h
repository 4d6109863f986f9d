// How long drivers may take. Only the adapter's sources include this.
#pragma once

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <utility>

#include "zrqrybld/base/detached_call.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_run.h"

namespace zrqrybld::odbc {

/// How long a driver may take to log in, and for any single call, in seconds.
inline constexpr int kPatienceSeconds = 8;

/// The connection is of no use any more. Error 3706.
class ConnectionLost final : public Error {
 public:
  explicit ConnectionLost(Phrase what) : Error(ErrorConnectionFailed, std::move(what)) {}
};

/// When the driver was last seen to return from a call. Shared by the thread that calls and the one that waits.
class Pulse {
 public:
  using Clock = std::chrono::steady_clock;

  /// For the thread that waits: a call begins, or nobody waits for its end any longer.
  void Begin() { last_ = Now(); }
  void GiveUp() { givenUp_ = true; }
  Clock::time_point Last() const { return Clock::time_point(Clock::duration(last_.load())); }

  /// For the thread that calls: the driver has returned. ConnectionLost when that was given up: a driver that has
  /// waited in vain may not survive another question.
  void Beat() {
    if (givenUp_) throw ConnectionLost(text::AnsweredTooLate);
    last_ = Now();
  }

 private:
  static Clock::rep Now() { return Clock::now().time_since_epoch().count(); }

  std::atomic<Clock::rep> last_ = Now();
  std::atomic<bool> givenUp_ = false;
};

/// Runs `work`, which calls a driver and beats `pulse` whenever the driver returns. ConnectionLost when it has not
/// returned for `kPatienceSeconds`.
///
/// No time-out of ODBC is sure: it is the driver's to keep, and some wait for a server that has gone silent as long as
/// the network does, which is for ever. A thread in such a call cannot be ended; so it is left behind with everything
/// that it uses, which `work` therefore owns, and both go when the driver returns after all.
template <class Work>
auto WithPatience(const std::shared_ptr<Pulse>& pulse, Work work) {
  pulse->Begin();
  auto result = CallDetached(std::move(work));
  const auto deadline = [&] { return pulse->Last() + std::chrono::seconds(kPatienceSeconds); };
  while (result.wait_until(deadline()) != std::future_status::ready) {
    if (Pulse::Clock::now() < deadline()) continue;
    pulse->GiveUp();
    throw ConnectionLost(Phrase(text::GivenUp, kPatienceSeconds));
  }
  return result.get();
}

}  // namespace zrqrybld::odbc
