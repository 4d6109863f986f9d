// Brackets of arrays, which stand in one another, unlike those of names. Pure.
#pragma once

#include <cstddef>
#include <string_view>

namespace zrqrybld {

/// Whether the bracket at the place begins an array: the word ARRAY stands close before it.
bool BeginsArray(std::string_view text, std::size_t open);

/// The place behind the bracket that closes the one at `open`, brackets in quotes left out; npos when none does. Takes
/// time in the length of what is between.
std::size_t EndOfArray(std::string_view text, std::size_t open);

}  // namespace zrqrybld
