// The design-time properties of a control as a table: a row says which field is stored under which key.
//
//   using F = HubOptions;
//   constexpr StoredTable kStored = {
//       Stored<F, &F::distinctRecords>("DistinctRecords"),
//       Stored<F, &F::selectTopRecords, &ReadLimit>("SelectTopRecords"),  // read by a rule of its own
//   };
//
// A default is said once, by the field itself: it is what a new control has, what is read where the key is missing or
// its value is of the wrong kind, and what is not written.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "zrqrybld/base/units.h"
#include "zrqrybld/platform/font.h"
#include "zrqrybld/platform/property_store.h"

namespace zrqrybld {

// --- Values ---

/// As a value is written: a colour as its 32 bits, a font as one text (family, size in points, "bold" and "italic",
/// with
/// ";" between them), any other as it is.
Variant ToStored(Color color);
Variant ToStored(const Font& font);
template <class T>
Variant ToStored(const T& value) {
  if constexpr (std::is_enum_v<T>) {
    return static_cast<std::int32_t>(value);
  } else {
    return value;
  }
}

/// Reads it back; false, and the value stays as it was, when what is stored is of another kind.
bool FromStored(const Variant& stored, bool& value);
bool FromStored(const Variant& stored, std::string& value);
bool FromStored(const Variant& stored, Color& value);
bool FromStored(const Variant& stored, Font& value);

/// A number that is not negative; of a choice, which is one of two, 0 or 1.
template <class T>
requires std::signed_integral<T> || std::is_enum_v<T>
bool FromStored(const Variant& stored, T& value) {
  const std::optional<double> number = stored.Number();
  if constexpr (std::is_enum_v<T>) {
    if (!number || (*number != 0 && *number != 1)) return false;
  } else {
    if (!number || !(*number >= 0 && *number <= std::numeric_limits<T>::max())) return false;
  }
  value = static_cast<T>(*number);
  return true;
}

// --- Tables ---

/// One of the properties that are stored of `Fields`.
template <class Fields>
struct StoredValue {
  std::string_view key;
  Variant (*get)(const Fields& fields);
  bool (*take)(Fields& fields, const Variant& stored);  ///< false when the value is of the wrong kind
  bool always;                                          ///< written also where it is the default
};

inline constexpr bool kStoredAlways = true;

/// A row that knows its field by its type. Addresses would do as well, but under sanitizers not every compiler compares
/// them while it compiles.
template <class Fields, auto Field>
struct StoredField : StoredValue<Fields> {};

/// The rows, in the order in which they are stored.
template <class Fields, auto... Field>
struct StoredTable {
  StoredValue<Fields> rows[sizeof...(Field)];

  constexpr StoredTable(const StoredField<Fields, Field>&... row) : rows{row...} {}
};

/// A row. The fields' type comes first because a field that it inherits is a pointer into its base.
template <class Fields, auto Field, auto Read = nullptr>
constexpr StoredField<Fields, Field> Stored(std::string_view key, bool always = false) {
  const auto get = [](const Fields& fields) { return ToStored(fields.*Field); };
  const auto take = [](Fields& fields, const Variant& stored) {
    if constexpr (std::is_null_pointer_v<decltype(Read)>) {
      return FromStored(stored, fields.*Field);
    } else {
      return Read(stored, fields.*Field);
    }
  };
  return {{key, get, take, always}};
}

/// The key of a field. A field without a row does not compile.
template <auto Field, class Fields, auto... Row>
consteval std::string_view StoredKey(const StoredTable<Fields, Row...>& table) {
  using Wanted = StoredField<Fields, Field>;
  static_assert((std::is_same_v<Wanted, StoredField<Fields, Row>> || ...), "this field has no row");
  std::size_t row = 0;
  static_cast<void>(((std::is_same_v<Wanted, StoredField<Fields, Row>> || (++row, false)) || ...));
  return table.rows[row].key;
}

/// Takes the fields from a stored form; what is missing there has the value of `defaults`.
template <class Fields, auto... Field>
void ReadStored(const StoredTable<Fields, Field...>& table, const PropertyStore& store, Fields& fields,
                const Fields& defaults = {}) {
  for (const StoredValue<Fields>& row : table.rows) {
    const Variant byDefault = row.get(defaults);
    if (!row.take(fields, store.Read(row.key, byDefault))) row.take(fields, byDefault);
  }
}

/// Stores the fields in the order of the rows; those with the value of `defaults` are left out.
template <class Fields, auto... Field>
void WriteStored(const StoredTable<Fields, Field...>& table, PropertyStore& store, const Fields& fields,
                 const Fields& defaults = {}) {
  for (const StoredValue<Fields>& row : table.rows) {
    if (row.always) {
      store.Write(row.key, row.get(fields));
    } else {
      store.Write(row.key, row.get(fields), row.get(defaults));
    }
  }
}

}  // namespace zrqrybld
