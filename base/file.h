// Whole files: read at once, and written so that a failure never leaves half a file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zrqrybld {

/// The file's bytes. Error 75 with the system's reason when it cannot be read, and for a file beyond `limit` bytes.
std::string ReadWholeFile(const std::string& path, std::size_t limit);

/// Writes the text into a new file beside `path` and puts that into the place of what stood there, which keeps its
/// permissions; a link keeps pointing where it does. Error 75 with the system's reason when that fails; the old file is
/// then as it was. Pipes and devices are written directly.
void WriteWholeFile(const std::string& path, std::string_view text);

}  // namespace zrqrybld
