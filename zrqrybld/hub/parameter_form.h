// Asks the user for the values of a statement's parameters, all in one dialog.
//
//   if (const auto values = AskParameters(hub, sql)) Run(PutInLiterals(sql, *values, LiteralRulesOf(hub)));
//
// Markers with one name, or without a name with one prompt, are one question. What was answered is suggested the next
// time, as long as the hub lives.
#pragma once

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/sql/parameter_values.h"

namespace zrqrybld {

class qbQueryBuilder;

/// The values, one for each ?PARAM marker of the statement in their order; none of them, without a dialog, for a
/// statement that has no marker. Nothing when the user cancels. Error 40005 when a dialog that takes any value was
/// accepted with one that cannot be taken.
ZRQRYBLD_API std::optional<std::vector<ParameterValue>> AskParameters(qbQueryBuilder& hub, std::string_view sql);

/// The same for toolkits whose windows do not wait: `accepted` is called with the values, and not when the user
/// cancels.
ZRQRYBLD_API void AskParameters(qbQueryBuilder& hub, std::string_view sql,
                                std::function<void(std::vector<ParameterValue>)> accepted);

/// How the hub's panes write literals: the grid's date format, the dialect of the statement.
ZRQRYBLD_API LiteralRules LiteralRulesOf(const qbQueryBuilder& hub);

}  // namespace zrqrybld
