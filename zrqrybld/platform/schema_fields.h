// The field names of the schema row sets, the type codes of columns and the column flags: one table
// for every provider, so that they all give the same rows.
#pragma once

#include <cstdint>
#include <string_view>

namespace zrqrybld {

inline constexpr std::string_view kTableFields[] = {"TABLE_CATALOG", "TABLE_SCHEMA", "TABLE_NAME", "TABLE_TYPE",
                                                    "DESCRIPTION"};

/// `ORDINAL_POSITION` counts from 1 without gaps; `DATA_TYPE` is a `DataTypeCode`; `COLUMN_FLAGS` holds
/// `ColumnFlag` bits.
inline constexpr std::string_view kColumnFields[] = {
    "TABLE_CATALOG",  "TABLE_SCHEMA", "TABLE_NAME",  "COLUMN_NAME", "ORDINAL_POSITION",         "COLUMN_HASDEFAULT",
    "COLUMN_DEFAULT", "COLUMN_FLAGS", "IS_NULLABLE", "DATA_TYPE",   "CHARACTER_MAXIMUM_LENGTH", "NUMERIC_PRECISION",
    "NUMERIC_SCALE",  "DESCRIPTION"};

inline constexpr std::string_view kProviderTypeFields[] = {"TYPE_NAME",      "DATA_TYPE",      "COLUMN_SIZE",
                                                           "LITERAL_PREFIX", "LITERAL_SUFFIX", "IS_LONG"};

inline constexpr std::string_view kForeignKeyFields[] = {
    "PK_TABLE_CATALOG", "PK_TABLE_SCHEMA", "PK_TABLE_NAME",  "PK_COLUMN_NAME", "FK_TABLE_CATALOG",
    "FK_TABLE_SCHEMA",  "FK_TABLE_NAME",   "FK_COLUMN_NAME", "ORDINAL",        "FK_NAME"};

/// `ORDINAL` is the column's place in the key, from 1.
inline constexpr std::string_view kPrimaryKeyFields[] = {"TABLE_CATALOG", "TABLE_SCHEMA", "TABLE_NAME",
                                                         "COLUMN_NAME",   "ORDINAL",      "PK_NAME"};

inline constexpr std::string_view kLiteralFields[] = {"LiteralName", "LiteralValue", "InvalidChars",
                                                      "InvalidStartingChars"};

/// The access layer's codes of column types.
enum class DataTypeCode : std::int32_t {
  SmallInt = 2,
  Integer = 3,
  Single = 4,
  Double = 5,
  Currency = 6,
  Date = 7,
  Boolean = 11,
  TinyInt = 16,
  UnsignedTinyInt = 17,
  BigInt = 20,
  FileTime = 64,
  Guid = 72,
  Binary = 128,
  Char = 129,
  WChar = 130,
  Numeric = 131,
  DbDate = 133,
  DbTime = 134,
  DbTimeStamp = 135,
  VarChar = 200,
  LongVarChar = 201,
  VarWChar = 202,
  LongVarWChar = 203,
  VarBinary = 204,
  LongVarBinary = 205,
};

/// What the values of a type are.
enum class ValueKind : std::uint8_t { Unknown, Text, Number, Boolean, Date, Guid, Binary };

/// The kind of a type code; `Unknown` for a code that is none of those known. Dates, times of day and both together
/// are one kind.
constexpr ValueKind ValueKindOf(std::int32_t code) {
  switch (code) {
    case 8:  // text of an automation interface
    case 129:
    case 130:
    case 200:
    case 201:
    case 202:
    case 203:
      return ValueKind::Text;
    case 2:
    case 3:
    case 4:
    case 5:
    case 6:
    case 14:  // a decimal number of an automation interface
    case 16:
    case 17:
    case 18:  // the unsigned whole numbers
    case 19:
    case 20:
    case 21:
    case 131:
    case 139:  // a number of any length
      return ValueKind::Number;
    case 11:
      return ValueKind::Boolean;
    case 7:
    case 64:
    case 133:
    case 134:
    case 135:
      return ValueKind::Date;
    case 72:
      return ValueKind::Guid;
    case 128:
    case 204:
    case 205:
      return ValueKind::Binary;
    default:
      return ValueKind::Unknown;
  }
}

/// Bits of a column's `COLUMN_FLAGS`.
enum ColumnFlag : std::int32_t {
  ColumnWritable = 0x04,
  ColumnFixedLength = 0x10,
  ColumnNullable = 0x20,
  ColumnMaybeNull = 0x40,
  ColumnLong = 0x80,
};

}  // namespace zrqrybld
