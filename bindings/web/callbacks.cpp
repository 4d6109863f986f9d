// Handlers and providers that are JavaScript: the page gets what the C interface calls, by a number of its own.
#include <emscripten.h>

#include <cstdint>

#include "zrqrybld/automation/toolkit_object.h"
#include "zrqrybld/zrqrybld.h"

#define ZRW extern "C" EMSCRIPTEN_KEEPALIVE

// In imports/callbacks.js.
extern "C" {
void zrj_event(int listener, const zrq_value* values, size_t count);
int zrj_rows(int source, int kind, const char* catalog, const char* schema, const char* table);
void zrj_ended(int number);
}

namespace {

int NumberOf(void* context) { return static_cast<int>(reinterpret_cast<std::intptr_t>(context)); }
void* ContextOf(int number) { return reinterpret_cast<void*>(static_cast<std::intptr_t>(number)); }
void Ended(void* context) { zrj_ended(NumberOf(context)); }

}  // namespace

// What the library wants of the outside: here the page hands in connections, and there is no system with files.
void zrqrybld::RegisterProviders(ProviderList&) {}
void zrqrybld::UseSystemFiles(Toolkit&) {}

// Listens to an event for the page's listener of this number.
ZRW int32_t zrw_subscribe(zrq_handle object, const char* event, int listener, uint64_t* subscription) {
  const auto handler = [](void* context, const zrq_value* values, size_t count) {
    zrj_event(NumberOf(context), values, count);
  };
  return zrq_subscribe(object, event, handler, Ended, ContextOf(listener), subscription);
}

// A connection, not yet open, whose rows come from the page's source of this number.
ZRW int32_t zrw_connection(const char* name, int source, zrq_handle* connection) {
  zrq_provider provider{};
  provider.size = sizeof provider;
  provider.name = name;
  provider.open = [](void* context, const char*, const char*, const char*, void** session) -> int32_t {
    *session = context;
    return 0;
  };
  provider.rows = [](void* context, void*, int32_t kind, const zrq_wanted* wanted) -> int32_t {
    return wanted ? zrj_rows(NumberOf(context), kind, wanted->catalog, wanted->schema, wanted->table)
                  : zrj_rows(NumberOf(context), kind, nullptr, nullptr, nullptr);
  };
  provider.ended = Ended;
  return zrq_connection(&provider, ContextOf(source), connection);
}
