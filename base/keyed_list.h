// KeyedList: the storage under every public collection.
//
// Items stand in order, at positions from 1; each may have a key. A key is found exactly first,
// then without regard to case; two keys are duplicates only when equal exactly, so that a
// case-sensitive data source works. Look-ups by key and position take constant time; inserting
// and removing take time in the number of items behind the place.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/text.h"

namespace zrqrybld {

template <class T>
class KeyedList {
 public:
  static constexpr std::size_t kNone = 0;  ///< "no such position"

  std::size_t Count() const { return nodes_.size(); }
  bool Empty() const { return nodes_.empty(); }

  /// Puts `value` at `position` (1 to Count()+1; 0 appends) under `key` ("" for none). Error 457
  /// when the key is in use; nothing is added then.
  T& Insert(T value, std::string_view key = {}, std::size_t position = kNone) {
    if (!key.empty() && FindExactly(key)) ThrowDuplicateKey(key);
    if (position == kNone || position > nodes_.size()) position = nodes_.size() + 1;
    auto node = std::make_unique<Node>(Node{std::string(key), std::move(value), position});
    Node* added = node.get();
    nodes_.insert(nodes_.begin() + static_cast<std::ptrdiff_t>(position - 1), std::move(node));
    Renumber(position);
    AddToIndex(added);
    return added->value;
  }

  /// The item at `position`, or nullptr.
  T* At(std::size_t position) {
    return position >= 1 && position <= nodes_.size() ? &nodes_[position - 1]->value : nullptr;
  }
  const T* At(std::size_t position) const { return const_cast<KeyedList*>(this)->At(position); }

  /// The item under `key`, or nullptr.
  T* Find(std::string_view key) {
    Node* node = FindNode(key);
    return node ? &node->value : nullptr;
  }
  const T* Find(std::string_view key) const { return const_cast<KeyedList*>(this)->Find(key); }

  /// The position of `key`, `kNone` when there is none.
  std::size_t PositionOf(std::string_view key) const {
    const Node* node = FindNode(key);
    return node ? node->position : kNone;
  }

  /// Whether exactly this key is in use.
  bool HasExactly(std::string_view key) const { return FindExactly(key) != nullptr; }

  /// The key at `position`; "" when the item has none or there is no such position.
  std::string_view KeyAt(std::size_t position) const {
    return position >= 1 && position <= nodes_.size() ? std::string_view(nodes_[position - 1]->key)
                                                      : std::string_view{};
  }

  /// Gives the item at `position` another key, in place. Error 457 when another item has it.
  void Rekey(std::size_t position, std::string_view key) {
    Node* node = nodes_.at(position - 1).get();
    if (node->key == key) return;
    if (!key.empty() && FindExactly(key)) ThrowDuplicateKey(key);
    RemoveFromIndex(node);
    node->key = std::string(key);
    AddToIndex(node);
  }

  /// Removes the item at `position` and returns it. The position must exist.
  T RemoveAt(std::size_t position) {
    const auto at = nodes_.begin() + static_cast<std::ptrdiff_t>(position - 1);
    const std::unique_ptr<Node> node = std::move(*at);
    RemoveFromIndex(node.get());
    nodes_.erase(at);
    Renumber(position);
    return std::move(node->value);
  }

  /// Removes every item for which `unwanted` returns true, in one pass; it is asked once for each.
  template <class Predicate>
  void RemoveIf(Predicate unwanted) {
    const auto kept = std::stable_partition(nodes_.begin(), nodes_.end(),
                                            [&](const std::unique_ptr<Node>& node) { return !unwanted(node->value); });
    for (auto node = kept; node != nodes_.end(); ++node) RemoveFromIndex(node->get());
    nodes_.erase(kept, nodes_.end());
    Renumber(1);
  }

  /// Moves the item at `from` so that it stands at `to`. Both positions must exist.
  void Move(std::size_t from, std::size_t to) {
    if (from == to) return;
    const auto begin = nodes_.begin();
    const auto offset = [](std::size_t position) { return static_cast<std::ptrdiff_t>(position); };
    if (from < to) {
      std::rotate(begin + offset(from - 1), begin + offset(from), begin + offset(to));
    } else {
      std::rotate(begin + offset(to - 1), begin + offset(from - 1), begin + offset(from));
    }
    Renumber(std::min(from, to));
  }

  void Clear() {
    index_.clear();
    nodes_.clear();
  }

 private:
  struct Node {
    std::string key;
    T value;
    std::size_t position;
  };

  // The one with exactly this key, otherwise the first of those that differ in case.
  Node* FindNode(std::string_view key) const {
    if (key.empty() || index_.empty()) return nullptr;
    Node* found = nullptr;
    for (auto [alike, end] = index_.equal_range(key); alike != end; ++alike) {
      Node* node = alike->second;
      if (node->key == key) return node;
      if (!found || node->position < found->position) found = node;
    }
    return found;
  }

  Node* FindExactly(std::string_view key) const {
    Node* node = FindNode(key);
    return node && node->key == key ? node : nullptr;
  }

  void AddToIndex(Node* node) {
    if (!node->key.empty()) index_.emplace(node->key, node);
  }

  void RemoveFromIndex(Node* node) {
    if (node->key.empty()) return;
    auto place = index_.find(node->key);
    while (place->second != node) ++place;
    index_.erase(place);
  }

  void Renumber(std::size_t from) {
    for (std::size_t i = from; i <= nodes_.size(); ++i) nodes_[i - 1]->position = i;
  }

  std::vector<std::unique_ptr<Node>> nodes_;
  std::unordered_multimap<std::string_view, Node*, HashNoCase, EqualNoCase> index_;  // the keys are the nodes'
};

}  // namespace zrqrybld
