// OrderedList: values in an order, at positions from 1, that come and go anywhere (see `Order`).
#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>

#include "zrqrybld/base/order.h"

namespace zrqrybld {

template <class T>
class OrderedList {
  struct Node final : Order::Node {
    explicit Node(T v) : value(std::move(v)) {}
    T value;
  };

 public:
  /// Stands for a value while that is in the list.
  using Mark = Node*;

  std::size_t Count() const { return order_.Count(); }
  bool Empty() const { return Count() == 0; }

  /// The value at a position that exists.
  T& At(std::size_t position) { return MarkAt(position)->value; }
  const T& At(std::size_t position) const { return MarkAt(position)->value; }
  Mark MarkAt(std::size_t position) const { return static_cast<Mark>(order_.At(position)); }
  static std::size_t PositionOf(Mark mark) { return mark->Position(); }

  /// Puts the value at a position from 1 to Count() + 1.
  Mark Insert(T value, std::size_t position) {
    return static_cast<Mark>(order_.Insert(std::make_unique<Node>(std::move(value)), position));
  }
  Mark Append(T value) { return Insert(std::move(value), Count() + 1); }

  /// Removes the value at a position that exists, and returns it.
  T RemoveAt(std::size_t position) {
    const std::unique_ptr<Order::Node> node = order_.Take(position);
    return std::move(static_cast<Node&>(*node).value);
  }

  /// Moves the value at `from` so that it stands at `to`. Both positions must exist.
  void Move(std::size_t from, std::size_t to) { order_.Move(from, to); }

  void Clear() { order_.Clear(); }

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
    Walk(const Order* order, Order::Node* node) : order_(order), node_(node) {}
    reference operator*() const { return static_cast<Mark>(node_)->value; }
    pointer operator->() const { return &**this; }
    Walk& operator++() {
      node_ = order_->Next(node_);
      return *this;
    }
    Walk operator++(int) { return std::exchange(*this, std::next(*this)); }
    Walk& operator--() {
      node_ = node_ ? order_->Previous(node_) : order_->Last();
      return *this;
    }
    Walk operator--(int) { return std::exchange(*this, std::prev(*this)); }
    friend bool operator==(const Walk&, const Walk&) = default;

   private:
    const Order* order_ = nullptr;
    Order::Node* node_ = nullptr;  // none behind the last
  };
  using iterator = Walk<false>;
  using const_iterator = Walk<true>;
  iterator begin() { return {&order_, order_.First()}; }
  iterator end() { return {&order_, nullptr}; }
  const_iterator begin() const { return {&order_, order_.First()}; }
  const_iterator end() const { return {&order_, nullptr}; }
  auto rbegin() const { return std::make_reverse_iterator(end()); }
  auto rend() const { return std::make_reverse_iterator(begin()); }

 private:
  Order order_;
};

}  // namespace zrqrybld
