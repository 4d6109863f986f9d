// A criterion that asks another table, IN (SELECT ...), as a table of the diagram with a join that only asks.
#pragma once

#include "zrqrybld/base/event.h"

namespace zrqrybld {

class qbQueryBuilder;

/// Puts the command into the menu of cells where it may apply, for as long as the connection lives; an empty one
/// without a grid.
EventConnection OfferAskAsJoin(qbQueryBuilder& hub);

}  // namespace zrqrybld
