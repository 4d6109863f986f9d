#include "zrqrybld/hub/table_plan.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/near_names.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/source_names.h"
#include "zrqrybld/grid/field_names.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/snapshot_builder.h"
#include "zrqrybld/sql/dialect.h"

namespace zrqrybld {
namespace {

std::string JoinedName(const std::vector<Identifier>& parts, const NameRules& rules) {
  const std::string separator = rules.schemaSeparator.empty() ? "." : rules.schemaSeparator;
  std::string name;
  for (const Identifier& part : parts) {
    if (!name.empty()) name += separator;
    name += part.Name();
  }
  return name;
}

// An alias that would get quotes takes the letters that the server makes of it without them: what is passed on as it
// stands, a query within the query, names it so.
Identifier AliasOf(const FromItem& item, const NameRules& rules, Dialect::PlainNames plain) {
  const Identifier alias(PlainName(item.alias));
  return alias.Empty() || !NeedsQuotes(alias.Name(), rules) ? alias : NameParts(item.alias, plain).front();
}

// Whether one name ends as the other does: the schema may be left out.
bool IsSameTable(const std::vector<Identifier>& a, const std::vector<Identifier>& b) {
  if (a.empty() || b.empty()) return false;
  for (std::size_t i = 1; i <= std::min(a.size(), b.size()); ++i) {
    if (!EqualsNoCase(a[a.size() - i].Name(), b[b.size() - i].Name())) return false;
  }
  return true;
}

}  // namespace

TablePlan::TablePlan(qbQueryBuilder& hub, const std::vector<const FromItem*>& tables, const NameRules& rules,
                     QueryLookup queries, bool takesDrawn)
    : hub_(hub), rules_(rules), queries_(std::move(queries)) {
  for (const FromItem* item : tables) {
    PlannedTable table;
    const Dialect::PlainNames plain = hub_.CurrentDialect().plainNames;
    table.written = WrittenTableOf(*item, tables_.size());
    table.written.alias = AliasOf(*item, rules_, plain);
    table.plainName = table.written.isQuery ? table.written.parts : NameParts(item->table, plain);
    table.name = JoinedName(table.written.parts, rules_);
    TakeQuery(table);
    table.caption = table.written.alias.Empty() ? table.name : table.written.alias.Name();
    tables_.push_back(std::move(table));
  }
  const Ref<qbEntities> entities = hub_.Entities();
  if (takesDrawn && entities) Claim(*entities);
}

// A query that bears the name comes before any table of the source.
void TablePlan::TakeQuery(PlannedTable& table) const {
  if (table.written.parts.size() != 1) return;
  const std::optional<std::vector<QueryColumn>> query = queries_(table.name);
  if (!query) return;
  table.isQuery = true;
  std::vector<SourceColumn> columns;
  for (const QueryColumn& column : *query) columns.push_back({column.name, column.type, column.isLong});
  TakeColumns(table, std::move(columns));
}

void TablePlan::TakeColumns(PlannedTable& table, std::vector<SourceColumn> columns) {
  table.columns = std::move(columns);
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    table.byFoldedName.emplace(FoldCase(table.columns[i].name), i);
  }
}

// A table keeps the entity that is called as it is in the statement, otherwise it takes one of the same table that no
// other wants.
void TablePlan::Claim(const qbEntities& entities) {
  constexpr auto kNone = static_cast<std::size_t>(-1);
  struct Drawn {
    Ref<qbEntity> entity;
    std::vector<Identifier> writtenName;
    std::vector<Identifier> name;   // with its schema, where the source told it
    std::size_t nextAlike = kNone;  // the next whose name has the same last part
    bool isQuery = false;
    bool claimed = false;
  };
  std::vector<Drawn> drawn(static_cast<std::size_t>(entities.Count()));
  std::unordered_map<std::string_view, std::size_t, HashNoCase, EqualNoCase> firstOf;  // by the last part of the name
  for (std::size_t i = drawn.size(); i-- > 0;) {
    drawn[i].entity = entities.Item(static_cast<std::int32_t>(i + 1));
    const std::string tag = drawn[i].entity->TagVariant().Text();
    drawn[i].isQuery = drawn[i].entity->EntityBox()->IsQuery();
    drawn[i].writtenName = WrittenName(*drawn[i].entity, rules_);
    if (drawn[i].isQuery) drawn[i].writtenName.assign(1, Identifier(tag));
    drawn[i].name = SourceName(*drawn[i].entity, drawn[i].writtenName);
    const auto [first, added] = firstOf.emplace(drawn[i].name.back().Name(), i);
    if (!added) drawn[i].nextAlike = std::exchange(first->second, i);
  }
  enum class Called : std::uint8_t { Exactly, Alike, Anything };
  const auto claim = [&](PlannedTable& table, Called called) {
    if (table.entity) return;
    const auto found = firstOf.find(table.written.parts.back().Name());
    for (std::size_t i = found == firstOf.end() ? kNone : found->second; i != kNone; i = drawn[i].nextAlike) {
      const Ref<qbEntity>& entity = drawn[i].entity;
      if (drawn[i].claimed || drawn[i].isQuery != table.isQuery) continue;
      if (called == Called::Exactly && entity->Caption() != table.caption) continue;
      if (called == Called::Alike && !IsCalled(*entity, table)) continue;
      if (!IsSameTable(drawn[i].name, table.written.parts)) continue;
      drawn[i].claimed = true;
      table.entity = entity;
      table.drawnName = drawn[i].writtenName;
      table.position = static_cast<std::int32_t>(i + 1);
      // An alias is kept as it is written; a table's own name is spelt as the source does.
      if (table.written.alias.Empty()) table.caption = entity->TagVariant().Text();
      return;
    }
  };
  for (const Called called : {Called::Exactly, Called::Alike, Called::Anything}) {
    for (PlannedTable& table : tables_) claim(table, called);
  }
}

// A table without alias is called by its own name, with or without its schema.
bool TablePlan::IsCalled(const qbEntity& entity, const PlannedTable& table) const {
  if (EqualsNoCase(entity.Caption(), table.caption)) return true;
  return table.written.alias.Empty() && entity.Caption() == entity.TagVariant().Text() &&
         IsSameTable(WrittenName(entity, rules_), table.written.parts);
}

DrawnDiagram TablePlan::Drawn(std::vector<Ref<qbRelationship>>& drawnJoins) const {
  DrawnDiagram drawn;
  drawn.order.resize(tables_.size());
  std::iota(drawn.order.begin(), drawn.order.end(), 0);
  std::ranges::stable_sort(drawn.order, {}, [this](std::size_t i) { return tables_[i].position; });
  std::unordered_map<const qbEntity*, std::size_t> positions;
  for (std::size_t i = 0; i < tables_.size(); ++i) {
    if (tables_[i].entity) positions.emplace(tables_[i].entity.get(), i);
  }
  for (std::size_t i = 0; i < tables_.size(); ++i) {
    if (!tables_[i].entity) continue;
    const qbRelationships& joins = *tables_[i].entity->Relationships();
    for (std::int32_t j = 1; j <= joins.Count(); ++j) {
      const Ref<qbRelationship> join = joins.Item(j);
      const auto target = positions.find(join->Target().get());
      const Ref<qbEntityItem> from = join->SourceItem();
      const Ref<qbEntityItem> to = join->TargetItem();
      const bool asksConditionAlone = !from && !to && !join->Condition().empty();
      if (target == positions.end() || !((from && to) || asksConditionAlone)) continue;
      const auto nameOf = [](const Ref<qbEntityItem>& item) { return item ? item->Text() : std::string(); };
      drawn.joins.push_back(
          {i, target->second, nameOf(from), nameOf(to), join->Comparison(), join->Condition(), join->GroupLevel()});
      drawnJoins.push_back(join);
    }
  }
  return drawn;
}

// First as the server would read the name: "Orders" without quotes may be its table "orders". What only exists as it is
// written gets its quotes from the designer; a source that knows tables by any letters has its own spelling written, as
// for columns, so that the text is the same whether the table is in the diagram already or not.
std::optional<std::vector<SourceColumn>> TablePlan::FindInSource(PlannedTable& table) const {
  if (!hub_.IsConnected()) return std::nullopt;
  TablePicker picker(RefTo(hub_));
  const std::string name = JoinedName(table.plainName, rules_);
  if (name != table.name && picker.HasTableSpelled(name, table.plainName.back().Name())) {
    table.written.parts = table.plainName;
    table.name = name;
    if (table.written.alias.Empty()) table.caption = name;
  }
  std::string ownName;
  std::optional<std::vector<SourceColumn>> columns = picker.ReadColumns(table.name, &ownName);
  if (columns && EqualsNoCase(ownName, table.written.parts.back().Name())) {
    table.written.parts.back() = Identifier(ownName);
    table.name = JoinedName(table.written.parts, rules_);
    if (table.written.alias.Empty()) table.caption = table.name;
  }
  return columns;
}

// --- What the binder asks ---

std::optional<SnapshotTable> TablePlan::AddTable(const WrittenTable&) {
  PlannedTable& table = tables_[added_++];
  SnapshotTable result;
  if (table.entity) {
    result.caption = Identifier(table.caption);
    result.name = std::move(table.drawnName);
    result.aliased = table.caption != table.entity->TagVariant().Text();
    return result;
  }
  std::optional<std::vector<SourceColumn>> columns;
  if (!table.isQuery) columns = FindInSource(table);
  result.caption = Identifier(table.caption);
  result.name = table.written.parts;
  result.aliased = table.caption != table.name;
  if (!hub_.IsConnected() || table.isQuery) return result;
  if (!columns) return std::nullopt;
  TakeColumns(table, std::move(*columns));
  return result;
}

bool TablePlan::KnowsColumns(std::size_t table) const {
  const Ref<qbEntity>& entity = tables_[table].entity;
  if (!entity || tables_[table].isQuery) return !tables_[table].columns.empty();
  // Without a source the boxes show no more columns than statements have named.
  return hub_.IsConnected() && HasKnownColumns(*entity);
}

std::optional<std::string> TablePlan::FindColumn(std::size_t table, const std::string& name) const {
  const PlannedTable& planned = tables_[table];
  if (planned.entity && !planned.isQuery) {
    const Ref<qbEntityItem> item = planned.entity->Items()->Item(name);
    if (!item || name == "*") return std::nullopt;
    return item->Text();
  }
  const auto found = planned.byFoldedName.find(FoldCase(name));
  if (found == planned.byFoldedName.end()) return std::nullopt;
  for (std::size_t i = found->second; i < planned.columns.size(); ++i) {
    if (planned.columns[i].name == name) return name;
    if (planned.byFoldedName.size() == planned.columns.size()) break;  // no two differ in case alone
  }
  return planned.columns[found->second].name;
}

std::vector<std::string> TablePlan::Columns(std::size_t table) const {
  std::vector<std::string> names;
  const PlannedTable& planned = tables_[table];
  for (const SourceColumn& column : planned.columns) names.push_back(column.name);
  if (!planned.entity || planned.isQuery) return names;
  const qbEntityItems& items = *planned.entity->Items();
  for (std::int32_t i = 1; i <= items.Count(); ++i) {
    if (items.Item(i)->Text() != "*") names.push_back(items.Item(i)->Text());
  }
  return names;
}

SnapshotType TablePlan::TypeOf(std::size_t table, const std::string& column) const {
  const PlannedTable& planned = tables_[table];
  if (planned.entity && !planned.isQuery) return TypeOfColumn(*planned.entity, column, *hub_.DataTypes());
  const auto found = planned.byFoldedName.find(FoldCase(column));
  if (found == planned.byFoldedName.end()) return {};
  const SourceColumn& facts = planned.columns[found->second];
  return DescribeType(facts.type, facts.isLong, *hub_.DataTypes());
}

// "dual" is there without being listed; what the source fails to tell is no fault of the name.
std::optional<std::vector<std::string>> TablePlan::ColumnsOf(const WrittenTable& table) const {
  const std::string name = JoinedName(table.parts, rules_);
  const std::optional<std::vector<QueryColumn>> query =
      table.parts.size() == 1 ? queries_(table.parts.front().Name()) : std::nullopt;
  if (query) {
    std::vector<std::string> columns;
    for (const QueryColumn& column : *query) columns.push_back(column.name);
    return columns;
  }
  const auto [known, added] = innerColumns_.try_emplace(name, std::vector<std::string>());
  if (!added || !hub_.IsConnected() || EqualsNoCase(name, "dual")) return known->second;
  try {
    TablePicker picker(RefTo(hub_));
    std::optional<std::vector<SourceColumn>> columns = picker.ReadColumns(name);
    // Without quotes the server reads other letters.
    if (!columns) columns = picker.ReadColumns(InLetters(name, hub_.CurrentDialect().plainNames));
    if (!columns) return known->second = std::nullopt;
    for (const SourceColumn& column : *columns) known->second->push_back(column.name);
  } catch (const Error&) {
    known->second->clear();
  }
  return known->second;
}

// What the source fails to tell is no fault of the name.
void TablePlan::OfferTables(NearestName& nearest) const {
  try {
    for (const ListedTable& table : TablePicker(RefTo(hub_)).ReadTables()) nearest.Offer(table.name.table);
  } catch (const Error&) {
    return;
  }
}

}  // namespace zrqrybld
