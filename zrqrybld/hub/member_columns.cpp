#include "zrqrybld/hub/member_columns.h"

#include <algorithm>

#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/type_kind.h"
#include "zrqrybld/grid/field_names.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/sql/query_outputs.h"

namespace zrqrybld {
namespace {

struct Typed {
  std::string name;
  std::int32_t type = 0;
};

// A query as it is now: the shown one is in the panes.
class Member {
 public:
  Member(const qbQueryBuilder& hub, const StoredQuery& query) {
    if (query.id == hub.QueriesNow().shown) {
      snapshot_ = hub.Snapshot();
      types_ = OutputsOf(snapshot_, [&](std::size_t table, const std::string& column) {
        return TypeOfColumn(*hub.Entities()->Item(static_cast<std::int32_t>(table) + 1), column, *hub.DataTypes());
      });
      return;
    }
    if (query.snapshot) snapshot_ = *query.snapshot;
    if (query.columns) types_ = *query.columns;
  }

  std::vector<Typed> Columns(bool& isCounted) const {
    std::vector<Typed> columns;
    for (const SnapshotRow& row : snapshot_.rows) {
      if (row.column.empty() || !row.output) continue;
      if (!IsAllColumns(row)) {
        columns.push_back(TypedOf(row.alias.Empty() ? row.column : row.alias.Name()));
        continue;
      }
      for (std::size_t table = 0; table < snapshot_.tables.size(); ++table) {
        if (!row.table || *row.table == table) AddAll(table, columns, isCounted);
      }
    }
    return columns;
  }

 private:
  void AddAll(std::size_t table, std::vector<Typed>& columns, bool& isCounted) const {
    isCounted &= snapshot_.columns && snapshot_.columns->KnowsColumns(table);
    if (!isCounted) return;
    for (const std::string& column : snapshot_.columns->Columns(table)) columns.push_back(TypedOf(column));
  }
  Typed TypedOf(const std::string& name) const {
    const auto found = std::ranges::find(types_, name, &QueryColumn::name);
    return {name, found == types_.end() ? 0 : found->type};
  }

  QuerySnapshot snapshot_;
  std::vector<QueryColumn> types_;
};

bool Differ(std::int32_t one, std::int32_t other) {
  return one != 0 && other != 0 && KindOfType(one) != KindOfType(other);
}

}  // namespace

std::vector<MemberColumns> ColumnsOfMembers(const qbQueryBuilder& hub) {
  const QuerySet& set = hub.QueriesNow();
  const StoredQuery& shown = set.Shown();
  const bool isMember = shown.kind == QueryMember && !set.BeginsCompound(shown.id);
  const StoredQuery& first = isMember ? *set.Find(shown.parent) : shown;
  std::vector<MemberColumns> members;
  if (!set.BeginsCompound(first.id)) return members;
  std::vector<Typed> head;
  const auto add = [&](const StoredQuery& query) {
    MemberColumns& member = members.emplace_back();
    member.id = query.id;
    const std::vector<Typed> columns = Member(hub, query).Columns(member.isCounted);
    if (members.size() == 1) head = columns;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      member.columns.push_back({columns[i].name, i < head.size() && Differ(columns[i].type, head[i].type)});
    }
  };
  add(first);
  for (const StoredQuery* inner : set.InnerOf(first.id)) {
    if (inner->kind == QueryMember) add(*inner);
  }
  return members;
}

}  // namespace zrqrybld
