// Picture: something that is drawn when it is needed, at whatever scale.
#pragma once

#include <functional>

#include "zrqrybld/platform/canvas.h"

namespace zrqrybld {

struct Picture {
  PixelSize size;                      ///< at 100 %
  std::function<void(Canvas&)> paint;  ///< draws it with its top left corner at (0, 0)
};

}  // namespace zrqrybld
