#include "zrqrybld/automation/c_boundary.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <string>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

constexpr std::int32_t kOutOfMemory = 7;
constexpr int kDeepestArray = 32;

struct LastError {
  std::int32_t number = 0;
  std::string description;
};
thread_local LastError lastError;

// Guarded by the lock of calls.
int callsGoingOn = 0;
int keepers = 0;
std::vector<zrq_handle>& Kept() {
  static auto* const kept = new std::vector<zrq_handle>();
  return *kept;
}

// A call goes on; with the outermost one the handles that were kept are released.
struct CallGoingOn {
  CallGoingOn() : lock(CallLock()) { ++callsGoingOn; }
  CallGoingOn(const CallGoingOn&) = delete;
  CallGoingOn& operator=(const CallGoingOn&) = delete;
  ~CallGoingOn() {
    while (callsGoingOn == 1 && keepers == 0 && !Kept().empty()) {
      const zrq_handle handle = Kept().back();
      Kept().pop_back();
      Handles().Release(handle);
    }
    --callsGoingOn;
  }
  const std::lock_guard<std::recursive_mutex> lock;
};

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

std::int32_t Fail(std::int32_t number, std::string_view description) noexcept {
  lastError.number = number != 0 ? number : ErrorInvalidCall;
  try {
    lastError.description = description;
  } catch (const std::exception&) {
    lastError.description.clear();
  }
  return lastError.number;
}

}  // namespace

HandleTable& Handles() {
  static auto* const table = new HandleTable();  // never destroyed: callers may release handles while they end
  return *table;
}

std::recursive_mutex& CallLock() {
  static auto* const lock = new std::recursive_mutex();  // never destroyed, like the handles
  return *lock;
}

// --- Values ---

void ThrowInvalid(const char* why) { throw Error(ErrorInvalidCall, why); }

std::string_view TextFromC(const char* text) {
  if (!text) ThrowInvalid("A text is missing.");
  if (!IsUtf8(text)) ThrowInvalid("A text that is not UTF-8.");
  return text;
}

Variant FromC(const zrq_value& value, int depth) {
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

OwnedValues::OwnedValues(std::span<const Variant> from) : values_(from.size()) {
  try {
    for (std::size_t i = 0; i < from.size(); ++i) FillC(values_[i], from[i]);
  } catch (...) {
    Clear();
    throw;
  }
}

void OwnedValues::MoveTo(zrq_value* to) {
  std::copy(values_.begin(), values_.end(), to);
  values_.clear();
}

void OwnedValues::Clear() {
  for (zrq_value& value : values_) zrq_clear(&value);
}

// --- Calls and their errors ---

std::int32_t LastCallError(const char** description) {
  if (description) *description = lastError.description.c_str();
  return lastError.number;
}

std::int32_t RunGuarded(void (*call)(void*), void* argument) noexcept {
  try {
    const CallGoingOn scope;
    call(argument);
  } catch (const Error& error) {
    return Fail(error.Number(), error.Description());
  } catch (const std::bad_alloc&) {
    return Fail(kOutOfMemory, "Out of memory.");
  } catch (const std::exception& error) {
    return Fail(ErrorInvalidCall, error.what());
  } catch (...) {
    return Fail(ErrorInvalidCall, "Unknown error.");
  }
  lastError.number = 0;
  lastError.description.clear();
  return 0;
}

bool ReleaseHandle(zrq_handle handle) {
  if (keepers == 0) return Handles().Release(handle);
  if (!Handles().Find(handle)) return false;
  Kept().push_back(handle);
  return true;
}

KeepHandles::KeepHandles() {
  CallLock().lock();
  ++keepers;
}

KeepHandles::~KeepHandles() {
  --keepers;
  CallLock().unlock();
}

}  // namespace zrqrybld
