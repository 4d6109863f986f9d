#include "platform/connection_string.h"

#include <algorithm>

#include "base/text.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kPasswordKeys[] = {"PWD", "Password", "Passwd", "Jet OLEDB:Database Password"};

bool IsPasswordKey(std::string_view key) {
  return std::ranges::any_of(kPasswordKeys, [key](std::string_view known) { return EqualsNoCase(key, known); });
}

constexpr char ClosingQuote(char opening) { return opening == '{' ? '}' : opening; }

// Reads a quoted value at `position` (on its opening character) and leaves the position behind it.
std::string ReadQuoted(std::string_view text, std::size_t& position) {
  const char closing = ClosingQuote(text[position++]);
  std::string value;
  while (position < text.size()) {
    const char c = text[position++];
    if (c == closing) {
      if (position >= text.size() || text[position] != closing) break;
      ++position;
    }
    value += c;
  }
  return value;
}

}  // namespace

ConnectionString::ConnectionString(std::string_view text) {
  std::size_t position = 0;
  while (position < text.size()) {
    const std::size_t keyEnd = std::min(text.find_first_of("=;", position), text.size());
    std::string key(TrimWhite(text.substr(position, keyEnd - position)));
    std::string value;
    position = keyEnd;
    if (position < text.size() && text[position] == '=') {
      ++position;
      while (position < text.size() && IsWhite(text[position])) ++position;
      if (position < text.size() && (text[position] == '"' || text[position] == '\'' || text[position] == '{')) {
        value = ReadQuoted(text, position);
        position = std::min(text.find(';', position), text.size());
      } else {
        const std::size_t end = std::min(text.find(';', position), text.size());
        value = TrimWhite(text.substr(position, end - position));
        position = end;
      }
    }
    if (!key.empty()) parts_.emplace_back(std::move(key), std::move(value));
    ++position;  // the ";"
  }
}

std::optional<std::string> ConnectionString::Get(std::string_view key) const {
  const auto part = std::ranges::find_if(parts_, [key](const auto& p) { return EqualsNoCase(p.first, key); });
  if (part == parts_.end()) return std::nullopt;
  return part->second;
}

std::string ConnectionString::WithoutPassword() const {
  std::string text;
  for (const auto& [key, value] : parts_) {
    if (IsPasswordKey(key)) continue;
    if (!text.empty()) text += ';';
    text += key;
    text += '=';
    text += QuoteValue(value);
  }
  return text;
}

std::string ConnectionString::QuoteValue(std::string_view value) {
  const bool plain = value.find_first_of(";\"'{}=") == std::string_view::npos && Trim(value).size() == value.size();
  if (plain) return std::string(value);
  return '"' + ReplaceAll(value, "\"", "\"\"") + '"';
}

}  // namespace zrqrybld
