#include "zrqrybld/sql/array_brackets.h"

#include <cctype>

#include "zrqrybld/base/text.h"

namespace zrqrybld {

bool BeginsArray(std::string_view text, std::size_t open) {
  constexpr std::string_view kWord = "ARRAY";
  if (open < kWord.size() || !EqualsNoCase(text.substr(open - kWord.size(), kWord.size()), kWord)) return false;
  if (open == kWord.size()) return true;
  const auto before = static_cast<unsigned char>(text[open - kWord.size() - 1]);
  constexpr std::string_view kOfNames = "_$#@.\"]`";
  return std::isalnum(before) == 0 && before < 0x80 && kOfNames.find(static_cast<char>(before)) == kOfNames.npos;
}

std::size_t EndOfArray(std::string_view text, std::size_t open) {
  std::size_t depth = 0;
  for (std::size_t at = open; at < text.size(); ++at) {
    const char c = text[at];
    if (c == '\'' || c == '"') {
      at = text.find(c, at + 1);
      if (at == std::string_view::npos) return at;
    } else if (c == '[') {
      ++depth;
    } else if (c == ']' && --depth == 0) {
      return at + 1;
    }
  }
  return std::string_view::npos;
}

}  // namespace zrqrybld
