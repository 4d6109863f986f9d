// The table of texts: every text that the library and its windows can show, with its number and its English.
//
// A text is one row of base/texts_ROOM.inc: its name, its number, the English and what its placeholders are. Rows are
// in the order of the numbers; those below 1000 are captions whose numbers applications know.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace zrqrybld {

struct TextRow {
  std::int32_t number;
  std::string_view english;       ///< an ampersand marks the access key of a menu or button
  std::string_view placeholders;  ///< what they stand for, for whoever translates; "" when it has none
};

/// All texts in the order of their numbers.
std::span<const TextRow> AllTexts();

/// The built-in text under the number; "" for a number that nobody has.
std::string_view DefaultText(std::int32_t number);

}  // namespace zrqrybld
