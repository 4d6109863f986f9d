#include "zrqrybld/diagram/diagram_state.h"

namespace zrqrybld {

std::size_t SizeOf(const EntityState& state, const EntityState* other) {
  std::size_t bytes = sizeof(EntityState) + state.facts.caption.size() + state.ticks.size() / 8 +
                      state.joins.size() * sizeof(JoinState);
  for (const JoinState& join : state.joins) bytes += join.facts.condition.size();
  if (!state.items || (other && other->items == state.items)) return bytes;
  for (const ItemState& item : *state.items) {
    bytes += sizeof(ItemState) + item.text.size() + item.key.size() + item.toolTip.size();
  }
  return bytes;
}

}  // namespace zrqrybld
