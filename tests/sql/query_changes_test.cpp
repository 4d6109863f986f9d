#include "zrqrybld/sql/query_changes.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/data_table.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

using Field = std::pair<std::optional<std::size_t>, std::string>;

// "Orders.a" is a column of a table of the query, anything else an expression.
Field Find(const QuerySnapshot& query, const std::string& text) {
  const std::size_t dot = text.find('.');
  for (std::size_t i = 0; i < query.tables.size(); ++i) {
    if (query.tables[i].caption.Name() == text.substr(0, dot)) return {i, text.substr(dot + 1)};
  }
  return {std::nullopt, text};
}

QuerySnapshot Read(const std::string& text) {
  std::istringstream parts(text);
  std::string part, word;
  QuerySnapshot query;
  std::getline(parts, part, ';');
  for (std::istringstream words(part); words >> word;) query.tables.push_back({Identifier(word), {}, false});
  std::getline(parts, part, ';');
  for (std::istringstream words(part); words >> word;) {
    const std::size_t equals = word.find('=');
    const Field source = Find(query, word.substr(0, equals));
    const Field target = Find(query, word.substr(equals + 1));
    query.joins.push_back({*source.first, *target.first, Identifier(source.second), Identifier(target.second)});
  }
  part.clear();
  std::getline(parts, part);
  for (std::istringstream words(part); words >> word;) {
    SnapshotRow row;
    std::tie(row.table, row.column) = Find(query, word);
    query.rows.push_back(row);
  }
  return query;
}

TEST(QueryChanges, SayWhatHasComeAndGone) {
  for (const test::Row& row : test::ReadRows("query_changes.txt")) {
    SCOPED_TRACE(row.place);
    EXPECT_EQ(DescribeChanges(Read(row[0]), Read(row[1])), row[2]);
  }
}

}  // namespace
}  // namespace zrqrybld
