// A call that whoever waits for it may give up.
#pragma once

#include <future>
#include <thread>
#include <type_traits>
#include <utility>

namespace zrqrybld {

/// Runs `work` in a thread of its own and returns at once. Destroying the future does not wait: a call that is given up
/// goes on until it ends by itself, so `work` has to own everything that it uses. std::system_error when there can be
/// no further thread.
template <class Work>
std::future<std::invoke_result_t<Work&>> CallDetached(Work work) {
  std::packaged_task<std::invoke_result_t<Work&>()> task(std::move(work));
  std::future<std::invoke_result_t<Work&>> result = task.get_future();
  std::thread(std::move(task)).detach();
  return result;
}

}  // namespace zrqrybld
