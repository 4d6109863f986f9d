// The choice between the two ways in which date literals are written.
#pragma once

#include <cstdint>

namespace zrqrybld {

/// How date literals are written.
enum DateFormatEnum : std::int32_t {
  DateFormatNative = 0,          ///< as `DateFormat` says
  DateFormatEscapeSequence = 1,  ///< { d '...' } and the like
};

}  // namespace zrqrybld
