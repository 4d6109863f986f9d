// KeyedOrder: things in an order that may have keys, compiled once for all kinds of them; `KeyedList` is the form for
// values.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/order.h"

namespace zrqrybld {

class ZRQRYBLD_API KeyedOrder {
 public:
  class Node : public Order::Node {
   public:
    const std::string& Key() const { return key_; }

   private:
    friend class KeyedOrder;
    std::string key_;
  };

  KeyedOrder();
  KeyedOrder(KeyedOrder&& other) noexcept;
  KeyedOrder& operator=(KeyedOrder&& other) noexcept;
  ~KeyedOrder();

  std::size_t Count() const { return order_.Count(); }
  Node* At(std::size_t position) const;  ///< nullptr when there is no such position

  /// The one with exactly this key, otherwise the first of those that differ in case; nullptr when there is none.
  Node* Find(std::string_view key) const;
  Node* FindExactly(std::string_view key) const;
  /// The first of those that have this key without regard to case; nullptr when there is none.
  Node* FirstAlike(std::string_view key) const;

  /// At a position from 1; any other, and 0, is the end. Error 457 when the key is in use; nothing is added then.
  Node* Insert(std::unique_ptr<Node> node, std::string_view key, std::size_t position);

  /// Gives another key, or none. Error 457 when another has it.
  void Rekey(Node& node, std::string_view key);

  /// Takes out the one at a position that exists.
  std::unique_ptr<Order::Node> Take(std::size_t position);

  void Move(std::size_t from, std::size_t to) { order_.Move(from, to); }
  void Clear();

 private:
  struct Index;

  void AddToIndex(Node* node);

  Order order_;
  std::unique_ptr<Index> index_;  // none while no key was ever given
};

}  // namespace zrqrybld
