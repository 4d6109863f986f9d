// Where the rows without a value come when a query is sorted.
#pragma once

#include <cstdint>
#include <string_view>

namespace zrqrybld {

/// `Usual` leaves it to the source: some take a missing value for the smallest, some for the largest.
enum class NullsPlace : std::uint8_t { Usual, First, Last };

/// What a statement says of it behind the sorted term; "" for the usual.
constexpr std::string_view WordsOf(NullsPlace place) {
  return place == NullsPlace::First ? " NULLS FIRST" : place == NullsPlace::Last ? " NULLS LAST" : "";
}

}  // namespace zrqrybld
