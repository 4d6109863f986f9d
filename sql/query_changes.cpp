#include "sql/query_changes.h"

#include <string_view>
#include <unordered_map>
#include <vector>

namespace zrqrybld {
namespace {

using Names = std::vector<std::string>;

std::string CaptionOf(const QuerySnapshot& query, std::size_t table) {
  return table < query.tables.size() ? query.tables[table].caption.Name() : std::string();
}

Names TablesOf(const QuerySnapshot& query) {
  Names names;
  for (const SnapshotTable& table : query.tables) names.push_back(table.caption.Name());
  return names;
}

Names JoinsOf(const QuerySnapshot& query) {
  Names names;
  const auto end = [&](std::size_t table, const std::optional<Identifier>& column) {
    return CaptionOf(query, table) + (column ? "." + column->Name() : "");
  };
  for (const SnapshotJoin& join : query.joins) {
    names.push_back(end(join.source, join.sourceColumn) + " = " + end(join.target, join.targetColumn));
  }
  return names;
}

Names ColumnsOf(const QuerySnapshot& query) {
  Names names;
  for (const SnapshotRow& row : query.rows) {
    if (row.column.empty() && !row.table) continue;
    names.push_back(row.table ? CaptionOf(query, *row.table) + "." + row.column : row.column);
  }
  return names;
}

// "table Orders added", "3 tables added"; with what went before it.
void Say(std::string& text, std::string_view noun, const Names& names, std::string_view verb) {
  if (names.empty()) return;
  if (!text.empty()) text += ", ";
  if (names.size() == 1) {
    text.append(noun).append(" ").append(names.front());
  } else {
    text += std::to_string(names.size()) + " ";
    text.append(noun).append("s");
  }
  text.append(" ").append(verb);
}

// A name may be there several times: each time counts.
void Compare(std::string& text, std::string_view noun, const Names& before, const Names& after) {
  std::unordered_map<std::string_view, int> surplus;
  for (const std::string& name : before) ++surplus[name];
  Names added;
  for (const std::string& name : after) {
    if (surplus[name]-- <= 0) added.push_back(name);
  }
  Names removed;
  for (const std::string& name : before) {
    if (surplus[name]-- > 0) removed.push_back(name);
  }
  Say(text, noun, removed, "removed");
  Say(text, noun, added, "added");
}

}  // namespace

std::string DescribeChanges(const QuerySnapshot& before, const QuerySnapshot& after) {
  std::string text;
  Compare(text, "table", TablesOf(before), TablesOf(after));
  Compare(text, "join", JoinsOf(before), JoinsOf(after));
  Compare(text, "query column", ColumnsOf(before), ColumnsOf(after));
  return text;
}

}  // namespace zrqrybld
