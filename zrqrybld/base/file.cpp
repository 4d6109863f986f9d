#include "zrqrybld/base/file.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/texts_base.h"

namespace zrqrybld {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void ThrowFailure(TextId what, const std::string& path, const Phrase& reason) {
  throw Error(ErrorFileAccess, Phrase(what, path, reason));
}

// The system's words for what failed last. Streams set it on the systems we know; where they do not, there is none.
Phrase LastReason() { return errno == 0 ? Phrase(text::UnknownReason) : std::generic_category().message(errno); }

// Returns whether everything went through, to the last byte.
bool Write(const fs::path& path, std::string_view text) {
  errno = 0;
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  return !file.fail();
}

constexpr std::string_view kNew = ".new-";
constexpr std::size_t kDigits = 8;

// What the names of new files beside `path` begin with. File systems take 255 bytes: a long name is cut.
std::string NewNameOf(const fs::path& path) {
  constexpr std::size_t kLongest = 200;
  const std::u8string name = path.filename().u8string();
  std::size_t length = std::min(name.size(), kLongest);
  while (length < name.size() && length > 0 && (name[length] & 0xC0) == 0x80) --length;  // between characters
  return std::string(name.begin(), name.begin() + static_cast<std::ptrdiff_t>(length)) + std::string(kNew);
}

fs::path FreshNeighbour(const fs::path& path) {
  static constexpr char kHex[] = "0123456789abcdef";
  std::random_device random;
  std::string name = NewNameOf(path);
  for (std::size_t i = 0; i < kDigits; ++i) name += kHex[random() % 16];
  return path.parent_path() / PathOf(name);
}

// Removes new files of this name that nobody writes any more.
void RemoveLeftovers(const fs::path& path, const FileSystem& system) {
  const std::string begin = NewNameOf(path);
  const auto isLeftover = [&](const fs::path& file) {
    const std::u8string name = file.filename().u8string();
    const std::string text(name.begin(), name.end());
    return text.size() == begin.size() + kDigits && text.starts_with(begin) &&
           text.find_first_not_of("0123456789abcdef", begin.size()) == std::string::npos;
  };
  std::error_code error;
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  for (fs::directory_iterator file(folder, error), end; !error && file != end; file.increment(error)) {
    std::error_code ignored;
    if (!isLeftover(file->path()) || !fs::is_regular_file(file->symlink_status(ignored))) continue;
    if (const std::shared_ptr<void> claim = system.Claim(file->path())) fs::remove(file->path(), ignored);
  }
}

// A new file beside the target, complete and on the disk; it is removed unless it was put into the target's place.
class NewFile {
 public:
  NewFile(const fs::path& target, const FileSystem& system)
      : system_(system), target_(target), path_(FreshNeighbour(target)) {}
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile() {
    std::error_code ignored;
    if (!kept_) fs::remove(path_, ignored);
  }

  /// Each returns whether it went well.
  bool Fill(std::string_view text, bool isPrivate) {
    errno = 0;
    if (!system_.Create(path_, isPrivate)) {
      kept_ = true;  // there is none
      return false;
    }
    claim_ = system_.Claim(path_);
    return Write(path_, text) && system_.Flush(path_);
  }
  bool TakePlace() {
    std::error_code error;
    fs::rename(path_, target_, error);
    if (error) {
      errno = error.value();
      return false;
    }
    kept_ = true;
    system_.Flush(target_.has_parent_path() ? target_.parent_path() : fs::path("."));
    return true;
  }
  void Keep() { kept_ = true; }
  const fs::path& Path() const { return path_; }

 private:
  const FileSystem& system_;
  const fs::path& target_;
  fs::path path_;
  std::shared_ptr<void> claim_;
  bool kept_ = false;
};

// Whether the file can only stay what it is when its bytes are replaced, and they can be.
bool MustBeWrittenOver(const fs::path& target, const NewFile& fresh, const FileSystem& system) {
  std::error_code error;
  const std::uintmax_t names = fs::hard_link_count(target, error);
  const bool severalNames = !error && names > 1;
  if (!severalNames && system.GiveOwner(fresh.Path(), target)) return false;
  return std::ofstream(target, std::ios::binary | std::ios::app).is_open();
}

}  // namespace

fs::path PathOf(std::string_view utf8) { return {std::u8string(utf8.begin(), utf8.end())}; }

std::string Utf8Of(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

std::string ReadWholeFile(const std::string& path, std::size_t limit) {
  constexpr TextId kWhat = text::CannotRead;
  errno = 0;
  std::error_code error;
  if (fs::is_directory(PathOf(path), error)) ThrowFailure(kWhat, path, text::IsFolder);
  std::ifstream file(PathOf(path), std::ios::binary);
  if (!file) ThrowFailure(kWhat, path, LastReason());
  std::string text;
  std::string chunk(std::size_t{64} * 1024, '\0');
  while (file.read(chunk.data(), static_cast<std::streamsize>(chunk.size())) || file.gcount() > 0) {
    text.append(chunk, 0, static_cast<std::size_t>(file.gcount()));
    if (text.size() > limit) ThrowFailure(kWhat, path, {text::LargerThan, limit >> 20});
  }
  if (file.bad()) ThrowFailure(kWhat, path, LastReason());
  return text;
}

bool FileSystem::Create(const fs::path& file, bool isPrivate) const {
  if (!Write(file, {})) return false;
  std::error_code error;
  if (isPrivate) fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write, error);
  return !error;
}

bool FileSystem::Flush(const fs::path&) const { return true; }

bool FileSystem::GiveOwner(const fs::path&, const fs::path&) const { return true; }

// Nobody writes for a minute without a change of the file.
std::shared_ptr<void> FileSystem::Claim(const fs::path& file) const {
  std::error_code error;
  const fs::file_time_type changed = fs::last_write_time(file, error);
  if (error || fs::file_time_type::clock::now() - changed < std::chrono::minutes(1)) return nullptr;
  return std::make_shared<int>();
}

void WriteWholeFile(const std::string& path, std::string_view text, const FileSystem& system, bool isPrivate) {
  constexpr TextId kWhat = text::CannotWrite;
  std::error_code error;
  fs::path target = PathOf(path);
  if (fs::is_symlink(target, error)) {
    const fs::path pointedTo = fs::weakly_canonical(target, error);
    if (!error) target = pointedTo;
  }
  const fs::file_status status = fs::status(target, error);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    if (fs::is_directory(status)) ThrowFailure(kWhat, path, text::IsFolder);
    if (!Write(target, text)) ThrowFailure(kWhat, path, LastReason());
    return;
  }
  RemoveLeftovers(target, system);
  NewFile fresh(target, system);
  if (!fresh.Fill(text, isPrivate || fs::exists(status))) ThrowFailure(kWhat, path, LastReason());
  if (fs::exists(status)) {
    if (MustBeWrittenOver(target, fresh, system)) {
      if (Write(target, text) && system.Flush(target)) return;
      const Phrase reason = LastReason();
      fresh.Keep();
      const std::u8string kept = fresh.Path().u8string();
      ThrowFailure(kWhat, path, {text::WrittenElsewhere, reason, std::string(kept.begin(), kept.end())});
    }
    fs::permissions(fresh.Path(), status.permissions(), error);
  }
  if (!fresh.TakePlace()) ThrowFailure(kWhat, path, LastReason());
}

}  // namespace zrqrybld
