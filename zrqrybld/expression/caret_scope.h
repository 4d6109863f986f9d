// CaretScope: what stands around the caret in a text that is being written.
//
// Pure, and never fails: half of a statement is what it is made for. It says what may stand at the caret and which
// tables the query there names, before and behind the caret.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/sql/keywords.h"

namespace zrqrybld {

/// What a text is.
enum class EditedText : std::uint8_t {
  Statement,   ///< a SELECT statement
  Expression,  ///< a column of the query
  Criterion,   ///< a condition on a column: it may begin with the operator
};

/// What may stand at the caret.
enum class CaretPlace : std::uint8_t {
  Nothing,     ///< a new name, a number, the inside of a literal or a comment
  Statement,   ///< the beginning of a statement
  Condition,   ///< the beginning of a criterion
  Operand,     ///< an expression
  Operator,    ///< what goes on behind an expression
  Table,       ///< a table of FROM
  AfterTable,  ///< what goes on behind a table of FROM
  Member,      ///< what follows a name and a dot
  Word,        ///< a word that completes the one before: BY behind GROUP
};

enum class SqlClause : std::uint8_t { None, Select, From, On, Where, GroupBy, Having, OrderBy };

/// A table that a query names.
struct ScopeTable {
  std::vector<std::string> parts;  ///< the parts of its name, without quotes
  std::string alias;               ///< "" for none
  bool outer = false;              ///< of a query around the one at the caret
  bool before = true;              ///< it stands before the caret

  /// What columns are qualified with.
  const std::string& Exposed() const { return alias.empty() ? parts.back() : alias; }
};

struct CaretScope {
  CaretPlace place = CaretPlace::Nothing;
  SqlClause clause = SqlClause::None;
  std::size_t from = 0;  ///< where the text to be replaced begins, in bytes
  std::size_t to = 0;    ///< and where it ends
  std::string typed;     ///< what is written of it before the caret, without an opening quote
  bool quoted = false;   ///< an opening quote stands before it

  Keyword word = Keyword::None;        ///< the word before the caret when it is a keyword
  std::vector<std::string> qualifier;  ///< the names before the dot
  std::vector<std::string> compared;   ///< the column left of the "=" before the caret, by its parts
  std::vector<std::string> aliases;    ///< the names that the select list gives
  std::vector<ScopeTable> tables;      ///< those of the query at the caret first, in the order of the text
  bool joinOpen = false;               ///< a table was joined and no ON follows it yet
  bool mayBeName = false;              ///< a new name may be written here as well
  bool conditionStart = false;         ///< a condition may begin at the caret

  /// The last table of FROM before the caret; -1 when there is none.
  std::ptrdiff_t lastTable = -1;
};

/// Reads the text around the caret, which is given in bytes.
CaretScope ReadCaretScope(std::string_view text, std::size_t caret, EditedText kind);

}  // namespace zrqrybld
