#include "zrqrybld/base/error.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace zrqrybld {
namespace {

TEST(Error, WrapsItsCauseWithNumberWordsAndPlace) {
  const Error cause(-2147467259, "Disk I/O error", 12);
  const Error wrapped = WrapError(ErrorLoadingQuery, "Cannot load.", cause);
  EXPECT_EQ(wrapped.Number(), 40003);
  EXPECT_EQ(wrapped.Description(), "Cannot load.\r\n[-2147467259] Disk I/O error");
  EXPECT_STREQ(wrapped.what(), wrapped.Description().c_str());
  EXPECT_EQ(wrapped.Offset(), 12u);

  // Twice wrapped keeps both; a standard exception has no number of its own.
  EXPECT_EQ(WrapError(1, "Outer.", wrapped).Description(),
            "Outer.\r\n[40003] Cannot load.\r\n[-2147467259] Disk I/O error");
  const Error standard = WrapError(ErrorParsingText, "Bad.", std::out_of_range("at"));
  EXPECT_EQ(standard.Description(), "Bad.\r\n[0] at");
  EXPECT_EQ(standard.Offset(), std::nullopt);
}

}  // namespace
}  // namespace zrqrybld
