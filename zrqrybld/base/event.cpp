#include "zrqrybld/base/event.h"

#include <algorithm>

namespace zrqrybld {

EventConnection Listeners::Add(std::shared_ptr<Listening> listening) {
  EventConnection connection{std::weak_ptr<bool>(listening->alive_)};
  // Before the list grows: listeners come and go on events that are never raised, too.
  if (raising_ == 0 && entries_.size() == entries_.capacity()) Sweep();
  entries_.push_back(std::move(listening));
  return connection;
}

bool Listeners::IsAnyAlive() const {
  return std::ranges::any_of(entries_, [](const auto& entry) { return *entry->alive_; });
}

// Removes dead entries. What their listeners hold is destroyed when the list is whole again: a destructor may use the
// event. What it leaves behind the dead ones keeps those for the next time. It runs where nothing may be thrown, so it
// needs no memory.
void Listeners::Sweep() noexcept {
  const auto isAlive = [](const std::shared_ptr<Listening>& entry) { return *entry->alive_; };
  if (std::ranges::all_of(entries_, isAlive)) return;
  std::stable_partition(entries_.begin(), entries_.end(), isAlive);
  while (!entries_.empty() && !isAlive(entries_.back())) {
    const std::shared_ptr<Listening> gone = std::move(entries_.back());
    entries_.pop_back();
  }
}

Listeners::Round::Round(std::shared_ptr<Listeners> listeners)
    : listeners_(std::move(listeners)), count_(listeners_->entries_.size()) {
  ++listeners_->raising_;
}

// Sweeps, but only when no other round walks the list by index.
Listeners::Round::~Round() {
  if (--listeners_->raising_ == 0) listeners_->Sweep();
}

std::shared_ptr<Listening> Listeners::Round::Next() {
  while (next_ < count_) {
    const std::shared_ptr<Listening>& entry = listeners_->entries_[next_++];
    if (*entry->alive_) return entry;
  }
  return nullptr;
}

}  // namespace zrqrybld
