// Names in SQL text: the one place that quotes, splits and renders them.
//
// Pure: the rules of a data source come in as data, text goes out. Any name makes the round trip,
// whatever characters it holds.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/sql_text.h"

namespace zrqrybld {

/// How a data source writes names.
struct NameRules {
  std::string quotePrefix = "[";
  std::string quoteSuffix = "]";
  /// Stands between schema and table; "" when names are never split.
  std::string schemaSeparator;
  /// Texts whose presence in a name forces it into quotes.
  std::vector<std::string> quotedIdentifiers;
  /// Characters that a table name may not hold, and may not begin with, without quotes.
  std::string invalidTableCharacters;
  std::string invalidTableStartingCharacters;
  /// Words with a meaning in SQL.
  std::shared_ptr<const WordSet> reservedWords;
  /// Words with a meaning in the dialect alone, in capitals and sorted.
  std::span<const std::string_view> dialectWords;
};

/// The closing partner of an opening quote text: "]" for "[", otherwise the same.
std::string ClosingQuote(std::string_view quotePrefix);

/// Whether the name is a word with a meaning: of SQL, of the dialect, or a reserved one of the rules.
bool IsReservedWord(std::string_view name, const NameRules& rules);

/// Whether the name is written in quotes: reserved words and those that begin or end a clause in every dialect, names
/// that hold a forcing or an invalid character, and whatever is no plain identifier. "*" never is.
bool NeedsQuotes(std::string_view name, const NameRules& rules);

/// The name as SQL text, in quotes where it needs them; closing quotes inside are doubled.
SqlText QuoteWhenNeeded(const Identifier& name, const NameRules& rules);

/// The name as SQL text, always in quotes.
SqlText Quote(const Identifier& name, const NameRules& rules);

/// The parts of a qualified name as SQL text, joined by the schema separator ("." when there is none).
SqlText RenderQualified(const std::vector<Identifier>& parts, const NameRules& rules);

/// The parts of a qualified name as somebody wrote it: split at the schema separator outside quotes,
/// each part without its quotes. One part when the source has no separator.
std::vector<Identifier> SplitName(std::string_view text, const NameRules& rules);

/// The text with the quotes around identifiers taken off; doubled closing quotes become one. String
/// literals are left alone. A quote that is never closed stays.
std::string RemoveIdentifierQuotes(std::string_view text, const NameRules& rules);

}  // namespace zrqrybld
