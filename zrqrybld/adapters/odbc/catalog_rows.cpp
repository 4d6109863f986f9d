#include "zrqrybld/adapters/odbc/catalog_rows.h"

#include <algorithm>

#include "zrqrybld/adapters/odbc/odbc_text.h"
#include "zrqrybld/base/error.h"

namespace zrqrybld::odbc {
namespace {

constexpr std::size_t kBlockRows = 32;
constexpr std::size_t kNameUnits = 2048;
constexpr std::size_t kTextUnits = 32768;

SQLPOINTER Number(std::uintptr_t value) { return reinterpret_cast<SQLPOINTER>(value); }

// The driver may refuse blocks, or change the number of rows and say so.
std::size_t AskForBlocks(SQLHSTMT statement) {
  SQLSetStmtAttrW(statement, SQL_ATTR_ROW_ARRAY_SIZE, Number(kBlockRows), SQL_IS_UINTEGER);
  SQLULEN rows = 0;
  const SQLRETURN result = SQLGetStmtAttrW(statement, SQL_ATTR_ROW_ARRAY_SIZE, &rows, SQL_IS_UINTEGER, nullptr);
  return SQL_SUCCEEDED(result) && rows > 0 ? rows : 1;
}

}  // namespace

CatalogRows::CatalogRows(const Statement& statement, std::span<const CatalogField> fields)
    : statement_(statement), columns_(fields.size()), blockRows_(AskForBlocks(statement.Get())) {
  states_.resize(blockRows_, SQL_ROW_NOROW);
  SQLSetStmtAttrW(statement.Get(), SQL_ATTR_ROW_STATUS_PTR, states_.data(), SQL_IS_POINTER);
  statement.Check(SQLSetStmtAttrW(statement.Get(), SQL_ATTR_ROWS_FETCHED_PTR, &fetched_, SQL_IS_POINTER));
  for (std::size_t i = 0; i < fields.size(); ++i) Bind(fields[i], columns_[i]);
}

// The statement must not write into buffers that are gone.
CatalogRows::~CatalogRows() {
  SQLFreeStmt(statement_.Get(), SQL_CLOSE);
  SQLFreeStmt(statement_.Get(), SQL_UNBIND);
  SQLSetStmtAttrW(statement_.Get(), SQL_ATTR_ROW_STATUS_PTR, nullptr, SQL_IS_POINTER);
  SQLSetStmtAttrW(statement_.Get(), SQL_ATTR_ROWS_FETCHED_PTR, nullptr, SQL_IS_POINTER);
}

void CatalogRows::Bind(const CatalogField& field, Column& column) {
  column.kind = field.kind;
  column.lengths.resize(blockRows_, SQL_NULL_DATA);
  SQLPOINTER target = nullptr;
  SQLLEN size = 0;
  if (field.kind == FieldKind::Integer) {
    column.units = 0;
    column.numbers.resize(blockRows_);
    target = column.numbers.data();
    size = sizeof(SQLINTEGER);
  } else {
    column.units = field.kind == FieldKind::Name ? kNameUnits : kTextUnits;
    // Left as it is: clearing the memory would cost more than most answers.
    column.texts = std::make_unique_for_overwrite<SQLWCHAR[]>(column.units * blockRows_);
    target = column.texts.get();
    size = static_cast<SQLLEN>(column.units * sizeof(SQLWCHAR));
  }
  const SQLSMALLINT type = field.kind == FieldKind::Integer ? SQL_C_SLONG : SQL_C_WCHAR;
  statement_.Check(SQLBindCol(statement_.Get(), field.column, type, target, size, column.lengths.data()));
}

bool CatalogRows::Next() {
  if (++row_ < fetched_) return true;
  fetched_ = 0;
  row_ = 0;
  const SQLRETURN result = SQLFetch(statement_.Get());
  statement_.Check(result);
  return result != SQL_NO_DATA && fetched_ > 0;
}

std::optional<std::string> CatalogRows::Text(std::size_t field) const {
  const Column& column = columns_.at(field);
  const SQLLEN length = column.lengths[row_];
  if (length == SQL_NULL_DATA) return std::nullopt;
  const auto* start = reinterpret_cast<const char16_t*>(column.texts.get() + row_ * column.units);
  const std::size_t most = column.units - 1;  // the last unit is the closing zero
  std::u16string_view text(start, most);
  // A cut text comes with the length that it would have, or with "not known".
  if (length >= 0 && static_cast<std::size_t>(length) / sizeof(SQLWCHAR) < most) {
    text = text.substr(0, static_cast<std::size_t>(length) / sizeof(SQLWCHAR));
  } else {
    text = text.substr(0, text.find(u'\0'));
  }
  return ToUtf8(text);
}

std::optional<std::int32_t> CatalogRows::Integer(std::size_t field) const {
  const Column& column = columns_.at(field);
  if (column.lengths[row_] == SQL_NULL_DATA) return std::nullopt;
  return column.numbers[row_];
}

}  // namespace zrqrybld::odbc
