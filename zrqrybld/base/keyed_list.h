// KeyedList: the storage under every public collection.
//
// Items stand in order, at positions from 1; each may have a key. A key is found exactly first,
// then without regard to case; two keys are duplicates only when equal exactly, so that a
// case-sensitive data source works. A look-up by key takes constant time; positions, inserting and
// removing take next to none (see `Order`). When memory runs out the list is as it was.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "zrqrybld/base/keyed_order.h"

namespace zrqrybld {

template <class T>
class KeyedList {
  struct Node final : KeyedOrder::Node {
    explicit Node(T v) : value(std::move(v)) {}
    T value;
  };

 public:
  static constexpr std::size_t kNone = 0;  ///< "no such position"

  std::size_t Count() const { return order_.Count(); }
  bool Empty() const { return Count() == 0; }

  /// Stands for an item while it is in the list.
  using Mark = Node*;
  /// The mark of a position that exists, and the position of a mark.
  Mark MarkAt(std::size_t position) const { return static_cast<Mark>(order_.At(position)); }
  static std::size_t PositionOf(Mark mark) { return mark->Position(); }

  /// Puts `value` at `position` (1 to Count()+1; 0 appends) under `key` ("" for none). Error 457
  /// when the key is in use; nothing is added then.
  T& Insert(T value, std::string_view key = {}, std::size_t position = kNone) {
    return static_cast<Mark>(order_.Insert(std::make_unique<Node>(std::move(value)), key, position))->value;
  }

  /// The item at `position`, or nullptr.
  T* At(std::size_t position) { return ValueOf(order_.At(position)); }
  const T* At(std::size_t position) const { return ValueOf(order_.At(position)); }

  /// The item under `key`, or nullptr.
  T* Find(std::string_view key) { return ValueOf(order_.Find(key)); }
  const T* Find(std::string_view key) const { return ValueOf(order_.Find(key)); }

  /// The first item whose key is this one without regard to case, or nullptr.
  const T* FirstAlike(std::string_view key) const { return ValueOf(order_.FirstAlike(key)); }

  /// The position of `key`, `kNone` when there is none.
  std::size_t PositionOf(std::string_view key) const {
    const KeyedOrder::Node* node = order_.Find(key);
    return node ? node->Position() : kNone;
  }

  /// The item with exactly this key, or nullptr.
  const T* FindExactly(std::string_view key) const { return ValueOf(order_.FindExactly(key)); }

  /// Whether exactly this key is in use.
  bool HasExactly(std::string_view key) const { return order_.FindExactly(key) != nullptr; }

  /// The key at `position`; "" when the item has none or there is no such position.
  std::string_view KeyAt(std::size_t position) const {
    const KeyedOrder::Node* node = order_.At(position);
    return node ? std::string_view(node->Key()) : std::string_view{};
  }

  /// Gives the item at `position`, which exists, another key, in place. Error 457 when another item has it.
  void Rekey(std::size_t position, std::string_view key) { order_.Rekey(*order_.At(position), key); }

  /// Removes the item at `position` and returns it. The position must exist.
  T RemoveAt(std::size_t position) {
    const std::unique_ptr<Order::Node> node = order_.Take(position);
    return std::move(static_cast<Node&>(*node).value);
  }

  /// Removes every item for which `unwanted` returns true, in one pass; it is asked once for each.
  template <class Predicate>
  void RemoveIf(Predicate unwanted) {
    std::vector<KeyedOrder::Node*> gone;
    for (std::size_t position = 1; position <= Count(); ++position) {
      if (unwanted(MarkAt(position)->value)) gone.push_back(order_.At(position));
    }
    for (const KeyedOrder::Node* node : gone) RemoveAt(node->Position());
  }

  /// Moves the item at `from` so that it stands at `to`. Both positions must exist.
  void Move(std::size_t from, std::size_t to) { order_.Move(from, to); }

  void Clear() { order_.Clear(); }

 private:
  static T* ValueOf(KeyedOrder::Node* node) { return node ? &static_cast<Mark>(node)->value : nullptr; }

  KeyedOrder order_;
};

}  // namespace zrqrybld
