#include "hub/snapshot_builder.h"

#include <unordered_map>

#include "base/text.h"
#include "diagram/relationships.h"
#include "diagram/source_names.h"
#include "grid/field_names.h"
#include "grid/grid_columns.h"
#include "sql/source_rules.h"

namespace zrqrybld {
namespace {

using TablePositions = std::unordered_map<std::string_view, std::size_t>;  // by the captions that the boxes hold

void TakeTables(QuerySnapshot& snapshot, TablePositions& positions, const qbEntities& entities) {
  snapshot.tables.reserve(static_cast<std::size_t>(entities.Count()));
  for (const Ref<qbEntity>& entity : entities) {
    SnapshotTable table;
    table.caption = Identifier(entity->Caption());
    table.name = WrittenName(*entity, snapshot.names);
    table.aliased = entity->Caption() != entity->TagVariant().Text();
    positions.emplace(entity->Caption(), snapshot.tables.size());
    snapshot.tables.push_back(std::move(table));
  }
}

std::optional<Identifier> ColumnOf(const Ref<qbEntityItem>& item) {
  if (!item || item->Text() == "*") return std::nullopt;
  return Identifier(item->Text());
}

void TakeJoins(QuerySnapshot& snapshot, const TablePositions& positions, const qbEntities& entities) {
  std::size_t source = 0;
  for (const Ref<qbEntity>& entity : entities) {
    for (const Ref<qbRelationship>& join : *entity->Relationships()) {
      const Ref<qbEntity> target = join->Target();
      if (!target || !target->EntityBox()) continue;
      snapshot.joins.push_back({source, positions.at(target->Caption()), ColumnOf(join->SourceItem()),
                                ColumnOf(join->TargetItem()), join->Kind()});
    }
    ++source;
  }
}

// The aggregate's syntax; grouping choices have none, and neither does a text that names no choice.
std::string AggregateOf(const std::string& groupBy, const qbDBFunctions& functions) {
  for (const std::string_view grouping : {"GROUP BY", "WHERE", "EXPRESSION", ""}) {
    if (EqualsNoCase(groupBy, grouping)) return {};
  }
  const Ref<qbDBFunction> function = functions.FindGroupBy(groupBy);
  return function ? function->Syntax() : std::string();
}

std::vector<std::string> CriteriaOf(const zrGridRow& cells, std::size_t lastColumn) {
  std::vector<std::string> criteria;
  for (std::size_t column = lastColumn; column >= kColumnCriteria; --column) {
    const Variant& cell = cells.ValueAt(column);
    if (criteria.empty() && cell.IsBlank()) continue;  // behind the last filled one
    if (criteria.empty()) criteria.resize(column - kColumnCriteria + 1);
    criteria[column - kColumnCriteria] = cell.Text();
  }
  return criteria;
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
  const zrGridRows& rows = *grid.Grid()->Rows();
  snapshot.rows.reserve(static_cast<std::size_t>(rows.Count()));
  for (std::int32_t i = 1; i <= rows.Count(); ++i) {
    const zrGridRow& cells = rows.At(static_cast<std::size_t>(i));
    if (cells.ValueAt(kColumnColumn).IsBlank()) continue;
    SnapshotRow& row = snapshot.rows.emplace_back();
    row.column = cells.ValueAt(kColumnColumn).Text();
    TakeAlias(row, cells.ValueAt(kColumnAlias).Text(), static_cast<std::size_t>(context.AliasMaxLen()));
    const auto table = positions.find(cells.ValueAt(kColumnTable).Text());
    if (table != positions.end()) row.table = table->second;
    row.output = cells.ValueAt(kColumnOutput) == Variant(true);
    row.sortType = cells.ValueAt(kColumnSortType).Text();
    row.sortOrder = cells.ValueAt(kColumnSortOrder).Text();
    row.groupBy = cells.ValueAt(kColumnGroupBy).Text();
    if (snapshot.groupByMode) row.aggregate = AggregateOf(row.groupBy, *context.DBFunctions());
    row.criteria = CriteriaOf(cells, lastColumn);
    if (row.table && !row.criteria.empty()) {
      const qbEntity& entity = *entities->Item(static_cast<std::int32_t>(*row.table) + 1);
      row.type = TypeOfColumn(entity, row.column, *context.DataTypes());
    }
  }
}

}  // namespace

QuerySnapshot TakeSnapshot(const QueryContext& context, const qbEntities* entities, const qbGridPane* grid) {
  QuerySnapshot snapshot;
  snapshot.names = CurrentNameRules(context);
  TablePositions positions;
  if (entities) {
    TakeTables(snapshot, positions, *entities);
    TakeJoins(snapshot, positions, *entities);
  }
  if (grid) {
    snapshot.groupByMode = grid->ShowGroupBy();
    TakeRows(snapshot, positions, entities, *grid, context);
  }
  return snapshot;
}

}  // namespace zrqrybld
