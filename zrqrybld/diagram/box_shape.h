// BoxShape: all that says where a box stands, and how large it is.
#pragma once

#include "zrqrybld/base/units.h"

namespace zrqrybld {

/// Where a box stands, and how.
struct BoxShape {
  TwipsRect bounds;
  bool minimized = false;
  Twips restoredHeight;  ///< what a minimised box comes back to
  friend bool operator==(const BoxShape&, const BoxShape&) = default;
};

}  // namespace zrqrybld
