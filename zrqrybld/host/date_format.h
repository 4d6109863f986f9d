// How date literals are written: in one of two ways.
#pragma once

#include <cstdint>
#include <string>

namespace zrqrybld {

/// How date literals are written.
enum DateFormatEnum : std::int32_t {
  DateFormatNative = 0,          ///< as `DateFormat` says
  DateFormatEscapeSequence = 1,  ///< { d '...' } and the like
};

/// What a new grid pane says of dates.
struct DateOptions {
  std::string format = "dd-mmm-yyyy";
  DateFormatEnum style = DateFormatNative;
  /// Whether somebody chose the format. Otherwise a source that has a form of its own gets that.
  bool chosen = false;
  friend bool operator==(const DateOptions&, const DateOptions&) = default;
};

}  // namespace zrqrybld
