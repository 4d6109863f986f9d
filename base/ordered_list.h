// OrderedList: values in an order, at positions from 1, that come and go anywhere.
//
// They lie in blocks of a bounded size: inserting and removing touch one block, and the number of those behind it. A
// value keeps its place in memory, and a mark that tells where it stands now. When memory runs out while one is
// inserted or moved, the list is as it was.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace zrqrybld {

template <class T>
class OrderedList {
  struct Block;
  struct Node {
    explicit Node(T v) : value(std::move(v)) {}
    T value;
    Block* block = nullptr;
    std::size_t place = 0;  // in the block
  };
  struct Block {
    std::vector<std::unique_ptr<Node>> nodes;
    std::size_t number = 0;  // among the blocks
    std::size_t before = 0;  // how many values stand in the blocks before
  };

 public:
  /// Stands for a value while that is in the list.
  using Mark = Node*;

  OrderedList() = default;
  OrderedList(OrderedList&& other) noexcept
      : blocks_(std::move(other.blocks_)), count_(std::exchange(other.count_, 0)) {}
  OrderedList& operator=(OrderedList&& other) noexcept {
    blocks_ = std::move(other.blocks_);
    count_ = std::exchange(other.count_, 0);
    return *this;
  }

  std::size_t Count() const { return count_; }
  bool Empty() const { return count_ == 0; }

  /// The value at a position that exists.
  T& At(std::size_t position) { return NodeAt(position)->value; }
  const T& At(std::size_t position) const { return NodeAt(position)->value; }
  Mark MarkAt(std::size_t position) const { return NodeAt(position); }
  static std::size_t PositionOf(Mark mark) { return mark->block->before + mark->place + 1; }

  /// Puts the value at a position from 1 to Count() + 1.
  Mark Insert(T value, std::size_t position) {
    auto node = std::make_unique<Node>(std::move(value));
    const auto [block, place] = MakeRoom(position);
    return Put(std::move(node), block, place);
  }
  Mark Append(T value) { return Insert(std::move(value), count_ + 1); }

  /// Removes the value at a position that exists, and returns it.
  T RemoveAt(std::size_t position) {
    const std::unique_ptr<Node> node = Take(position);
    return std::move(node->value);
  }

  /// Moves the value at `from` so that it stands at `to`. Both positions must exist.
  void Move(std::size_t from, std::size_t to) {
    if (from == to) return;
    // A free place first, before the value leaves its own.
    const auto [block, place] = MakeRoom(from < to ? to + 1 : to);
    Block& target = *block;
    std::size_t at = place;
    const Node* const moved = NodeAt(from);
    if (moved->block == &target && moved->place < place) --at;
    Block* const source = moved->block;
    std::unique_ptr<Node> node = TakeFrom(*source, moved->place);
    Put(std::move(node), &target, at);
    if (source->nodes.empty()) DropBlock(source->number);
  }

  void Clear() {
    blocks_.clear();
    count_ = 0;
  }

  /// Walks the values in their order, or backwards.
  template <bool kConst>
  class Walk {
   public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using reference = std::conditional_t<kConst, const T&, T&>;
    using pointer = std::conditional_t<kConst, const T*, T*>;

    Walk() = default;
    Walk(const OrderedList* list, std::size_t block, std::size_t place) : list_(list), block_(block), place_(place) {}
    reference operator*() const { return list_->blocks_[block_]->nodes[place_]->value; }
    pointer operator->() const { return &**this; }
    Walk& operator++() {
      if (++place_ == list_->blocks_[block_]->nodes.size()) {
        ++block_;
        place_ = 0;
      }
      return *this;
    }
    Walk operator++(int) { return std::exchange(*this, std::next(*this)); }
    Walk& operator--() {
      if (place_ == 0) place_ = list_->blocks_[--block_]->nodes.size();
      --place_;
      return *this;
    }
    Walk operator--(int) { return std::exchange(*this, std::prev(*this)); }
    friend bool operator==(const Walk&, const Walk&) = default;

   private:
    const OrderedList* list_ = nullptr;
    std::size_t block_ = 0;
    std::size_t place_ = 0;
  };
  using iterator = Walk<false>;
  using const_iterator = Walk<true>;
  iterator begin() { return {this, 0, 0}; }
  iterator end() { return {this, blocks_.size(), 0}; }
  const_iterator begin() const { return {this, 0, 0}; }
  const_iterator end() const { return {this, blocks_.size(), 0}; }
  auto rbegin() const { return std::make_reverse_iterator(end()); }
  auto rend() const { return std::make_reverse_iterator(begin()); }

 private:
  static constexpr std::size_t kMost = 256;  // in a block

  Block& BlockOf(std::size_t position) const {
    if (blocks_.size() == 1) return *blocks_.front();
    const auto behind = std::upper_bound(blocks_.begin(), blocks_.end(), position - 1,
                                         [](std::size_t index, const auto& block) { return index < block->before; });
    return **std::prev(behind);
  }
  Node* NodeAt(std::size_t position) const {
    const Block& block = BlockOf(position);
    return block.nodes[position - 1 - block.before].get();
  }

  static void Renumber(Block& block, std::size_t from) {
    for (std::size_t i = from; i < block.nodes.size(); ++i) {
      block.nodes[i]->block = &block;
      block.nodes[i]->place = i;
    }
  }
  void RenumberBlocks(std::size_t from) {
    for (std::size_t i = from; i < blocks_.size(); ++i) {
      blocks_[i]->number = i;
      blocks_[i]->before = i == 0 ? 0 : blocks_[i - 1]->before + blocks_[i - 1]->nodes.size();
    }
  }

  // The block and the place in it for a value at the position; it has memory for one more.
  std::pair<Block*, std::size_t> MakeRoom(std::size_t position) {
    if (blocks_.empty()) AddFirstBlock();
    Block* block = position > count_ ? blocks_.back().get() : &BlockOf(position);
    if (block->nodes.size() == kMost) {
      // Lists mostly grow at their ends; there a block stays full.
      Split(*block, position > count_ ? kMost : kMost / 2);
      block = position > count_ ? blocks_.back().get() : &BlockOf(position);
    }
    if (block->nodes.size() == block->nodes.capacity()) block->nodes.reserve(2 * block->nodes.size() + 1);
    return {block, position - 1 - block->before};
  }
  void AddFirstBlock() {
    auto block = std::make_unique<Block>();
    block->nodes.reserve(1);
    blocks_.push_back(std::move(block));
  }
  void Split(Block& block, std::size_t at) {
    auto rest = std::make_unique<Block>();
    rest->nodes.reserve(kMost);
    blocks_.reserve(blocks_.size() + 1);
    const auto from = block.nodes.begin() + static_cast<std::ptrdiff_t>(at);
    std::move(from, block.nodes.end(), std::back_inserter(rest->nodes));
    block.nodes.erase(from, block.nodes.end());
    Renumber(*rest, 0);
    const std::size_t number = block.number + 1;
    blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(number), std::move(rest));
    RenumberBlocks(number);
  }

  Mark Put(std::unique_ptr<Node> node, Block* block, std::size_t place) {
    const Mark mark = node.get();
    block->nodes.insert(block->nodes.begin() + static_cast<std::ptrdiff_t>(place), std::move(node));
    Renumber(*block, place);
    RenumberBlocks(block->number + 1);
    ++count_;
    return mark;
  }
  std::unique_ptr<Node> TakeFrom(Block& block, std::size_t place) {
    std::unique_ptr<Node> node = std::move(block.nodes[place]);
    block.nodes.erase(block.nodes.begin() + static_cast<std::ptrdiff_t>(place));
    Renumber(block, place);
    RenumberBlocks(block.number + 1);
    --count_;
    return node;
  }
  std::unique_ptr<Node> Take(std::size_t position) {
    Block& block = BlockOf(position);
    std::unique_ptr<Node> node = TakeFrom(block, position - 1 - block.before);
    if (block.nodes.empty()) DropBlock(block.number);
    return node;
  }
  void DropBlock(std::size_t number) {
    blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(number));
    RenumberBlocks(number);
  }

  std::vector<std::unique_ptr<Block>> blocks_;
  std::size_t count_ = 0;
};

}  // namespace zrqrybld
