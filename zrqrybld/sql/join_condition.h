// The condition that a join asks besides the comparison of its columns, as text. Pure.
#pragma once

#include <string>
#include <string_view>

namespace zrqrybld {

/// The condition on one line without comments, as it can stand beside others in ON: alternatives in parentheses. "" for
/// a blank text. SyntaxError with the place when it is no condition.
std::string JoinConditionText(std::string_view typed);

}  // namespace zrqrybld
