// Colours for SQL text, from the library's own lexer.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

/// A piece of a text and how it looks. `start` and `length` count bytes of the UTF-8 text. A piece in
/// the `Error` role is underlined as well, so that it is seen without colour.
struct TextSpan {
  std::size_t start = 0;
  std::size_t length = 0;
  ColorRole role = ColorRole::Text;
  bool bold = false;
  friend bool operator==(const TextSpan&, const TextSpan&) = default;
};

/// How the pieces of a statement look: keywords, literals, comments; what is unfinished is an error.
ZRQRYBLD_API std::vector<TextSpan> HighlightSql(std::string_view text);
/// The same with a fault on top, from its place in bytes to the next blank.
ZRQRYBLD_API std::vector<TextSpan> HighlightWithFault(std::string_view text, std::optional<std::size_t> faultAt);

}  // namespace zrqrybld
