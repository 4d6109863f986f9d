#include "zrqrybld/sql/names.h"

#include <algorithm>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/keywords.h"
#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {
namespace {

// Letters, digits (not first), "_" and everything beyond ASCII but blanks; "@" and "$" are left to the source.
bool IsPlainIdentifier(std::string_view name) {
  if (name.empty() || IsDigit(name.front()) || !std::ranges::all_of(name, IsWordByte)) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (UnicodeBlankAt(name, i) != 0) return false;
  }
  return true;
}

bool HoldsAnyOf(std::string_view name, std::string_view characters) {
  return !characters.empty() && name.find_first_of(characters) != std::string_view::npos;
}

struct QuotePair {
  std::string_view prefix;
  std::string_view suffix;
};

// The end of the quoted identifier that begins at `start` (behind its closing quote), or npos when it
// is never closed. A doubled closing quote stands for itself.
std::size_t EndOfQuoted(std::string_view text, std::size_t start, const QuotePair& quotes) {
  std::size_t at = start + quotes.prefix.size();
  while ((at = text.find(quotes.suffix, at)) != std::string_view::npos) {
    at += quotes.suffix.size();
    if (!text.substr(at).starts_with(quotes.suffix)) return at;
    at += quotes.suffix.size();
  }
  return std::string_view::npos;
}

std::string Unquoted(std::string_view quoted, const QuotePair& quotes) {
  const std::string_view inner =
      quoted.substr(quotes.prefix.size(), quoted.size() - quotes.prefix.size() - quotes.suffix.size());
  return ReplaceAll(inner, std::string(quotes.suffix) + std::string(quotes.suffix), quotes.suffix);
}

// The pair of the source's quotes or of the usual ones that opens at the front of `text`. The source's own come
// first; a source that quotes with "'" is not believed, for that is a literal.
const QuotePair* QuotesAt(std::string_view text, const std::vector<QuotePair>& pairs) {
  const auto found = std::ranges::find_if(pairs, [&](const QuotePair& pair) { return text.starts_with(pair.prefix); });
  return found == pairs.end() ? nullptr : &*found;
}

std::vector<QuotePair> KnownQuotes(const NameRules& rules) {
  std::vector<QuotePair> pairs;
  if (!rules.quotePrefix.empty() && !rules.quoteSuffix.empty() && rules.quotePrefix != "'") {
    pairs.push_back({rules.quotePrefix, rules.quoteSuffix});
  }
  for (const QuotePair& usual : {QuotePair{"\"", "\""}, QuotePair{"[", "]"}, QuotePair{"`", "`"}})
    pairs.push_back(usual);
  return pairs;
}

}  // namespace

std::string ClosingQuote(std::string_view quotePrefix) { return quotePrefix == "[" ? "]" : std::string(quotePrefix); }

bool IsReservedWord(std::string_view name, const NameRules& rules) {
  if (IsReservedName(name) || (rules.reservedWords && rules.reservedWords->contains(name))) return true;
  return !rules.dialectWords.empty() && std::ranges::binary_search(rules.dialectWords, UpperAscii(name));
}

bool NeedsQuotes(std::string_view name, const NameRules& rules) {
  if (name == "*") return false;
  if (!IsPlainIdentifier(name)) return true;
  if (HoldsAnyOf(name, rules.invalidTableCharacters)) return true;
  if (HoldsAnyOf(name.substr(0, 1), rules.invalidTableStartingCharacters)) return true;
  if (std::ranges::any_of(rules.quotedIdentifiers, [name](const std::string& forcing) {
        return !forcing.empty() && name.find(forcing) != std::string_view::npos;
      })) {
    return true;
  }
  return IsReservedWord(name, rules);
}

SqlText Quote(const Identifier& name, const NameRules& rules) {
  const std::string& suffix = rules.quoteSuffix;
  return SqlText::Raw(rules.quotePrefix + ReplaceAll(name.Name(), suffix, suffix + suffix) + suffix);
}

SqlText QuoteWhenNeeded(const Identifier& name, const NameRules& rules) {
  return NeedsQuotes(name.Name(), rules) ? Quote(name, rules) : SqlText::Raw(name.Name());
}

SqlText RenderQualified(const std::vector<Identifier>& parts, const NameRules& rules) {
  const SqlText separator = rules.schemaSeparator.empty() ? SqlText(".") : SqlText::Raw(rules.schemaSeparator);
  SqlText text;
  for (const Identifier& part : parts) {
    if (!text.Empty()) text += separator;
    text += QuoteWhenNeeded(part, rules);
  }
  return text;
}

std::vector<Identifier> SplitName(std::string_view text, const NameRules& rules) {
  const std::vector<QuotePair> pairs = KnownQuotes(rules);
  std::vector<Identifier> parts;
  std::string part;
  for (std::size_t i = 0; i < text.size();) {
    const std::string_view rest = text.substr(i);
    // A quote opens only at the beginning of a part; elsewhere it is a character of the name.
    if (const QuotePair* quotes = part.empty() ? QuotesAt(rest, pairs) : nullptr) {
      const std::size_t end = EndOfQuoted(text, i, *quotes);
      const bool closesPart = end == text.size() || (end < text.size() && !rules.schemaSeparator.empty() &&
                                                     text.substr(end).starts_with(rules.schemaSeparator));
      if (closesPart) {
        part = Unquoted(text.substr(i, end - i), *quotes);
        parts.emplace_back(std::exchange(part, {}));
        if (end == text.size()) return parts;
        i = end + rules.schemaSeparator.size();
        if (i == text.size()) parts.emplace_back();
        continue;
      }
    }
    if (!rules.schemaSeparator.empty() && rest.starts_with(rules.schemaSeparator)) {
      parts.emplace_back(std::exchange(part, {}));
      i += rules.schemaSeparator.size();
      if (i == text.size()) parts.emplace_back();
      continue;
    }
    part += text[i++];
  }
  if (!part.empty() || parts.empty()) parts.emplace_back(std::move(part));
  return parts;
}

std::string RemoveIdentifierQuotes(std::string_view text, const NameRules& rules) {
  const std::vector<QuotePair> pairs = KnownQuotes(rules);
  std::string result;
  for (std::size_t i = 0; i < text.size();) {
    const std::string_view rest = text.substr(i);
    if (const QuotePair* quotes = QuotesAt(rest, pairs)) {
      const std::size_t end = EndOfQuoted(text, i, *quotes);
      if (end != std::string_view::npos) {
        result += Unquoted(text.substr(i, end - i), *quotes);
        i = end;
        continue;
      }
    } else if (text[i] == '\'') {
      const std::size_t end = EndOfQuoted(text, i, {"'", "'"});
      if (end != std::string_view::npos) {
        result.append(text, i, end - i);
        i = end;
        continue;
      }
    }
    result += text[i++];
  }
  return result;
}

}  // namespace zrqrybld
