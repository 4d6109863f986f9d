// The naming rules of some kinds of data sources, by name.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "zrqrybld/sql/names.h"

namespace zrqrybld::test {

/// "none" (no source: never split), "brackets", "ansi", "backticks" and "picky" (with characters that its
/// table names may not hold or begin with).
inline NameRules RulesOf(std::string_view kind) {
  NameRules rules;
  rules.quotedIdentifiers = {"-", "*", "#", "$", " ", "."};
  rules.reservedWords = std::make_shared<const WordSet>(WordSet{"order", "count", "as"});
  if (kind == "none") return rules;
  rules.schemaSeparator = ".";
  if (kind == "ansi" || kind == "picky") rules.quotePrefix = rules.quoteSuffix = "\"";
  if (kind == "backticks") rules.quotePrefix = rules.quoteSuffix = "`";
  if (kind == "picky") {
    rules.invalidTableCharacters = "xQ";
    rules.invalidTableStartingCharacters = "_7";
  }
  if (kind != "ansi" && kind != "picky" && kind != "backticks" && kind != "brackets") {
    throw std::runtime_error("no such rules: " + std::string(kind));
  }
  return rules;
}

}  // namespace zrqrybld::test
