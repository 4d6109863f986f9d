// Whether two texts are the same SQL in another layout. Pure.
#pragma once

#include <string_view>
#include <vector>

#include "zrqrybld/sql/lexer.h"

namespace zrqrybld {

/// The tokens of a text without its comments, and without the sign that ends a statement.
std::vector<Token> WordsOf(std::string_view text);

/// Whether the texts, of which these are the words, say the same in the same words, in any letter case.
bool SameWords(std::string_view text, const std::vector<Token>& words, std::string_view other,
               const std::vector<Token>& otherWords);
bool SameWords(std::string_view text, std::string_view other);

}  // namespace zrqrybld
