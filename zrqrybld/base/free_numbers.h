// FreeNumbers: numbers from 0, the lowest free one first, each to one holder at a time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

namespace zrqrybld {

class FreeNumbers {
 public:
  int Take() {
    if (free_.empty()) {
      // Room for giving all of them back: that must need no memory.
      if (free_.capacity() <= static_cast<std::size_t>(next_)) free_.reserve(2 * static_cast<std::size_t>(next_) + 1);
      return next_++;
    }
    std::ranges::pop_heap(free_, std::greater());
    const int lowest = free_.back();
    free_.pop_back();
    return lowest;
  }
  /// Gives a number back that was taken.
  void GiveBack(int number) noexcept {
    free_.push_back(number);
    std::ranges::push_heap(free_, std::greater());
  }
  /// Whether nobody holds one.
  bool AllFree() const { return free_.size() == static_cast<std::size_t>(next_); }

 private:
  std::vector<int> free_;  // below `next_`; a heap, the lowest first
  int next_ = 0;
};

}  // namespace zrqrybld
