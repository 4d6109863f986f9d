#include "zrqrybld/hub/query_set.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "zrqrybld/base/text.h"

namespace zrqrybld {

const StoredQuery* QuerySet::Find(std::int32_t id) const {
  const auto found = std::ranges::find(queries, id, &StoredQuery::id);
  return found == queries.end() ? nullptr : &*found;
}

StoredQuery* QuerySet::Find(std::int32_t id) { return const_cast<StoredQuery*>(std::as_const(*this).Find(id)); }

std::vector<const StoredQuery*> QuerySet::InnerOf(std::int32_t id) const {
  std::vector<const StoredQuery*> inner;
  for (const StoredQuery& query : queries) {
    if (query.kind != QueryMain && query.parent == id) inner.push_back(&query);
  }
  return inner;
}

bool QuerySet::BeginsCompound(std::int32_t id) const {
  return std::ranges::any_of(
      queries, [id](const StoredQuery& query) { return query.kind == QueryMember && query.parent == id; });
}

// A query of WITH sees those before it there; its members, but not its first SELECT, see itself. A member sees the WITH
// that stands before the first of them.
std::vector<const StoredQuery*> QuerySet::Nameable(std::int32_t id) const {
  std::vector<const StoredQuery*> nameable;
  std::optional<std::int32_t> from;
  bool fromMember = false;
  for (const StoredQuery* query = Find(id); query; query = query->kind == QueryMain ? nullptr : Find(query->parent)) {
    for (const StoredQuery* inner : InnerOf(query->id)) {
      const bool isFrom = inner->id == from && inner->kind == QueryCommonTable;
      const bool derived = inner->kind == QueryDerivedTable && !from;
      if (derived || (inner->kind == QueryCommonTable && (!isFrom || fromMember))) nameable.push_back(inner);
      if (isFrom) break;
    }
    fromMember = from && Find(*from)->kind == QueryMember;
    from = query->id;
  }
  return nameable;
}

const StoredQuery* QuerySet::FindNamed(std::int32_t id, std::string_view name) const {
  const std::vector<const StoredQuery*> nameable = Nameable(id);
  const auto exact = std::ranges::find(nameable, name, &StoredQuery::name);
  if (exact != nameable.end()) return *exact;
  const auto found =
      std::ranges::find_if(nameable, [name](const StoredQuery* query) { return EqualsNoCase(query->name, name); });
  return found == nameable.end() ? nullptr : *found;
}

std::string QuerySet::FreeName(std::int32_t id, const std::string& wanted) const {
  std::string name = wanted;
  for (int number = 2; FindNamed(id, name); ++number) name = wanted + std::to_string(number);
  return name;
}

std::int32_t QuerySet::Add(StoredQuery query) {
  query.id = ++lastId;
  Insert(std::move(query));
  return lastId;
}

void QuerySet::Insert(StoredQuery query) {
  // Behind the last of the parent's, and what belongs to that.
  auto place = queries.end();
  for (auto it = queries.begin(); it != queries.end(); ++it) {
    if (IsWithin(it->id, query.parent)) place = it + 1;
  }
  queries.insert(place, std::move(query));
}

void QuerySet::Remove(std::int32_t id) {
  std::unordered_set<std::int32_t> leaving{id};
  for (const StoredQuery& query : queries) {
    if (query.kind != QueryMain && leaving.contains(query.parent)) leaving.insert(query.id);
  }
  std::erase_if(queries, [&](const StoredQuery& query) { return leaving.contains(query.id); });
}

bool QuerySet::IsWithin(std::int32_t id, std::int32_t other) const {
  for (const StoredQuery* query = Find(id); query; query = query->kind == QueryMain ? nullptr : Find(query->parent)) {
    if (query->id == other) return true;
  }
  return false;
}

bool QuerySet::StandsInCell(std::int32_t id) const {
  const StoredQuery* query = Find(id);
  while (query && query->kind != QueryMain && query->kind != QueryInCell) query = Find(query->parent);
  return query && query->kind == QueryInCell;
}

}  // namespace zrqrybld
