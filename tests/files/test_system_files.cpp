// What the system does with files, where it is one with owners and modes.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <random>

#include "zrqrybld/adapters/files/system_files.h"
#include "zrqrybld/base/error.h"

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

// --- What goes wrong on the way ---

const std::string kOld = std::string(20000, 'o') + "\nold";
const std::string kNew = std::string(40000, 'n') + "\nnew";

// Works until the call with this number, counted from 1, which fails.
class FailingFiles final : public FileSystem {
 public:
  explicit FailingFiles(int failsAt) : left_(failsAt) {}
  bool Create(const fs::path& file, bool isPrivate) const override {
    return --left_ != 0 && real_->Create(file, isPrivate);
  }
  bool Flush(const fs::path& file) const override { return --left_ != 0 && real_->Flush(file); }
  bool GiveOwner(const fs::path& file, const fs::path& like) const override {
    return --left_ != 0 && real_->GiveOwner(file, like);
  }
  std::shared_ptr<void> Claim(const fs::path& file) const override {
    return --left_ != 0 ? real_->Claim(file) : nullptr;
  }
  bool HasFailed() const { return left_ <= 0; }

 private:
  std::shared_ptr<const FileSystem> real_ = SystemFiles();
  mutable int left_;
};

class BrokenWriteTest : public SystemFilesTest {
 protected:
  bool Saves(const FileSystem& system) const {
    try {
      WriteWholeFile(path, kNew, system);
    } catch (const Error& error) {
      EXPECT_EQ(error.Number(), ErrorFileAccess);
      return false;
    }
    return true;
  }
  std::string Content() const { return ReadWholeFile(path, 1 << 20); }
  // Runs the work in a process of its own: its exit code, or -1 when a signal ended it.
  template <class Work>
  static int InProcess(
      Work work, const std::function<void(pid_t)>& meanwhile = [](pid_t) {}) {
    const pid_t child = fork();
    if (child == 0) _exit(work() ? 0 : 1);
    meanwhile(child);
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  const std::string path = (folder / "query").string();
};

TEST_F(BrokenWriteTest, AStepThatFailsLeavesTheOldFileOrTheNewOne) {
  int failures = 0;
  for (int failsAt = 1;; ++failsAt) {
    SCOPED_TRACE(failsAt);
    WriteWholeFile(path, kOld, *files);
    const FailingFiles failing(failsAt);
    const bool saved = Saves(failing);
    EXPECT_EQ(Content(), saved ? kNew : kOld);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << "nothing is left beside it";
    failures += saved ? 0 : 1;
    if (!failing.HasFailed()) break;
  }
  EXPECT_GE(failures, 2);  // to make the file, and to bring it to the disk
}

TEST_F(BrokenWriteTest, ADiskThatIsFullLeavesTheOldFile) {
  WriteWholeFile(path, kOld, *files);
  for (const rlim_t size : {0U, 1U, 4095U, 8192U, 39999U}) {
    SCOPED_TRACE(size);
    const int code = InProcess([&] {
      std::signal(SIGXFSZ, SIG_IGN);
      const rlimit limit{size, size};
      setrlimit(RLIMIT_FSIZE, &limit);
      return Saves(*files);
    });
    EXPECT_EQ(code, 1) << "the failure is told";
    EXPECT_EQ(Content(), kOld);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
  }
}

TEST_F(BrokenWriteTest, AKillLeavesTheOldFileOrTheNewOne) {
  const char* const asked = std::getenv("ZRQRYBLD_KILLS");
  const int kills = asked ? std::atoi(asked) : 40;
  std::mt19937 random(1);
  int done = 0;
  for (int i = 0; i < kills; ++i) {
    WriteWholeFile(path, kOld, *files);
    const auto save = [&] {
      for (;;) {
        for (const std::string* text : {&kNew, &kOld}) WriteWholeFile(path, *text, *files);
      }
      return true;
    };
    EXPECT_EQ(InProcess(save,
                        [&](pid_t child) {
                          usleep(static_cast<useconds_t>(random() % 6000));
                          kill(child, SIGKILL);
                        }),
              -1);
    const std::string content = Content();
    ASSERT_TRUE(content == kOld || content == kNew) << "kill " << i << ": " << content.size() << " bytes";
    done += content == kNew ? 1 : 0;
  }
  WriteWholeFile(path, kOld, *files);
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << "what the killed left is gone";
  EXPECT_TRUE(kills < 40 || (done > 0 && done < kills)) << "they were killed at every moment";
}

}  // namespace
}  // namespace zrqrybld
