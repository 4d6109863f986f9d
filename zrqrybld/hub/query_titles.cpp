#include "zrqrybld/hub/query_titles.h"

#include <algorithm>
#include <string>
#include <vector>

#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/hub/query_set.h"

namespace zrqrybld {

Phrase TitleOf(const QuerySet& set, std::int32_t id) {
  const StoredQuery* query = set.Find(id);
  if (!query) return {};
  if (query->kind == QueryMain) return text::MainQueryTitle;
  if (query->kind == QueryInCell) return {text::CellQueryTitle, query->cell.about};
  if (query->kind != QueryMember) return query->name;
  std::int32_t number = 1;
  for (const StoredQuery* inner : set.InnerOf(query->parent)) {
    if (inner->kind == QueryMember) ++number;
    if (inner == query) break;
  }
  return {text::MemberTitle, number};
}

}  // namespace zrqrybld
