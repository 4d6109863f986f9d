// CatalogRows: the answer to a catalogue question, fetched in blocks into bound buffers. Only the
// adapter's sources include this.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "zrqrybld/adapters/odbc/odbc_handle.h"

namespace zrqrybld::odbc {

/// What is read from one column of an answer. Longer texts are cut: a driver must not be able to fill the memory.
enum class FieldKind : std::uint8_t {
  Name,     ///< text of up to 2047 UTF-16 units
  Text,     ///< text of up to 32767 UTF-16 units
  Integer,  ///< 32 bits
};

struct CatalogField {
  SQLUSMALLINT column;  ///< from 1
  FieldKind kind;
};

/// Stands before the first row when it is made. The statement, which was asked already, must outlive it.
class CatalogRows {
 public:
  CatalogRows(const Statement& statement, std::span<const CatalogField> fields);
  CatalogRows(const CatalogRows&) = delete;
  CatalogRows& operator=(const CatalogRows&) = delete;
  ~CatalogRows();

  /// Goes to the next row; false after the last. The driver's error when it fails.
  bool Next();

  /// The current row's value of `fields[field]`; none for null.
  std::optional<std::string> Text(std::size_t field) const;
  std::optional<std::int32_t> Integer(std::size_t field) const;

 private:
  struct Column {
    FieldKind kind;
    std::size_t units;  // a row's buffer, in UTF-16 units
    std::unique_ptr<SQLWCHAR[]> texts;
    std::vector<SQLINTEGER> numbers;
    std::vector<SQLLEN> lengths;  // in bytes, or SQL_NULL_DATA
  };
  void Bind(const CatalogField& field, Column& column);

  const Statement& statement_;
  std::vector<Column> columns_;
  std::vector<SQLUSMALLINT> states_;
  std::size_t blockRows_;
  SQLULEN fetched_ = 0;
  std::size_t row_ = 0;  // within the block
};

}  // namespace zrqrybld::odbc
