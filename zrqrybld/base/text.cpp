#include "zrqrybld/base/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>

namespace zrqrybld {
namespace {

struct FoldRange {
  std::uint32_t first;
  std::uint32_t last;
  std::uint32_t step;
  std::int32_t delta;
};

constexpr FoldRange kFoldRanges[] = {
#include "zrqrybld/base/case_folding.inc"
};

char32_t FoldCharacter(char32_t c) {
  const auto* range = std::ranges::upper_bound(kFoldRanges, c, {}, &FoldRange::first);
  // Ranges with step 2 interleave, so the one before may hold the character too.
  for (int tries = 0; tries < 2 && range != std::begin(kFoldRanges); ++tries) {
    --range;
    if (c <= range->last && (c - range->first) % range->step == 0) {
      return static_cast<char32_t>(static_cast<std::int64_t>(c) + range->delta);
    }
  }
  return c;
}

constexpr char FoldAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Looks at every character: without an early end the compiler takes many at once.
bool IsAscii(std::string_view text) {
  unsigned char all = 0;
  for (const char c : text) all |= static_cast<unsigned char>(c);
  return all < 0x80;
}

bool EqualsAsciiNoCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, {}, FoldAscii, FoldAscii);
}

// What ends a text that `opening` begins, or no character when it begins none.
constexpr char ClosingQuote(char opening) {
  switch (opening) {
    case '[':
      return ']';
    case '"':
    case '\'':
    case '`':
      return opening;
    default:
      return '\0';
  }
}

}  // namespace

std::string FoldCase(std::string_view text) {
  std::string folded;
  if (IsAscii(text)) {
    folded = text;
    for (char& c : folded) c = FoldAscii(c);
    return folded;
  }
  folded.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    if (static_cast<unsigned char>(text[i]) < 0x80) {
      folded += FoldAscii(text[i++]);
      continue;
    }
    const std::size_t start = i;
    const char32_t c = DecodeUtf8(text, i);
    const char32_t f = FoldCharacter(c);
    if (f == c) {
      folded.append(text, start, i - start);  // keeps bytes that are no UTF-8 as they are
    } else {
      AppendUtf8(folded, f);
    }
  }
  return folded;
}

std::size_t HashNoCase::operator()(std::string_view text) const {
  constexpr std::hash<std::string_view> kHash;
  char folded[64];
  if (text.size() > sizeof folded || !IsAscii(text)) return kHash(FoldCase(text));
  std::ranges::transform(text, folded, FoldAscii);
  return kHash({folded, text.size()});
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
  if (a == b) return true;
  if (IsAscii(a) && IsAscii(b)) return a.size() == b.size() && EqualsAsciiNoCase(a, b);
  return FoldCase(a) == FoldCase(b);
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && EqualsAsciiNoCase(text.substr(0, prefix.size()), prefix);
}

std::size_t FindNoCase(std::string_view text, std::string_view needle, std::size_t from) {
  if (from > text.size()) return std::string_view::npos;
  const std::string_view rest = text.substr(from);
  if (!needle.empty() && UpperAscii(needle[0]) == FoldAscii(needle[0])) {  // no letter: found at once
    for (std::size_t at = text.find(needle[0], from); at < text.size(); at = text.find(needle[0], at + 1)) {
      if (StartsWithNoCase(text.substr(at), needle)) return at;
    }
    return std::string_view::npos;
  }
  const auto found = std::search(rest.begin(), rest.end(), needle.begin(), needle.end(),
                                 [](char a, char b) { return FoldAscii(a) == FoldAscii(b); });
  if (found == rest.end() && !needle.empty()) return std::string_view::npos;
  return from + static_cast<std::size_t>(found - rest.begin());
}

namespace {

template <class Find>
std::string ReplaceWith(std::string_view text, std::string_view from, std::string_view to, Find find) {
  std::string result;
  if (from.empty()) return std::string(text);
  std::size_t start = 0;
  for (std::size_t at = find(start); at != std::string_view::npos; at = find(start)) {
    result.append(text, start, at - start);
    result += to;
    start = at + from.size();
  }
  result.append(text, start);
  return result;
}

}  // namespace

std::string ReplaceNoCase(std::string_view text, std::string_view from, std::string_view to) {
  return ReplaceWith(text, from, to, [&](std::size_t start) { return FindNoCase(text, from, start); });
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
  return ReplaceWith(text, from, to, [&](std::size_t start) { return text.find(from, start); });
}

std::string UpperAscii(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) c = UpperAscii(c);
  return upper;
}

std::string_view Trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string_view TrimWhite(std::string_view text) {
  while (!text.empty() && IsWhite(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsWhite(text.back())) text.remove_suffix(1);
  return text;
}

std::vector<std::string_view> Split(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> pieces;
  if (separator.empty()) return {text};
  std::size_t start = 0;
  for (std::size_t at = text.find(separator); at != std::string_view::npos; at = text.find(separator, start)) {
    pieces.push_back(text.substr(start, at - start));
    start = at + separator.size();
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

namespace {

// The position behind the quoted text that begins at `start`, 0 when it is never closed.
std::size_t QuotedEnd(std::string_view text, std::size_t start) {
  const char closing = ClosingQuote(text[start]);
  for (std::size_t i = start + 1; i < text.size(); ++i) {
    if (text[i] != closing) continue;
    if (i + 1 >= text.size() || text[i + 1] != closing) return i + 1;
    ++i;  // doubled, it stands for itself
  }
  return 0;
}

// For every position at which a quoted or bracketed text begins the position behind it, otherwise 0.
std::vector<std::size_t> FindEnclosures(std::string_view text) {
  std::vector<std::size_t> behind(text.size());
  std::vector<std::size_t> open;
  std::string unclosed;  // quotes known to have no end: looked for once, not again and again
  for (std::size_t i = 0; i < text.size();) {
    const char c = text[i];
    if (ClosingQuote(c) != '\0' && unclosed.find(c) == std::string::npos) {
      behind[i] = QuotedEnd(text, i);
      if (behind[i] != 0) {
        i = behind[i];
        continue;
      }
      unclosed += c;
    } else if (c == '(') {
      open.push_back(i);
    } else if (c == ')' && !open.empty()) {
      behind[open.back()] = i + 1;
      open.pop_back();
    }
    ++i;
  }
  return behind;
}

}  // namespace

std::vector<std::string_view> SplitOutsideQuotes(std::string_view text, std::string_view separator) {
  if (separator.empty() || text.find_first_of("\"'`[(") == std::string_view::npos) return Split(text, separator);
  const std::vector<std::size_t> behind = FindEnclosures(text);
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  for (std::size_t i = 0; i < text.size();) {
    if (behind[i] != 0) {
      i = behind[i];
    } else if (text.substr(i).starts_with(separator)) {
      pieces.push_back(text.substr(start, i - start));
      i += separator.size();
      start = i;
    } else {
      ++i;
    }
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

bool IsUtf8(std::string_view text) {
  if (IsAscii(text)) return true;
  for (std::size_t position = 0; position < text.size();) {
    const std::size_t before = position;
    if (DecodeUtf8(text, position) == 0xFFFD && position == before + 1) return false;
  }
  return true;
}

char32_t DecodeUtf8(std::string_view text, std::size_t& position) {
  constexpr char32_t kReplacement = 0xFFFD;
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(position);
  const std::size_t length = lead < 0x80             ? 1
                             : (lead & 0xE0) == 0xC0 ? 2
                             : (lead & 0xF0) == 0xE0 ? 3
                             : (lead & 0xF8) == 0xF0 ? 4
                                                     : 0;
  if (length == 1) return static_cast<char32_t>(text[position++]);
  if (length == 0 || position + length > text.size()) {
    ++position;
    return kReplacement;
  }
  char32_t c = lead & (0x7Fu >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(position + i) & 0xC0) != 0x80) {
      ++position;
      return kReplacement;
    }
    c = (c << 6) | (byte(position + i) & 0x3Fu);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (c < kSmallest[length] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) {
    ++position;
    return kReplacement;
  }
  position += length;
  return c;
}

void AppendUtf8(std::string& text, char32_t c) {
  const auto add = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (c < 0x80) {
    add(c);
  } else if (c < 0x800) {
    add(0xC0 | (c >> 6));
    add(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    add(0xE0 | (c >> 12));
    add(0x80 | ((c >> 6) & 0x3F));
    add(0x80 | (c & 0x3F));
  } else {
    add(0xF0 | (c >> 18));
    add(0x80 | ((c >> 12) & 0x3F));
    add(0x80 | ((c >> 6) & 0x3F));
    add(0x80 | (c & 0x3F));
  }
}

std::size_t CharacterCount(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++count) DecodeUtf8(text, i);
  return count;
}

std::string_view FirstCharacters(std::string_view text, std::size_t count) {
  std::size_t i = 0;
  for (; i < text.size() && count > 0; --count) DecodeUtf8(text, i);
  return text.substr(0, i);
}

std::string NumberText(double value) {
  char buffer[400];
  const double magnitude = std::fabs(value);
  const bool plain = magnitude == 0 || (magnitude >= 1e-5 && magnitude < 1e15);
  const auto result = plain ? std::to_chars(std::begin(buffer), std::end(buffer), value, std::chars_format::fixed)
                            : std::to_chars(std::begin(buffer), std::end(buffer), value);
  return {buffer, result.ptr};
}

namespace {

// Reads a number at the front; `*used` is the number of bytes it takes, 0 when there is none.
double ReadNumber(std::string_view text, std::size_t& used) {
  used = 0;
  std::size_t start = 0;
  if (text.starts_with('+')) {
    start = 1;
    if (text.substr(1).starts_with('-')) return 0;
  }
  // from_chars also accepts "inf" and "nan", which are words here.
  std::size_t first = start;
  if (first < text.size() && text[first] == '-') ++first;
  if (first >= text.size() || !(IsDigit(text[first]) || text[first] == '.')) return 0;
  double value = 0;
  const auto result = std::from_chars(text.data() + start, text.data() + text.size(), value);
  if (result.ec != std::errc{}) return 0;
  used = static_cast<std::size_t>(result.ptr - text.data());
  return value;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  text = Trim(text);
  std::size_t used = 0;
  const double value = ReadNumber(text, used);
  if (used == 0 || used != text.size()) return std::nullopt;
  return value;
}

double LeadingNumber(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return 0;
  std::size_t used = 0;
  return ReadNumber(text.substr(first), used);
}

}  // namespace zrqrybld
