#include "zrqrybld/adapters/sqlite/sqlite_database.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/file.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_run.h"

namespace zrqrybld::sqlite {
namespace {

constexpr std::string_view kFileKeys[] = {"Data Source", "Database", "DBQ"};
constexpr int kBusyMilliseconds = 2000;

[[noreturn]] void ThrowCannotOpen(std::int32_t number, std::string_view fileName, const Phrase& reason) {
  throw Error(number, Phrase(text::FileCannotBeOpened, fileName, reason));
}

// SQLite tells neither a missing file nor a directory from any other file that it cannot open.
void CheckOrdinaryFile(const std::filesystem::path& path, std::string_view fileName) {
  std::error_code failure;
  const std::filesystem::file_status status = std::filesystem::status(path, failure);
  switch (status.type()) {
    case std::filesystem::file_type::regular:
      return;
    case std::filesystem::file_type::not_found:
      ThrowCannotOpen(ErrorConnectionFailed, fileName, text::NoSuchFile);
    case std::filesystem::file_type::directory:
      ThrowCannotOpen(ErrorConnectionFailed, fileName, text::IsDirectory);
    case std::filesystem::file_type::none:
      ThrowCannotOpen(ErrorConnectionFailed, fileName, failure.message());
    default:
      ThrowCannotOpen(ErrorConnectionFailed, fileName, text::NoOrdinaryFile);
  }
}

// Opens the file and reads its schema: SQLite touches nothing before the first read, so that a file that is
// no database would be noticed much later.
DatabaseHandle OpenAndRead(const std::string& name, int flags) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(name.c_str(), &opened, SQLITE_OPEN_READONLY | flags, nullptr);
  DatabaseHandle database(opened);
  if (!database) throw Error(SQLITE_NOMEM, text::OutOfMemory);
  if (result != SQLITE_OK) {
    const int systemError = sqlite3_system_errno(opened);
    if (systemError != 0) throw Error(result & 0xff, std::generic_category().message(systemError));
    ThrowLastError(opened);
  }
  sqlite3_busy_timeout(opened, kBusyMilliseconds);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(opened, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  Statement(opened, "SELECT count(*) FROM sqlite_schema").Step();
  return database;
}

// Whether the file is in write-ahead mode and everything written is in the file itself.
bool IsWriteAheadAtRest(const std::filesystem::path& path) {
  constexpr std::size_t kWriteVersion = 18;  // offset in the file's header; 2 means write-ahead mode
  std::array<char, kWriteVersion + 1> header{};
  std::ifstream file(path, std::ios::binary);
  if (!file.read(header.data(), header.size()) || header[kWriteVersion] != 2) return false;
  std::filesystem::path log = path;
  log += "-wal";
  std::error_code failure;
  const std::uintmax_t size = std::filesystem::file_size(log, failure);
  return failure ? !std::filesystem::exists(log, failure) : size == 0;
}

// The name that opens the file as one that nobody changes. Everything that could mean something in it is escaped.
std::string ImmutableName(const std::filesystem::path& path) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string name = "file://";
  const std::string text = Utf8Of(path.generic_u8string());
  if (!text.starts_with('/')) name += '/';  // a drive letter
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '/' || (IsWordByte(c) && byte < 0x80)) {
      name += c;
    } else {
      name += {'%', kHex[byte >> 4], kHex[byte & 15]};
    }
  }
  return name + "?immutable=1";
}

DatabaseHandle OpenFile(const std::filesystem::path& path) {
  try {
    // An absolute path never begins with "file:" or ":", which SQLite would not take for a file's name.
    return OpenAndRead(Utf8Of(path), 0);
  } catch (const Error& error) {
    // A database in write-ahead mode needs two files beside it. In a folder that cannot be written, on a
    // read-only medium for instance, it can still be read as it is.
    const bool cannotMake = error.Number() == SQLITE_CANTOPEN || error.Number() == SQLITE_READONLY;
    if (!cannotMake || !IsWriteAheadAtRest(path)) throw;
    return OpenAndRead(ImmutableName(path), SQLITE_OPEN_URI);
  }
}

}  // namespace

std::optional<std::string> FileName(const ConnectionString& connectionString) {
  for (const std::string_view key : kFileKeys) {
    std::optional<std::string> value = connectionString.Get(key);
    if (value && !value->empty()) return value;
  }
  return std::nullopt;
}

DatabaseHandle OpenDatabase(const ConnectionString& connectionString) {
  const std::optional<std::string> fileName = FileName(connectionString);
  if (!fileName) throw Error(ErrorConnectionFailed, text::NoFileInString);
  if (fileName->find('\0') != std::string::npos) {
    ThrowCannotOpen(ErrorConnectionFailed, *fileName, text::ZeroInName);
  }
  std::error_code failure;
  const std::filesystem::path path = std::filesystem::absolute(PathOf(*fileName), failure);
  if (failure) ThrowCannotOpen(ErrorConnectionFailed, *fileName, failure.message());
  CheckOrdinaryFile(path, *fileName);
  try {
    return OpenFile(path);
  } catch (const Error& error) {
    ThrowCannotOpen(error.Number(), *fileName, error.What());
  }
}

}  // namespace zrqrybld::sqlite
