// Makes a SQLite database from a script: make_database SCRIPT DATABASE
//
// The database appears under its name only when the whole script has run and every foreign key has its
// parent, so a build never leaves half of one. The same script gives the same bytes.
#include <sqlite3.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close)>;
using Statement = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

// A failure at a byte of the script.
struct ScriptError {
  std::size_t offset;
  std::string message;
};

std::size_t LineOf(std::string_view script, std::size_t offset) {
  return 1 + static_cast<std::size_t>(std::ranges::count(script.substr(0, offset), '\n'));
}

// The first byte at or after `position` that is neither white space nor part of a comment.
std::size_t SkipBlank(std::string_view script, std::size_t position) {
  while (position < script.size()) {
    const std::string_view rest = script.substr(position);
    if (rest.starts_with("--")) {
      position = std::min(script.find('\n', position), script.size());
    } else if (rest.starts_with("/*")) {
      const std::size_t end = script.find("*/", position + 2);
      position = end == std::string_view::npos ? script.size() : end + 2;
    } else if (std::string_view(" \t\r\n").find(script[position]) != std::string_view::npos) {
      ++position;
    } else {
      break;
    }
  }
  return position;
}

void Run(sqlite3* database, std::string_view script) {
  std::size_t position = SkipBlank(script, 0);
  while (position < script.size()) {
    const char* begin = script.data() + position;
    const char* tail = nullptr;
    sqlite3_stmt* prepared = nullptr;
    const int result =
        sqlite3_prepare_v2(database, begin, static_cast<int>(script.size() - position), &prepared, &tail);
    const Statement statement(prepared, sqlite3_finalize);
    if (result != SQLITE_OK) {
#if SQLITE_VERSION_NUMBER >= 3038000
      const int inside = std::max(sqlite3_error_offset(database), 0);
#else
      const int inside = 0;
#endif
      throw ScriptError{position + static_cast<std::size_t>(inside), sqlite3_errmsg(database)};
    }
    int step = SQLITE_DONE;
    while (prepared != nullptr && (step = sqlite3_step(prepared)) == SQLITE_ROW) {
    }
    if (step != SQLITE_DONE) throw ScriptError{position, sqlite3_errmsg(database)};
    position = SkipBlank(script, static_cast<std::size_t>(tail - script.data()));
  }
}

void CheckForeignKeys(sqlite3* database) {
  sqlite3_stmt* prepared = nullptr;
  if (sqlite3_prepare_v2(database, "PRAGMA foreign_key_check", -1, &prepared, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(database));
  }
  const Statement statement(prepared, sqlite3_finalize);
  const int step = sqlite3_step(prepared);
  if (step == SQLITE_ROW) {
    const auto* table = reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0));
    throw std::runtime_error(std::string("a row of table ") + table + " has no parent");
  }
  if (step != SQLITE_DONE) throw std::runtime_error(sqlite3_errmsg(database));
}

std::string Utf8(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) throw std::runtime_error("cannot read " + Utf8(path));
  return text;
}

void Make(const std::string& script, const std::filesystem::path& path) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open(Utf8(std::filesystem::absolute(path)).c_str(), &opened);
  const Database database(opened, sqlite3_close);
  if (result != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(opened));
  // No journal: a file of which anything fails is thrown away as a whole.
  Run(opened, "PRAGMA journal_mode = OFF; PRAGMA page_size = 4096; PRAGMA foreign_keys = OFF; BEGIN");
  Run(opened, script);
  Run(opened, "COMMIT");
  CheckForeignKeys(opened);
  Run(opened, "VACUUM");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: make_database SCRIPT DATABASE\n";
    return 2;
  }
  const std::filesystem::path output = argv[2];
  std::filesystem::path unfinished = output;
  unfinished += ".tmp";
  std::string script;
  try {
    script = ReadFile(argv[1]);
    if (output.has_parent_path()) std::filesystem::create_directories(output.parent_path());
    std::filesystem::remove(unfinished);
    Make(script, unfinished);
    std::filesystem::rename(unfinished, output);
    return 0;
  } catch (const ScriptError& error) {
    std::cerr << argv[1] << ":" << LineOf(script, error.offset) << ": " << error.message << "\n";
  } catch (const std::exception& error) {
    std::cerr << argv[1] << ": " << error.what() << "\n";
  }
  std::error_code ignored;
  std::filesystem::remove(unfinished, ignored);
  return 1;
}
