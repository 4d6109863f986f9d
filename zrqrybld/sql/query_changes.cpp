#include "zrqrybld/sql/query_changes.h"

#include <string_view>
#include <unordered_map>
#include <vector>

#include "zrqrybld/base/texts_sql.h"

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
    names.push_back(end(join.source, join.sourceColumn) + " " + std::string(SignOf(join.comparison)) + " " +
                    end(join.target, join.targetColumn) + (join.condition.empty() ? "" : " AND " + join.condition));
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

// What is said of one thing, and of several.
struct Change {
  TextId one;
  TextId several;
};
struct Noun {
  Change added;
  Change removed;
};
constexpr Noun kTable{{text::TableAdded, text::TablesAdded}, {text::TableRemoved, text::TablesRemoved}};
constexpr Noun kJoin{{text::JoinAdded, text::JoinsAdded}, {text::JoinRemoved, text::JoinsRemoved}};
constexpr Noun kQueryColumn{{text::QueryColumnAdded, text::QueryColumnsAdded},
                            {text::QueryColumnRemoved, text::QueryColumnsRemoved}};

void Say(std::vector<Phrase>& changes, const Change& change, const Names& names) {
  if (names.size() == 1) changes.emplace_back(change.one, names.front());
  if (names.size() > 1) changes.emplace_back(change.several, names.size());
}

// A name may be there several times: each time counts.
void Compare(std::vector<Phrase>& changes, const Noun& noun, const Names& before, const Names& after) {
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
  Say(changes, noun.removed, removed);
  Say(changes, noun.added, added);
}

}  // namespace

std::string DescribeChanges(const QuerySnapshot& before, const QuerySnapshot& after, const TextSource& texts) {
  std::vector<Phrase> changes;
  Compare(changes, kTable, TablesOf(before), TablesOf(after));
  Compare(changes, kJoin, JoinsOf(before), JoinsOf(after));
  Compare(changes, kQueryColumn, ColumnsOf(before), ColumnsOf(after));
  std::string text;
  for (const Phrase& change : changes) text += (text.empty() ? "" : ", ") + change.In(texts);
  return text;
}

}  // namespace zrqrybld
