#include "zrqrybld/platform/toolkit.h"

#include "zrqrybld/base/file.h"

namespace zrqrybld {

Toolkit::Toolkit() : files_(std::make_shared<FileSystem>()) {}

}  // namespace zrqrybld
