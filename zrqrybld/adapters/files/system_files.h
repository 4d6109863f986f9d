// Files as the system keeps them: what is written reaches the disk, owners stay. For a toolkit's `SetFiles`.
#pragma once

#include <memory>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/file.h"

namespace zrqrybld {

/// The system's own; where it is none that we know, what the standard library does.
ZRQRYBLD_API std::shared_ptr<const FileSystem> SystemFiles();

}  // namespace zrqrybld
