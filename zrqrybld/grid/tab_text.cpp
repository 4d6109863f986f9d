#include "zrqrybld/grid/tab_text.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

// Reads a cell in quotes at the beginning of `text` into `cell` and moves `text` behind it. False when there is none.
bool ReadQuoted(std::string_view& text, std::string& cell) {
  if (!text.starts_with('"')) return false;
  std::string inside;
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] != '"') {
      inside += text[i];
    } else if (i + 1 < text.size() && text[i + 1] == '"') {
      inside += text[i++];
    } else {
      const bool ends = i + 1 == text.size() || text[i + 1] == '\t' || text[i + 1] == '\r' || text[i + 1] == '\n';
      if (!ends) return false;
      cell = std::move(inside);
      text.remove_prefix(i + 1);
      return true;
    }
  }
  return false;
}

}  // namespace

std::string WriteTabText(const std::vector<std::vector<std::string>>& cells) {
  std::string text;
  for (const std::vector<std::string>& line : cells) {
    bool first = true;
    for (const std::string& cell : line) {
      if (!std::exchange(first, false)) text += '\t';
      if (cell.find_first_of("\t\r\n\"") == std::string::npos) {
        text += cell;
      } else {
        text += '"' + ReplaceAll(cell, "\"", "\"\"") + '"';
      }
    }
    text += "\r\n";
  }
  return text;
}

std::vector<std::vector<std::string>> ReadTabText(std::string_view text) {
  std::vector<std::vector<std::string>> cells;
  while (!text.empty()) {
    std::vector<std::string>& line = cells.emplace_back();
    bool more = true;
    while (more) {
      std::string& cell = line.emplace_back();
      if (!ReadQuoted(text, cell)) {
        const std::size_t end = std::min(text.find_first_of("\t\r\n"), text.size());
        cell = text.substr(0, end);
        text.remove_prefix(end);
      }
      more = text.starts_with('\t');
      if (more) text.remove_prefix(1);
    }
    text.remove_prefix(text.starts_with("\r\n") ? 2 : text.empty() ? 0 : 1);
  }
  return cells;
}

}  // namespace zrqrybld
