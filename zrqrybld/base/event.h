// Event: a list of listeners, called in the order in which they connected.
//
// While an event is raised a listener may connect others (they hear the next raise), disconnect
// itself or others (they are not called any more), or destroy the object that owns the event.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "zrqrybld/base/export.h"

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

/// One listener, whatever it is called with.
class ZRQRYBLD_API Listening {
 public:
  Listening() = default;
  Listening(const Listening&) = delete;
  Listening& operator=(const Listening&) = delete;
  virtual ~Listening() = default;

 private:
  friend class Listeners;
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

/// The listeners of one event; compiled once for all kinds of events.
class ZRQRYBLD_API Listeners {
 public:
  EventConnection Add(std::shared_ptr<Listening> listening);
  bool IsEmpty() const { return entries_.empty(); }
  bool IsAnyAlive() const;

  /// One raise. It keeps the listeners, which may let go of the event's owner.
  class Round {
   public:
    explicit Round(std::shared_ptr<Listeners> listeners);
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;
    ~Round();

    /// The next that was connected when the round began and still is; nothing at the end.
    std::shared_ptr<Listening> Next();

   private:
    const std::shared_ptr<Listeners> listeners_;
    const std::size_t count_;
    std::size_t next_ = 0;
  };

 private:
  void Sweep() noexcept;

  std::vector<std::shared_ptr<Listening>> entries_;
  int raising_ = 0;
};

/// An event with the given argument types; a reference type is a by-reference argument.
template <class... Args>
class Event {
 public:
  using Listener = std::function<void(Args...)>;

  Event() : listeners_(std::make_shared<Listeners>()) {}
  Event(const Event&) = delete;
  Event& operator=(const Event&) = delete;

  /// Adds a listener. It is called until the returned connection is destroyed.
  EventConnection Connect(Listener listener) { return listeners_->Add(std::make_shared<Entry>(std::move(listener))); }

  /// Calls every listener that is connected now and still connected when its turn comes.
  void Raise(Args... args) const {
    if (listeners_->IsEmpty()) return;
    Listeners::Round round(listeners_);
    while (const std::shared_ptr<Listening> entry = round.Next()) static_cast<Entry&>(*entry).listener(args...);
  }

  /// Whether anybody listens.
  bool HasListeners() const { return listeners_->IsAnyAlive(); }

 private:
  struct Entry final : Listening {
    explicit Entry(Listener call) : listener(std::move(call)) {}
    Listener listener;
  };

  std::shared_ptr<Listeners> listeners_;
};

}  // namespace zrqrybld
