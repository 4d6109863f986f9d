// Text helpers: Unicode case folding, trimming, splitting outside quotes and brackets, and the one
// text form of numbers. All text is UTF-8; bytes that are no UTF-8 pass through unchanged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// `text` with every character replaced by its Unicode simple case folding. Two texts are equal
/// "without regard to case" when their foldings are equal.
ZRQRYBLD_API std::string FoldCase(std::string_view text);

/// Whether the two texts are equal without regard to case.
ZRQRYBLD_API bool EqualsNoCase(std::string_view a, std::string_view b);

/// For hashed containers whose keys are found without regard to case, by any text and without a copy of it.
struct ZRQRYBLD_API HashNoCase {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const;
};
struct EqualNoCase {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const { return EqualsNoCase(a, b); }
};

/// Texts that are found without regard to case.
using WordSet = std::unordered_set<std::string, HashNoCase, EqualNoCase>;

/// Whether `text` begins with `prefix` without regard to case. Only for prefixes in ASCII.
ZRQRYBLD_API bool StartsWithNoCase(std::string_view text, std::string_view prefix);

/// The position of the first `needle` in `text` at or after `from` without regard to the case of
/// ASCII letters; `npos` when there is none.
ZRQRYBLD_API std::size_t FindNoCase(std::string_view text, std::string_view needle, std::size_t from = 0);

/// Every occurrence of `from` replaced by `to`, without regard to the case of ASCII letters.
ZRQRYBLD_API std::string ReplaceNoCase(std::string_view text, std::string_view from, std::string_view to);

/// Every occurrence of `from` replaced by `to`, exactly.
ZRQRYBLD_API std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to);

/// ASCII letters in upper case, everything else unchanged: for keywords, never for names.
ZRQRYBLD_API std::string UpperAscii(std::string_view text);

/// The text without blanks (U+0020) at both ends.
ZRQRYBLD_API std::string_view Trim(std::string_view text);

/// The text without blanks, tabs and line ends at both ends.
ZRQRYBLD_API std::string_view TrimWhite(std::string_view text);

/// The pieces of `text` between occurrences of `separator`. An empty separator gives one piece.
ZRQRYBLD_API std::vector<std::string_view> Split(std::string_view text, std::string_view separator);

/// Like `Split`, but a separator inside "...", '...', `...`, [...] or (...) does not count. Inside
/// quotes and square brackets the closing character doubled stands for itself. An opening character
/// that is never closed is ordinary text.
ZRQRYBLD_API std::vector<std::string_view> SplitOutsideQuotes(std::string_view text, std::string_view separator);

/// The number of Unicode characters in `text`; a byte that is no UTF-8 counts as one.
ZRQRYBLD_API std::size_t CharacterCount(std::string_view text);

/// The longest prefix of at most `count` characters.
ZRQRYBLD_API std::string_view FirstCharacters(std::string_view text, std::size_t count);

/// Decodes the character at `*position` and moves the position behind it. Bytes that are no UTF-8
/// yield U+FFFD, one at a time.
ZRQRYBLD_API char32_t DecodeUtf8(std::string_view text, std::size_t& position);

/// Whether all bytes are UTF-8.
ZRQRYBLD_API bool IsUtf8(std::string_view text);

/// Appends one character.
ZRQRYBLD_API void AppendUtf8(std::string& text, char32_t character);

/// The shortest decimal text that reads back as the same number, without exponent for magnitudes
/// from 1e-5 up to 1e15; no locale.
ZRQRYBLD_API std::string NumberText(double value);

/// The number that the whole of `text` (blanks around it allowed) writes in decimal form, with or
/// without sign, point and exponent; none when it is no number or none that a double can hold.
ZRQRYBLD_API std::optional<double> ParseNumber(std::string_view text);

/// The number that `text` begins with, 0 when it begins with none. Blanks in front are skipped.
ZRQRYBLD_API double LeadingNumber(std::string_view text);

/// Whether the character is a letter or digit of ASCII, "_" or any character beyond ASCII.
constexpr bool IsWordByte(char c) {
  const auto u = static_cast<unsigned char>(c);
  return (u >= '0' && u <= '9') || (u >= 'A' && u <= 'Z') || (u >= 'a' && u <= 'z') || u == '_' || u >= 0x80;
}
constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsWhite(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v'; }
constexpr char UpperAscii(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

}  // namespace zrqrybld
