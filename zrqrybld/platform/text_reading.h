// TextReading: how a data source cuts the text of a statement into literals, names, comments and code.
//
// A fact of the source and of the mode that its connection is in. A provider tells it as the literal row
// `kTextReadingLiteral`, whose value is the words of the traits that hold, with blanks between; "" for a source that
// has none. The row's absence means that nobody knows.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// The name of the literal row, and of the hub's property, that holds the words.
inline constexpr std::string_view kTextReadingLiteral = "TEXT_READING";

// Two further rows of that schema say what the source is: its name and its version, as it tells them itself.
inline constexpr std::string_view kSourceNameLiteral = "SOURCE_NAME";
inline constexpr std::string_view kSourceVersionLiteral = "SOURCE_VERSION";

/// The traits. Without any: 'text' and "name", with the closing quote doubled inside, "--" up to a line feed, /* */.
struct TextReading {
  bool backslashEscapes = false;      ///< "\" in a text takes the meaning of the character behind it
  bool doubleQuotesAreTexts = false;  ///< "..." is a text like '...'
  bool escapeLiterals = false;        ///< E'...' is a text in which "\" escapes, whatever it does in others
  bool unicodeLiterals = false;       ///< U&'...' and U&"..." hold characters as "\" and figures
  bool dollarLiterals = false;        ///< $tag$...$tag$
  bool delimitedLiterals = false;     ///< q'[...]'
  bool literalsJoin = false;          ///< 'a', a line end and 'b' are one text, read as the first begins
  bool hashComments = false;          ///< "#" begins a comment up to the end of the line
  bool hashDates = false;             ///< #1/31/2020#
  bool blankAfterDashes = false;      ///< "--" begins a comment only in front of a blank
  bool commentsNest = false;          ///< /* /* */ */ is one comment
  bool commentsHoldCode = false;      ///< what stands in /*! */ is run, by some versions
  bool returnEndsLine = false;        ///< a carriage return alone ends a "--" comment
  bool brackets = false;              ///< [name]
  bool bracketsEndAtFirst = false;    ///< "]" cannot stand in such a name, not even doubled
  bool backticks = false;             ///< `name`
  friend bool operator==(const TextReading&, const TextReading&) = default;
};

/// The words of the traits, in the order of the fields.
ZRQRYBLD_API std::string WordsOf(const TextReading& reading);

/// The reading that the words tell; none when one of them is no trait, for who does not know a trait cannot keep to it.
ZRQRYBLD_API std::optional<TextReading> ReadingFromWords(std::string_view words);

/// Sources that cut a text in the same way and know the same clauses.
enum class SourceFamily : std::uint8_t { Sqlite, PostgreSql, MariaDb, SqlServer, Oracle, Access, Other };

/// The family by what a source calls itself; `Other` for a name that is not known.
ZRQRYBLD_API SourceFamily FamilyOf(std::string_view sourceName);

/// How a source of this name reads when nobody has changed its mode; none for a name that is not known.
ZRQRYBLD_API std::optional<TextReading> UsualReading(std::string_view sourceName);

/// Whether the mode of a session decides how it reads.
constexpr bool HasModes(SourceFamily family) {
  return family == SourceFamily::PostgreSql || family == SourceFamily::MariaDb;
}

/// How a session reads that has told its mode: PostgreSQL's standard_conforming_strings, MariaDB's and MySQL's
/// sql_mode. None for an answer that is no mode, and for families without modes.
ZRQRYBLD_API std::optional<TextReading> ReadingInMode(SourceFamily family, std::string_view told);

/// One way of reading, and whose it is.
struct KnownReading {
  SourceFamily family;
  TextReading text;
};

/// The readings of all families, each in all of its modes.
ZRQRYBLD_API std::span<const KnownReading> KnownReadings();

}  // namespace zrqrybld
