// Where in a criterion a value is being written. Pure; half-written text is what it is made for.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zrqrybld {

/// The value at the caret; places in bytes.
struct ValuePlace {
  std::size_t from = 0;  ///< where it begins, an opening quote included
  std::size_t to = 0;    ///< and where it ends, also behind the caret
  std::string typed;     ///< what is written of it before the caret, without quotes
};

/// None where no value can stand: behind IS, behind a value that is complete, and inside expressions.
std::optional<ValuePlace> FindValuePlace(std::string_view text, std::size_t caret);

}  // namespace zrqrybld
