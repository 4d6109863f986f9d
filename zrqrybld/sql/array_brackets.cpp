#include "zrqrybld/sql/array_brackets.h"

#include <cctype>

#include "zrqrybld/base/text.h"

namespace zrqrybld {

namespace {

bool IsOfName(char c) {
  constexpr std::string_view kOfNames = "_$#@.\"]`";
  const auto byte = static_cast<unsigned char>(c);
  return std::isalnum(byte) != 0 || byte >= 0x80 || kOfNames.find(c) != kOfNames.npos;
}

bool BeginsArray(std::string_view text, std::size_t open) {
  constexpr std::string_view kWord = "ARRAY";
  if (open < kWord.size() || !EqualsNoCase(text.substr(open - kWord.size(), kWord.size()), kWord)) return false;
  return open == kWord.size() || !IsOfName(text[open - kWord.size() - 1]);
}

// Each is looked through anew: a bound keeps brackets that nobody closes from taking the time of all squared.
constexpr std::size_t kLongestSubscript = 1000;

bool HoldsSubscript(std::string_view text, std::size_t open) {
  const char before = open == 0 ? ' ' : text[open - 1];
  if (before == '.' || !(IsOfName(before) || before == ')')) return false;
  const std::size_t next = text.find_first_of("[]", open + 1);
  return next != std::string_view::npos && text[next] == '[' && next > open + 1 && IsOfName(text[next - 1]) &&
         EndOfArray(text.substr(0, open + kLongestSubscript), open) != std::string_view::npos;
}

}  // namespace

bool HasOwnBrackets(std::string_view text, std::size_t open) {
  return BeginsArray(text, open) || HoldsSubscript(text, open);
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
