// Where in a statement an error lies, read from the words of the server that refuses it.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace zrqrybld {

/// The place in bytes from 0; none when the message tells none. Understood are a line with a mark below it ("LINE 2:
/// ..."), a number of characters ("at character 12"), the rest of the text ("near '...' at line 2"), and a quoted word
/// that the statement holds exactly once outside its literals.
std::optional<std::size_t> FindErrorPlace(std::string_view message, std::string_view sql);

}  // namespace zrqrybld
