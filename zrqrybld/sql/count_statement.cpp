#include "zrqrybld/sql/count_statement.h"

#include "zrqrybld/base/text.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/generator.h"

namespace zrqrybld {

// Without groups and the like the rows are those of FROM and WHERE; otherwise the whole is counted. No order matters.
std::string CountStatement(QuerySnapshot query, const Dialect& dialect) {
  const bool isPlain = !query.groupByMode && !query.distinct && query.top.empty() && query.skip == 0;
  for (SnapshotRow& row : query.rows) {
    row.sort = {};
    if (isPlain) row.output = false;
  }
  if (isPlain) {
    SnapshotRow& count = query.rows.emplace_back();
    count.column = "COUNT(*)";
    count.output = true;
  }
  const std::string text = GenerateSelect(query, dialect).text;
  if (text.empty() || FindNoCase(text, "?PARAM") < text.size()) return {};
  return isPlain ? text : "SELECT COUNT(*) FROM (" + text + ")" + std::string(dialect.tableAlias) + "counted";
}

}  // namespace zrqrybld
