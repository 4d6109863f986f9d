// Dates as people type them and as statements write them.
//
// Pure: no clock, no locale. Month names are English, as in the format that the grid pane begins with.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zrqrybld {

/// A date, a time of day, or both. Parts that are absent are 0.
struct DateTime {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  std::string fraction;  ///< the digits behind the second's point, "" for none
  bool hasDate = false;
  bool hasTime = false;
  friend bool operator==(const DateTime&, const DateTime&) = default;
};

/// What became of a text that was to be read as a date.
enum class DateReading { Read, NoDate, Ambiguous };

/// Reads the whole of `text`, blanks around it allowed: in `format`, in ISO form (2020-01-31, 20200131, with or without
/// a time behind "T" or a blank), with the month's name (31 Jan 2020, January 31, 2020), or in figures where day and
/// month cannot be confused (31/1/2020, 31.1.2020). `monthFirst` decides for the others, as in #1/2/2020#; without it
/// they are ambiguous. A time alone (10:30, 10:30:15.5, 1:30 PM) is read too. Nothing is stored unless it is read.
DateReading ReadDateTime(std::string_view text, std::string_view format, bool monthFirst, DateTime& result);

/// Writes `value` by a format of d dd ddd dddd, m mm mmm mmmm (also mon, month), yy yyyy, h hh hh24, n nn (also mi, and
/// m behind an hour), s ss, am/pm; "\" before a character and '"' around characters take them as they are.
/// Letters count in either case; every other character stands for itself.
std::string FormatDateTime(const DateTime& value, std::string_view format);

/// Whether the format has a place for the time of day.
bool FormatHasTime(std::string_view format);

}  // namespace zrqrybld
