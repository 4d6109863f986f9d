#include "sql/source_rules.h"

#include "host/connection_info.h"

namespace zrqrybld {

NameRules CurrentNameRules(const QueryContext& context) {
  const qbProperties& properties = *context.Properties();
  NameRules rules;
  // A source may tell one quote for both sides, each side, or only the opening one.
  const auto known = [&](std::string_view key) {
    std::optional<std::string> text = properties.FindText(key);
    return text && !text->empty() ? text : std::nullopt;
  };
  const std::optional<std::string> both = known("QUOTE");
  if (const auto prefix = known("QUOTE_PREFIX"); prefix || both) {
    rules.quotePrefix = prefix ? *prefix : *both;
    rules.quoteSuffix = known("QUOTE_SUFFIX").value_or(ClosingQuote(rules.quotePrefix));
  }
  if (!IsTextSource(context)) rules.schemaSeparator = known("SCHEMA_SEPARATOR").value_or("");
  for (std::int32_t i = 1; i <= context.QuotedIdentifiers()->Count(); ++i) {
    rules.quotedIdentifiers.push_back(context.QuotedIdentifiers()->Item(i));
  }
  rules.invalidTableCharacters = known("INVALID_TABLE_CHARS").value_or("");
  rules.invalidTableStartingCharacters = known("INVALID_TABLE_STARTING_CHARS").value_or("");
  rules.reservedWords = context.ReservedWords();
  return rules;
}

}  // namespace zrqrybld
