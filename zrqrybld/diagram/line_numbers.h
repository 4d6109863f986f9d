// LineNumbers: which of the lines with the same two ends is which.
//
// Lines with the same ends lie beside one another; each takes the first number that is free.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "zrqrybld/base/free_numbers.h"

namespace zrqrybld {

class qbEntityList;
class qbLine;

/// A box and, where the columns count, the name of a column: a column that comes back is another object.
using LineEnd = std::pair<const qbEntityList*, std::string>;
/// The two ends of a line, of which one is the first whichever way round the line is drawn.
using LineEnds = std::pair<LineEnd, LineEnd>;

LineEnds EndsOf(LineEnd one, LineEnd other);
/// The boxes of a line and its columns; nothing while the join has not both.
std::optional<LineEnds> RowsOf(const qbLine& line);

class LineNumbers {
 public:
  /// The first free number, from 0.
  int Take(const LineEnds& ends) { return taken_[ends].Take(); }
  /// A line with these ends has gone. It needs no memory.
  void GiveBack(const LineEnds& ends, int number);

 private:
  std::map<LineEnds, FreeNumbers> taken_;
};

}  // namespace zrqrybld
