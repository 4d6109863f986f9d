// Event: a list of listeners, called in the order in which they connected.
//
// While an event is raised a listener may connect others (they hear the next raise), disconnect
// itself or others (they are not called any more), or destroy the object that owns the event.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace zrqrybld {

/// Keeps a listener connected; disconnects it when destroyed. Empty by default.
class [[nodiscard]] EventConnection {
 public:
  EventConnection() = default;
  explicit EventConnection(std::weak_ptr<bool> alive) : alive_(std::move(alive)) {}
  EventConnection(EventConnection&& other) noexcept : alive_(std::exchange(other.alive_, {})) {}
  EventConnection& operator=(EventConnection&& other) noexcept {
    if (this != &other) {
      Disconnect();
      alive_ = std::exchange(other.alive_, {});
    }
    return *this;
  }
  EventConnection(const EventConnection&) = delete;
  EventConnection& operator=(const EventConnection&) = delete;
  ~EventConnection() { Disconnect(); }

  /// Stops the listener. Harmless when it is stopped already or its event is gone.
  void Disconnect() {
    if (const auto alive = alive_.lock()) *alive = false;
    alive_.reset();
  }

  /// Leaves the listener connected for as long as the event lives.
  void Release() { alive_.reset(); }

 private:
  std::weak_ptr<bool> alive_;
};

/// An event with the given argument types; a reference type is a by-reference argument.
template <class... Args>
class Event {
 public:
  using Listener = std::function<void(Args...)>;

  Event() : state_(std::make_shared<State>()) {}
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  /// Adds a listener. It is called until the returned connection is destroyed.
  EventConnection Connect(Listener listener) {
    auto alive = std::make_shared<bool>(true);
    EventConnection connection{std::weak_ptr<bool>(alive)};
    // Before the list grows: listeners come and go on events that are never raised, too.
    if (state_->raising == 0 && state_->entries.size() == state_->entries.capacity()) state_->Sweep();
    state_->entries.push_back(std::make_shared<Entry>(std::move(alive), std::move(listener)));
    return connection;
  }

  /// Calls every listener that is connected now and still connected when its turn comes.
  void Raise(Args... args) const {
    const std::shared_ptr<State> state = state_;  // survives the owner of this event
    if (state->entries.empty()) return;
    const Sweeper sweeper(*state);
    const std::size_t count = state->entries.size();
    for (std::size_t i = 0; i < count; ++i) {
      const std::shared_ptr<Entry> entry = state->entries[i];
      if (*entry->alive) entry->listener(args...);
    }
  }

  /// Whether anybody listens.
  bool HasListeners() const {
    return std::ranges::any_of(state_->entries, [](const auto& entry) { return *entry->alive; });
  }

 private:
  struct Entry {
    Entry(std::shared_ptr<bool> isAlive, Listener call) : alive(std::move(isAlive)), listener(std::move(call)) {}
    std::shared_ptr<bool> alive;
    Listener listener;
  };
  struct State {
    std::vector<std::shared_ptr<Entry>> entries;
    int raising = 0;

    // Removes dead entries. What their listeners hold is destroyed when the list is whole again: a
    // destructor may use the event. What it leaves behind the dead ones keeps those for the next time.
    // It runs where nothing may be thrown, so it needs no memory.
    void Sweep() noexcept {
      const auto isAlive = [](const std::shared_ptr<Entry>& entry) { return *entry->alive; };
      if (std::ranges::all_of(entries, isAlive)) return;
      std::stable_partition(entries.begin(), entries.end(), isAlive);
      while (!entries.empty() && !isAlive(entries.back())) {
        const std::shared_ptr<Entry> gone = std::move(entries.back());
        entries.pop_back();
      }
    }
  };
  // Sweeps, but only when no raise is walking the list by index.
  class Sweeper {
   public:
    explicit Sweeper(State& state) : state_(state) { ++state_.raising; }
    Sweeper(const Sweeper&) = delete;
    Sweeper& operator=(const Sweeper&) = delete;
    ~Sweeper() {
      if (--state_.raising == 0) state_.Sweep();
    }

   private:
    State& state_;
  };

  std::shared_ptr<State> state_;
};

}  // namespace zrqrybld
