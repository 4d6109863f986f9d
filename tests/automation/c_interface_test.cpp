// The C interface, called as a program in C would.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/zrqrybld.h"

extern "C" int32_t AbiSeenFromC(void);

namespace {

// The text must live as long as the value.
zrq_value Text(std::string_view text) {
  zrq_value value{ZRQ_STRING, 0, {}};
  value.as.text = {text.data(), text.size()};
  return value;
}
zrq_value Number(int64_t number) {
  zrq_value value{ZRQ_INT32, 0, {}};
  value.as.integer = number;
  return value;
}
zrq_value Handle(zrq_handle object) {
  zrq_value value{ZRQ_OBJECT, 0, {}};
  value.as.object = object;
  return value;
}

zrq_handle Create(const char* name) {
  zrq_handle object = 0;
  EXPECT_EQ(zrq_create(name, &object), 0) << name;
  return object;
}

// What a value holds, as text; the value is freed.
std::string Taken(zrq_value value) {
  std::string text;
  if (value.type == ZRQ_STRING) text.assign(value.as.text.data, value.as.text.length);
  if (value.type == ZRQ_BOOLEAN || value.type == ZRQ_INT32) text = std::to_string(value.as.integer);
  if (value.type == ZRQ_OBJECT) text = "object";
  zrq_clear(&value);
  EXPECT_EQ(value.type, ZRQ_EMPTY);
  return text;
}

std::string Get(zrq_handle object, const char* name, std::vector<zrq_value> arguments = {}) {
  zrq_value value{};
  const int32_t error = zrq_get(object, name, arguments.data(), arguments.size(), &value);
  return error != 0 ? "error " + std::to_string(error) : Taken(value);
}

zrq_handle GetObject(zrq_handle object, const char* name) {
  zrq_value value{};
  EXPECT_EQ(zrq_get(object, name, nullptr, 0, &value), 0) << name;
  return value.as.object;
}

// A hub with its three panes; all handles are the caller's.
std::vector<zrq_handle> Designer() {
  std::vector<zrq_handle> all = {Create("qbQueryBuilder")};
  for (const char* pane : {"DiagramPane", "GridPane", "SQLPane"}) {
    all.push_back(Create((std::string("qb") + pane).c_str()));
    const zrq_value value = Handle(all.back());
    EXPECT_EQ(zrq_let(all.front(), pane, nullptr, 0, &value), 0);
  }
  return all;
}

TEST(CInterface, SpeaksAllKindsOfValues) {
  EXPECT_EQ(AbiSeenFromC(), ZRQ_ABI);
  const zrq_handle bag = Create("qbProperties");
  const std::string text("Gr\xC3\xBC\xC3\x9F\x65 \0 end", 13);
  std::array<zrq_value, 3> arguments{Text(text), Text("key"), {ZRQ_MISSING, 0, {}}};
  zrq_value added{};
  ASSERT_EQ(zrq_call(bag, "Add", arguments.data(), arguments.size(), &added, nullptr), 0);
  EXPECT_EQ(Get(added.as.object, ""), text);  // the default member
  const std::array<zrq_value, 2> items{Number(7), Text("x")};
  zrq_value array{ZRQ_ARRAY, 0, {}};
  array.as.array = {items.data(), items.size()};
  EXPECT_EQ(zrq_let(added.as.object, "value", nullptr, 0, &array), 0);  // in any letter case
  zrq_value back{};
  ASSERT_EQ(zrq_get(bag, "Item", &arguments[1], 1, &back), 0);
  EXPECT_EQ(back.as.object, added.as.object);  // an object has one handle
  zrq_value read{};
  ASSERT_EQ(zrq_get(back.as.object, "Value", nullptr, 0, &read), 0);
  ASSERT_EQ(read.as.array.count, 2u);
  EXPECT_EQ(read.as.array.items[0].as.integer, 7);
  zrq_clear(&read);
  zrq_clear(&back);
  zrq_clear(&added);
  EXPECT_EQ(zrq_release(bag), 0);
}

TEST(CInterface, WritesArgumentsBack) {
  const std::vector<zrq_handle> designer = Designer();
  std::array<zrq_value, 2> arguments{Text(""), {ZRQ_BOOLEAN, 0, {}}};
  arguments[1].as.integer = 1;
  std::array<zrq_value, 2> written{};
  ASSERT_EQ(zrq_call(designer[0], "SaveQuery", arguments.data(), 2, nullptr, written.data()), 0);
  EXPECT_NE(Taken(written[0]).find("Begin SQLData"), std::string::npos);
  EXPECT_EQ(written[1].type, ZRQ_MISSING);
  for (const zrq_handle handle : designer) EXPECT_EQ(zrq_release(handle), 0);
}

// Nothing that is passed by handle, name or value ends the process; each is an error with a description.
TEST(CInterface, MisuseIsAnError) {
  const zrq_handle live = Create("qbProperties");
  const zrq_handle released = Create("qbProperties");
  zrq_release(released);
  zrq_value value{};
  for (const zrq_handle handle : {zrq_handle{0}, released, zrq_handle{1} << 40, ~zrq_handle{0}}) {
    const char* name = nullptr;
    for (const int32_t error :
         {zrq_retain(handle), zrq_release(handle), zrq_class(handle, &name),
          zrq_get(handle, "Count", nullptr, 0, &value), zrq_let(handle, "Count", nullptr, 0, &value),
          zrq_call(handle, "Clear", nullptr, 0, nullptr, nullptr)}) {
      EXPECT_EQ(error, 5);
    }
  }
  zrq_value deep[100];
  for (zrq_value& array : deep) {
    array = {ZRQ_ARRAY, 0, {}};
    array.as.array = {&array + 1, static_cast<size_t>(&array + 1 != std::end(deep) ? 1 : 0)};
  }
  zrq_value noText{ZRQ_STRING, 0, {}};
  noText.as.text = {nullptr, 9};
  zrq_value noItems{ZRQ_ARRAY, 0, {}};
  noItems.as.array = {nullptr, 9};
  for (const zrq_value& bad :
       {Text("\xFF"), Text("\xC3"), noText, noItems, deep[0], Handle(released), zrq_value{99, 0, {}}}) {
    EXPECT_EQ(zrq_call(live, "Add", &bad, 1, nullptr, nullptr), 5);
    const char* description = nullptr;
    EXPECT_EQ(zrq_last_error(&description), 5);
    EXPECT_STRNE(description, "");
  }
  EXPECT_EQ(Get(live, "Count"), "0");
  uint64_t subscription = 0;
  const auto listen = [](void*, const zrq_value*, size_t) {};
  EXPECT_EQ(zrq_get(live, nullptr, nullptr, 0, &value), 5);
  EXPECT_EQ(zrq_get(live, "Item", nullptr, 1, &value), 5);
  EXPECT_EQ(zrq_get(live, "Item", nullptr, 0, &value), 449);
  EXPECT_EQ(zrq_get(live, "Nothing", nullptr, 0, &value), 438);
  EXPECT_EQ(zrq_get(live, "Count", nullptr, 0, nullptr), 0);
  EXPECT_EQ(zrq_let(live, "Count", nullptr, 0, nullptr), 5);
  EXPECT_EQ(zrq_create("qbEntity", &value.as.object), 429);
  EXPECT_EQ(zrq_create(nullptr, &value.as.object), 5);
  EXPECT_EQ(zrq_create("qbProperties", nullptr), 5);
  EXPECT_EQ(zrq_write(0, &value), 5);
  EXPECT_EQ(zrq_subscribe(live, "Count", listen, nullptr, nullptr, &subscription), 438);
  EXPECT_EQ(zrq_subscribe(live, "Count", nullptr, nullptr, nullptr, &subscription), 5);
  EXPECT_EQ(zrq_unsubscribe(12345), 0);
  zrq_clear(nullptr);
  zrq_release(live);
}

// --- Events ---

using Handler = std::function<void(const zrq_value* arguments, size_t count)>;

uint64_t Listen(zrq_handle object, const char* event, Handler& handler, zrq_ended ended = nullptr) {
  uint64_t subscription = 0;
  const auto call = [](void* context, const zrq_value* arguments, size_t count) {
    (*static_cast<Handler*>(context))(arguments, count);
  };
  EXPECT_EQ(zrq_subscribe(object, event, call, ended, &handler, &subscription), 0);
  return subscription;
}

TEST(CInterface, AHandlerMayCancelThrowAndEndItself) {
  const std::vector<zrq_handle> designer = Designer();
  const zrq_handle entities = GetObject(designer[1], "Entities");
  const zrq_value name = Text("t");
  const auto add = [&] { return zrq_call(entities, "Add", &name, 1, nullptr, nullptr); };
  uint64_t subscription = 0;
  Handler handler = [&](const zrq_value* arguments, size_t count) {
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(std::string(arguments[0].as.text.data), "t");
    zrq_value yes{ZRQ_BOOLEAN, 0, {}};
    yes.as.integer = 1;
    EXPECT_EQ(zrq_write(1, &yes), 0);
    EXPECT_EQ(zrq_write(2, &yes), 5);
    zrq_unsubscribe(subscription);  // while it is called
  };
  static int ended = 0;
  ended = 0;
  subscription = Listen(entities, "BeforeAdd", handler, [](void*) { ++ended; });
  EXPECT_EQ(add(), 0);
  EXPECT_EQ(Get(entities, "Count"), "0");
  EXPECT_EQ(ended, 1);

  Handler thrower = [](const zrq_value*, size_t) { throw std::runtime_error("from a handler"); };
  subscription = Listen(entities, "BeforeAdd", thrower);
  EXPECT_EQ(add(), 5);
  const char* description = nullptr;
  zrq_last_error(&description);
  EXPECT_STREQ(description, "from a handler");
  EXPECT_EQ(zrq_write(0, &name), 5);  // no event is being handled any more
  zrq_unsubscribe(subscription);
  EXPECT_EQ(add(), 0);

  // Whoever listens may let go of everything that is being used.
  std::vector<zrq_handle> all = designer;
  all.push_back(entities);
  Handler destroyer = [&all](const zrq_value*, size_t) {
    for (const zrq_handle handle : all) zrq_release(handle);
    all.clear();
  };
  Listen(entities, "BeforeAdd", destroyer, [](void*) { ++ended; });
  const zrq_value other = Text("u");
  zrq_call(entities, "Add", &other, 1, nullptr, nullptr);
  EXPECT_TRUE(all.empty());
  EXPECT_EQ(ended, 2);
}

// --- Handles ---

TEST(CInterface, HandlesAreReleasedInAnyOrder) {
  for (unsigned seed = 0; seed < 50; ++seed) {
    std::vector<zrq_handle> handles = Designer();
    handles.push_back(GetObject(handles[1], "Entities"));
    const zrq_value name = Text("t");
    zrq_value entity{};
    ASSERT_EQ(zrq_call(handles.back(), "Add", &name, 1, &entity, nullptr), 0);
    for (const char* part : {"Items", "Relationships", "Properties"})
      handles.push_back(GetObject(entity.as.object, part));
    handles.push_back(entity.as.object);
    for (const char* part : {"DBFunctions", "Connection", "Properties"}) handles.push_back(GetObject(handles[0], part));
    handles.push_back(GetObject(handles[2], "Grid"));
    std::shuffle(handles.begin(), handles.end(), std::mt19937(seed));
    while (!handles.empty()) {
      EXPECT_EQ(zrq_release(handles.back()), 0);
      handles.pop_back();
      for (const zrq_handle handle : handles) {
        const char* name_ = nullptr;
        ASSERT_EQ(zrq_class(handle, &name_), 0);
        for (const char* member : {"Count", "Caption", "Row", "QueryBuilder", "State"}) {
          const std::string read = Get(handle, member);
          EXPECT_TRUE(!read.starts_with("error") || read == "error 91" || read == "error 438") << name_ << read;
        }
      }
    }
  }
}

// Leaks are found by the sanitizers.
TEST(CInterface, ManyObjectsComeAndGo) {
  zrq_handle last = 0;
  for (int i = 0; i < 100'000; ++i) {
    const zrq_handle object = Create("qbProperties");
    ASSERT_NE(object, last);  // a released handle does not come back
    last = object;
    ASSERT_EQ(zrq_release(object), 0);
  }
}

// Every member of every class is told, with its arguments; behind the last one there is an error.
TEST(CInterface, TellsWhatThereIs) {
  size_t classes = 0;
  for (; const char* name = zrq_class_at(classes); ++classes) {
    zrq_member member{};
    size_t members = 0;
    while (zrq_member_at(name, members, &member) == 0) {
      ++members;
      EXPECT_STRNE(member.name, "");
      for (size_t i = 0; i < member.argument_count; ++i)
        EXPECT_STRNE(member.arguments[i].type, "") << name << member.name;
    }
    EXPECT_GT(members, 0u) << name;
    EXPECT_EQ(zrq_last_error(nullptr), 9);
  }
  EXPECT_GT(classes, 40u);
  EXPECT_EQ(zrq_member_at("Nothing", 0, nullptr), 429);
  const char *enumeration = nullptr, *name = nullptr;
  int32_t value = 0;
  EXPECT_EQ(zrq_constant_at(0, &enumeration, &name, &value), 0);
  EXPECT_EQ(zrq_constant_at(1'000'000, &enumeration, &name, &value), 9);
}

}  // namespace
