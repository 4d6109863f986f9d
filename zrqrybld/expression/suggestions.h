// Suggestions: what can be written next at the caret.
//
// A pure function of the text, the caret and what is known; half-written text is what it is made for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/expression/caret_scope.h"
#include "zrqrybld/expression/source_facts.h"
#include "zrqrybld/expression/vocabulary.h"
#include "zrqrybld/platform/list_entry.h"
#include "zrqrybld/sql/names.h"

namespace zrqrybld {

using SuggestionKind = EntryKind;

struct Suggestion {
  SuggestionKind kind = SuggestionKind::Keyword;
  std::string label;      ///< what the list shows
  std::string insert;     ///< what is written, with "@" placeholders; names in quotes where they need them
  std::string detail;     ///< shown beside the label: a column's table, a function's syntax; may be empty
  bool asksDate = false;  ///< a date is chosen first, beginning at `insert`
};

struct SuggestionList {
  std::size_t from = 0;  ///< where the text begins that a suggestion replaces, in bytes
  std::size_t to = 0;
  std::string typed;              ///< what is written of it already
  bool mayBeName = false;         ///< a new name may be written here: nothing may be taken without being asked for
  bool member = false;            ///< the caret stands behind a name and its dot
  std::vector<Suggestion> items;  ///< the best one first; at most `kMostSuggestions`
};

inline constexpr std::size_t kMostSuggestions = 200;

struct SuggestionRequest {
  std::string_view text;
  std::size_t caret = 0;  ///< in bytes
  EditedText kind = EditedText::Statement;
  SourceFacts& facts;
  const Vocabulary& words;
  const NameRules& names;
};

/// What fits at the caret: what begins with the typed text first, then what holds it; of these what fits best.
SuggestionList Suggest(const SuggestionRequest& request);

}  // namespace zrqrybld
