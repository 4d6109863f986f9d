#include "zrqrybld/base/order.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace zrqrybld {
namespace {

constexpr std::size_t kMost = 256;  // in a block

std::ptrdiff_t Offset(std::size_t index) { return static_cast<std::ptrdiff_t>(index); }

}  // namespace

struct Order::Block {
  std::vector<std::unique_ptr<Node>> nodes;
  std::size_t number = 0;  // among the blocks
  std::size_t before = 0;  // how many stand in the blocks before

  void Renumber(std::size_t from) {
    for (std::size_t i = from; i < nodes.size(); ++i) {
      nodes[i]->block_ = this;
      nodes[i]->place_ = i;
    }
  }
};

struct Order::Blocks : std::vector<std::unique_ptr<Block>> {};

std::size_t Order::Node::Position() const { return block_->before + place_ + 1; }

Order::Order() = default;
Order::Order(Order&& other) noexcept : blocks_(std::move(other.blocks_)), count_(std::exchange(other.count_, 0)) {}
Order& Order::operator=(Order&& other) noexcept {
  blocks_ = std::move(other.blocks_);
  count_ = std::exchange(other.count_, 0);
  return *this;
}
Order::~Order() = default;

Order::Node* Order::At(std::size_t position) const {
  const Block& block = BlockOf(position);
  return block.nodes[position - 1 - block.before].get();
}

Order::Node* Order::Next(const Node* node) const {
  const Block& block = *node->block_;
  if (node->place_ + 1 < block.nodes.size()) return block.nodes[node->place_ + 1].get();
  return block.number + 1 < blocks_->size() ? (*blocks_)[block.number + 1]->nodes.front().get() : nullptr;
}

Order::Node* Order::Previous(const Node* node) const {
  const Block& block = *node->block_;
  if (node->place_ > 0) return block.nodes[node->place_ - 1].get();
  return block.number > 0 ? (*blocks_)[block.number - 1]->nodes.back().get() : nullptr;
}

Order::Node* Order::Insert(std::unique_ptr<Node> node, std::size_t position) {
  const Room room = MakeRoom(position);
  return Put(std::move(node), room);
}

std::unique_ptr<Order::Node> Order::Take(std::size_t position) {
  Block& block = BlockOf(position);
  std::unique_ptr<Node> node = TakeFrom(block, position - 1 - block.before);
  if (block.nodes.empty()) DropBlock(block.number);
  return node;
}

void Order::Move(std::size_t from, std::size_t to) {
  if (from == to) return;
  // A free place first, before the moved one leaves its own.
  Room room = MakeRoom(from < to ? to + 1 : to);
  const Node* const moved = At(from);
  if (moved->block_ == room.block && moved->place_ < room.place) --room.place;
  Block* const source = moved->block_;
  Put(TakeFrom(*source, moved->place_), room);
  if (source->nodes.empty()) DropBlock(source->number);
}

void Order::Clear() {
  if (blocks_) blocks_->clear();
  count_ = 0;
}

Order::Block& Order::BlockOf(std::size_t position) const {
  if (blocks_->size() == 1) return *blocks_->front();
  const auto behind = std::upper_bound(blocks_->begin(), blocks_->end(), position - 1,
                                       [](std::size_t index, const auto& block) { return index < block->before; });
  return **std::prev(behind);
}

void Order::RenumberBlocks(std::size_t from) {
  for (std::size_t i = from; i < blocks_->size(); ++i) {
    Block& block = *(*blocks_)[i];
    block.number = i;
    block.before = i == 0 ? 0 : (*blocks_)[i - 1]->before + (*blocks_)[i - 1]->nodes.size();
  }
}

// The place for one at the position, in a block that has memory for one more.
Order::Room Order::MakeRoom(std::size_t position) {
  if (!blocks_ || blocks_->empty()) AddFirstBlock();
  const auto find = [&] { return position > count_ ? blocks_->back().get() : &BlockOf(position); };
  Block* block = find();
  if (block->nodes.size() == kMost) {
    Split(*block, position > count_ ? kMost : kMost / 2);  // orders mostly grow at their ends; there a block stays full
    block = find();
  }
  if (block->nodes.size() == block->nodes.capacity()) block->nodes.reserve(2 * block->nodes.size() + 1);
  return {block, position - 1 - block->before};
}

void Order::AddFirstBlock() {
  if (!blocks_) blocks_ = std::make_unique<Blocks>();
  auto block = std::make_unique<Block>();
  block->nodes.reserve(1);
  blocks_->push_back(std::move(block));
}

void Order::Split(Block& block, std::size_t at) {
  auto rest = std::make_unique<Block>();
  rest->nodes.reserve(kMost);
  blocks_->reserve(blocks_->size() + 1);
  const auto from = block.nodes.begin() + Offset(at);
  std::move(from, block.nodes.end(), std::back_inserter(rest->nodes));
  block.nodes.erase(from, block.nodes.end());
  rest->Renumber(0);
  const std::size_t number = block.number + 1;
  blocks_->insert(blocks_->begin() + Offset(number), std::move(rest));
  RenumberBlocks(number);
}

Order::Node* Order::Put(std::unique_ptr<Node> node, Room room) {
  Node* const put = node.get();
  Block& block = *room.block;
  block.nodes.insert(block.nodes.begin() + Offset(room.place), std::move(node));
  block.Renumber(room.place);
  RenumberBlocks(block.number + 1);
  ++count_;
  return put;
}

std::unique_ptr<Order::Node> Order::TakeFrom(Block& block, std::size_t place) {
  std::unique_ptr<Node> node = std::move(block.nodes[place]);
  block.nodes.erase(block.nodes.begin() + Offset(place));
  block.Renumber(place);
  RenumberBlocks(block.number + 1);
  --count_;
  return node;
}

void Order::DropBlock(std::size_t number) {
  blocks_->erase(blocks_->begin() + Offset(number));
  RenumberBlocks(number);
}

}  // namespace zrqrybld
