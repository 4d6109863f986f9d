#include "zrqrybld/sql/query_outputs.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/platform/schema_fields.h"

namespace zrqrybld {
namespace {

// The type of an aggregate that counts; that of the column where the aggregate takes one of its values; otherwise only
// the server knows.
SnapshotType TypeOfRow(const SnapshotRow& row, const ColumnTypes& typeOf) {
  if (row.grouping.kind == GroupingKind::Aggregate) {
    const std::string& name = row.grouping.name;
    SnapshotType count;
    count.code = static_cast<std::int32_t>(DataTypeCode::Integer);
    if (StartsWithNoCase(name, "Count")) return count;
    if (!EqualsNoCase(name, "Min") && !EqualsNoCase(name, "Max")) return {};
  }
  return row.table ? typeOf(*row.table, row.column) : SnapshotType();
}

class Captured final : public KnownColumns {
 public:
  Captured(const KnownColumns& columns, std::size_t tables) : tables_(tables) {
    for (std::size_t i = 0; i < tables; ++i) {
      Table& table = tables_[i];
      table.known = columns.KnowsColumns(i);
      table.columns = columns.Columns(i);
      for (const std::string& column : table.columns) table.byName.emplace(column, column);
    }
  }
  bool KnowsColumns(std::size_t table) const override { return tables_[table].known; }
  std::optional<std::string> FindColumn(std::size_t table, const std::string& name) const override {
    const Table& in = tables_[table];
    if (std::ranges::find(in.columns, name) != in.columns.end()) return name;
    const auto found = in.byName.find(name);
    return found == in.byName.end() ? std::nullopt : std::optional(found->second);
  }
  std::vector<std::string> Columns(std::size_t table) const override { return tables_[table].columns; }

 private:
  struct Table {
    bool known = false;
    std::vector<std::string> columns;
    std::unordered_map<std::string, std::string, HashNoCase, EqualNoCase> byName;
  };
  std::vector<Table> tables_;
};

}  // namespace

std::vector<QueryColumn> OutputsOf(const QuerySnapshot& query, const ColumnTypes& typeOf) {
  std::vector<QueryColumn> outputs;
  std::unordered_set<std::string, HashNoCase, EqualNoCase> taken;
  const auto add = [&](const std::string& name, const SnapshotType& type) {
    if (!name.empty() && taken.insert(name).second) outputs.push_back({name, type.code, type.isLong});
  };
  const auto addAll = [&](std::size_t table) {
    if (!query.columns || !query.columns->KnowsColumns(table)) return;
    for (const std::string& column : query.columns->Columns(table)) add(column, typeOf(table, column));
  };
  for (const SnapshotRow& row : query.rows) {
    if (row.column.empty() || !row.output) continue;
    if (row.table && row.column == "*" && row.grouping.kind != GroupingKind::Aggregate) {
      addAll(*row.table);
    } else if (!row.alias.Empty()) {
      add(row.alias.Name(), TypeOfRow(row, typeOf));
    } else if (row.table && !row.grouping.HasSyntax()) {
      add(row.column, TypeOfRow(row, typeOf));
    } else if (!row.table && row.column == "*") {
      for (std::size_t table = 0; table < query.tables.size(); ++table) addAll(table);
    }
  }
  return outputs;
}

std::vector<QueryColumn> WithNames(std::vector<QueryColumn> columns, const std::vector<std::string>& names) {
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i < columns.size()) {
      columns[i].name = names[i];
    } else {
      columns.push_back({names[i]});  // of an expression without a name of its own
    }
  }
  return columns;
}

std::optional<std::pair<std::string, std::string>> RenamedColumn(const std::vector<std::string>& before,
                                                                 const std::vector<QueryColumn>& now) {
  if (before.size() != now.size()) return std::nullopt;
  std::optional<std::pair<std::string, std::string>> renamed;
  for (std::size_t i = 0; i < now.size(); ++i) {
    if (before[i] == now[i].name) continue;
    if (renamed) return std::nullopt;
    renamed.emplace(before[i], now[i].name);
  }
  return renamed;
}

void RenameColumn(QuerySnapshot& query, std::size_t table, const std::string& before, const std::string& after) {
  for (SnapshotRow& row : query.rows) {
    if (row.table == table && row.column == before) row.column = after;
  }
  for (SnapshotJoin& join : query.joins) {
    if (join.source == table && join.sourceColumn == Identifier(before)) join.sourceColumn = Identifier(after);
    if (join.target == table && join.targetColumn == Identifier(before)) join.targetColumn = Identifier(after);
  }
}

std::shared_ptr<const KnownColumns> CapturedColumns(const KnownColumns& columns, std::size_t tables) {
  return std::make_shared<Captured>(columns, tables);
}

}  // namespace zrqrybld
