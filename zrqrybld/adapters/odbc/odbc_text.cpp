#include "zrqrybld/adapters/odbc/odbc_text.h"

#include "zrqrybld/base/text.h"

namespace zrqrybld::odbc {
namespace {

constexpr char32_t kFirstBeyond = 0x10000;  // the first character that needs two units
constexpr char16_t kHigh = 0xD800;
constexpr char16_t kLow = 0xDC00;
constexpr char32_t kReplacement = 0xFFFD;

constexpr bool IsHigh(char16_t unit) { return (unit & 0xFC00) == kHigh; }
constexpr bool IsLow(char16_t unit) { return (unit & 0xFC00) == kLow; }

}  // namespace

std::u16string ToUtf16(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const char32_t character = DecodeUtf8(text, i);
    if (character < kFirstBeyond) {
      units += static_cast<char16_t>(character);
    } else {
      const char32_t rest = character - kFirstBeyond;
      units += static_cast<char16_t>(kHigh + (rest >> 10));
      units += static_cast<char16_t>(kLow + (rest & 0x3FF));
    }
  }
  return units;
}

std::string ToUtf8(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = text[i];
    if (IsHigh(text[i]) && i + 1 < text.size() && IsLow(text[i + 1])) {
      character = kFirstBeyond + ((character - kHigh) << 10) + (text[++i] - kLow);
    } else if (IsHigh(text[i]) || IsLow(text[i])) {
      character = kReplacement;
    }
    AppendUtf8(bytes, character);
  }
  return bytes;
}

}  // namespace zrqrybld::odbc
