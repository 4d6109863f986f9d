// Handles: objects as numbers that a caller cannot misuse.
//
// A handle is a place in a table and that place's generation, so that one that was released, or that a caller made
// up, is recognised. An object has one handle however often it is handed out; the table counts.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "zrqrybld/base/object.h"

namespace zrqrybld {

class HandleTable {
 public:
  /// Counts the object's handle once more. 0 for nothing.
  std::uint64_t Add(const Ref<Object>& object);

  /// The object; nothing when the handle is not valid.
  Ref<Object> Find(std::uint64_t handle) const;

  /// Counts a valid handle once more. False when it is not valid.
  bool Retain(std::uint64_t handle);

  /// Counts the handle once less and lets go of the object with the last. False when it is not valid.
  bool Release(std::uint64_t handle);

  /// How many objects are held.
  std::size_t Count() const { return places_.size(); }

 private:
  struct Slot {
    Ref<Object> object;
    std::uint32_t generation = 1;
    std::uint64_t references = 0;
  };
  const Slot* SlotOf(std::uint64_t handle) const;

  std::vector<Slot> slots_;
  std::vector<std::uint32_t> free_;
  std::unordered_map<const Object*, std::uint32_t> places_;
};

}  // namespace zrqrybld
