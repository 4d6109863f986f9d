// Counts the rows of a statement on the source in use, for windows that say how many a choice returns.
#pragma once

#include "zrqrybld/adapters/qt/row_counter.h"

namespace zrqrybld {

class qbQueryBuilder;

/// Each count runs in a thread with a connection of its own and is given up after two seconds. Without a source, or on
/// one that cannot run statements, there is no count. The hub must outlive it.
RowCounter CounterFor(qbQueryBuilder& hub);

}  // namespace zrqrybld
