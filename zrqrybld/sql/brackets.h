// Which brackets of an SQL text belong together.
//
// Pure. Brackets inside literals, quoted names and comments are text and belong to nothing.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// The places, in bytes from 0, of the bracket at `offset` and of its partner, in this order; none when there is no
/// round or curly bracket at `offset`, or it has no partner. Takes time in the length of the text.
ZRQRYBLD_API std::optional<std::pair<std::size_t, std::size_t>> MatchingBrackets(std::string_view text,
                                                                                 std::size_t offset);

}  // namespace zrqrybld
