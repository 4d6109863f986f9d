#include "platform/toolkit.h"

#include "base/file.h"

namespace zrqrybld {

Toolkit::Toolkit() : files_(std::make_shared<FileSystem>()) {}

}  // namespace zrqrybld
