// Database files for tests, made by SQLite itself and gone with their owner.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace zrqrybld::test {

/// An empty folder of the test's own, removed with everything in it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "zrqrybld-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// A connection that may write.
class Connection {
 public:
  explicit Connection(const std::string& path) {
    if (sqlite3_open(path.c_str(), &database_) != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(database_));
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() { sqlite3_close(database_); }

  void Execute(const std::string& script) const {
    if (sqlite3_exec(database_, script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
      throw std::runtime_error(sqlite3_errmsg(database_));
    }
  }

  /// Every row of the answer on a line, the values with "|" between them, "NULL" for null.
  std::string Query(const std::string& sql) const {
    std::string text;
    const auto append = [](void* out, int count, char** values, char**) {
      auto& target = *static_cast<std::string*>(out);
      if (!target.empty()) target += '\n';
      for (int i = 0; i < count; ++i) target.append(i > 0 ? "|" : "").append(values[i] != nullptr ? values[i] : "NULL");
      return 0;
    };
    if (sqlite3_exec(database_, sql.c_str(), append, &text, nullptr) != SQLITE_OK) {
      throw std::runtime_error(sqlite3_errmsg(database_));
    }
    return text;
  }

 private:
  sqlite3* database_ = nullptr;
};

inline void Execute(const std::string& path, const std::string& script) { Connection(path).Execute(script); }
inline std::string QueryText(const std::string& path, const std::string& sql) { return Connection(path).Query(sql); }

inline std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Runs the action without the superuser's right to read and write everything, while the folder has these permissions.
template <class Action>
void AsSomebodyElse(const std::filesystem::path& folder, unsigned permissions, const Action& action) {
  std::filesystem::permissions(folder, std::filesystem::perms(permissions));
  const bool isSuperuser = geteuid() == 0;
  if (isSuperuser) {
    ASSERT_EQ(seteuid(65534), 0);
  }
  action();
  if (isSuperuser) {
    ASSERT_EQ(seteuid(0), 0);
  }
}

/// A database file that a script has made, in a folder of its own.
class DatabaseFile {
 public:
  explicit DatabaseFile(const std::string& script, const std::string& name = "test.db")
      : path_((folder_.Path() / name).string()) {
    Execute(path_, "PRAGMA synchronous = OFF; " + (script.empty() ? "PRAGMA user_version = 1" : script));
  }

  const std::string& Path() const { return path_; }

 private:
  TemporaryFolder folder_;
  std::string path_;
};

}  // namespace zrqrybld::test
