// What a person calls the queries of a statement.
#pragma once

#include <cstdint>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/phrase.h"

namespace zrqrybld {

struct QuerySet;

/// The query's name; of the main one that it is this; of one in a cell what the cell's row is about; of a member, and
/// of the first query of a compound inside one, its number in the compound, from 1. Empty when there is none with this
/// id.
ZRQRYBLD_API Phrase TitleOf(const QuerySet& set, std::int32_t id);

}  // namespace zrqrybld
