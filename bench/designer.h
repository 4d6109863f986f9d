// A designer without a window over a made-up source.
#pragma once

#include "zrqrybld/base/object.h"

namespace zrqrybld {

class qbQueryBuilder;

namespace bench {

Ref<qbQueryBuilder> MakeDesigner(int columnsOfATable, int listedTables = 0);

/// Adds T0, T1, ... and their joins in one step, as the designer does.
void AddTables(qbQueryBuilder& hub, int count);

}  // namespace bench
}  // namespace zrqrybld
