// What a table of the diagram is at this moment, for undo.
#pragma once

#include <memory>

#include "zrqrybld/diagram/diagram_state.h"
#include "zrqrybld/diagram/entity.h"

namespace zrqrybld {

/// The table as it is now: `before` itself when it is as it was. Without `withTicks` the ticks are those of `before`.
std::shared_ptr<const EntityState> StateOf(qbEntity& entity, const std::shared_ptr<const EntityState>& before,
                                           bool withTicks);

}  // namespace zrqrybld
