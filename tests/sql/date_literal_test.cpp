#include "zrqrybld/sql/date_literal.h"

#include <gtest/gtest.h>

#include <string>

namespace zrqrybld {
namespace {

// A day of each month, leap years, and both ends of the calendar.
TEST(DateLiterals, KnowTheDayOfTheWeekAndTheEndsOfTheCalendar) {
  const std::pair<std::string, std::string> cases[] = {
      {"2023-01-01", "Sun"}, {"2023-02-01", "Wed"}, {"2023-03-01", "Wed"}, {"2023-04-01", "Sat"}, {"2023-05-01", "Mon"},
      {"2023-06-01", "Thu"}, {"2023-07-01", "Sat"}, {"2023-08-01", "Tue"}, {"2023-09-01", "Fri"}, {"2023-10-01", "Sun"},
      {"2023-11-01", "Wed"}, {"2023-12-01", "Fri"}, {"2000-02-29", "Tue"}, {"1900-02-28", "Wed"}, {"0001-01-01", "Mon"},
      {"9999-12-31", "Fri"}, {"1900-02-29", "-"},   {"2023-13-01", "-"},   {"2023-04-31", "-"},
  };
  for (const auto& [text, day] : cases) {
    DateTime value;
    const bool isRead = ReadDateTime(text, "yyyy-MM-dd", false, value) == DateReading::Read;
    EXPECT_EQ(isRead ? FormatDateTime(value, "ddd") : "-", day) << text;
  }
}

// What is typed, by the format of the query; what it does not fit is read in the usual forms.
TEST(DateLiterals, AreReadAndWrittenByFormats) {
  struct Case {
    const char *format, *text, *writes, *written;
  };
  constexpr const char* kPlain = "yyyy-mm-dd hh:nn:ss";
  constexpr const char* kHalves = "mm/dd/yy h:nn am/pm";
  const Case cases[] = {
      {"ddd dd mmm yyyy", "Fri 31 Jan 2020", kPlain, "2020-01-31 00:00:00"},
      {"ddd dd.mm.yy", " 31.01.20", kPlain, "-"},
      // Two figures are a year from 1930 to 2029.
      {kHalves, "01/31/29 12:05 am", kPlain, "2029-01-31 00:05:00"},
      {kHalves, "01/31/30 1:05 PM", kPlain, "1930-01-31 13:05:00"},
      {kHalves, "01/31/30 13:05 PM", kPlain, "-"},
      {kHalves, "01/31/30 1:05 xx", kPlain, "-"},
      {kHalves, "01/31/30 x", kPlain, "-"},
      {kHalves, "01/31/30 1:x am", kPlain, "-"},
      {"h am/pm", "5 pm", "ddd mmm h:nn am/pm", "  5:00 PM"},
      {"h am/pm", "5 am", "hh:nn", "05:00"},
      {"dd hh", "31 10", kPlain, "-"},
      // Letters that stand for themselves.
      {"dd\\dmm\\myyyy", "31d01m2020", kPlain, "2020-01-31 00:00:00"},
      {"dd \"of\" mmmm yyyy", "31 of January 2020", "d \"of\" mmmm yy", "31 of January 20"},
      {"dd \"of\" mmmm yyyy", "31 from January 2020", kPlain, "-"},
      {"dd \"mm yyyy", "31 \"01 2020", kPlain, "2020-01-31 00:00:00"},
      {"yyyy-mm-dd\\", "2020-01-31\\", kPlain, "2020-01-31 00:00:00"},
      // A time may follow; a minute has sixty seconds.
      {"yyyy-mm-dd", "2020-01-31 10:30", kPlain, "2020-01-31 10:30:00"},
      {"yyyy-mm-dd", "2020-01-31 10", kPlain, "-"},
      {"hh:nn:ss", "23:59:59.25", "hh:nn:ss", "23:59:59.25"},
      {"hh:nn:ss", "23:59:60", kPlain, "-"},
      {"hh:nn:ss", "23:59:x", kPlain, "-"},
      {"dd.mm.yyyy", "20200131", kPlain, "2020-01-31 00:00:00"},
      {"dd.mm.yyyy", "202001311", kPlain, "-"},
  };
  for (const auto& [format, text, writes, written] : cases) {
    DateTime value;
    const bool isRead = ReadDateTime(text, format, false, value) == DateReading::Read;
    EXPECT_EQ(isRead ? FormatDateTime(value, writes) : "-", written) << format << ": " << text;
  }
}

}  // namespace
}  // namespace zrqrybld
