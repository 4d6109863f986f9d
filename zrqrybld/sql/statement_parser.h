// The parser: a SELECT statement as somebody typed it, or as the generator wrote it, as a syntax tree.
//
// Pure. It reads one SELECT of any dialect; what it reads and the designer cannot show is refused here or by whoever
// takes the tree over. Queries in FROM stay texts, and so do UNION and WITH: see sql/query_outline.h.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "zrqrybld/base/export.h"
#include "zrqrybld/sql/select_statement.h"

namespace zrqrybld {

struct Dialect;

struct ParseOptions {
  /// Whether parentheses that are opened in FROM may stay open up to its end: the generator leaves them so where tables
  /// are not joined, in the dialect that nests joins.
  bool openParenthesesInFrom = false;
  /// Whether "||" is refused beside AND and NOT, for it may mean OR, which they would take the operands from.
  bool pipesMayBeOr = false;
  /// Whether every statement has FROM; otherwise one that names no column may lack it, or have this table there.
  bool needsTables = true;
  std::string_view emptyTable = {};
  /// Whether nothing need stand behind FROM where no item of the select list is a column.
  bool mayEndAtFrom = true;
  /// Whether "[...]" close behind a value is a part of it.
  bool hasSubscripts = false;
  /// Whether what stands in double quotes where a value can stand is a text.
  bool doubleQuotesAreTexts = false;
  /// Whether the columns of a query in FROM can be named behind its name.
  bool namesColumns = false;
};

/// What the statements of the dialect are read by.
ZRQRYBLD_API ParseOptions OptionsFor(const Dialect& dialect);

/// Reads the statement. Takes time in the length of the text. The text must outlive the tree. SyntaxError, with place
/// and with what was expected, when it is no SELECT statement or one that cannot be shown.
ZRQRYBLD_API SelectStatement ParseSelect(std::string_view text, const ParseOptions& options = {});

/// Reads a condition or another expression alone; nothing may follow it. SyntaxError otherwise.
Expression* ParseExpressionText(std::string_view text, SyntaxArena& arena);

/// An expression with the name that is to be its column's.
struct AliasedText {
  std::string expression;
  std::string alias;
};

/// "expression AS name" or "name: expression", as people type them; none for a text without a name.
std::optional<AliasedText> SplitAlias(std::string_view text);

}  // namespace zrqrybld
