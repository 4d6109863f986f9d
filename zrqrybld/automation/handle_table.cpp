#include "zrqrybld/automation/handle_table.h"

#include <utility>

namespace zrqrybld {
namespace {

// The lower half is the place, from 1; the upper half is the generation.
std::uint64_t HandleOf(std::uint32_t place, std::uint32_t generation) {
  return (static_cast<std::uint64_t>(generation) << 32) | (place + 1);
}

}  // namespace

const HandleTable::Slot* HandleTable::SlotOf(std::uint64_t handle) const {
  const auto place = static_cast<std::uint32_t>(handle);
  if (place == 0 || place > slots_.size()) return nullptr;
  const Slot& slot = slots_[place - 1];
  return slot.object && slot.generation == handle >> 32 ? &slot : nullptr;
}

std::uint64_t HandleTable::Add(const Ref<Object>& object) {
  if (!object) return 0;
  const auto [known, isNew] = places_.try_emplace(object.get(), 0);
  if (isNew) {
    if (free_.empty()) {
      free_.push_back(static_cast<std::uint32_t>(slots_.size()));
      slots_.emplace_back();
    }
    known->second = free_.back();
    free_.pop_back();
    slots_[known->second].object = object;
  }
  Slot& slot = slots_[known->second];
  ++slot.references;
  return HandleOf(known->second, slot.generation);
}

Ref<Object> HandleTable::Find(std::uint64_t handle) const {
  const Slot* slot = SlotOf(handle);
  return slot ? slot->object : nullptr;
}

bool HandleTable::Retain(std::uint64_t handle) {
  const Slot* slot = SlotOf(handle);
  if (slot) ++const_cast<Slot*>(slot)->references;
  return slot != nullptr;
}

bool HandleTable::Release(std::uint64_t handle) {
  auto* slot = const_cast<Slot*>(SlotOf(handle));
  if (!slot) return false;
  if (--slot->references > 0) return true;
  places_.erase(slot->object.get());
  free_.push_back(static_cast<std::uint32_t>(handle) - 1);
  ++slot->generation;
  // The table is whole again before the object ends: its end may release and hand out others.
  const Ref<Object> last = std::exchange(slot->object, nullptr);
  return true;
}

}  // namespace zrqrybld
