#include "zrqrybld/adapters/sqlite/sqlite_handle.h"

#include "zrqrybld/base/error.h"

namespace zrqrybld::sqlite {

void ThrowLastError(sqlite3* database) {
  constexpr int kPrimaryCode = 0xff;  // the higher bits only refine it
  throw Error(sqlite3_errcode(database) & kPrimaryCode, sqlite3_errmsg(database));
}

Statement::Statement(sqlite3* database, std::string_view sql) : database_(database) {
  sqlite3_stmt* statement = nullptr;
  const int result = sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
  statement_.reset(statement);
  if (result != SQLITE_OK) ThrowLastError(database);
}

void Statement::Bind(int index, const std::optional<std::string>& value) {
  const int result =
      value ? sqlite3_bind_text64(statement_.get(), index, value->data(), value->size(), SQLITE_STATIC, SQLITE_UTF8)
            : sqlite3_bind_null(statement_.get(), index);
  if (result != SQLITE_OK) ThrowLastError(database_);
}

bool Statement::Step() {
  const int result = sqlite3_step(statement_.get());
  if (result == SQLITE_ROW) return true;
  if (result != SQLITE_DONE) ThrowLastError(database_);
  return false;
}

std::optional<std::string> Statement::TextIf(int index) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), index));
  if (text == nullptr) return std::nullopt;
  return std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), index)));
}

std::string Statement::Text(int index) const { return TextIf(index).value_or(std::string()); }

}  // namespace zrqrybld::sqlite
