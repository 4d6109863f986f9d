// Dialects as data: everything in which the five texts differ is a field of one row.
//
// Code asks a dialect for a decision, never for its name, so a new dialect is a new row.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "sql/join_kind.h"

namespace zrqrybld {

/// The SQL dialects, as the SQL pane's `SQLSyntax` names them.
enum SQLSyntaxEnum : std::int32_t {
  SQLSyntaxGeneric = 0,
  SQLSyntaxMSSQL = 1,
  SQLSyntaxOracle = 2,
  SQLSyntaxAccess = 3,
  SQLSyntaxOpenSQL = 4,
};

struct Dialect {
  /// Where joins stand: as JOIN clauses in FROM, or as conditions in WHERE beside a list of tables.
  enum class Joins : std::uint8_t { Clauses, Conditions };
  /// Parentheses around joined tables in FROM.
  enum class FromParentheses : std::uint8_t { None, Nested, Whole };
  /// Where the row limit stands.
  enum class Limit : std::uint8_t { Head, Condition, From };

  SQLSyntaxEnum syntax;
  std::string_view name;
  Joins joins;
  FromParentheses fromParentheses;
  /// The words before "JOIN", by `JoinTypeEnum`.
  std::array<std::string_view, 4> joinWords;
  /// What stands between the two fields of a condition, by `JoinTypeEnum`, and behind the second.
  std::array<std::string_view, 4> comparison;
  std::array<std::string_view, 4> afterCondition;
  /// Whether it can say "all rows of both tables".
  bool hasFullJoin;
  Limit limit;
  std::string_view limitBefore;
  std::string_view limitAfter;
  /// Whether a "%" in the row limit is written as the word PERCENT.
  bool limitTakesPercent;
  std::string_view selectSeparator;
  std::string_view fromSeparator;
  /// Parentheses around groups of conditions.
  std::string_view open;
  std::string_view close;
  /// Between a table and its alias in FROM.
  std::string_view tableAlias;
  /// The literals of the truth values, and what stands around a date where the source tells nothing.
  std::string_view yes = "True";
  std::string_view no = "False";
  std::string_view dateQuote = "'";
  /// Whether a text in double quotes is a literal where it names no column.
  bool doubleQuotesAreTexts = false;
  /// Words with a meaning in its statements alone, which are no names without quotes.
  std::span<const std::string_view> words = {};
  /// Whether its statements can be read back.
  bool canBeParsed = true;
};

/// All dialects, in the order of their numbers.
std::span<const Dialect> AllDialects();

/// The row of a dialect; the generic one for a number that has none.
const Dialect& DialectFor(SQLSyntaxEnum syntax);

/// The dialect with this name, in any letter case; nullptr when there is none.
const Dialect* FindDialect(std::string_view name);

}  // namespace zrqrybld
