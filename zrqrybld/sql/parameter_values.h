// Values in the places of a statement's ?PARAM markers, written so that they stay values.
//
// Pure. A value is what a person types; its type says how it is read and which literal it becomes. Unlike the plain
// replacement of `qbSQLPane::ParseParameters`, nothing that is typed can become another part of the statement.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/host/data_types.h"
#include "zrqrybld/sql/criteria_context.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {

/// A value and the type of its literal.
struct ParameterValue {
  std::string text;        ///< as a person types it; "" is the empty text, and for a type without one no value at all
  bool given = true;       ///< without it the marker stays as it stands
  SnapshotType type = {};  ///< code 0: the value itself tells whether it is a number or a text
};

/// How literals are written. `readings` is how the source reads them: one when it has told; several when it has not,
/// and then only what means the same in all of them is taken; none where there is no source.
struct LiteralRules {
  DateFormatEnum dateFormatStyle = DateFormatNative;
  std::string dateFormat = "yyyy-mm-dd";
  bool dateFormatChosen = false;  ///< otherwise a source that has a form of its own gets that
  SQLSyntaxEnum syntax = SQLSyntaxGeneric;
  const Dialect* source = nullptr;  ///< what the connected source speaks; none while it does not tell
  std::vector<TextReading> readings = {};
};

/// The type that the fourth argument of a marker names: one of the source's own by its name; otherwise a usual word
/// such as "date", "varchar(20)" or "integer", or a type code, with the quotes of the source's type of that code.
/// Without any of these the code is 0.
SnapshotType TypeOfParameter(std::string_view dataType, const qbDataTypes& types);

/// What fits the type, in words ("whole number"); nothing when anything does.
Phrase TypeInWords(const SnapshotType& type);

/// The default of a marker as a person would type it: without the quotes of a literal.
std::string TypedDefault(std::string_view argument);

/// Why the value cannot be taken by any statement, as a sentence; nothing when it can.
Phrase ProblemOf(const ParameterValue& value, const LiteralRules& rules);

/// The same for each value where its marker stands; error 40005 for another number of values.
std::vector<Phrase> ProblemsOf(std::string_view sql, const std::vector<ParameterValue>& values,
                               const LiteralRules& rules);

/// The statement with the literal of the n-th value in the place of its n-th marker, one value for each. A marker
/// inside a literal, a quoted name or a comment gets the bare value, with what would end that doubled or taken out:
/// LIKE '%?PARAM(Name)%'. Error 40005 with the first sentence of `ProblemsOf`, or for another number of values.
ZRQRYBLD_API std::string PutInLiterals(std::string_view sql, const std::vector<ParameterValue>& values,
                                       const LiteralRules& rules);

}  // namespace zrqrybld
