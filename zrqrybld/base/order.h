// Order: things in an order, at positions from 1, that come and go anywhere.
//
// They lie in blocks of a bounded size: inserting and removing touch one block, and the number of those behind it. A
// thing keeps its place in memory, and tells where it stands now. When memory runs out while one is inserted or moved,
// the order is as it was. `OrderedList` is the form for values; this one is compiled once for all kinds of them.
#pragma once

#include <cstddef>
#include <memory>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

class ZRQRYBLD_API Order {
  struct Block;
  struct Blocks;

 public:
  class Node {
   public:
    Node() = default;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    virtual ~Node() = default;

    /// From 1; only for one that stands in an order.
    std::size_t Position() const;

   private:
    friend class Order;
    Block* block_ = nullptr;
    std::size_t place_ = 0;  // in the block
  };

  Order();
  Order(Order&& other) noexcept;
  Order& operator=(Order&& other) noexcept;
  ~Order();

  std::size_t Count() const { return count_; }

  /// The one at a position that exists.
  Node* At(std::size_t position) const;

  /// The one behind `node`, the one before it, and those at the ends; nullptr where there is none.
  Node* Next(const Node* node) const;
  Node* Previous(const Node* node) const;
  Node* First() const { return count_ == 0 ? nullptr : At(1); }
  Node* Last() const { return count_ == 0 ? nullptr : At(count_); }

  /// Puts it at a position from 1 to Count() + 1.
  Node* Insert(std::unique_ptr<Node> node, std::size_t position);

  /// Takes out the one at a position that exists.
  std::unique_ptr<Node> Take(std::size_t position);

  /// Moves the one at `from` so that it stands at `to`. Both positions must exist.
  void Move(std::size_t from, std::size_t to);

  void Clear();

 private:
  struct Room {
    Block* block;
    std::size_t place;
  };

  Block& BlockOf(std::size_t position) const;
  void RenumberBlocks(std::size_t from);
  Room MakeRoom(std::size_t position);
  void AddFirstBlock();
  void Split(Block& block, std::size_t at);
  Node* Put(std::unique_ptr<Node> node, Room room);
  std::unique_ptr<Node> TakeFrom(Block& block, std::size_t place);
  void DropBlock(std::size_t number);

  std::unique_ptr<Blocks> blocks_;  // none while nothing was ever inserted
  std::size_t count_ = 0;
};

}  // namespace zrqrybld
