#include "zrqrybld/platform/connection_string.h"

#include <algorithm>
#include <iterator>

#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

// How the names of password parts end; many have more in front, such as "Jet OLEDB:Database Password".
constexpr std::string_view kPasswordEndings[] = {"pwd", "password", "passwd"};

// Words in the names of other secrets.
constexpr std::string_view kSecretWords[] = {"token",   "secret",     "passphrase", "accesskey",  "apikey", "jwt",
                                             "authkey", "accountkey", "privatekey", "credential", "bearer"};

constexpr char ClosingQuote(char opening) { return opening == '{' ? '}' : opening; }

// Reads a quoted value at `position` (on its opening character) and leaves the position behind it. Nothing is read
// when the quotation is never closed: taking all the rest would hide a password in the value.
std::optional<std::string> ReadQuoted(std::string_view text, std::size_t& position) {
  const char closing = ClosingQuote(text[position]);
  std::string value;
  for (std::size_t i = position + 1; i < text.size(); ++i) {
    if (text[i] == closing) {
      if (i + 1 >= text.size() || text[i + 1] != closing) {
        position = i + 1;
        return value;
      }
      ++i;
    }
    value += text[i];
  }
  return std::nullopt;
}

// How deep connection strings are looked for inside values. Two layers exist in practice.
constexpr int kDeepest = 8;

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
      std::optional<std::string> quoted;
      if (position < text.size() && (text[position] == '"' || text[position] == '\'' || text[position] == '{')) {
        quoted = ReadQuoted(text, position);
      }
      const std::size_t end = std::min(text.find(';', position), text.size());
      value = quoted ? *std::move(quoted) : TrimWhite(text.substr(position, end - position));
      position = end;
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

bool ConnectionString::IsPasswordKey(std::string_view key) {
  return std::ranges::any_of(kPasswordEndings, [key](std::string_view ending) {
    return key.size() >= ending.size() && EqualsNoCase(key.substr(key.size() - ending.size()), ending);
  });
}

bool ConnectionString::IsSecretKey(std::string_view key) {
  std::string letters;
  std::ranges::copy_if(key, std::back_inserter(letters), [](char c) { return IsWordByte(c) && c != '_'; });
  return IsPasswordKey(letters) || std::ranges::any_of(kSecretWords, [&](std::string_view word) {
           return FindNoCase(letters, word) != std::string::npos;
         });
}

std::string ConnectionString::WithoutPassword() const { return Hiding({}, kDeepest).first; }
std::string ConnectionString::Masked() const { return Hiding("***", kDeepest).first; }
bool ConnectionString::HoldsSecret() const { return Hiding({}, kDeepest).second; }

std::pair<std::string, bool> ConnectionString::Hiding(std::string_view mask, int layers) const {
  std::string text;
  bool hidden = false;
  for (const auto& [key, value] : parts_) {
    const bool secret = IsSecretKey(key);
    hidden |= secret;
    if (secret && mask.empty()) continue;
    if (!text.empty()) text += ';';
    text += key;
    text += '=';
    if (secret) {
      text += mask;
      continue;
    }
    // A value may be a connection string itself, passed on to a second layer with its own password.
    auto [inner, innerHidden] =
        layers > 0 ? ConnectionString(value).Hiding(mask, layers - 1) : std::pair{std::string(), false};
    text += QuoteValue(innerHidden ? inner : value);
    hidden |= innerHidden;
  }
  return {text, hidden};
}

std::string ConnectionString::QuoteValue(std::string_view value) {
  const bool plain =
      value.find_first_of(";\"'{}=") == std::string_view::npos && TrimWhite(value).size() == value.size();
  if (plain) return std::string(value);
  return '"' + ReplaceAll(value, "\"", "\"\"") + '"';
}

}  // namespace zrqrybld
