// The names of the texts in base/texts_queries.inc.
#pragma once

#include "zrqrybld/base/phrase.h"

namespace zrqrybld::text {

#define ZRQRYBLD_TEXT(name, number, english, placeholders) inline constexpr TextId name{number};
#include "zrqrybld/base/texts_queries.inc"
#undef ZRQRYBLD_TEXT

}  // namespace zrqrybld::text
