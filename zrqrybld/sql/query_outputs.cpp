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

namespace {

// Puts the columns one behind the other, under the names that are given for the first ones.
class Outputs {
 public:
  Outputs(const QuerySnapshot& query, const ColumnTypes& typeOf, const std::vector<std::string>& names)
      : query_(query), typeOf_(typeOf), names_(names) {}

  void Add(const SnapshotRow& row) {
    if (row.table && row.column == "*" && row.grouping.kind != GroupingKind::Aggregate) {
      AddAll(*row.table);
    } else if (!row.table && row.column == "*") {
      for (std::size_t table = 0; table < query_.tables.size(); ++table) AddAll(table);
    } else if (!row.alias.Empty()) {
      Add(row.alias.Name(), TypeOfRow(row, typeOf_));
    } else {
      const bool isNamed = row.table && !row.grouping.HasSyntax();
      Add(isNamed ? row.column : std::string(), TypeOfRow(row, typeOf_));
    }
  }
  // With the names that stand for columns nobody knows.
  std::vector<QueryColumn> Take() && {
    while (named_ < names_.size()) Add({}, {});
    return std::move(columns_);
  }

 private:
  void Add(const std::string& own, const SnapshotType& type) {
    const std::string& name = named_ < names_.size() ? names_[named_++] : own;
    if (!name.empty() && taken_.insert(name).second) columns_.push_back({name, type.code, type.isLong});
  }
  void AddAll(std::size_t table) {
    if (!query_.columns || !query_.columns->KnowsColumns(table)) return;
    for (const std::string& column : query_.columns->Columns(table)) Add(column, typeOf_(table, column));
  }

  const QuerySnapshot& query_;
  const ColumnTypes& typeOf_;
  const std::vector<std::string>& names_;
  std::size_t named_ = 0;  // names that are given away
  std::vector<QueryColumn> columns_;
  std::unordered_set<std::string, HashNoCase, EqualNoCase> taken_;
};

}  // namespace

std::vector<QueryColumn> OutputsOf(const QuerySnapshot& query, const ColumnTypes& typeOf,
                                   const std::vector<std::string>& names) {
  Outputs outputs(query, typeOf, names);
  for (const SnapshotRow& row : query.rows) {
    if (!row.column.empty() && row.output) outputs.Add(row);
  }
  return std::move(outputs).Take();
}

OutputPlaces PlacesOf(const QuerySnapshot& query, const std::vector<QueryColumn>& outputs) {
  OutputPlaces places;
  std::unordered_map<std::string_view, std::int32_t> types;
  for (const QueryColumn& column : outputs) types.emplace(column.name, column.type);
  const auto add = [&](const std::string& name) {
    const auto type = types.find(name);
    places.columns.push_back({name, type == types.end() ? 0 : type->second});
  };
  for (const SnapshotRow& row : query.rows) {
    if (row.column.empty() || !row.output) continue;
    if (!IsAllColumns(row)) {
      add(row.alias.Empty() ? row.column : row.alias.Name());
      continue;
    }
    for (std::size_t table = 0; table < query.tables.size(); ++table) {
      if (row.table && *row.table != table) continue;
      places.isCounted &= query.columns && query.columns->KnowsColumns(table);
      if (!places.isCounted) continue;
      for (const std::string& column : query.columns->Columns(table)) add(column);
    }
  }
  return places;
}

bool HoldsOtherKind(const OutputPlace& one, const OutputPlace& other) {
  const ValueKind kind = ValueKindOf(one.type);
  const ValueKind others = ValueKindOf(other.type);
  return kind != ValueKind::Unknown && others != ValueKind::Unknown && kind != others;
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
