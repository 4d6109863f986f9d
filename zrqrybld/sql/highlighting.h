// Colours for SQL text, from the library's own lexer.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "zrqrybld/adapters/qt/qt_text_area.h"
#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// How the pieces of a statement look: keywords, literals, comments; what is unfinished is an error.
ZRQRYBLD_API std::vector<TextSpan> HighlightSql(std::string_view text);
/// The same with a fault on top, from its place in bytes to the next blank.
std::vector<TextSpan> HighlightWithFault(std::string_view text, std::optional<std::size_t> faultAt);

}  // namespace zrqrybld
