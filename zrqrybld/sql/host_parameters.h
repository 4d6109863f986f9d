// Host parameters: what a dialect's own statements have where a program gives values, as in ":name", "@name" or "?".
//
// Pure.
#pragma once

#include <string>
#include <string_view>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// The statement with a ?PARAM marker of the same name in the place of each parameter that begins with one of `signs`;
/// those of one name are one question then. A "?" and "$1" are named by their numbers. Literals, names in quotes and
/// comments stay as they are.
ZRQRYBLD_API std::string WithParameterMarkers(std::string_view sql, std::string_view signs);

}  // namespace zrqrybld
