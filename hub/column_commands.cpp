// What the diagram's menu of a column does in the grid.
#include "grid/grid_columns.h"
#include "hub/query_builder.h"

namespace zrqrybld {

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
  const std::int32_t row = gridPane_->SetFieldOutput(column, true, entityCaption);
  if (row != 0 && !output) gridPane_->SetValue(row, "output", false);
  return row;
}

std::optional<ColumnUse> qbQueryBuilder::UseOfColumn(const std::string& entityCaption,
                                                     const std::string& column) const {
  if (!gridPane_) return std::nullopt;
  ColumnUse use;
  if (const std::int32_t row = RowOfColumn(entityCaption, column)) {
    use.sortType = gridPane_->Value(row, "sort_type").Text();
    use.groupBy = gridPane_->ShowGroupBy() ? gridPane_->Value(row, "group_by").Text() : std::string();
  }
  return use;
}

void qbQueryBuilder::SortByColumn(const std::string& entityCaption, const std::string& column,
                                  const std::string& type) {
  if (!gridPane_) return;
  const StepScope step(RefTo(*this), "Sort");
  const std::int32_t row =
      type.empty() ? RowOfColumn(entityCaption, column) : MakeRowOfColumn(entityCaption, column, false);
  if (row == 0) return;
  gridPane_->SortRow(row, type);
}

void qbQueryBuilder::GroupColumn(const std::string& entityCaption, const std::string& column,
                                 const std::string& choice) {
  const Ref<qbDBFunction> function = DBFunctions()->FindByName(choice);
  if (!gridPane_ || !function) return;
  const StepScope step(RefTo(*this), "Group");
  gridPane_->SetShowGroupBy(true);
  if (const std::int32_t row = MakeRowOfColumn(entityCaption, column, true)) {
    gridPane_->SetGroupByFunction(row, *function);
  }
}

void qbQueryBuilder::GoToCriterion(const std::string& entityCaption, const std::string& column) {
  if (!gridPane_) return;
  const StepScope step(RefTo(*this), "Add criterion");
  const std::int32_t row = MakeRowOfColumn(entityCaption, column, false);
  if (row == 0) return;
  gridPane_->Grid()->GotoRowCol(row, "criteria");
  gridPane_->Grid()->GetSurface().SetFocus();
}

}  // namespace zrqrybld
