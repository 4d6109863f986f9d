// Dialects as data: everything in which their texts differ is a field of one row.
//
// Code asks a dialect for a decision, never for its name, so a new dialect is a new row.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "zrqrybld/base/export.h"
#include "zrqrybld/sql/join_kind.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {

/// How a dialect says that only some rows are wanted: texts in which "@n" is how many and "@m" how many are passed over
/// before them. What it cannot say is "".
struct RowLimit {
  enum class Place : std::uint8_t {
    Head,       ///< behind SELECT
    Condition,  ///< as a condition in WHERE
    From,       ///< behind the tables
    End,        ///< behind ORDER BY
  };
  Place place = Place::Head;
  std::string_view rows;
  std::string_view percent;
  /// These stand at the end, wherever the others do.
  std::string_view offset = {};
  std::string_view rowsAndOffset = {};
  /// Whether an offset needs an ORDER BY before it.
  bool offsetNeedsOrder = false;
  /// Whether a percentage means one to its servers; where it does not the text has the sign all the same, or is "".
  bool takesPercent = true;
};

/// How values are written: "@" stands for the value in ISO form. "" leaves it to the source's own prefix and to the
/// query's date format.
struct ValueForms {
  std::string_view date = {};
  std::string_view time = {};
  std::string_view timestamp = {};
  std::string_view yes = "True";
  std::string_view no = "False";
  /// What stands around a date where neither the forms above nor the source tell.
  std::string_view dateQuote = "'";
};

/// Which queries within queries a dialect's statements can hold, and its words for them. What it cannot say is "".
struct QueryForms {
  bool hasWith = true;
  /// Whether a query in parentheses can begin with WITH, too.
  bool nestsWith = true;
  /// Behind WITH where a query of it names itself.
  std::string_view recursive = "RECURSIVE ";
  std::string_view intersectWord = "INTERSECT";
  std::string_view exceptWord = "EXCEPT";
  /// Whether INTERSECT ALL and EXCEPT ALL count equal rows.
  bool countsRows = true;
  /// Whether INTERSECT binds closer than UNION and EXCEPT; otherwise all are put together from the left.
  bool intersectFirst = true;
  /// Whether a member can stand in parentheses, so that it is sorted, limited or a compound by itself.
  bool membersInParentheses = true;
  /// Whether the columns of a query in FROM can be named behind its name: (SELECT ...) AS d (a, b).
  bool namesColumns = false;
  /// Whether members may have values of different kinds in one column.
  bool mixesKinds = false;
};

struct Dialect {
  /// Where joins stand: as JOIN clauses in FROM, or as conditions in WHERE beside a list of tables.
  enum class Joins : std::uint8_t { Clauses, Conditions };
  /// Parentheses around joined tables in FROM.
  enum class FromParentheses : std::uint8_t { None, Nested, Whole };
  /// Where "*" has the columns that USING and NATURAL make one: where the first table has them, or before all others.
  enum class SharedColumns : std::uint8_t { InPlace, FirstAsInTable, FirstAsListed };
  /// What its servers make of the letters of a name without quotes.
  enum class PlainNames : std::uint8_t { AsWritten, Lower, Upper };

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
  /// Whether ORDER BY can say where Nulls come.
  bool hasNullsPlace = false;
  RowLimit limit;
  std::string_view selectSeparator;
  std::string_view fromSeparator;
  /// Parentheses around groups of conditions.
  std::string_view open;
  std::string_view close;
  /// Between a table and its alias in FROM.
  std::string_view tableAlias;
  /// Whether a keyword would be read as one where an alias stands: there is no word before it.
  bool aliasStandsBare = false;
  /// Words of expressions that its servers do not know, with a blank before and behind each: see sql/missing_words.h.
  std::string_view missingWords = " ";
  /// Whether its statements have FROM even where there are no tables. Otherwise `emptyTable` stands there, the table of
  /// one row that its servers know, or no FROM at all.
  bool needsTables = true;
  std::string_view emptyTable = {};
  /// Operators between two operands that only some dialects have, with a blank before and behind each.
  std::string_view ownSigns = " ";
  /// Whether "[...]" close behind a value is a part of it, and never a name.
  bool hasSubscripts = false;
  /// Whether its own statements leave parentheses in FROM open, where tables are not joined.
  bool leavesParenthesesOpen = false;
  ValueForms values = {};
  /// The word that compares with a pattern without regard to case; "" where only UPPER around both sides does.
  std::string_view caseBlindLike = "LIKE";
  /// What stands around a quoted name whatever the source says; "" takes the source's own.
  std::string_view namePrefix = {};
  std::string_view nameSuffix = {};
  PlainNames plainNames = PlainNames::AsWritten;
  SharedColumns sharedColumns = SharedColumns::InPlace;
  /// Whether a text in double quotes is a literal where it names no column.
  bool doubleQuotesAreTexts = false;
  /// Whether a name that nothing bears is a question to who runs the statement, and "!" reaches into open forms.
  bool unknownNamesAsk = false;
  /// The name of the dialect of the same servers today, which can say more; "" where this is it.
  std::string_view today = {};
  /// The source whose usual way of reading literals holds until the connected one tells its own; "" for nobody's.
  std::string_view readsAs = {};
  /// What joins two texts: a sign between them, or a call with "@" placeholders; "" where no one form serves.
  std::string_view concatenation = {};
  /// Whether "||" is OR to its servers, in some of their modes.
  bool pipesMayBeOr = false;
  /// Whether tables can be joined first in parentheses, to be joined to others as one.
  bool hasJoinGroups = true;
  /// Whether a comma in FROM joins what stands before it, like JOIN, and not what the commas part.
  bool commaJoins = false;
  /// Whether the mark of an outer join in WHERE stands behind a column, so that any comparison may bear it.
  bool marksColumns = false;
  /// What compares two columns as equal when both are missing; "" where nothing does.
  std::string_view sameValue = {};
  QueryForms queries = {};
  /// Whether its statements can hold comments.
  bool hasComments = true;
  /// What its own parameters begin with: see sql/host_parameters.h.
  std::string_view parameterSigns = {};
  /// Whether its servers compare a date in another form than ISO as a text, or with nothing, without an error.
  bool misreadsDates = false;
  /// Words with a meaning in its statements, which are no names without quotes; in capitals and sorted.
  std::span<const std::string_view> words = {};
  /// Whether they stand in the catalog of keywords while it is in use.
  bool offersWords = false;
  /// Whether its statements can be read back.
  bool canBeParsed = true;
};

/// All dialects, in the order of their numbers.
ZRQRYBLD_API std::span<const Dialect> AllDialects();

/// The row of a dialect; the generic one for a number that has none.
ZRQRYBLD_API const Dialect& DialectFor(SQLSyntaxEnum syntax);

/// The dialect that a source of this name and version speaks ("PostgreSQL", "15.3"); nullptr for a name that is not
/// known. Other names of servers that speak another's dialect are known, too.
ZRQRYBLD_API const Dialect* DialectOfSource(std::string_view name, std::string_view version);

/// The dialect of this number, and the one with this name, in any letter case; nullptr when there is none.
ZRQRYBLD_API const Dialect* FindDialect(std::int32_t number);
ZRQRYBLD_API const Dialect* FindDialect(std::string_view name);

}  // namespace zrqrybld
