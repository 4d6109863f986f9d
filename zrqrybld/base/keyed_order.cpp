#include "zrqrybld/base/keyed_order.h"

#include <unordered_map>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {

struct KeyedOrder::Index {
  using Map = std::unordered_multimap<std::string_view, Node*, HashNoCase, EqualNoCase>;  // the keys are the nodes'

  Map::node_type Take(const Node* node) {
    if (node->Key().empty()) return {};
    auto place = map.find(node->Key());
    while (place->second != node) ++place;
    return map.extract(place);
  }

  Map map;
};

KeyedOrder::KeyedOrder() = default;
KeyedOrder::KeyedOrder(KeyedOrder&& other) noexcept = default;
KeyedOrder& KeyedOrder::operator=(KeyedOrder&& other) noexcept = default;
KeyedOrder::~KeyedOrder() = default;

KeyedOrder::Node* KeyedOrder::At(std::size_t position) const {
  return position >= 1 && position <= Count() ? static_cast<Node*>(order_.At(position)) : nullptr;
}

KeyedOrder::Node* KeyedOrder::Find(std::string_view key) const {
  if (key.empty() || !index_ || index_->map.empty()) return nullptr;
  Node* found = nullptr;
  for (auto [alike, end] = index_->map.equal_range(key); alike != end; ++alike) {
    Node* const node = alike->second;
    if (node->key_ == key) return node;
    if (!found || node->Position() < found->Position()) found = node;
  }
  return found;
}

KeyedOrder::Node* KeyedOrder::FindExactly(std::string_view key) const {
  Node* const node = Find(key);
  return node && node->key_ == key ? node : nullptr;
}

KeyedOrder::Node* KeyedOrder::FirstAlike(std::string_view key) const {
  if (key.empty() || !index_) return nullptr;
  Node* found = nullptr;
  for (auto [alike, end] = index_->map.equal_range(key); alike != end; ++alike) {
    Node* const node = alike->second;
    if (!found || node->Position() < found->Position()) found = node;
  }
  return found;
}

KeyedOrder::Node* KeyedOrder::Insert(std::unique_ptr<Node> node, std::string_view key, std::size_t position) {
  if (FindExactly(key)) ThrowDuplicateKey(key);
  if (position == 0 || position > Count()) position = Count() + 1;
  node->key_ = key;
  Node* const added = node.get();
  order_.Insert(std::move(node), position);
  try {
    AddToIndex(added);
  } catch (...) {
    order_.Take(added->Position());
    throw;
  }
  return added;
}

void KeyedOrder::Rekey(Node& node, std::string_view key) {
  if (node.key_ == key) return;
  if (FindExactly(key)) ThrowDuplicateKey(key);
  std::string other(key);
  Index::Map::node_type indexed = index_ ? index_->Take(&node) : Index::Map::node_type();
  node.key_.swap(other);
  if (key.empty()) return;
  if (indexed) {
    indexed.key() = node.key_;
    index_->map.insert(std::move(indexed));
    return;
  }
  try {
    AddToIndex(&node);
  } catch (...) {
    node.key_.swap(other);
    throw;
  }
}

std::unique_ptr<Order::Node> KeyedOrder::Take(std::size_t position) {
  if (index_) index_->Take(At(position));
  return order_.Take(position);
}

void KeyedOrder::Clear() {
  if (index_) index_->map.clear();
  order_.Clear();
}

void KeyedOrder::AddToIndex(Node* node) {
  if (node->key_.empty()) return;
  if (!index_) index_ = std::make_unique<Index>();
  index_->map.emplace(node->key_, node);
}

}  // namespace zrqrybld
