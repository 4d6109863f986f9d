// The files of a page, in place of zrqrybld/base/file.cpp: they lie in a memory of its own, where nothing stays half
// written and nobody else writes. Streams and the library of file names are a twentieth of the whole program.
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/file.h"
#include "zrqrybld/base/texts_base.h"

namespace zrqrybld {
namespace {

struct Close {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

[[noreturn]] void ThrowFailure(TextId what, const std::string& path) {
  throw Error(ErrorFileAccess, Phrase(what, path, std::string(std::strerror(errno))));
}

}  // namespace

std::string ReadWholeFile(const std::string& path, std::size_t limit) {
  const File file(std::fopen(path.c_str(), "rb"));
  if (!file) ThrowFailure(text::CannotRead, path);
  std::string text;
  std::array<char, 4096> chunk;
  for (std::size_t count; (count = std::fread(chunk.data(), 1, chunk.size(), file.get())) > 0;) {
    text.append(chunk.data(), count);
    if (text.size() > limit) {
      throw Error(ErrorFileAccess, Phrase(text::CannotRead, path, Phrase(text::LargerThan, limit >> 20)));
    }
  }
  if (std::ferror(file.get()) != 0) ThrowFailure(text::CannotRead, path);
  return text;
}

void WriteWholeFile(const std::string& path, std::string_view text, const FileSystem&, bool) {
  const File file(std::fopen(path.c_str(), "wb"));
  if (!file || std::fwrite(text.data(), 1, text.size(), file.get()) != text.size() || std::fflush(file.get()) != 0) {
    ThrowFailure(text::CannotWrite, path);
  }
}

// Nobody asks these here: they are for disks, owners and other programs.
bool FileSystem::Create(const std::filesystem::path&, bool) const { return false; }
bool FileSystem::Flush(const std::filesystem::path&) const { return true; }
bool FileSystem::GiveOwner(const std::filesystem::path&, const std::filesystem::path&) const { return true; }
std::shared_ptr<void> FileSystem::Claim(const std::filesystem::path&) const { return nullptr; }

}  // namespace zrqrybld
