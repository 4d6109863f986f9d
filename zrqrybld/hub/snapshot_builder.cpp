#include "zrqrybld/hub/snapshot_builder.h"

#include <unordered_map>

#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/source_names.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/grid/field_names.h"
#include "zrqrybld/grid/row_cells.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {
namespace {

using TablePositions = std::unordered_map<std::string_view, std::size_t>;  // by the captions that the boxes hold

// The columns of the boxes, by the tables' places in the diagram.
class EntityColumns final : public KnownColumns {
 public:
  EntityColumns(const qbEntities& entities, std::weak_ptr<SchemaCache> schema) : schema_(std::move(schema)) {
    for (const Ref<qbEntity>& entity : entities) entities_.push_back(entity);
  }
  bool KnowsColumns(std::size_t table) const override { return HasKnownColumns(*entities_[table]); }
  std::optional<std::string> FindColumn(std::size_t table, const std::string& name) const override {
    const Ref<qbEntityItem> item = entities_[table]->Items()->Item(name);
    if (!item || name == "*") return std::nullopt;
    return item->Text();
  }
  std::vector<std::string> Columns(std::size_t table) const override {
    std::vector<std::string> names;
    for (const Ref<qbEntityItem>& item : *entities_[table]->Items()) {
      if (item->Text() != "*") names.push_back(item->Text());
    }
    return names;
  }

  bool MayBeNull(const std::vector<Identifier>& table, const std::string& column) const override {
    const std::shared_ptr<SchemaCache> schema = schema_.lock();
    std::vector<std::string> parts;
    parts.reserve(table.size());
    for (const Identifier& part : table) parts.push_back(part.Name());
    return schema && !parts.empty() && schema->MayBeNull(parts, column);
  }

 private:
  std::vector<Ref<qbEntity>> entities_;
  std::weak_ptr<SchemaCache> schema_;
};

// A query may have the sign in its name that parts schemas from tables.
std::vector<Identifier> NameOf(const qbEntity& entity, const NameRules& rules, const QueryContext& context) {
  std::vector<Identifier> name = WrittenName(entity, rules);
  const std::string tag = entity.TagVariant().Text();
  if (name.size() > 1 && context.design.ColumnsOfQuery(tag)) name.assign(1, Identifier(tag));
  return name;
}

void TakeTables(QuerySnapshot& snapshot, TablePositions& positions, const qbEntities& entities,
                const QueryContext& context) {
  snapshot.tables.reserve(static_cast<std::size_t>(entities.Count()));
  for (const Ref<qbEntity>& entity : entities) {
    SnapshotTable table;
    table.caption = Identifier(entity->Caption());
    table.name = NameOf(*entity, snapshot.names, context);
    table.aliased = entity->Caption() != entity->TagVariant().Text();
    positions.emplace(entity->Caption(), snapshot.tables.size());
    snapshot.tables.push_back(std::move(table));
  }
}

std::optional<Identifier> ColumnOf(const Ref<qbEntityItem>& item) {
  if (!item || item->Text() == "*") return std::nullopt;
  return Identifier(item->Text());
}

// A join stands in the query when its target does.
bool HasTarget(const qbRelationship& join) {
  const Ref<qbEntity> target = join.Target();
  return target && target->EntityBox();
}

void TakeJoins(QuerySnapshot& snapshot, const TablePositions& positions, const qbEntities& entities) {
  std::size_t count = 0;
  for (const Ref<qbEntity>& entity : entities) count += static_cast<std::size_t>(entity->Relationships()->Count());
  snapshot.joins.reserve(count);
  std::size_t source = 0;
  for (const Ref<qbEntity>& entity : entities) {
    for (const Ref<qbRelationship>& join : *entity->Relationships()) {
      if (!HasTarget(*join)) continue;
      snapshot.joins.push_back({source, positions.at(join->Target()->Caption()), ColumnOf(join->SourceItem()),
                                ColumnOf(join->TargetItem()), join->Kind(), join->Comparison(), join->Condition(),
                                join->GroupLevel()});
    }
    ++source;
  }
}

// As far as it may be written; 0 characters mean no limit.
void TakeAlias(SnapshotRow& row, std::string alias, std::size_t longest) {
  const bool cut = longest > 0 && CharacterCount(alias) > longest;
  row.alias = cut ? Identifier(std::string(Trim(FirstCharacters(alias, longest)))) : Identifier(alias);
  if (cut) row.uncutAlias = std::move(alias);
}

void TakeRows(QuerySnapshot& snapshot, const TablePositions& positions, const qbEntities* entities,
              const qbGridPane& grid, const QueryContext& context) {
  const auto lastColumn = static_cast<std::size_t>(grid.ColumnCount());
  const qbDBFunctions* functions = snapshot.groupByMode ? context.source.DBFunctions().get() : nullptr;
  const zrGridRows& rows = *grid.Grid()->Rows();
  snapshot.rows.reserve(static_cast<std::size_t>(rows.Count()));
  for (std::int32_t i = 1; i <= rows.Count(); ++i) {
    const RowReader reader(rows.At(static_cast<std::size_t>(i)));
    if (reader.IsBlank(kColumnColumn)) continue;
    QueryRow content = reader.Read(lastColumn, functions);
    SnapshotRow& row = snapshot.rows.emplace_back();
    TakeAlias(row, std::move(content.alias), static_cast<std::size_t>(context.design.AliasMaxLen()));
    const auto table = positions.find(content.table);
    if (table != positions.end()) row.table = table->second;
    static_cast<RowTerms&>(row) = std::move(content);
    if (row.table && !row.criteria.empty()) {
      const qbEntity& entity = *entities->Item(static_cast<std::int32_t>(*row.table) + 1);
      row.type = TypeOfColumn(entity, row.column, *context.source.DataTypes());
    }
  }
}

}  // namespace

bool HasKnownColumns(const qbEntity& entity) {
  const qbEntityItems& items = *entity.Items();
  return items.Count() > 1 || (items.Count() == 1 && items.Item(1)->Text() != "*");
}

Ref<qbRelationship> RelationshipAt(const qbEntities& entities, std::size_t join) {
  for (const Ref<qbEntity>& entity : entities) {
    for (const Ref<qbRelationship>& one : *entity->Relationships()) {
      if (HasTarget(*one) && join-- == 0) return one;
    }
  }
  return nullptr;
}

QuerySnapshot TakeSnapshot(const QueryContext& context, const qbEntities* entities, const qbGridPane* grid) {
  QuerySnapshot snapshot;
  snapshot.names = CurrentNameRules(context);
  TablePositions positions;
  if (entities) {
    TakeTables(snapshot, positions, *entities, context);
    TakeJoins(snapshot, positions, *entities);
    if (context.source.IsConnected()) {
      snapshot.columns = std::make_shared<EntityColumns>(*entities, context.design.Schema());
    }
  }
  if (grid) {
    snapshot.groupByMode = grid->ShowGroupBy();
    TakeRows(snapshot, positions, entities, *grid, context);
  }
  return snapshot;
}

}  // namespace zrqrybld
