#include "zrqrybld/base/event.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>

namespace zrqrybld {
namespace {

TEST(Event, CallsInOrderAndHandsReferencesOn) {
  Event<std::string&, int> event;
  const auto a = event.Connect([](std::string& text, int n) { text += "a" + std::to_string(n); });
  const auto b = event.Connect([](std::string& text, int) { text += "b"; });
  std::string text;
  event.Raise(text, 1);
  EXPECT_EQ(text, "a1b");
}

TEST(Event, StopsWithItsConnection) {
  Event<> event;
  int calls = 0;
  const auto count = [&calls] { ++calls; };
  {
    const EventConnection scoped = event.Connect(count);
    event.Raise();
  }
  EXPECT_FALSE(event.HasListeners());
  event.Raise();
  EXPECT_EQ(calls, 1);

  EventConnection first = event.Connect(count);
  first = event.Connect(count);  // the old listener goes, the new one stays
  EventConnection second = std::move(first);
  event.Raise();
  EXPECT_EQ(calls, 2);
  second.Disconnect();
  second.Disconnect();
  event.Raise();
  EXPECT_EQ(calls, 2);

  event.Connect(count).Release();
  event.Raise();
  EXPECT_EQ(calls, 3);

  std::optional<Event<>> shortLived(std::in_place);
  EventConnection survivor = shortLived->Connect(count);
  shortLived.reset();
  survivor.Disconnect();
}

TEST(Event, ListenersMayConnectAndDisconnectWhileItIsRaised) {
  Event<> event;
  std::string heard;
  EventConnection first;
  EventConnection second;
  EventConnection third;
  EventConnection late;
  first = event.Connect([&] {
    heard += "1";
    first.Disconnect();   // itself
    second.Disconnect();  // one whose turn has not come
    late = event.Connect([&] { heard += "L"; });
  });
  second = event.Connect([&] { heard += "2"; });
  third = event.Connect([&] { heard += "3"; });
  event.Raise();
  EXPECT_EQ(heard, "13");
  event.Raise();
  EXPECT_EQ(heard, "133L");
}

TEST(Event, NestedRaisesKeepTheirPlaces) {
  Event<int> event;
  std::string heard;
  EventConnection first;
  EventConnection added;
  first = event.Connect([&](int depth) {
    heard += "a" + std::to_string(depth);
    if (depth == 0) {
      added = event.Connect([&](int d) { heard += "c" + std::to_string(d); });
      event.Raise(1);
      first.Disconnect();
      event.Raise(2);
    }
  });
  const auto second = event.Connect([&](int depth) { heard += "b" + std::to_string(depth); });
  event.Raise(0);
  EXPECT_EQ(heard, "a0a1b1c1b2c2b0");
}

TEST(Event, ItsOwnerMayDieWhileItIsRaised) {
  auto event = std::make_unique<Event<>>();
  auto heard = std::make_shared<std::string>();
  const auto first = event->Connect([&event, heard] {
    *heard += "1";
    event.reset();
  });
  const auto second = event->Connect([heard] { *heard += "2"; });
  event->Raise();
  EXPECT_EQ(*heard, "12");
  EXPECT_EQ(heard.use_count(), 1);  // nothing the listeners held is left behind
}

TEST(Event, AThrowingListenerLeavesItUsable) {
  Event<> event;
  int calls = 0;
  auto bad = event.Connect([] { throw std::runtime_error("no"); });
  const auto good = event.Connect([&calls] { ++calls; });
  EXPECT_THROW(event.Raise(), std::runtime_error);
  bad.Disconnect();
  event.Raise();
  EXPECT_EQ(calls, 1);
}

// Listeners come and go with every box of a diagram, also on events that are hardly ever raised.
TEST(Event, KeepsNothingOfListenersThatHaveGone) {
  Event<> event;
  const auto held = std::make_shared<int>();
  const auto stays = event.Connect([held] {});
  for (int i = 0; i < 1000; ++i) event.Connect([held] {}).Disconnect();
  EXPECT_LT(held.use_count(), 100);
  event.Raise();
  EXPECT_EQ(held.use_count(), 2);
}

// What a listener held may use the event in its destructor, which runs when the raise clears up.
TEST(Event, ClearingUpMayConnectAgain) {
  struct Reconnects {
    explicit Reconnects(Event<>& e) : event(e) {}
    Reconnects(const Reconnects&) = delete;
    Reconnects& operator=(const Reconnects&) = delete;
    ~Reconnects() {
      for (int i = 0; i < 50; ++i) event.Connect([] {}).Release();
    }
    Event<>& event;
  };
  Event<> event;
  EventConnection connection = event.Connect([held = std::make_shared<Reconnects>(event)] {});
  const auto other = event.Connect([&] { connection.Disconnect(); });
  event.Raise();
  EXPECT_TRUE(event.HasListeners());
}

}  // namespace
}  // namespace zrqrybld
