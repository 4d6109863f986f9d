// Placeholders: the words beginning with "@" in the syntax of a function or an operator, which the user fills in.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// A place in a text, in bytes.
struct TextRange {
  std::size_t start = 0;
  std::size_t length = 0;
  friend bool operator==(const TextRange&, const TextRange&) = default;
};

/// A text to be inserted, and the places in it that are to be filled in, in their order.
struct TextTemplate {
  std::string text;
  std::vector<TextRange> fields;
};

/// The syntax as it is inserted: the notes behind a placeholder (":af=0") are taken away. Nothing inside quotes is a
/// placeholder.
ZRQRYBLD_API TextTemplate ReadTemplate(std::string_view syntax);

}  // namespace zrqrybld
