// Keywords: the words with a meaning in the SELECT statements of our dialects.
#pragma once

#include <cstdint>
#include <string_view>

namespace zrqrybld {

// In ascending order of their names.
enum class Keyword : std::uint8_t {
  None,
  All,
  And,
  Any,
  As,
  Asc,
  Between,
  By,
  Case,
  Cast,
  Collate,
  Connect,
  Cross,
  Desc,
  Distinct,
  Distinctrow,
  Else,
  End,
  Escape,
  Except,
  Exists,
  False,
  Fetch,
  For,
  From,
  Full,
  Group,
  Having,
  In,
  Inner,
  Intersect,
  Interval,
  Into,
  Is,
  Join,
  Left,
  Like,
  Limit,
  Minus,
  Natural,
  Not,
  Null,
  Offset,
  On,
  Option,
  Or,
  Order,
  Outer,
  Over,
  Percent,
  Right,
  Rownum,
  Rows,
  Select,
  Some,
  Start,
  Then,
  To,
  Top,
  True,
  Union,
  Up,
  Using,
  When,
  Where,
  Window,
  With,
};

/// The keyword that the word is, in any letter case; `Keyword::None` when it is none.
Keyword KeywordOf(std::string_view word);

/// Whether the word, in any letter case, is a keyword.
inline bool IsSqlKeyword(std::string_view word) { return KeywordOf(word) != Keyword::None; }

/// The keyword in upper case; "" for `Keyword::None`.
std::string_view NameOf(Keyword keyword);

/// Whether the word, in any letter case, begins a clause behind a table that the designer cannot show.
bool BeginsTableClause(std::string_view word);

/// Whether the word can stand before the parenthesis of a call without quotes.
bool CanBeCalled(Keyword keyword);

/// Whether the word, in any letter case, has to stand in quotes as a name wherever it stands.
bool IsReservedName(std::string_view word);

/// Whether the word ends an expression or names a clause, so that it stands for no column and no alias without quotes.
bool IsReserved(Keyword keyword);

}  // namespace zrqrybld
