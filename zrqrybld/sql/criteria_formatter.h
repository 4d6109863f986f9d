// The criteria formatter: what somebody types below a column as a complete condition on it.
//
// Pure. A criterion is conditions without their left side, the column, joined by AND, OR, NOT and parentheses:
//
//   criterion  = term { (AND | OR) term }
//   term       = { NOT } ( "(" criterion ")" | predicate )
//   predicate  = (= | <> | < | <= | > | >= | !< | !>) (value | (ANY | ALL | SOME) "(" query ")")
//              | [NOT] LIKE value [ESCAPE value]
//              | [NOT] BETWEEN value AND value
//              | [NOT] IN ( "(" query ")" | "(" value { "," value } ")" | marker )
//              | IS [NOT] (NULL | TRUE | FALSE | UNKNOWN)  |  [NOT] NULL
//              | EXISTS "(" query ")"
//              | value                                        stands for "= value"
//
// A value is an SQL expression that is kept as it stands, or bare text that becomes a literal of the column's type.
// Formatting what was formatted changes nothing. Time and memory follow the length of the text.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "zrqrybld/sql/criteria_context.h"

namespace zrqrybld {

/// The criterion in its normal form: operators and keywords written out, values as literals. "" for a blank text.
/// Error 40002 with the place in the text, also in words, when it cannot be read.
std::string FormatCriterion(std::string_view text, const CriteriaContext& context);

/// The complete condition on `field`, which stands before every operator, in parentheses where the field itself is a
/// condition. "" for a blank text; errors as in `FormatCriterion`, and one for a result beyond 64 MB.
std::string FormatCondition(std::string_view field, std::string_view text, const CriteriaContext& context);

/// The way back: the criterion of a condition all of whose comparisons have the field on their left side, as
/// `isField` answers for its text. None when a comparison is about something else, or when the condition cannot be
/// read. Values are kept as they stand; plain names of columns in them want their table's name in front.
std::optional<std::string> CriterionOf(std::string_view condition,
                                       const std::function<bool(std::string_view left)>& isField,
                                       const std::string& likeOperator = "LIKE");

}  // namespace zrqrybld
