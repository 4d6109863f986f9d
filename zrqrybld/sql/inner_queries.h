// The queries that stand in an expression or a criterion, as parts of its text. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zrqrybld {

/// A query in parentheses: what stands between them, in bytes.
struct InnerQueryPlace {
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// The queries in their order, without those within others. What no parenthesis closes is none. Takes time in the
/// length of the text.
std::vector<InnerQueryPlace> InnerQueriesIn(std::string_view text);

/// The text with its queries cut down to what they read from: "IN (SELECT Orders…)". "" when it holds none.
std::string ShortWithQueries(std::string_view text);

}  // namespace zrqrybld
