// zrqrybld.h: the library for callers that are not C++.
//
// Objects are handles, values are small tagged structs, texts are UTF-8. Every function returns 0, or the number of
// an error whose description `zrq_last_error` tells. A bad handle, an unknown name or a value of the wrong kind is
// such an error; nothing a caller passes by handle, name or value ends the process.
//
// The library does one call at a time: what another thread calls meanwhile waits. Handlers are called in the thread
// that has made the call, and may call again.
//
// Stability: functions, numbers and the layout of structs stay as they are within ZRQ_ABI; what is added goes to
// the end. `zrq_abi` tells what a loaded library has.
#pragma once

#include <stddef.h>
#include <stdint.h>

// Whoever links the library statically on Windows defines ZRQ_STATIC; ZRQ_EXPORTS is defined where it is built.
#if !defined(_WIN32)
#define ZRQ_API __attribute__((visibility("default")))
#elif defined(ZRQ_EXPORTS)
#define ZRQ_API __declspec(dllexport)
#elif defined(ZRQ_STATIC)
#define ZRQ_API
#else
#define ZRQ_API __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

#define ZRQ_ABI 1

// An object. 0 is nothing. Each handle that a function returns, and each that a value holds that a function fills in,
// is counted and must be released once. Handles of one object are equal.
typedef uint64_t zrq_handle;

// What a value holds.
enum {
  ZRQ_EMPTY = 0,    // never set; as a handle: nothing
  ZRQ_NULL = 1,     // a database null
  ZRQ_MISSING = 2,  // an argument that is not given
  ZRQ_BOOLEAN = 3,  // integer: 0 or 1
  ZRQ_INT16 = 4,
  ZRQ_INT32 = 5,
  ZRQ_INT64 = 6,
  ZRQ_SINGLE = 7,
  ZRQ_DOUBLE = 8,
  ZRQ_DATE = 9,  // number: days since 30 December 1899
  ZRQ_STRING = 10,
  ZRQ_OBJECT = 11,
  ZRQ_ARRAY = 12
};

// A value. `text.data` holds `length` bytes and, when the library filled it in, a 0 behind them.
typedef struct zrq_value {
  int32_t type;
  int32_t reserved;  // 0
  union {
    int64_t integer;  // ZRQ_BOOLEAN, ZRQ_INT16, ZRQ_INT32, ZRQ_INT64
    double number;    // ZRQ_SINGLE, ZRQ_DOUBLE, ZRQ_DATE
    zrq_handle object;
    struct {
      const char* data;
      size_t length;
    } text;
    struct {
      const struct zrq_value* items;
      size_t count;
    } array;
  } as;
} zrq_value;

// What can be done with a member, as bits.
enum { ZRQ_GET = 1, ZRQ_LET = 2, ZRQ_SET = 4, ZRQ_CALL = 8, ZRQ_EVENT = 16 };

// One argument of a member.
typedef struct zrq_argument {
  const char* name;
  const char* type;
  int32_t optional;
  int32_t by_reference;
} zrq_argument;

// One member of a class. The texts live as long as the library is loaded.
typedef struct zrq_member {
  const char* name;
  const char* type;  // of the property or the result; "" for none
  int32_t kinds;     // ZRQ_GET | ...
  int32_t is_default;
  const zrq_argument* arguments;
  size_t argument_count;
} zrq_member;

// The interface's version: ZRQ_ABI of the library that is loaded.
ZRQ_API int32_t zrq_abi(void);

// The product's version, for instance "2.1.220".
ZRQ_API const char* zrq_version(void);

// --- Objects ---

// Makes an object of a public class, without any window. Error 429 when there is no such class or none can be made.
ZRQ_API int32_t zrq_create(const char* class_name, zrq_handle* object);

// Counts a handle once more, and once less. The object ends with its last handle, unless another object holds it.
ZRQ_API int32_t zrq_retain(zrq_handle object);
ZRQ_API int32_t zrq_release(zrq_handle object);

// The class of an object; the text lives as long as the library is loaded.
ZRQ_API int32_t zrq_class(zrq_handle object, const char** class_name);

// --- Members; names in any letter case, "" is the default member ---

// Reads a property. The result must be cleared with `zrq_clear`.
ZRQ_API int32_t zrq_get(zrq_handle object, const char* name, const zrq_value* arguments, size_t count,
                        zrq_value* result);

// Writes a property.
ZRQ_API int32_t zrq_let(zrq_handle object, const char* name, const zrq_value* arguments, size_t count,
                        const zrq_value* value);

// Calls a method. By-reference arguments are replaced by what the method wrote into them, when `written` is given: it
// takes `count` values, ZRQ_MISSING for arguments that are not by reference, all to be cleared. `result` may be NULL.
ZRQ_API int32_t zrq_call(zrq_handle object, const char* name, const zrq_value* arguments, size_t count,
                         zrq_value* result, zrq_value* written);

// --- Events ---

// Receives an event. To write a by-reference argument, call `zrq_write` with its position before returning. The
// arguments live until the handler returns.
typedef void (*zrq_handler)(void* context, const zrq_value* arguments, size_t count);

// Told once when a subscription has ended, whichever way.
typedef void (*zrq_ended)(void* context);

// Listens to an event until unsubscribed or until the object ends. `ended` may be NULL.
ZRQ_API int32_t zrq_subscribe(zrq_handle object, const char* event, zrq_handler handler, zrq_ended ended, void* context,
                              uint64_t* subscription);

// Stops listening; a subscription that has ended is no error.
ZRQ_API int32_t zrq_unsubscribe(uint64_t subscription);

// Ends all subscriptions and providers: none of the caller's functions is called from now on but their `ended`, which
// is called before this returns. For a caller that goes before the objects do.
ZRQ_API int32_t zrq_end_subscriptions(void);

// Inside a handler: replaces the by-reference argument at a position from 0. Error 5 anywhere else.
ZRQ_API int32_t zrq_write(size_t argument, const zrq_value* value);

// --- One's own data: a provider tells what tables and columns there are ---

// What a provider is asked for, and the values of a row, in order. A row may end early and leave values out (ZRQ_NULL)
// but for those marked with "!". Schemas and catalogs are texts, or ZRQ_NULL where there are none.
enum {
  ZRQ_KEYWORDS = 0,  // word!: what must be quoted as a name
  ZRQ_COLUMNS = 4,   // catalog, schema, table!, column!, position from 1, has a default, default, flags, nullable,
                     // type (a number from `docs/automation.md`), longest text, precision, scale, description
  ZRQ_TABLES = 20,   // catalog, schema, table!, type ("TABLE", "VIEW" or another, which is not offered), description
  ZRQ_TYPES = 22,    // name!, type, size, literal prefix, literal suffix, is long
  ZRQ_FOREIGN_KEYS = 27,  // referenced catalog, schema, table!, column!, referencing catalog, schema, table!, column!,
                          // position in the key, name; asked for the whole source at once
  ZRQ_PRIMARY_KEYS = 28,  // catalog, schema, table!, column!, position in the key, name
  ZRQ_LITERALS = 31       // name!, value, forbidden characters, forbidden first characters
};

// Which rows are wanted; NULL means all. For foreign keys these name the referencing table. A provider may give more
// rows than are wanted: the others are passed over.
typedef struct zrq_wanted {
  const char* catalog;
  const char* schema;
  const char* table;
} zrq_wanted;

// A provider. Its functions return 0, or the number of an error, which `zrq_fail` gives its words. They are called in
// the thread that uses the designer, one at a time. Texts that they get live until they return. Meanwhile only objects
// of the classes Connection, RowSet and Field can be used; all others are error 5.
typedef struct zrq_provider {
  size_t size;       // sizeof(zrq_provider): what later versions add stands behind these
  const char* name;  // of `Provider=name` in a connection string; copied

  // Opens a source; `session` takes what the other functions get. NULL when there is nothing to open.
  int32_t (*open)(void* context, const char* connection_string, const char* user, const char* password, void** session);

  // Answers with one call of `zrq_row` a row. Error 3251 for a kind that the source does not know.
  int32_t (*rows)(void* context, void* session, int32_t kind, const zrq_wanted* wanted);

  // Closes what `open` has opened. May be NULL.
  void (*close)(void* context, void* session);

  // Told once, when none of these is called any more. May be NULL.
  void (*ended)(void* context);
} zrq_provider;

// Makes a connection, not yet open, for this provider alone. The provider ends when its connections have ended.
// On an error `ended` is not called.
ZRQ_API int32_t zrq_connection(const zrq_provider* provider, void* context, zrq_handle* connection);

// Lets every designer made from now on, and those without a window at once, find the provider by `Provider=name`. Of
// two with one name the later is used. It stays until `zrq_end_subscriptions`.
ZRQ_API int32_t zrq_register(const zrq_provider* provider, void* context);

// Inside a provider's `rows`: one more row. The values are copied. Error 5 anywhere else and for a row that is not as
// the kind wants it; error 7 when it is more than any source has: a text beyond 1 MiB, 256 MiB in all.
ZRQ_API int32_t zrq_row(const zrq_value* values, size_t count);

// Inside a provider's functions: says in words what the error is that they are about to return. Returns `number`, or 5
// for 0. Words that are not UTF-8 are left out.
ZRQ_API int32_t zrq_fail(int32_t number, const char* description);

// --- A window: only libzrQryBldQt has these two, which uses the same shared Qt as the program ---

// Makes a designer that is a widget. `parent` is a QWidget or NULL; `widget` becomes a QWidget, a QSplitter, which is
// the caller's to delete unless it has a parent, in the thread of the QApplication. `designer` becomes its
// qbQueryBuilder, with its panes linked. Error 429 when there is no QApplication of this Qt.
ZRQ_API int32_t zrq_widget(void* parent, void** widget, zrq_handle* designer);

// The version of Qt that the library uses, for instance "6.4.2".
ZRQ_API const char* zrq_qt_version(void);

// --- Values ---

// Frees what the library put into a value and makes it empty.
ZRQ_API void zrq_clear(zrq_value* value);

// --- Errors ---

// The last error of this thread; 0 and "" when the last call succeeded. The text lives until the next call.
ZRQ_API int32_t zrq_last_error(const char** description);

// --- What there is ---

// The name of a public class by number from 0; NULL behind the last one.
ZRQ_API const char* zrq_class_at(size_t index);

// A member of a class by number from 0, in interface order. Error 9 behind the last one, 429 for no such class.
ZRQ_API int32_t zrq_member_at(const char* class_name, size_t index, zrq_member* member);

// A named number by number from 0: its enumeration, name and value. Error 9 behind the last one.
ZRQ_API int32_t zrq_constant_at(size_t index, const char** enumeration, const char** name, int32_t* value);

#ifdef __cplusplus
}
#endif
