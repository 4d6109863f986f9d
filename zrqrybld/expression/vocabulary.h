// Vocabulary: the words that the expression tools offer, as plain data.
#pragma once

#include <string>
#include <vector>

namespace zrqrybld {

/// A function, an operator or a keyword of the catalogs.
struct VocabularyWord {
  std::string name;
  std::string syntax;  ///< what is inserted, with "@" placeholders
  std::string description;
  bool aggregate = false;  ///< a function over many rows
  bool condition = false;  ///< an operator that makes a condition, or joins two
};

struct Vocabulary {
  std::vector<VocabularyWord> functions;  ///< without the grid's grouping choices, which are no functions
  std::vector<VocabularyWord> operators;
  std::vector<VocabularyWord> keywords;
  std::vector<VocabularyWord> parameters;  ///< the parameter marker
  std::vector<VocabularyWord> pieces;      ///< expressions of several words, to be filled in
  std::vector<VocabularyWord> endings;     ///< such pieces that go on behind a function
  std::vector<std::string> recent;         ///< the names of what was taken lately, the latest first
  bool fullJoin = true;                    ///< the dialect has FULL JOIN
};

}  // namespace zrqrybld
