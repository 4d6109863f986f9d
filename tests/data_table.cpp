#include "tests/data_table.h"

#include <charconv>
#include <fstream>
#include <stdexcept>

#include "zrqrybld/base/text.h"

namespace zrqrybld::test {
namespace {

struct Line {
  std::string text;
  std::size_t number;
};

// The lines of a file without comments, empty ones included.
std::vector<Line> ReadLines(std::string_view file) {
  const std::string path = std::string(ZRQRYBLD_TEST_DATA) + "/" + std::string(file);
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + path);
  std::vector<Line> lines;
  std::size_t number = 0;
  for (std::string text; std::getline(stream, text);) {
    ++number;
    if (text.ends_with('\r')) text.pop_back();
    if (!text.starts_with('#')) lines.push_back({text, number});
  }
  return lines;
}

std::string Place(std::string_view file, std::size_t number) {
  return std::string(file) + ":" + std::to_string(number);
}

// The pieces between "|", where an escaped one does not count.
std::vector<std::string_view> SplitCells(std::string_view text) {
  std::vector<std::string_view> cells;
  std::size_t start = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\') {
      ++i;
    } else if (text[i] == '|') {
      cells.push_back(text.substr(start, i - start));
      start = i + 1;
    }
  }
  cells.push_back(text.substr(start));
  return cells;
}

template <class T>
std::vector<T> NotEmpty(std::vector<T> cases, std::string_view file) {
  if (cases.empty()) throw std::runtime_error(std::string(file) + " holds no cases");
  return cases;
}

}  // namespace

std::string Unescape(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      plain += text[i];
      continue;
    }
    const char c = ++i < text.size() ? text[i] : '\0';
    constexpr std::string_view kLetters = "rnts";
    constexpr std::string_view kMeanings = "\r\n\t ";
    if (const std::size_t known = kLetters.find(c); known != std::string_view::npos) {
      plain += kMeanings[known];
    } else if (c == '\\' || c == '|' || c == '#') {
      plain += c;
    } else if (c == 'x' && i + 2 < text.size()) {
      unsigned byte = 0;
      const auto [end, error] = std::from_chars(text.data() + i + 1, text.data() + i + 3, byte, 16);
      if (error != std::errc{} || end != text.data() + i + 3) throw std::runtime_error("bad \\x in a table of cases");
      plain += static_cast<char>(static_cast<unsigned char>(byte));
      i += 2;
    } else {
      throw std::runtime_error("unknown escape in a table of cases: " + std::string(text));
    }
  }
  return plain;
}

const std::string& Row::operator[](std::size_t index) const {
  if (index >= cells.size()) throw std::runtime_error(place + ": there is no cell " + std::to_string(index));
  return cells[index];
}

const std::string& Record::operator[](std::string_view name) const {
  const auto found = texts.find(name);
  if (found == texts.end()) throw std::runtime_error(place + ": there is no \"" + std::string(name) + "\"");
  return found->second;
}

std::vector<Row> ReadRows(std::string_view file) {
  std::vector<Row> rows;
  for (const Line& line : ReadLines(file)) {
    if (TrimWhite(line.text).empty()) continue;
    Row row{Place(file, line.number), {}};
    for (const std::string_view cell : SplitCells(line.text)) row.cells.push_back(Unescape(TrimWhite(cell)));
    rows.push_back(std::move(row));
  }
  return NotEmpty(std::move(rows), file);
}

std::vector<Record> ReadRecords(std::string_view file) {
  std::vector<Record> records;
  bool open = false;
  std::string* last = nullptr;
  for (const Line& line : ReadLines(file)) {
    if (TrimWhite(line.text).empty()) {
      open = false;
      last = nullptr;
      continue;
    }
    const std::string place = Place(file, line.number);
    if (line.text.starts_with("  ") && last) {
      *last += "\r\n" + Unescape(std::string_view(line.text).substr(2));
      continue;
    }
    const std::size_t colon = line.text.find(':');
    if (colon == std::string::npos) throw std::runtime_error(place + ": no \"name: text\"");
    if (!open) records.push_back({place, {}});
    open = true;
    const auto [text, isNew] =
        records.back().texts.emplace(TrimWhite(std::string_view(line.text).substr(0, colon)),
                                     Unescape(TrimWhite(std::string_view(line.text).substr(colon + 1))));
    if (!isNew) throw std::runtime_error(place + ": the name stands twice in one record");
    last = &text->second;
  }
  return NotEmpty(std::move(records), file);
}

}  // namespace zrqrybld::test
