// The C interface over late binding: handles, values, errors. No exception leaves this file.
#include <algorithm>
#include <cstdlib>
#include <deque>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "zrqrybld/automation/c_boundary.h"
#include "zrqrybld/automation/c_provider.h"
#include "zrqrybld/automation/classes.h"
#include "zrqrybld/automation/dispatch.h"
#include "zrqrybld/automation/public_names.h"
#include "zrqrybld/base/error.h"

namespace zrqrybld {
namespace {

// --- State
// -------------------------------------------------------------------------------------------------------------

// The event that is being handled, innermost last: `zrq_write` writes into it.
thread_local std::vector<std::span<Variant>> handling;

// An event is being handled, until the handler returns or throws.
struct Handling {
  explicit Handling(std::span<Variant> arguments) { handling.push_back(arguments); }
  Handling(const Handling&) = delete;
  Handling& operator=(const Handling&) = delete;
  ~Handling() { handling.pop_back(); }
};

// --- Values
// ------------------------------------------------------------------------------------------------------------

void Return(zrq_value* result, const Variant& value) {
  if (result) OwnedValues(std::span(&value, 1)).MoveTo(result);
}

std::vector<Variant> ReadArguments(const zrq_value* arguments, std::size_t count) {
  if (!arguments && count > 0) ThrowInvalid("Arguments are missing.");
  std::vector<Variant> values;
  values.reserve(count);
  for (std::size_t i = 0; i < count; ++i) values.push_back(FromC(arguments[i]));
  return values;
}

std::string_view ReadName(const char* name) {
  if (!name) ThrowInvalid("A name is missing.");
  return name;
}

Ref<Object> Find(zrq_handle handle) {
  Ref<Object> object = Handles().Find(handle);
  if (!object) ThrowInvalid("A handle that is not valid.");
  return object;
}

Ref<Object> Require(zrq_handle handle) {
  Ref<Object> object = Find(handle);
  RequireUsable(*object);
  return object;
}

// --- Events
// ------------------------------------------------------------------------------------------------------------

std::unordered_map<std::uint64_t, EventConnection>& Subscriptions() {
  static auto* const subscriptions = new std::unordered_map<std::uint64_t, EventConnection>();
  return *subscriptions;
}

// A handler with its context. It ends with the last copy of it: when the subscription or the event's object does.
class Listener {
 public:
  Listener(zrq_handler handler, void* context) : handler_(handler), context_(context) {}
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  ~Listener() {
    Subscriptions().erase(number_);
    Living().erase(this);
    End();
  }
  // All that have begun and not ended: an event may keep one for a while that was unsubscribed.
  static std::unordered_set<Listener*>& Living() {
    static auto* const living = new std::unordered_set<Listener*>();
    return *living;
  }
  // The subscription has begun: from now on its end is told.
  void Begin(std::uint64_t number, zrq_ended ended) {
    number_ = number;
    ended_ = ended;
    Living().insert(this);
  }
  // Nothing of the caller's is called any more.
  void End() {
    handler_ = nullptr;
    if (const zrq_ended ended = std::exchange(ended_, nullptr)) ended(context_);
  }
  void Call(std::span<Variant> arguments) const {
    if (!handler_) return;
    const std::lock_guard<std::recursive_mutex> lock(CallLock());  // a window raises events outside of any call
    const OwnedValues values(arguments);
    const Handling scope(arguments);
    handler_(context_, values.Data(), arguments.size());
  }

 private:
  zrq_handler handler_;
  zrq_ended ended_ = nullptr;
  std::uint64_t number_ = 0;
  void* context_;
};

// --- Descriptions
// --------------------------------------------------------------------------------------------------------

// Members with texts that end in 0, made on first use and kept.
class Descriptions {
 public:
  const std::vector<zrq_member>& Of(const ClassInfo& type) {
    const auto [found, isNew] = members_.try_emplace(type.name);
    if (isNew) {
      for (const Member& member : type.members) found->second.push_back(Describe(type, member));
    }
    return found->second;
  }
  const char* Keep(std::string_view text) { return texts_.emplace_back(text).c_str(); }

 private:
  zrq_member Describe(const ClassInfo& type, const Member& member) {
    std::vector<zrq_argument>& arguments = arguments_.emplace_back();
    for (const ArgumentInfo& argument : ArgumentsOf(member)) {
      arguments.push_back({Keep(argument.name), Keep(argument.type), argument.optional, argument.byReference});
    }
    return {Keep(member.name), Keep(member.type), member.kinds, member.name == type.defaultMember,
            arguments.data(),  arguments.size()};
  }

  std::unordered_map<std::string_view, std::vector<zrq_member>> members_;
  std::deque<std::vector<zrq_argument>> arguments_;
  std::deque<std::string> texts_;
};

Descriptions& Described() {
  static auto* const descriptions = new Descriptions();
  return *descriptions;
}

}  // namespace
}  // namespace zrqrybld

using namespace zrqrybld;

int32_t zrq_abi(void) { return ZRQ_ABI; }
const char* zrq_version(void) { return ZRQRYBLD_VERSION; }

int32_t zrq_create(const char* class_name, zrq_handle* object) {
  return Guard([&] {
    if (!object) ThrowInvalid("There is no place for the handle.");
    *object = 0;
    *object = Handles().Add(CreateObject(ReadName(class_name)));
  });
}

int32_t zrq_retain(zrq_handle object) {
  return Guard([&] {
    if (!Handles().Retain(object)) ThrowInvalid("A handle that is not valid.");
  });
}

int32_t zrq_release(zrq_handle object) {
  return Guard([&] {
    if (!ReleaseHandle(object)) ThrowInvalid("A handle that is not valid.");
  });
}

int32_t zrq_class(zrq_handle object, const char** class_name) {
  return Guard([&] {
    if (!class_name) ThrowInvalid("There is no place for the name.");
    *class_name = TypeOf(*Find(object)).name.data();  // the tables hold literals, which end in 0
  });
}

int32_t zrq_get(zrq_handle object, const char* name, const zrq_value* arguments, size_t count, zrq_value* result) {
  if (result) *result = {};
  return Guard([&] {
    const Ref<Object> target = Require(object);
    std::vector<Variant> values = ReadArguments(arguments, count);
    Return(result, GetMember(*target, ReadName(name), values));
  });
}

int32_t zrq_let(zrq_handle object, const char* name, const zrq_value* arguments, size_t count, const zrq_value* value) {
  return Guard([&] {
    const Ref<Object> target = Require(object);
    if (!value) ThrowInvalid("The value is missing.");
    LetMember(*target, ReadName(name), FromC(*value), ReadArguments(arguments, count));
  });
}

int32_t zrq_call(zrq_handle object, const char* name, const zrq_value* arguments, size_t count, zrq_value* result,
                 zrq_value* written) {
  if (result) *result = {};
  if (written) std::fill_n(written, count, zrq_value{ZRQ_MISSING, 0, {}});
  return Guard([&] {
    const Ref<Object> target = Require(object);
    std::vector<Variant> values = ReadArguments(arguments, count);
    const Variant returned = CallMember(*target, ReadName(name), values);
    if (written) {
      const Member* member = FindMember(TypeOf(*target), name);
      for (std::size_t i = 0; i < values.size(); ++i) {
        if (!member->argumentTypes[i].byReference) values[i] = Variant::Missing();
      }
      OwnedValues(values).MoveTo(written);
    }
    Return(result, returned);
  });
}

int32_t zrq_subscribe(zrq_handle object, const char* event, zrq_handler handler, zrq_ended ended, void* context,
                      uint64_t* subscription) {
  return Guard([&] {
    if (!handler || !subscription) ThrowInvalid("A handler and a place for the subscription are needed.");
    static std::uint64_t last = 0;
    const Ref<Object> target = Require(object);
    const auto listener = std::make_shared<Listener>(handler, context);
    EventConnection connection =
        Subscribe(*target, ReadName(event), [listener](std::span<Variant> arguments) { listener->Call(arguments); });
    *subscription = ++last;
    Subscriptions().emplace(last, std::move(connection));
    listener->Begin(last, ended);
  });
}

int32_t zrq_unsubscribe(uint64_t subscription) {
  return Guard([&] { Subscriptions().erase(subscription); });
}

int32_t zrq_end_subscriptions(void) {
  return Guard([&] {
    Subscriptions().clear();
    while (!Listener::Living().empty()) {
      Listener* const listener = *Listener::Living().begin();
      Listener::Living().erase(listener);
      listener->End();
    }
    EndCallerProviders();
  });
}

int32_t zrq_write(size_t argument, const zrq_value* value) {
  return Guard([&] {
    if (handling.empty() || argument >= handling.back().size()) ThrowInvalid("There is no such argument.");
    if (!value) ThrowInvalid("The value is missing.");
    handling.back()[argument] = FromC(*value);
  });
}

void zrq_clear(zrq_value* value) {
  if (!value) return;
  const zrq_value old = std::exchange(*value, zrq_value{});
  if (old.type == ZRQ_STRING) {
    std::free(const_cast<char*>(old.as.text.data));
  } else if (old.type == ZRQ_OBJECT) {
    Guard([&] { ReleaseHandle(old.as.object); });
  } else if (old.type == ZRQ_ARRAY) {
    auto* items = const_cast<zrq_value*>(old.as.array.items);
    for (std::size_t i = 0; i < old.as.array.count; ++i) zrq_clear(&items[i]);
    std::free(items);
  }
}

int32_t zrq_last_error(const char** description) { return LastCallError(description); }

const char* zrq_class_at(size_t index) { return index < Classes().size() ? Classes()[index].name.data() : nullptr; }

int32_t zrq_member_at(const char* class_name, size_t index, zrq_member* member) {
  return Guard([&] {
    const ClassInfo* type = FindClass(ReadName(class_name));
    if (!type) throw Error(ErrorCannotCreate, "There is no class \"" + std::string(class_name) + "\".");
    const std::vector<zrq_member>& members = Described().Of(*type);
    if (!member || index >= members.size()) ThrowNoSuchItem();
    *member = members[index];
  });
}

int32_t zrq_constant_at(size_t index, const char** enumeration, const char** name, int32_t* value) {
  return Guard([&] {
    if (!enumeration || !name || !value) ThrowInvalid("There is no place for the constant.");
    for (const Enumeration& known : Enumerations()) {
      if (index < known.members.size()) {
        *enumeration = known.name.data();
        *name = known.members[index].name.data();
        *value = known.members[index].value;
        return;
      }
      index -= known.members.size();
    }
    ThrowNoSuchItem();
  });
}
