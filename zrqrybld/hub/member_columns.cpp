#include "zrqrybld/hub/member_columns.h"

#include <utility>

#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/field_names.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/sql/query_outputs.h"

namespace zrqrybld {
namespace {

// A query as it is now: the shown one is in the panes.
OutputPlaces PlacesNow(const qbQueryBuilder& hub, const StoredQuery& query) {
  if (query.id == hub.QueriesNow().shown) {
    const QuerySnapshot snapshot = hub.Snapshot();
    const auto typeOf = [&](std::size_t table, const std::string& column) {
      return TypeOfColumn(*hub.Entities()->Item(static_cast<std::int32_t>(table) + 1), column, *hub.DataTypes());
    };
    return PlacesOf(snapshot, OutputsOf(snapshot, typeOf));
  }
  if (!query.snapshot) return {};
  return PlacesOf(*query.snapshot, query.columns ? *query.columns : std::vector<QueryColumn>());
}

}  // namespace

std::vector<MemberColumns> ColumnsOfMembers(const qbQueryBuilder& hub) {
  const QuerySet& set = hub.QueriesNow();
  const StoredQuery& shown = set.Shown();
  const bool isMember = shown.kind == QueryMember && !set.BeginsCompound(shown.id);
  const StoredQuery& first = isMember ? *set.Find(shown.parent) : shown;
  std::vector<MemberColumns> members;
  if (!set.BeginsCompound(first.id)) return members;
  OutputPlaces head;
  const auto add = [&](const StoredQuery& query) {
    MemberColumns& member = members.emplace_back();
    member.id = query.id;
    OutputPlaces own = PlacesNow(hub, query);
    member.isCounted = own.isCounted;
    for (std::size_t i = 0; i < own.columns.size(); ++i) {
      const bool differs = i < head.columns.size() && HoldsOtherKind(own.columns[i], head.columns[i]);
      member.columns.push_back({own.columns[i].name, differs});
    }
    if (members.size() == 1) head = std::move(own);
  };
  add(first);
  for (const StoredQuery* inner : set.InnerOf(first.id)) {
    if (inner->kind == QueryMember) add(*inner);
  }
  return members;
}

}  // namespace zrqrybld
