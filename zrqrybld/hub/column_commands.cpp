// What the diagram's menu of a column does in the grid.
#include <algorithm>
#include <unordered_map>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/grid/row_cells.h"
#include "zrqrybld/host/catalogs.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/hub_parts.h"

namespace zrqrybld {

void qbQueryBuilder::Parts::Reports::OutputColumnAgain(const std::string& entityCaption, const std::string& column) {
  if (const Ref<qbGridPane> grid = parts_.hub->GridPane()) grid->SetFieldOutput(column, true, entityCaption, {true, 0});
}

// The first row of the column, 0 when it has none.
std::int32_t qbQueryBuilder::RowOfColumn(const std::string& entityCaption, const std::string& column) const {
  for (std::int32_t row = 1; row <= gridPane_->RowCount(); ++row) {
    if (gridPane_->Value(row, kColumnTable).Text() == entityCaption &&
        gridPane_->Value(row, kColumnColumn).Text() == column) {
      return row;
    }
  }
  return 0;
}

// A column that is only sorted by or looked at has a row that it is not output of.
std::int32_t qbQueryBuilder::MakeRowOfColumn(const std::string& entityCaption, const std::string& column, bool output) {
  if (const std::int32_t row = RowOfColumn(entityCaption, column)) return row;
  const Ref<qbGridPane> grid = gridPane_;
  const std::int32_t row = grid->SetFieldOutput(column, true, entityCaption);
  if (row != 0 && !output) grid->SetValue(row, kColumnOutput, false);
  return grid == gridPane_ ? row : 0;  // a listener may have linked another
}

std::optional<ColumnUse> qbQueryBuilder::UseOfColumn(const std::string& entityCaption,
                                                     const std::string& column) const {
  if (!gridPane_) return std::nullopt;
  ColumnUse use;
  if (const std::int32_t row = RowOfColumn(entityCaption, column)) {
    use.sortType = zrqrybld::TextOf(ReadSort(gridPane_->Value(row, kColumnSortType).Text()).direction);
    use.groupBy = gridPane_->ShowGroupBy() ? gridPane_->Value(row, kColumnGroupBy).Text() : std::string();
  }
  return use;
}

void qbQueryBuilder::SortByColumn(const std::string& entityCaption, const std::string& column,
                                  const std::string& type) {
  if (!gridPane_) return;
  const StepScope step(RefTo(*this), kStepSort, column);
  const std::int32_t row =
      type.empty() ? RowOfColumn(entityCaption, column) : MakeRowOfColumn(entityCaption, column, false);
  if (row != 0) GridPane()->SortRow(row, type);
}

void qbQueryBuilder::GroupColumn(const std::string& entityCaption, const std::string& column,
                                 const std::string& choice) {
  const Ref<qbDBFunction> function = DBFunctions()->FindByName(choice);
  if (!gridPane_ || !function) return;
  const StepScope step(RefTo(*this), kStepGroup, column);
  GridPane()->SetShowGroupBy(true);
  const std::int32_t row = gridPane_ ? MakeRowOfColumn(entityCaption, column, true) : 0;
  if (row != 0) GridPane()->SetGroupByFunction(row, *function);
}

void qbQueryBuilder::GoToCriterion(const std::string& entityCaption, const std::string& column) {
  if (!gridPane_) return;
  const StepScope step(RefTo(*this), kStepAddCriterion, column);
  const std::int32_t row = MakeRowOfColumn(entityCaption, column, false);
  if (row == 0) return;
  const Ref<zrGrid> grid = gridPane_->Grid();
  grid->GotoRowCol(row, kColumnCriteria);
  grid->GetSurface().SetFocus();
}

namespace {

// Most rows say nothing while the query does not group.
bool SaysSomething(const RowReader& row, bool grouped, std::size_t lastColumn) {
  return grouped || !row.IsBlank(kColumnSortType) || row.HasCriteria(lastColumn);
}

// What a row of the grid says about its column, besides what its other rows have said.
void AddTo(ColumnNote& note, const RowReader& row, bool grouped, std::size_t lastColumn,
           const qbDBFunctions& functions) {
  const SortDirection sort = row.Direction();
  if (sort != SortDirection::None) {
    note.sort = sort == SortDirection::Ascending ? 1 : -1;
    note.order = row.Text(kColumnSortOrder);
  }
  // A condition on rows is seen by its sign.
  const RowGrouping grouping = grouped ? row.Grouping(&functions) : RowGrouping();
  if (grouped && grouping.kind != GroupingKind::Where) {
    note.aggregate = row.Text(kColumnGroupBy);
    note.function =
        grouping.kind == GroupingKind::GroupBy ? "GROUP BY" : grouping.syntax.substr(0, grouping.syntax.find('('));
  }
  note.filtered = note.filtered || row.HasCriteria(lastColumn);
}

}  // namespace

// The boxes show what the grid does with their columns.
void qbQueryBuilder::NoteColumns() {
  std::unordered_map<Ref<BoxRow>, ColumnNote> notes;
  const Ref<qbEntities> entities = Entities();
  const std::int32_t count = entities && gridPane_ ? gridPane_->RowCount() : 0;
  const bool grouped = gridPane_ && gridPane_->ShowGroupBy();
  const auto lastColumn = static_cast<std::size_t>(gridPane_ ? gridPane_->ColumnCount() : 0);
  for (std::int32_t i = 1; i <= count; ++i) {
    const zrGridRow& row = gridPane_->Grid()->Rows()->At(static_cast<std::size_t>(i));
    const RowReader reader(row);
    if (!SaysSomething(reader, grouped, lastColumn)) continue;
    const std::string* table = row.ValueAt(kColumnTable).StringIf();
    const std::string* column = row.ValueAt(kColumnColumn).StringIf();
    const Ref<qbEntity> entity = table && column && !table->empty() ? entities->FindExactly(*table) : nullptr;
    const Ref<qbEntityItem> item = entity ? entity->Items()->Item(*column) : nullptr;
    const Ref<BoxRow> shown = item ? entity->EntityBox()->Rows().At(static_cast<std::size_t>(item->Index())) : nullptr;
    if (shown) AddTo(notes[shown], reader, grouped, lastColumn, *DBFunctions());
  }
  for (const WeakRef<BoxRow>& before : std::exchange(noted_, {})) {
    const Ref<BoxRow> row = before.lock();
    if (row && !notes.contains(row)) row->SetNote({});
  }
  for (auto& [row, note] : notes) {
    if (note != ColumnNote{}) noted_.push_back(row);
    row->SetNote(std::move(note));
  }
}

}  // namespace zrqrybld
