// The narrow door to databases: a connection, forward-only row sets and the six schema kinds.
//
// The library reads facts about the data source through it and never runs a query. A host
// application may pass its own Connection; otherwise ProviderConnection picks a registered provider
// by the connection string.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"

namespace zrqrybld {

/// The schema row sets that the library asks for.
enum class SchemaKind : std::int32_t {
  Columns = 4,         ///< fields: kColumnFields
  Tables = 20,         ///< fields: kTableFields
  ProviderTypes = 22,  ///< fields: kProviderTypeFields
  ForeignKeys = 27,    ///< fields: kForeignKeyFields
  PrimaryKeys = 28,    ///< fields: kPrimaryKeyFields
  Literals = 31,       ///< fields: kLiteralFields
};

/// Which rows of a schema are wanted; an empty text and a value that is not given mean "any".
/// Values are exact names, never patterns. For foreign keys they name the referencing table.
struct SchemaRestrictions {
  std::optional<std::string> catalog;
  std::optional<std::string> schema;
  std::optional<std::string> table;
};

/// A forward-only set of rows. It stands on its first row when it is made.
class ZRQRYBLD_API RowSet {
 public:
  RowSet() = default;
  RowSet(const RowSet&) = delete;
  RowSet& operator=(const RowSet&) = delete;
  virtual ~RowSet() = default;

  /// Whether there is no current row any more.
  virtual bool Eof() const = 0;

  /// Goes to the next row. Does nothing at the end.
  virtual void MoveNext() = 0;

  /// Frees the rows; `Eof` is true from then on.
  virtual void Close() = 0;

  /// The number of fields of a row.
  virtual std::size_t FieldCount() const = 0;

  /// The name of field `index`, counted from 0.
  virtual std::string_view FieldName(std::size_t index) const = 0;

  /// The current row's value of field `index`, counted from 0. Null where the source has none.
  virtual Variant Value(std::size_t index) const = 0;

  /// The index of the field with this name (any letter case); none when there is no such field.
  std::optional<std::size_t> FindField(std::string_view name) const;

  /// The current row's value of the field with this name. Error 9 when there is no such field.
  Variant Value(std::string_view name) const;

  /// The text of the named field; "" for Null.
  std::string Text(std::string_view name) const { return Value(name).Text(); }
};

/// Whether a connection is open.
enum ConnectionStateEnum : std::int32_t { ConnectionClosed = 0, ConnectionOpened = 1 };

/// When a provider may ask the user for missing parts of a connection string.
enum ConnectionPromptEnum : std::int32_t {
  PromptAlways = 1,
  PromptComplete = 2,  ///< only when information is missing
  PromptNever = 4,
};

/// A connection to a data source.
class ZRQRYBLD_API Connection : public Object {
 public:
  std::string_view TypeName() const override { return "Connection"; }

  /// How the data source is reached: `Key=Value` pairs with ";" between them.
  virtual std::string ConnectionString() const = 0;
  /// Takes effect with the next `Open`. Error 3705 while the connection is open.
  virtual void SetConnectionString(std::string value) = 0;

  /// Sets a provider property such as "Prompt". A connection that has no such property ignores it.
  virtual void SetProperty(std::string_view name, const Variant& value) = 0;

  /// Opens the source that the connection string names. Errors: 3705 when it is open, 3706 when no
  /// provider knows the string, the provider's own otherwise. An empty user and password leave those
  /// of the connection string.
  virtual void Open(std::string_view user, std::string_view password) = 0;

  /// Closes the connection. Error 3704 when it is not open.
  virtual void Close() = 0;

  /// Whether the source is open now.
  virtual ConnectionStateEnum State() const = 0;
  bool IsOpen() const { return State() == ConnectionOpened; }

  /// The rows of a schema. Errors: 3704 when closed, 3251 when the provider does not have this kind,
  /// the provider's own otherwise.
  virtual std::unique_ptr<RowSet> OpenSchema(SchemaKind kind, const SchemaRestrictions& restrictions = {}) = 0;

  /// The words that the source itself reserves, in any letter case and order; none when it does not tell. Names
  /// equal to one of them need quotes. Error 3704 when closed.
  virtual std::vector<std::string> Keywords() { return {}; }

  /// Whether the rows of this schema for the whole source come by one question, so that one for each table would only
  /// take longer.
  virtual bool KnowsWholeSource(SchemaKind) const { return false; }
};

}  // namespace zrqrybld
