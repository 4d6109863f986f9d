#include "zrqrybld/sql/date_literal.h"

#include <array>
#include <cstdint>
#include <vector>

#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kMonths[] = {"January", "February", "March",     "April",   "May",      "June",
                                        "July",    "August",   "September", "October", "November", "December"};
constexpr std::string_view kDays[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};

// --- The calendar ---

constexpr bool IsLeapYear(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DaysInMonth(int year, int month) {
  constexpr int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeapYear(year) ? 29 : kLengths[month - 1];
}

// 0 is Sunday.
int WeekdayOf(const DateTime& value) {
  constexpr int kShifts[] = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
  const int year = value.month < 3 ? value.year - 1 : value.year;
  return (year + year / 4 - year / 100 + year / 400 + kShifts[value.month - 1] + value.day) % 7;
}

bool IsValid(const DateTime& value) {
  if (value.hasDate && (value.year < 1 || value.year > 9999 || value.month < 1 || value.month > 12 || value.day < 1 ||
                        value.day > DaysInMonth(value.year, value.month))) {
    return false;
  }
  return value.hour < 24 && value.minute < 60 && value.second < 60;
}

// The number from 1 of the month that the word names, whole or by its first three letters; 0 for none.
int MonthOf(std::string_view word) {
  for (std::size_t month = 0; month < std::size(kMonths); ++month) {
    if (EqualsNoCase(word, kMonths[month]) || EqualsNoCase(word, kMonths[month].substr(0, 3))) {
      return static_cast<int>(month) + 1;
    }
  }
  return 0;
}

// --- Formats ---

enum class Part : std::uint8_t {
  Literal,
  Day,
  Weekday,
  Month,
  MonthName,
  Year,
  Hour,
  Minute,
  Second,
  HalfDay,
};

struct FormatPiece {
  Part part;
  int width = 1;                  // the least number of figures; 3 for a short name
  std::string_view literal = {};  // what a literal stands for
};

// The longer of two that begin alike comes first.
struct FormatWord {
  std::string_view word;
  Part part;
  int width;
};
constexpr FormatWord kFormatWords[] = {
    {"dddd", Part::Weekday, 9},  {"ddd", Part::Weekday, 3},     {"dd", Part::Day, 2},
    {"d", Part::Day, 1},         {"month", Part::MonthName, 9}, {"mmmm", Part::MonthName, 9},
    {"mmm", Part::MonthName, 3}, {"mon", Part::MonthName, 3},   {"mm", Part::Month, 2},
    {"mi", Part::Minute, 2},     {"m", Part::Month, 1},         {"yyyy", Part::Year, 4},
    {"yy", Part::Year, 2},       {"hh24", Part::Hour, 2},       {"hh", Part::Hour, 2},
    {"h", Part::Hour, 1},        {"nn", Part::Minute, 2},       {"n", Part::Minute, 1},
    {"ss", Part::Second, 2},     {"s", Part::Second, 1},        {"am/pm", Part::HalfDay, 1},
};

const FormatWord* FormatWordAt(std::string_view text) {
  for (const FormatWord& word : kFormatWords) {
    if (StartsWithNoCase(text, word.word)) return &word;
  }
  return nullptr;
}

std::vector<FormatPiece> PiecesOf(std::string_view format) {
  std::vector<FormatPiece> pieces;
  Part last = Part::Literal;  // the last part that is no literal
  for (std::size_t at = 0; at < format.size();) {
    if (format[at] == '\\' && at + 1 < format.size()) {
      pieces.push_back({Part::Literal, 1, format.substr(at + 1, 1)});
      at += 2;
    } else if (const std::size_t end = format[at] == '"' ? format.find('"', at + 1) : std::string_view::npos;
               end != std::string_view::npos) {
      pieces.push_back({Part::Literal, 1, format.substr(at + 1, end - at - 1)});
      at = end + 1;
    } else if (const FormatWord* word = FormatWordAt(format.substr(at))) {
      // Minutes stand behind hours, where nobody means the month.
      last = word->part == Part::Month && last == Part::Hour ? Part::Minute : word->part;
      pieces.push_back({last, word->width});
      at += word->word.size();
    } else {
      pieces.push_back({Part::Literal, 1, format.substr(at, 1)});
      ++at;
    }
  }
  return pieces;
}

void AppendNumber(std::string& text, int value, int width) {
  const std::string digits = std::to_string(value);
  const auto missing = width - static_cast<int>(digits.size());
  if (missing > 0) text.append(static_cast<std::size_t>(missing), '0');
  text += digits;
}

bool HasHalfDay(const std::vector<FormatPiece>& pieces) {
  for (const FormatPiece& piece : pieces) {
    if (piece.part == Part::HalfDay) return true;
  }
  return false;
}

// --- Reading ---

class DateReader {
 public:
  DateReader(std::string_view text, bool monthFirst) : text_(text), monthFirst_(monthFirst) {}

  // In the usual forms.
  DateReading ReadUsual(DateTime& result) {
    DateTime value;
    if (!ReadTime(value)) {
      at_ = 0;
      value = {};
      const DateReading date = ReadDate(value);
      if (date == DateReading::NoDate) return date;
      if (at_ < text_.size()) {
        if (UpperAscii(text_[at_]) == 'T') {
          ++at_;
        } else if (!SkipBlanks()) {
          return DateReading::NoDate;
        }
        if (!ReadTime(value)) return DateReading::NoDate;
      }
      if (at_ < text_.size()) return DateReading::NoDate;
      if (date == DateReading::Ambiguous) return date;
    }
    if (at_ < text_.size() || !IsValid(value)) return DateReading::NoDate;
    result = value;
    return DateReading::Read;
  }

  // By a format. Names and figures may be longer or shorter than it writes them.
  bool ReadByFormat(const std::vector<FormatPiece>& pieces, DateTime& result) {
    DateTime value;
    std::array<bool, 3> has{};  // day, month, year
    std::optional<bool> afternoon;
    for (const FormatPiece& piece : pieces) {
      switch (piece.part) {
        case Part::Literal:
          if (text_.substr(at_, piece.literal.size()) != piece.literal) return false;
          at_ += piece.literal.size();
          break;
        case Part::Weekday:
          if (Word().empty()) return false;
          break;
        case Part::MonthName:
          value.month = MonthOf(Word());
          has[1] = value.month != 0;
          break;
        case Part::Day:
          has[0] = Number(value.day, 1, 2);
          break;
        case Part::Month:
          has[1] = Number(value.month, 1, 2);
          break;
        case Part::Year:
          has[2] = Number(value.year, piece.width, piece.width);
          if (piece.width == 2) value.year += value.year < 30 ? 2000 : 1900;
          break;
        case Part::Hour:
          if (!Number(value.hour, 1, 2)) return false;
          value.hasTime = true;
          break;
        case Part::Minute:
          if (!Number(value.minute, 1, 2)) return false;
          break;
        case Part::Second:
          if (!Number(value.second, 1, 2)) return false;
          ReadFraction(value);
          break;
        case Part::HalfDay:
          afternoon = ReadHalfDay();
          if (!afternoon) return false;
          break;
      }
    }
    value.hasDate = has[0] && has[1] && has[2];
    if (!value.hasDate && !(value.hasTime && !has[0] && !has[1] && !has[2])) return false;
    if (afternoon && !ApplyHalfDay(value, *afternoon)) return false;
    // A time may follow where the format has none.
    if (at_ < text_.size() && (value.hasTime || !SkipBlanks() || !ReadTime(value))) return false;
    if (at_ < text_.size() || !IsValid(value)) return false;
    result = value;
    return true;
  }

 private:
  bool SkipBlanks() {
    const std::size_t begin = at_;
    while (at_ < text_.size() && text_[at_] == ' ') ++at_;
    return at_ > begin;
  }

  bool Number(int& value, int least, int most) {
    std::size_t end = at_;
    int number = 0;
    while (end < text_.size() && IsDigit(text_[end]) && end - at_ < static_cast<std::size_t>(most)) {
      number = number * 10 + (text_[end++] - '0');
    }
    if (end - at_ < static_cast<std::size_t>(least)) return false;
    value = number;
    at_ = end;
    return true;
  }

  std::string_view Word() {
    const std::size_t begin = at_;
    while (at_ < text_.size() && UpperAscii(text_[at_]) >= 'A' && UpperAscii(text_[at_]) <= 'Z') ++at_;
    return text_.substr(begin, at_ - begin);
  }

  std::optional<bool> ReadHalfDay() {
    const std::string_view word = Word();
    if (EqualsNoCase(word, "PM")) return true;
    if (EqualsNoCase(word, "AM")) return false;
    return std::nullopt;
  }

  static bool ApplyHalfDay(DateTime& value, bool afternoon) {
    if (value.hour < 1 || value.hour > 12) return false;
    value.hour = value.hour % 12 + (afternoon ? 12 : 0);
    return true;
  }

  void ReadFraction(DateTime& value) {
    if (at_ + 1 >= text_.size() || text_[at_] != '.' || !IsDigit(text_[at_ + 1])) return;
    const std::size_t begin = ++at_;
    while (at_ < text_.size() && IsDigit(text_[at_])) ++at_;
    value.fraction = text_.substr(begin, at_ - begin);
  }

  bool ReadTime(DateTime& value) {
    if (!Number(value.hour, 1, 2) || at_ >= text_.size() || text_[at_] != ':') return false;
    ++at_;
    if (!Number(value.minute, 2, 2)) return false;
    if (at_ < text_.size() && text_[at_] == ':') {
      ++at_;
      if (!Number(value.second, 2, 2)) return false;
      ReadFraction(value);
    }
    value.hasTime = true;
    const std::size_t end = at_;
    SkipBlanks();
    if (const std::optional<bool> afternoon = ReadHalfDay()) return ApplyHalfDay(value, *afternoon);
    at_ = end;
    return true;
  }

  // One of three parts of a date: figures or a month's name.
  struct DatePart {
    int value = 0;
    std::size_t digits = 0;  // 0 for a name
  };

  bool ReadDatePart(DatePart& part) {
    const std::size_t begin = at_;
    if (Number(part.value, 1, 4)) {
      part.digits = at_ - begin;
      return true;
    }
    part.value = MonthOf(Word());
    return part.value != 0;
  }

  // "-", "/", "." or blanks, the last two also with a comma before them. '\0' when there is none.
  char Separator() {
    char separator = '\0';
    if (at_ < text_.size() && std::string_view("-/.,").find(text_[at_]) != std::string_view::npos)
      separator = text_[at_++];
    if ((separator == '\0' || separator == ',' || separator == '.') && SkipBlanks() && separator == '\0')
      separator = ' ';
    return separator;
  }

  DateReading ReadDate(DateTime& value) {
    value.hasDate = true;
    if (text_.size() >= 8 && text_.find_first_not_of("0123456789") >= 8) {
      const bool read = Number(value.year, 4, 4) && Number(value.month, 2, 2) && Number(value.day, 2, 2);
      return read && (at_ == text_.size() || !IsDigit(text_[at_])) ? DateReading::Read : DateReading::NoDate;
    }
    std::array<DatePart, 3> parts;
    char separator = '\0';
    for (DatePart& part : parts) {
      if (&part != parts.data() && (separator = Separator()) == '\0') return DateReading::NoDate;
      if (!ReadDatePart(part)) return DateReading::NoDate;
    }
    return Arrange(parts, separator, value);
  }

  DateReading Arrange(const std::array<DatePart, 3>& parts, char separator, DateTime& value) const {
    const auto& [a, b, c] = parts;
    const auto store = [&value](const DatePart& year, const DatePart& month, const DatePart& day) {
      value.year = year.value;
      value.month = month.value;
      value.day = day.value;
      return year.digits == 4 && month.digits <= 2 && (day.digits == 1 || day.digits == 2) ? DateReading::Read
                                                                                           : DateReading::NoDate;
    };
    if (a.digits == 4) return store(a, b, c);
    if (a.digits == 0) return store(c, a, b);
    if (b.digits == 0) return store(c, b, a);
    if (separator == ' ' || separator == ',') return DateReading::NoDate;
    // Figures alone. With points the day comes first everywhere; else it is known only where one is beyond 12.
    if (separator == '.' || a.value > 12) return store(c, b, a);
    if (b.value > 12 || a.value == b.value || monthFirst_) return store(c, a, b);
    return store(c, a, b) == DateReading::Read ? DateReading::Ambiguous : DateReading::NoDate;
  }

  std::string_view text_;
  bool monthFirst_;
  std::size_t at_ = 0;
};

}  // namespace

DateReading ReadDateTime(std::string_view text, std::string_view format, bool monthFirst, DateTime& result) {
  constexpr std::size_t kLongest = 64;  // no date is longer
  text = TrimWhite(text);
  if (text.empty() || text.size() > kLongest) return DateReading::NoDate;
  if (DateReader(text, monthFirst).ReadByFormat(PiecesOf(format), result)) return DateReading::Read;
  return DateReader(text, monthFirst).ReadUsual(result);
}

std::string FormatDateTime(const DateTime& value, std::string_view format) {
  const std::vector<FormatPiece> pieces = PiecesOf(format);
  const bool halves = HasHalfDay(pieces);
  std::string text;
  for (const FormatPiece& piece : pieces) {
    switch (piece.part) {
      case Part::Literal:
        text += piece.literal;
        break;
      case Part::Day:
        AppendNumber(text, value.day, piece.width);
        break;
      case Part::Weekday:
        if (value.hasDate) text += kDays[WeekdayOf(value)].substr(0, static_cast<std::size_t>(piece.width));
        break;
      case Part::Month:
        AppendNumber(text, value.month, piece.width);
        break;
      case Part::MonthName:
        if (value.hasDate) text += kMonths[value.month - 1].substr(0, static_cast<std::size_t>(piece.width));
        break;
      case Part::Year:
        AppendNumber(text, piece.width == 2 ? value.year % 100 : value.year, piece.width);
        break;
      case Part::Hour:
        AppendNumber(text, halves ? (value.hour + 11) % 12 + 1 : value.hour, piece.width);
        break;
      case Part::Minute:
        AppendNumber(text, value.minute, piece.width);
        break;
      case Part::Second:
        AppendNumber(text, value.second, piece.width);
        if (!value.fraction.empty()) text += "." + value.fraction;
        break;
      case Part::HalfDay:
        text += value.hour < 12 ? "AM" : "PM";
        break;
    }
  }
  return text;
}

bool FormatHasTime(std::string_view format) {
  for (const FormatPiece& piece : PiecesOf(format)) {
    if (piece.part == Part::Hour) return true;
  }
  return false;
}

}  // namespace zrqrybld
