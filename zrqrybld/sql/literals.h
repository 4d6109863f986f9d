// Values as literals of a type: what criteria and parameters have in common.
//
// Pure. The context says how the source writes values of the type, and by which format dates.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "zrqrybld/sql/criteria_context.h"
#include "zrqrybld/sql/date_literal.h"

namespace zrqrybld {

struct ValueForms;

/// The text between the type's quotes, or with `usualQuotes`, and for a type that has none, between single ones. Quotes
/// inside are doubled, and so are backslashes where the source takes them for escapes.
std::string TextLiteral(std::string_view value, const CriteriaContext& context, bool usualQuotes = false);

/// Whether a backslash escapes in a literal that begins with the prefix, as the context's source reads it.
bool BackslashEscapes(std::string_view prefix, const CriteriaContext& context);

/// The forms that dates are written in: those of the statement's dialect. Where it leaves dates to the source and
/// nobody chose a format, those of the source, unless the type has its own. None where the date format decides.
const ValueForms* DateForms(const CriteriaContext& context);

/// The first date in a condition on the column that the source would take for a text, or for nothing, without an error,
/// as it stands there; "" for none. What is handed to a function is the function's matter.
std::string MisreadDate(std::string_view condition, const CriteriaContext& context);

/// What stands between the quotes of a date literal: the value by the context's date format, or in ISO form where the
/// source has a form of its own and nobody chose another. A time that the format has no place for stands behind it: a
/// part that was given is never dropped.
std::string DateText(const DateTime& value, const CriteriaContext& context);

/// The literal of a date in the context's style: the escape form, the dialect's own, or between the source's quotes.
/// None when the value has more or less than the source's own way of reading dates, as in TO_DATE('...','format'), has
/// a place for.
std::optional<std::string> DateLiteral(const DateTime& value, const CriteriaContext& context);

/// The truth that the text says, as people type it or as the dialect writes it; none when it says neither.
std::optional<bool> TruthIn(std::string_view text, const CriteriaContext& context);

/// The dialect's literal of a truth value; True or False without a dialect.
std::string TruthLiteral(bool truth, const CriteriaContext& context);

/// Whether values of the type are times of day without a date.
bool IsTimeOfDay(const CriteriaContext& context);

/// Whether the text is a GUID, with or without braces.
bool IsGuid(std::string_view text);

/// Whether the text is bytes by two hexadecimal figures each.
bool IsHexBytes(std::string_view text);

}  // namespace zrqrybld
