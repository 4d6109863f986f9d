// What the system does with files, where it is one with owners and modes.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <random>

#include "zrqrybld/adapters/files/system_files.h"

namespace zrqrybld {
namespace {

namespace fs = std::filesystem;

class SystemFilesTest : public testing::Test {
 protected:
  SystemFilesTest() : folder(fs::temp_directory_path() / ("zrqrybld-" + std::to_string(std::random_device()()))) {
    fs::create_directory(folder);
    umask(022);
  }
  ~SystemFilesTest() override { fs::remove_all(folder); }
  static struct stat StatOf(const fs::path& file) {
    struct stat found {};
    EXPECT_EQ(stat(file.c_str(), &found), 0);
    return found;
  }

  fs::path folder;
  std::shared_ptr<const FileSystem> files = SystemFiles();
};

TEST_F(SystemFilesTest, APrivateFileIsSoFromTheStart) {
  EXPECT_TRUE(files->Create(folder / "private", true));
  EXPECT_EQ(StatOf(folder / "private").st_mode & 0777, 0600U);
  EXPECT_TRUE(files->Create(folder / "shared", false));
  EXPECT_EQ(StatOf(folder / "shared").st_mode & 0777, 0644U);
  EXPECT_FALSE(files->Create(folder / "shared", false)) << "it was there";
  EXPECT_TRUE(files->Flush(folder / "shared") && files->Flush(folder));
  EXPECT_FALSE(files->Flush(folder / "missing"));
}

// A file that was left behind has no owner any more, however young it is; one that is written has.
TEST_F(SystemFilesTest, WhatNobodyWritesIsRemovedAtOnce) {
  const std::string path = (folder / "query").string();
  for (const char* name : {"query.new-01234567", "query.new-76543210"}) std::ofstream(folder / name) << "x";
  const std::shared_ptr<void> claim = files->Claim(folder / "query.new-76543210");
  ASSERT_TRUE(claim);
  EXPECT_FALSE(files->Claim(folder / "query.new-76543210"));
  WriteWholeFile(path, "text", *files);
  EXPECT_FALSE(fs::exists(folder / "query.new-01234567"));
  EXPECT_TRUE(fs::exists(folder / "query.new-76543210"));
}

TEST_F(SystemFilesTest, ModeAndOwnerStay) {
  const fs::path path = folder / "query";
  std::ofstream(path) << "old";
  ASSERT_EQ(chmod(path.c_str(), 0640), 0);
  const bool isRoot = geteuid() == 0;
  if (isRoot) {
    ASSERT_EQ(chown(path.c_str(), 12345, 54321), 0);
  }
  const struct stat before = StatOf(path);
  WriteWholeFile(path.string(), "new", *files);
  const struct stat after = StatOf(path);
  EXPECT_NE(after.st_ino, before.st_ino) << "replaced whole";
  EXPECT_EQ(after.st_mode, before.st_mode);
  EXPECT_EQ(after.st_uid, before.st_uid);
  EXPECT_EQ(after.st_gid, before.st_gid);
}

}  // namespace
}  // namespace zrqrybld
