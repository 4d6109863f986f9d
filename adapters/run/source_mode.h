// How a source cuts a text into words: what its kind decides, and what the mode of a session does.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace zrqrybld {

/// Sources that cut a text into words in the same way and know the same clauses.
enum class SourceFamily : std::uint8_t { Sqlite, PostgreSql, MariaDb, SqlServer, Oracle, Access, Other };

/// The family by what a source calls itself; `Other` for one that is not known.
SourceFamily FamilyOf(std::string_view sourceName);

/// How a session reads a text. What nobody has told may be one way or the other.
struct SourceMode {
  SourceFamily family = SourceFamily::Other;
  std::optional<bool> backslashes;  ///< in '...' a backslash takes the meaning of the character behind it
  std::optional<bool> quotedNames;  ///< "..." is a name, not a literal (only asked of MariaDB and MySQL)
  std::optional<bool> brackets;     ///< [...] is a name (only asked of MariaDB and MySQL)
  bool unicode = true;              ///< characters beyond ASCII arrive as they are; otherwise they are refused
};

/// The mode of a session of `sourceName` that has told `told`: PostgreSQL's standard_conforming_strings, MariaDB's and
/// MySQL's sql_mode. Without it, or for other sources, only what the kind of the source decides is known.
SourceMode ModeOf(std::string_view sourceName, std::optional<std::string_view> told = std::nullopt);

/// One way of telling code from literals, names and comments.
struct Reading {
  SourceFamily family;
  bool backslashes = false;          // in '...'
  bool backslashesInQuotes = false;  // in "..."
  bool prefixedLiterals = false;     // E'...' has backslashes whatever the mode, B'...' and X'...' have none
  bool literalsContinue = false;     // 'a' and 'b' on the next line are one literal
  bool returnEndsComment = false;    // a CR ends "--", as a line feed does
  bool hashComments = false;
  bool blankAfterDashes = false;  // "--" begins a comment only in front of a blank
  bool commentsNest = false;
  bool commentsHoldCode = false;       // /*! ... */ is run
  bool dollarLiterals = false;         // $tag$ ... $tag$
  bool variables = false;              // $name(...) is one variable, whatever the parentheses hold
  bool freeLiterals = false;           // q'[...]'
  bool brackets = false;               // [name]
  bool bracketsDouble = false;         // "]]" in a name stands for "]"
  bool backticks = false;              // `name`
  bool statementsWithoutSign = false;  // a second statement needs no ";" before it
};

/// Every way in which a session of this mode may read a text: one when all is known.
std::vector<Reading> ReadingsOf(const SourceMode& mode);

}  // namespace zrqrybld
