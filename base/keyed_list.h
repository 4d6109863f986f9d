// KeyedList: the storage under every public collection.
//
// Items stand in order, at positions from 1; each may have a key. A key is found exactly first,
// then without regard to case; two keys are duplicates only when equal exactly, so that a
// case-sensitive data source works. A look-up by key takes constant time; positions, inserting and
// removing take next to none (see `OrderedList`). When memory runs out the list is as it was.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/ordered_list.h"
#include "base/text.h"

namespace zrqrybld {

template <class T>
class KeyedList {
  struct Entry {
    std::string key;
    T value;
  };

 public:
  static constexpr std::size_t kNone = 0;  ///< "no such position"

  std::size_t Count() const { return nodes_.Count(); }
  bool Empty() const { return nodes_.Empty(); }

  /// Stands for an item while it is in the list.
  using Mark = typename OrderedList<Entry>::Mark;
  /// The mark of a position that exists, and the position of a mark.
  Mark MarkAt(std::size_t position) const { return nodes_.MarkAt(position); }
  static std::size_t PositionOf(Mark mark) { return OrderedList<Entry>::PositionOf(mark); }

  /// Puts `value` at `position` (1 to Count()+1; 0 appends) under `key` ("" for none). Error 457
  /// when the key is in use; nothing is added then.
  T& Insert(T value, std::string_view key = {}, std::size_t position = kNone) {
    if (!key.empty() && FindExactly(key)) ThrowDuplicateKey(key);
    if (position == kNone || position > Count()) position = Count() + 1;
    const Mark added = nodes_.Insert(Entry{std::string(key), std::move(value)}, position);
    try {
      AddToIndex(added);
    } catch (...) {
      nodes_.RemoveAt(PositionOf(added));
      throw;
    }
    return added->value.value;
  }

  /// The item at `position`, or nullptr.
  T* At(std::size_t position) { return Exists(position) ? &nodes_.At(position).value : nullptr; }
  const T* At(std::size_t position) const { return Exists(position) ? &nodes_.At(position).value : nullptr; }

  /// The item under `key`, or nullptr.
  T* Find(std::string_view key) {
    const Mark node = FindNode(key);
    return node ? &node->value.value : nullptr;
  }
  const T* Find(std::string_view key) const { return const_cast<KeyedList*>(this)->Find(key); }

  /// The position of `key`, `kNone` when there is none.
  std::size_t PositionOf(std::string_view key) const {
    const Mark node = FindNode(key);
    return node ? PositionOf(node) : kNone;
  }

  /// Whether exactly this key is in use.
  bool HasExactly(std::string_view key) const { return FindExactly(key) != nullptr; }

  /// The key at `position`; "" when the item has none or there is no such position.
  std::string_view KeyAt(std::size_t position) const {
    return Exists(position) ? std::string_view(nodes_.At(position).key) : std::string_view{};
  }

  /// Gives the item at `position`, which exists, another key, in place. Error 457 when another item has it.
  void Rekey(std::size_t position, std::string_view key) {
    const Mark node = nodes_.MarkAt(position);
    if (node->value.key == key) return;
    if (!key.empty() && FindExactly(key)) ThrowDuplicateKey(key);
    std::string other(key);
    auto indexed = TakeFromIndex(node);
    node->value.key.swap(other);
    if (key.empty()) return;
    if (indexed) {
      indexed.key() = node->value.key;
      index_.insert(std::move(indexed));
      return;
    }
    try {
      AddToIndex(node);
    } catch (...) {
      node->value.key.swap(other);
      throw;
    }
  }

  /// Removes the item at `position` and returns it. The position must exist.
  T RemoveAt(std::size_t position) {
    TakeFromIndex(nodes_.MarkAt(position));
    return nodes_.RemoveAt(position).value;
  }

  /// Removes every item for which `unwanted` returns true, in one pass; it is asked once for each.
  template <class Predicate>
  void RemoveIf(Predicate unwanted) {
    std::size_t position = 0;
    std::vector<Mark> gone;
    for (Entry& entry : nodes_) {
      ++position;
      if (unwanted(entry.value)) gone.push_back(nodes_.MarkAt(position));
    }
    for (const Mark mark : gone) RemoveAt(PositionOf(mark));
  }

  /// Moves the item at `from` so that it stands at `to`. Both positions must exist.
  void Move(std::size_t from, std::size_t to) { nodes_.Move(from, to); }

  void Clear() {
    index_.clear();
    nodes_.Clear();
  }

 private:
  using Index = std::unordered_multimap<std::string_view, Mark, HashNoCase, EqualNoCase>;  // the keys are the entries'

  // The one with exactly this key, otherwise the first of those that differ in case.
  Mark FindNode(std::string_view key) const {
    if (key.empty() || index_.empty()) return nullptr;
    Mark found = nullptr;
    for (auto [alike, end] = index_.equal_range(key); alike != end; ++alike) {
      const Mark node = alike->second;
      if (node->value.key == key) return node;
      if (!found || PositionOf(node) < PositionOf(found)) found = node;
    }
    return found;
  }

  Mark FindExactly(std::string_view key) const {
    const Mark node = FindNode(key);
    return node && node->value.key == key ? node : nullptr;
  }

  bool Exists(std::size_t position) const { return position >= 1 && position <= Count(); }

  void AddToIndex(Mark node) {
    if (!node->value.key.empty()) index_.emplace(node->value.key, node);
  }

  auto TakeFromIndex(Mark node) {
    if (node->value.key.empty()) return typename Index::node_type();
    auto place = index_.find(node->value.key);
    while (place->second != node) ++place;
    return index_.extract(place);
  }

  OrderedList<Entry> nodes_;
  Index index_;
};

}  // namespace zrqrybld
