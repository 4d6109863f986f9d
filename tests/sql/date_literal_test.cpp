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

}  // namespace
}  // namespace zrqrybld
