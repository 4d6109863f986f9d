// Walks by chance.
//
// ZRQRYBLD_WALKS says how many walks, ZRQRYBLD_WALK_SECONDS for how long at most, ZRQRYBLD_WALK_FIRST where to begin;
// with ZRQRYBLD_WALK_TRACE each call is printed before it is made.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>

#include "tests/automation/walk.h"

namespace zrqrybld {
namespace {

using std::chrono::steady_clock;

std::size_t Setting(const char* name, std::size_t otherwise) {
  const char* text = std::getenv(name);
  return text ? static_cast<std::size_t>(std::strtoull(text, nullptr, 10)) : otherwise;
}

class Walks : public testing::TestWithParam<unsigned> {};

TEST_P(Walks, ByNameEndInTheChangeOrANumberedError) {
  constexpr unsigned kParts = 4;
  const std::size_t count = Setting("ZRQRYBLD_WALKS", ZRQRYBLD_USUAL_WALKS);
  const auto first = static_cast<unsigned>(Setting("ZRQRYBLD_WALK_FIRST", 1));
  const auto end = steady_clock::now() + std::chrono::seconds(Setting("ZRQRYBLD_WALK_SECONDS", 1'000'000));
  const bool traces = Setting("ZRQRYBLD_WALK_TRACE", 0) != 0;
  for (unsigned seed = first + GetParam(); seed < first + count && steady_clock::now() < end; seed += kParts) {
    SCOPED_TRACE("walk " + std::to_string(seed));
    if (traces) std::cerr << "walk " << seed << std::endl;
    std::mt19937 engine(seed);
    const test::WalkChoices choices{.goesOn = [left = 40]() mutable { return left-- > 0; },
                                    .below = [&](std::size_t bound) { return engine() % bound; },
                                    .traces = traces};
    ASSERT_NO_THROW(ASSERT_EQ(test::TakeWalk(choices), ""));
  }
}

INSTANTIATE_TEST_SUITE_P(Part, Walks, testing::Range(0U, 4U));

}  // namespace
}  // namespace zrqrybld
