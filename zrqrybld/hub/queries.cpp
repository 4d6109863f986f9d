#include "zrqrybld/hub/queries.h"

#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_queries.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/query_set.h"

namespace zrqrybld {

// --- One query ---

Ref<qbQueryBuilder> qbQuery::Hub() const {
  Ref<qbQueryBuilder> hub = hub_.lock();
  if (!hub) ThrowObjectRemoved();
  return hub;
}

const StoredQuery& qbQuery::Facts() const {
  const StoredQuery* facts = Hub()->QueriesNow().Find(id_);
  if (!facts) ThrowObjectRemoved();
  return *facts;
}

QueryKindEnum qbQuery::Kind() const { return Facts().kind; }

void qbQuery::SetKind(QueryKindEnum kind) {
  Facts();
  Hub()->SetQueryKind(id_, kind);
}

std::string qbQuery::Name() const { return Facts().name; }

void qbQuery::SetName(const std::string& name) {
  Facts();
  Hub()->RenameQuery(id_, name);
}

QueryOperatorEnum qbQuery::Operator() const { return Facts().combined; }

void qbQuery::SetOperator(QueryOperatorEnum combined) {
  Facts();
  if (!(combined >= QueryUnion && combined <= QueryExceptAll)) {
    throw Error(ErrorInvalidPropertyValue, text::QueryKeepsKind);
  }
  Hub()->SetQueryOperator(id_, combined);
}

Ref<qbQuery> qbQuery::Parent() const {
  const StoredQuery& facts = Facts();
  return facts.kind == QueryMain ? nullptr : Hub()->Queries()->Of(facts.parent);
}

std::string qbQuery::SQLStatement() const {
  Facts();
  return Hub()->StatementOf(id_);
}

void qbQuery::Open() {
  Facts();
  Hub()->ShowQuery(id_);
}

void qbQuery::Remove() {
  if (Facts().kind == QueryMain) throw Error(ErrorInvalidPropertyValue, text::MainQueryStays);
  Hub()->RemoveQuery(id_);
}

// --- All of them ---

Ref<qbQueryBuilder> qbQueries::Hub() const {
  Ref<qbQueryBuilder> hub = hub_.lock();
  if (!hub) ThrowObjectRemoved();
  return hub;
}

std::int32_t qbQueries::Count() const {
  const Ref<qbQueryBuilder> hub = hub_.lock();
  return hub ? static_cast<std::int32_t>(hub->QueriesNow().queries.size()) : 0;
}

Ref<qbQuery> qbQueries::Item(const Variant& index) const {
  const std::vector<StoredQuery>& queries = Hub()->QueriesNow().queries;
  auto found = queries.end();
  if (const std::optional<double> position = index.Number()) {
    const bool stands = *position >= 1 && *position <= static_cast<double>(queries.size());
    if (stands) found = queries.begin() + static_cast<std::ptrdiff_t>(*position) - 1;
  } else {
    const std::string name = index.Text();
    found = std::ranges::find(queries, name, &StoredQuery::name);
    if (found == queries.end()) {
      found = std::ranges::find_if(queries, [&](const StoredQuery& query) { return EqualsNoCase(query.name, name); });
    }
    if (name.empty()) found = queries.end();
  }
  if (found == queries.end()) ThrowNoSuchItem();
  return Of(found->id);
}

Ref<qbQuery> qbQueries::Add(QueryKindEnum kind, const std::string& name) {
  if (!(kind > QueryMain && kind <= QueryMember)) throw Error(ErrorInvalidPropertyValue, text::QueryKeepsKind);
  return Of(Hub()->AddQuery(kind, name));
}

Ref<qbQuery> qbQueries::AddSaved(const std::string& filename, bool fileIsData) {
  return Of(Hub()->AddSavedQuery(filename, fileIsData));
}

std::int32_t qbQueries::ColumnOf(const Variant& column) const {
  const Ref<qbGridPane> grid = Hub()->GridPane();
  if (!grid) ThrowNoSuchItem();
  return grid->Grid()->Columns()->Item(column)->Index();
}

Ref<qbQuery> qbQueries::OpenInCell(std::int32_t row, const Variant& column, std::int32_t number) {
  const std::int32_t wanted = number == 0 ? 1 : number;  // late-bound, one that is left out is 0
  return Of(Hub()->ShowQueryInCell(row, ColumnOf(column), wanted));
}

Ref<qbQuery> qbQueries::OpenInJoin(const Ref<qbRelationship>& join, std::int32_t number) {
  return Of(Hub()->ShowQueryInJoin(join, number == 0 ? 1 : number));
}

Ref<qbQuery> qbQueries::AddInCell(std::int32_t row, const Variant& column) {
  return Of(Hub()->AddQueryInCell(row, ColumnOf(column)));
}

Ref<qbQuery> qbQueries::Current() const { return Of(Hub()->QueriesNow().shown); }

void qbQueries::SetCurrent(const Ref<qbQuery>& query) {
  if (query) query->Open();
}

Ref<qbQuery> qbQueries::Of(std::int32_t id) const {
  if (Ref<qbQuery> known = known_[id].lock()) return known;
  std::erase_if(known_, [](const auto& one) { return one.second.expired(); });
  const Ref<qbQuery> query = std::make_shared<qbQuery>(hub_, id);
  known_[id] = query;
  return query;
}

Ref<qbQueries> qbQueryBuilder::Queries() {
  if (!queries_) queries_ = std::make_shared<qbQueries>(std::static_pointer_cast<qbQueryBuilder>(shared_from_this()));
  return queries_;
}

}  // namespace zrqrybld
