// What the remarks beside a statement offer to do about it.
#include <algorithm>
#include <unordered_set>

#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/relationship.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/grid/row_cells.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/host/step_names.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/snapshot_builder.h"
#include "zrqrybld/sql/diagnostics.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/join_move.h"
#include "zrqrybld/sql/null_list.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {
namespace {

// The row of the grid that a row of the query was read from; 0 when it is gone. Rows without a column are none.
std::int32_t GridRowOf(const qbGridPane& grid, std::size_t row) {
  for (std::int32_t i = 1; i <= grid.RowCount(); ++i) {
    if (RowReader(grid.Grid()->Rows()->At(static_cast<std::size_t>(i))).IsBlank(kColumnColumn)) continue;
    if (row-- == 0) return i;
  }
  return 0;
}

// The name with a number behind it, by which no column of the result is called yet.
std::string FreeName(const QuerySnapshot& query, const std::string& name) {
  WordSet taken;
  for (const SnapshotRow& row : query.rows) taken.insert(row.alias.Empty() ? row.column : row.alias.Name());
  for (int number = 2;; ++number) {
    std::string free = name + std::to_string(number);
    if (!taken.contains(free)) return free;
  }
}

// The first criteria column in which the row says something.
std::int32_t CriteriaColumnOf(const qbGridPane& grid, std::int32_t row) {
  const RowReader reader(grid.Grid()->Rows()->At(static_cast<std::size_t>(row)));
  std::int32_t column = kColumnCriteria;
  while (column < grid.ColumnCount() && reader.IsBlank(static_cast<std::size_t>(column))) ++column;
  return column;
}

// The join asks it from now on, beside what it asked before.
void MoveToJoin(qbQueryBuilder& hub, const SQLDiagnostic& remark, std::int32_t row) {
  const QuerySnapshot query = hub.Snapshot();
  const Ref<qbRelationship> join = RelationshipAt(*hub.Entities(), remark.join);
  const std::optional<std::string> condition = ConditionToMove(query, query.rows[remark.row]);
  if (!join || !condition) return;
  const StepScope step(RefTo(hub), kStepMoveCriterion);
  join->SetCondition(BothConditions(join->Condition(), *condition));
  const Ref<qbGridPane> grid = hub.GridPane();
  grid->SetValue(row, CriteriaColumnOf(*grid, row), "");
  hub.QueryChanged();
}

// The first query of the row that may return a Null leaves them out.
void LeaveNullsOut(qbQueryBuilder& hub, const QuerySnapshot& query, std::size_t place, std::int32_t row) {
  const SnapshotRow& content = query.rows[place];
  const auto change = [&](const std::string& text, const std::optional<NullList>& list, std::int32_t column) {
    const std::optional<std::string> changed = list ? WithoutNulls(text, *list) : std::nullopt;
    if (changed) hub.GridPane()->SetValue(row, column, *changed);
    return changed.has_value();
  };
  if (!query.columns) return;
  if (!content.table && change(content.column, FindNullList(content.column, *query.columns), kColumnColumn)) return;
  for (std::size_t i = 0; i < content.criteria.size(); ++i) {
    const std::string& cell = content.criteria[i];
    if (change(cell, FindNullListIn(query, content, cell), kColumnCriteria + static_cast<std::int32_t>(i))) return;
  }
}

}  // namespace

void qbQueryBuilder::CureRemark(const SQLDiagnostic& remark) {
  const Ref<qbGridPane> grid = GridPane();
  const std::int32_t row = grid ? GridRowOf(*grid, remark.row) : 0;
  switch (remark.cure) {
    case CureNone:
      return;
    case CureDialect:
      if (const Dialect* today = FindDialect(CurrentDialect().today)) {
        SQLPane()->SetSQLSyntax(today->syntax);
        SQLPane()->Refresh();
      }
      return;
    case CureGroupBy:
      if (row != 0) grid->SetValue(row, std::string(KeyOf(kColumnGroupBy)), "Group By");
      return;
    case CureAlias:
      if (row != 0) grid->SetValue(row, std::string(KeyOf(kColumnAlias)), FreeName(Snapshot(), remark.object));
      return;
    case CureMoveToJoin:
      if (row != 0) MoveToJoin(*this, remark, row);
      return;
    case CureLeaveNulls:
      if (row != 0) LeaveNullsOut(*this, Snapshot(), remark.row, row);
      return;
  }
}

}  // namespace zrqrybld
