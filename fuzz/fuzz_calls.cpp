// Bytes as calls: each is a choice on a walk over all public members by name, their arguments and their events.
#include <cstdint>
#include <cstdlib>
#include <span>

#include "tests/automation/walk.h"

namespace {

// One byte a choice, two where there is more to choose from; the first of all when there are none left.
class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : left_(data, size) {}

  bool Empty() const { return left_.empty(); }
  std::size_t Below(std::size_t end) {
    std::size_t number = Next();
    if (end > 256) number = number * 256 + Next();
    return number % end;
  }

 private:
  std::size_t Next() {
    if (left_.empty()) return 0;
    const std::uint8_t byte = left_.front();
    left_ = left_.subspan(1);
    return byte;
  }

  std::span<const std::uint8_t> left_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr int kMostSteps = 100;
  Bytes bytes(data, size);
  const zrqrybld::test::WalkChoices choices{
      .goesOn = [&bytes, left = kMostSteps]() mutable { return left-- > 0 && !bytes.Empty(); },
      .below = [&bytes](std::size_t end) { return bytes.Below(end); }};
  if (!zrqrybld::test::TakeWalk(choices).empty()) std::abort();
  return 0;
}
