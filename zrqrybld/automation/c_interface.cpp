// The C interface over late binding: handles, values, errors. No exception leaves this file.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "zrqrybld/automation/classes.h"
#include "zrqrybld/automation/dispatch.h"
#include "zrqrybld/automation/handle_table.h"
#include "zrqrybld/automation/public_names.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/zrqrybld.h"

namespace zrqrybld {
namespace {

constexpr std::int32_t kInvalidCall = 5;
constexpr std::int32_t kOutOfMemory = 7;
constexpr int kDeepestArray = 32;

// --- State
// -------------------------------------------------------------------------------------------------------------

HandleTable& Handles() {
  static auto* const table = new HandleTable();  // never destroyed: callers may release handles while they end
  return *table;
}

struct LastError {
  std::int32_t number = 0;
  std::string description;
};
thread_local LastError lastError;

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

[[noreturn]] void ThrowInvalid(const char* why) { throw Error(kInvalidCall, why); }

bool IsUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t before = at;
    if (DecodeUtf8(text, at) == U'\uFFFD' && at == before + 1) return false;
  }
  return true;
}

Variant FromC(const zrq_value& value, int depth = 0) {
  switch (value.type) {
    case ZRQ_EMPTY:
      return {};
    case ZRQ_NULL:
      return Variant::Null();
    case ZRQ_MISSING:
      return Variant::Missing();
    case ZRQ_BOOLEAN:
      return value.as.integer != 0;
    case ZRQ_INT16:
      return static_cast<std::int16_t>(value.as.integer);
    case ZRQ_INT32:
      return static_cast<std::int32_t>(value.as.integer);
    case ZRQ_INT64:
      return static_cast<std::int64_t>(value.as.integer);
    case ZRQ_SINGLE:
      return static_cast<float>(value.as.number);
    case ZRQ_DOUBLE:
      return value.as.number;
    case ZRQ_DATE:
      return DateValue{value.as.number};
    case ZRQ_STRING: {
      if (!value.as.text.data && value.as.text.length > 0) ThrowInvalid("A text without data.");
      const std::string_view text(value.as.text.data ? value.as.text.data : "", value.as.text.length);
      if (!IsUtf8(text)) ThrowInvalid("A text that is not UTF-8.");
      return text;
    }
    case ZRQ_OBJECT: {
      if (value.as.object == 0) return {};
      Ref<Object> object = Handles().Find(value.as.object);
      if (!object) ThrowInvalid("A handle that is not valid.");
      return object;
    }
    case ZRQ_ARRAY: {
      if (depth >= kDeepestArray) ThrowInvalid("Arrays in arrays too deep.");
      if (!value.as.array.items && value.as.array.count > 0) ThrowInvalid("An array without items.");
      std::vector<Variant> items;
      for (std::size_t i = 0; i < value.as.array.count; ++i) items.push_back(FromC(value.as.array.items[i], depth + 1));
      return items;
    }
    default:
      ThrowInvalid("A value of an unknown type.");
  }
}

template <class T>
T* Allocate(std::size_t count) {
  auto* memory = static_cast<T*>(std::calloc(count, sizeof(T)));
  if (!memory) throw std::bad_alloc();
  return memory;
}

void FillC(zrq_value& to, const Variant& value) {
  to = {};
  to.type = static_cast<std::int32_t>(value.Type());
  switch (value.Type()) {
    case VariantType::Empty:
    case VariantType::Null:
    case VariantType::Missing:
      break;
    case VariantType::Boolean:
      to.as.integer = value.ToBoolean() ? 1 : 0;
      break;
    case VariantType::Int16:
    case VariantType::Int32:
      to.as.integer = value.ToInt32();
      break;
    case VariantType::Int64:
      to.as.integer = *value.Int64If();
      break;
    case VariantType::Single:
    case VariantType::Double:
      to.as.number = *value.Number();
      break;
    case VariantType::Date:
      to.as.number = value.DateIf()->days;
      break;
    case VariantType::String: {
      const std::string& text = *value.StringIf();
      char* data = Allocate<char>(text.size() + 1);
      std::memcpy(data, text.data(), text.size());
      to.as.text.data = data;
      to.as.text.length = text.size();
      break;
    }
    case VariantType::Object:
      to.as.object = Handles().Add(value.ToObject());
      if (to.as.object == 0) to.type = ZRQ_EMPTY;
      break;
    case VariantType::Array: {
      const std::vector<Variant>& items = *value.ArrayIf();
      auto* filled = Allocate<zrq_value>(std::max<std::size_t>(items.size(), 1));
      to.as.array.items = filled;
      for (const Variant& item : items) FillC(filled[to.as.array.count++], item);
      break;
    }
  }
}

// A value that is freed with its scope.
class OwnedValues {
 public:
  explicit OwnedValues(std::span<const Variant> from) : values_(from.size()) {
    try {
      for (std::size_t i = 0; i < from.size(); ++i) FillC(values_[i], from[i]);
    } catch (...) {
      Clear();
      throw;
    }
  }
  OwnedValues(const OwnedValues&) = delete;
  OwnedValues& operator=(const OwnedValues&) = delete;
  ~OwnedValues() { Clear(); }
  const zrq_value* Data() const { return values_.data(); }
  // Hands the values on; they are the caller's now.
  void MoveTo(zrq_value* to) {
    std::copy(values_.begin(), values_.end(), to);
    values_.clear();
  }

 private:
  void Clear() {
    for (zrq_value& value : values_) zrq_clear(&value);
  }
  std::vector<zrq_value> values_;
};

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

Ref<Object> Require(zrq_handle handle) {
  Ref<Object> object = Handles().Find(handle);
  if (!object) ThrowInvalid("A handle that is not valid.");
  return object;
}

// --- Errors
// ------------------------------------------------------------------------------------------------------------

std::int32_t Fail(std::int32_t number, std::string_view description) noexcept {
  lastError.number = number != 0 ? number : kInvalidCall;
  try {
    lastError.description = description;
  } catch (const std::exception&) {
    lastError.description.clear();
  }
  return lastError.number;
}

// Runs one call of the interface and turns every exception into an error number.
// One call at a time: what another thread calls waits. The same thread may call again from a handler.
std::recursive_mutex& CallLock() {
  static auto* const lock = new std::recursive_mutex();  // never destroyed, like the handles
  return *lock;
}

template <class F>
std::int32_t Guard(F&& call) noexcept {
  try {
    const std::lock_guard<std::recursive_mutex> lock(CallLock());
    std::forward<F>(call)();
  } catch (const Error& error) {
    return Fail(error.Number(), error.Description());
  } catch (const std::bad_alloc&) {
    return Fail(kOutOfMemory, "Out of memory.");
  } catch (const std::exception& error) {
    return Fail(kInvalidCall, error.what());
  } catch (...) {
    return Fail(kInvalidCall, "Unknown error.");
  }
  lastError.number = 0;
  lastError.description.clear();
  return 0;
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
    if (!Handles().Release(object)) ThrowInvalid("A handle that is not valid.");
  });
}

int32_t zrq_class(zrq_handle object, const char** class_name) {
  return Guard([&] {
    if (!class_name) ThrowInvalid("There is no place for the name.");
    *class_name = TypeOf(*Require(object)).name.data();  // the tables hold literals, which end in 0
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
    Guard([&] { Handles().Release(old.as.object); });
  } else if (old.type == ZRQ_ARRAY) {
    auto* items = const_cast<zrq_value*>(old.as.array.items);
    for (std::size_t i = 0; i < old.as.array.count; ++i) zrq_clear(&items[i]);
    std::free(items);
  }
}

int32_t zrq_last_error(const char** description) {
  if (description) *description = lastError.description.c_str();
  return lastError.number;
}

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
