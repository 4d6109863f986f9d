// Tables of texts as tab-separated text, the way spreadsheets put them on the clipboard. Pure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zrqrybld {

/// Lines end in CR LF, the last one too. A cell that holds a TAB, a line end or a quote stands in double quotes, its
/// quotes doubled.
std::string WriteTabText(const std::vector<std::vector<std::string>>& cells);

/// The lines and cells of such a text. Lines may end in CR LF, CR or LF, the last one need not end. A quote that is
/// never closed, or that does not begin its cell, is ordinary text.
std::vector<std::vector<std::string>> ReadTabText(std::string_view text);

}  // namespace zrqrybld
