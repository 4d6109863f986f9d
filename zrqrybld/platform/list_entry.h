// What a list shows: plain data.
#pragma once

#include <cstdint>
#include <string>

namespace zrqrybld {

/// What an entry of a list stands for: a list may draw a small sign for it.
enum class EntryKind : std::uint8_t { Text, Column, ColumnPair, Table, View, Function, Operator, Keyword, Parameter };

/// An entry of a list.
struct ListEntry {
  std::string text;
  std::string detail = {};  ///< shown more quietly beside the text; "" for nothing
  EntryKind kind = EntryKind::Text;
};

}  // namespace zrqrybld
