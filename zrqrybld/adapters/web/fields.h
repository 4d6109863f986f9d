// Lists of texts as one text, in which they cross to the page and back: each with its length before it, so that nothing
// in them has to be escaped. "3:one4:four" is {"one", "four"}; a list in a list is one of its texts.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zrqrybld {

using Fields = std::vector<std::string>;

/// Lengths are bytes here and in `Unpacked`; the page counts UTF-8 likewise.
inline std::string Packed(const Fields& fields) {
  std::string text;
  for (const std::string& field : fields) text += std::to_string(field.size()) + ":" + field;
  return text;
}

/// What is not such a list ends it.
inline Fields Unpacked(std::string_view text) {
  Fields fields;
  while (!text.empty()) {
    const std::size_t colon = text.find(':');
    std::size_t length = 0;
    const auto read = std::from_chars(text.data(), text.data() + std::min(colon, text.size()), length);
    if (colon == std::string_view::npos || read.ptr != text.data() + colon) break;
    text.remove_prefix(colon + 1);
    if (length > text.size()) break;
    fields.emplace_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return fields;
}

}  // namespace zrqrybld
