// What all tests of providers have in common: a source, or the reason why there is none.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

#include "tests/providers/sources.h"

namespace zrqrybld::test {

/// Whether a source that is missing is a failure, as in CI, and not only left out.
inline bool MustHaveSources() {
  const char* ci = std::getenv("CI");
  return ci && std::string_view(ci) == "true";
}

/// A test of one source. Where it cannot be had the test is skipped and says so, and in CI it fails.
class ProviderTest : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override {
    source_ = &GetSource(GetParam());
    if (source_->missing.empty()) return;
    if (MustHaveSources()) FAIL() << source_->name << ": " << source_->missing;
    GTEST_SKIP() << "No " << source_->name << ": " << source_->missing;
  }

  const Source* source_ = nullptr;
};

}  // namespace zrqrybld::test
