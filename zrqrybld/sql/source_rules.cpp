#include "zrqrybld/sql/source_rules.h"

#include <algorithm>

#include "zrqrybld/base/text.h"
#include "zrqrybld/host/connection_info.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/sql/dialect.h"

namespace zrqrybld {

namespace {

// The text under the key; none when it is missing or empty.
std::optional<std::string> Known(const QueryContext& context, std::string_view key) {
  std::optional<std::string> text = context.source.Properties()->FindText(key);
  return text && !text->empty() ? text : std::nullopt;
}

// A name that holds anything but letters, figures and "_" is quoted without being asked for, so that only texts of
// these are looked for in each name; those of one character all at once.
void AddForcingTexts(NameRules& rules, const StringCollection& texts) {
  for (const std::string& text : texts) {
    if (!std::ranges::all_of(text, IsWordByte)) continue;
    if (text.size() == 1) {
      rules.invalidTableCharacters += text;
    } else {
      rules.quotedIdentifiers.push_back(text);
    }
  }
}

}  // namespace

std::optional<NameQuotes> SourceQuotes(const QueryContext& context) {
  const std::optional<std::string> both = Known(context, "QUOTE");
  const std::optional<std::string> prefix = Known(context, "QUOTE_PREFIX");
  if (!prefix && !both) return std::nullopt;
  NameQuotes quotes{prefix ? *prefix : *both, {}};
  quotes.suffix = Known(context, "QUOTE_SUFFIX").value_or(ClosingQuote(quotes.prefix));
  return quotes;
}

NameRules CurrentNameRules(const QueryContext& context) {
  NameRules rules;
  const Dialect& dialect = context.design.CurrentDialect();
  if (!dialect.namePrefix.empty()) {
    rules.quotePrefix = dialect.namePrefix;
    rules.quoteSuffix = dialect.nameSuffix;
  } else if (std::optional<NameQuotes> quotes = SourceQuotes(context)) {
    rules.quotePrefix = std::move(quotes->prefix);
    rules.quoteSuffix = std::move(quotes->suffix);
  }
  rules.dialectWords = dialect.words;
  if (!IsTextSource(context)) {
    rules.schemaSeparator = Known(context, "SCHEMA_SEPARATOR").value_or(context.source.IsConnected() ? "" : ".");
  }
  rules.invalidTableCharacters = Known(context, "INVALID_TABLE_CHARS").value_or("");
  AddForcingTexts(rules, *context.source.QuotedIdentifiers());
  rules.invalidTableStartingCharacters = Known(context, "INVALID_TABLE_STARTING_CHARS").value_or("");
  rules.reservedWords = context.source.ReservedWords();
  return rules;
}

}  // namespace zrqrybld
