// The files of a page, in place of zrqrybld/base/file.cpp: texts by name, which the page takes when they are written.
// There is no disk, nobody else writes, and nothing stays half written.
#include <emscripten.h>

#include <map>
#include <string>

#include "zrqrybld/adapters/web/page.h"
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/file.h"
#include "zrqrybld/base/texts_base.h"
#include "zrqrybld/base/texts_run.h"

namespace zrqrybld {
namespace {

std::map<std::string, std::string>& FilesOfThePage() {
  static std::map<std::string, std::string> files;
  return files;
}

}  // namespace

std::string ReadWholeFile(const std::string& path, std::size_t limit) {
  const auto file = FilesOfThePage().find(path);
  if (file == FilesOfThePage().end()) {
    throw Error(ErrorFileAccess, Phrase(text::CannotRead, path, Phrase(text::NoSuchFile)));
  }
  if (file->second.size() > limit) {
    throw Error(ErrorFileAccess, Phrase(text::CannotRead, path, Phrase(text::LargerThan, limit >> 20)));
  }
  return file->second;
}

void WriteWholeFile(const std::string& path, std::string_view text, const FileSystem&, bool) {
  FilesOfThePage()[path] = text;
}

// Nobody asks these here: they are for disks, owners and other programs.
bool FileSystem::Create(const std::filesystem::path&, bool) const { return false; }
bool FileSystem::Flush(const std::filesystem::path&) const { return true; }
bool FileSystem::GiveOwner(const std::filesystem::path&, const std::filesystem::path&) const { return true; }
std::shared_ptr<void> FileSystem::Claim(const std::filesystem::path&) const { return nullptr; }

}  // namespace zrqrybld

// The text of a file, which is there no longer then and is the caller's to free; 0 when there was none.
extern "C" EMSCRIPTEN_KEEPALIVE char* zrw_take_file(const char* path) {
  const auto file = zrqrybld::FilesOfThePage().extract(path);
  return file.empty() ? nullptr : zrqrybld::Given(file.mapped());
}
