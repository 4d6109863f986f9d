// The printer: an expression of the syntax tree as text again. Names and literals stay as they were written; what
// stands between them is made uniform: keywords in upper case, one blank between words, no comments.
#pragma once

#include <functional>
#include <string>

#include "zrqrybld/sql/select_statement.h"

namespace zrqrybld {

/// Appends the expression on one line.
void AppendExpression(std::string& text, const Expression& expression);

/// Writes an expression in another way: appends it to the text and answers true, or answers false.
using Substitution = std::function<bool(const Expression& expression, std::string& text)>;

/// The expression on one line, with parts of it written in another way; signs of one meaning are written alike.
std::string PrintExpression(const Expression& expression, const Substitution& substitution);

/// Appends the text with white space and comments outside of literals and quoted names turned into one blank each.
void AppendOnOneLine(std::string& text, std::string_view written);

/// The text with white space and comments outside of literals and quoted names turned into one blank each.
std::string OnOneLine(std::string_view text);

}  // namespace zrqrybld
