// Untouched: which part of a list may be another than it was at an earlier moment.
#pragma once

#include <algorithm>
#include <cstddef>

namespace zrqrybld {

/// All entries of a list but so many at its beginning and at its end may be others, or hold something else, than when
/// the list was last remembered. At first that is all of them.
struct Untouched {
  std::size_t before = 0;
  std::size_t behind = 0;

  /// Something has changed behind so many at the beginning, and before so many at the end.
  void Touch(std::size_t atBeginning, std::size_t atEnd) {
    before = std::min(before, atBeginning);
    behind = std::min(behind, atEnd);
  }
  /// The same for two lists of which the shorter one is so long: the ends do not overlap in either.
  Untouched Within(std::size_t shorter) const {
    const std::size_t begin = std::min(before, shorter);
    return {begin, std::min(behind, shorter - begin)};
  }
};

}  // namespace zrqrybld
