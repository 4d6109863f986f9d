// DataTable: cases of a test that stand in a text file under tests/data.
//
// A file holds rows or records; "#" at the start of a line makes it a comment.
//   Rows:    one a line, cells between "|", blanks around a cell do not count. Empty lines separate.
//   Records: lines "name: text"; a line that begins with two blanks goes on with the text above it
//            after a CR LF (the two blanks do not count). Empty lines end a record.
// Escapes in both: \r \n \t \\ \| \s (a blank that counts) \# and \xHH (a byte, also no UTF-8).
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zrqrybld::test {

/// One line of a table of rows.
struct Row {
  std::string place;  ///< "file:line", for SCOPED_TRACE
  std::vector<std::string> cells;

  /// The cell, counted from 0. A row that is too short ends the test with its place.
  const std::string& operator[](std::size_t index) const;
};

/// One record of named texts.
struct Record {
  std::string place;  ///< "file:line" of its first line
  std::map<std::string, std::string, std::less<>> texts;

  bool Has(std::string_view name) const { return texts.contains(name); }
  /// The text. A name that is missing ends the test with the record's place.
  const std::string& operator[](std::string_view name) const;
};

/// The rows of tests/data/`file`. A file that is missing or has none ends the test.
std::vector<Row> ReadRows(std::string_view file);

/// The records of tests/data/`file`. A file that is missing or has none ends the test.
std::vector<Record> ReadRecords(std::string_view file);

/// The text with its escapes replaced; what the two readers do to every cell.
std::string Unescape(std::string_view text);

}  // namespace zrqrybld::test
