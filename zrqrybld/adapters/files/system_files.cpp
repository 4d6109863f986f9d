#include "zrqrybld/adapters/files/system_files.h"

#if defined(__unix__) || defined(__APPLE__)

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace zrqrybld {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kPrivate = S_IRUSR | S_IWUSR;
constexpr mode_t kShared = kPrivate | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;  // less what the user's mask takes away

// An open file; closed at the end.
class Descriptor {
 public:
  Descriptor(const fs::path& path, int flags, mode_t mode = 0)
      : number_(::open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW, mode)) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (IsOpen()) ::close(number_);
  }
  bool IsOpen() const { return number_ >= 0; }
  int Number() const { return number_; }

 private:
  int number_;
};

class PosixFiles final : public FileSystem {
 public:
  bool Create(const fs::path& file, bool isPrivate) const override {
    return Descriptor(file, O_WRONLY | O_CREAT | O_EXCL, isPrivate ? kPrivate : kShared).IsOpen();
  }

  // Some file systems cannot flush, and say so; there is nothing to wait for then.
  bool Flush(const fs::path& fileOrFolder) const override {
    const Descriptor open(fileOrFolder, O_RDONLY);
    return open.IsOpen() && (::fsync(open.Number()) == 0 || errno == EINVAL || errno == ENOTSUP);
  }

  bool GiveOwner(const fs::path& file, const fs::path& like) const override {
    struct stat now {};
    struct stat wanted {};
    if (::stat(file.c_str(), &now) != 0 || ::stat(like.c_str(), &wanted) != 0) return false;
    if (now.st_uid == wanted.st_uid && now.st_gid == wanted.st_gid) return true;
    return ::chown(file.c_str(), wanted.st_uid, wanted.st_gid) == 0;
  }

  // The lock ends with its process, however that ends.
  std::shared_ptr<void> Claim(const fs::path& file) const override {
    auto open = std::make_shared<Descriptor>(file, O_RDONLY);
    if (!open->IsOpen() || ::flock(open->Number(), LOCK_EX | LOCK_NB) != 0) return nullptr;
    return open;
  }
};

}  // namespace

std::shared_ptr<const FileSystem> SystemFiles() { return std::make_shared<PosixFiles>(); }

}  // namespace zrqrybld

#else

namespace zrqrybld {

std::shared_ptr<const FileSystem> SystemFiles() { return std::make_shared<FileSystem>(); }

}  // namespace zrqrybld

#endif
