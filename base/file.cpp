#include "base/file.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>

#include "base/error.h"

namespace zrqrybld {
namespace {

namespace fs = std::filesystem;

fs::path PathOf(const std::string& utf8) { return {std::u8string(utf8.begin(), utf8.end())}; }

[[noreturn]] void ThrowFailure(std::string_view what, const std::string& path, const std::string& reason) {
  throw Error(ErrorFileAccess, std::string(what) + " " + path + ": " + reason);
}

// The system's words for what failed last. Streams set it on the systems we know; where they do not, there is none.
std::string LastReason() { return errno == 0 ? "unknown reason" : std::generic_category().message(errno); }

// Returns whether everything went through, to the last byte.
bool Write(const fs::path& path, std::string_view text) {
  errno = 0;
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  return !file.fail();
}

fs::path FreshNeighbour(const fs::path& path) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::random_device random;
  std::string suffix = ".new-";
  for (int i = 0; i < 8; ++i) suffix += kDigits[random() % 16];
  fs::path neighbour = path;
  neighbour += suffix;
  return neighbour;
}

}  // namespace

std::string ReadWholeFile(const std::string& path, std::size_t limit) {
  constexpr std::string_view kWhat = "Cannot read";
  errno = 0;
  std::error_code error;
  if (fs::is_directory(PathOf(path), error)) ThrowFailure(kWhat, path, "it is a folder");
  std::ifstream file(PathOf(path), std::ios::binary);
  if (!file) ThrowFailure(kWhat, path, LastReason());
  std::string text;
  std::string chunk(std::size_t{64} * 1024, '\0');
  while (file.read(chunk.data(), static_cast<std::streamsize>(chunk.size())) || file.gcount() > 0) {
    text.append(chunk, 0, static_cast<std::size_t>(file.gcount()));
    if (text.size() > limit) ThrowFailure(kWhat, path, "it is larger than " + std::to_string(limit >> 20) + " MB");
  }
  if (file.bad()) ThrowFailure(kWhat, path, LastReason());
  return text;
}

void WriteWholeFile(const std::string& path, std::string_view text) {
  constexpr std::string_view kWhat = "Cannot write";
  std::error_code error;
  fs::path target = PathOf(path);
  if (fs::is_symlink(target, error)) {
    const fs::path pointedTo = fs::weakly_canonical(target, error);
    if (!error) target = pointedTo;
  }
  const fs::file_status status = fs::status(target, error);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    if (fs::is_directory(status)) ThrowFailure(kWhat, path, "it is a folder");
    if (!Write(target, text)) ThrowFailure(kWhat, path, LastReason());
    return;
  }
  const fs::path fresh = FreshNeighbour(target);
  if (!Write(fresh, text)) {
    const std::string reason = LastReason();
    fs::remove(fresh, error);
    ThrowFailure(kWhat, path, reason);
  }
  if (fs::exists(status)) fs::permissions(fresh, status.permissions(), error);
  fs::rename(fresh, target, error);
  if (error) {
    const std::string reason = error.message();
    fs::remove(fresh, error);
    ThrowFailure(kWhat, path, reason);
  }
}

}  // namespace zrqrybld
