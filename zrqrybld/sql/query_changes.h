// What has come and gone between two states of a query, in words, for people who cannot see it. Pure.
#pragma once

#include <string>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/phrase.h"
#include "zrqrybld/sql/query_snapshot.h"

namespace zrqrybld {

/// For instance "table Orders added, 2 joins removed, query column Orders.Freight added"; "" when nothing has come or
/// gone. Linear in the size of the two queries.
ZRQRYBLD_API std::string DescribeChanges(const QuerySnapshot& before, const QuerySnapshot& after,
                                         const TextSource& texts = EnglishTexts());

}  // namespace zrqrybld
