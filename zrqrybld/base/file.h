// Whole files: read at once, and written so that a failure never leaves half a file.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "zrqrybld/base/export.h"

namespace zrqrybld {

/// What writing whole files asks of the system. This one does it by the standard library, as far as that goes: it
/// neither waits for the disk nor knows owners. The system's own is handed to the toolkit.
class ZRQRYBLD_API FileSystem {
 public:
  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem() = default;

  /// Makes an empty file that was not there; with `isPrivate` nobody but its owner can ever open it. Returns whether
  /// that went well.
  virtual bool Create(const std::filesystem::path& file, bool isPrivate) const;
  /// Returns when what was written to the file, or the names in the folder, are on the disk; False when they are not.
  virtual bool Flush(const std::filesystem::path& fileOrFolder) const;
  /// Gives the file the owner and the group of another. Returns whether it has them now.
  virtual bool GiveOwner(const std::filesystem::path& file, const std::filesystem::path& like) const;
  /// Takes a file that is being written for oneself, as long as the result lives; nothing while somebody else has it.
  virtual std::shared_ptr<void> Claim(const std::filesystem::path& file) const;
};

/// A path that is given in UTF-8, whatever the system takes file names in.
ZRQRYBLD_API std::filesystem::path PathOf(std::string_view utf8);
/// The same back.
ZRQRYBLD_API std::string Utf8Of(const std::filesystem::path& path);

/// The file's bytes. Error 75 with the system's reason when it cannot be read, and for a file beyond `limit` bytes.
ZRQRYBLD_API std::string ReadWholeFile(const std::string& path, std::size_t limit);

/// Writes the text into a new file beside `path`, waits until it is on the disk, and puts it into the place of what
/// stood there, which keeps its permissions and its owner; a link keeps pointing where it does, and a file with several
/// names, or with an owner that cannot be given away, keeps them: it is written over when the new one is complete.
/// Error 75 with the system's reason when that fails; the old file is then as it was, or the error names the complete
/// new one. A file that was not there can be read by its owner alone where `isPrivate` says so. What an earlier write
/// of this file has left behind, because its process ended, is removed. Pipes and devices are written directly.
ZRQRYBLD_API void WriteWholeFile(const std::string& path, std::string_view text,
                                 const FileSystem& system = FileSystem(), bool isPrivate = false);

}  // namespace zrqrybld
