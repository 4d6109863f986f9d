#include "zrqrybld/grid/row_cells.h"

#include "zrqrybld/base/text.h"

namespace zrqrybld {

GroupingCell ChoiceOf(const qbDBFunction& function) {
  return {function.DisplayText(), function.Syntax().empty() ? function.Name() : function.Syntax()};
}

// --- Reading ---

bool RowReader::Names(std::string_view table, std::string_view column) const {
  const std::string* rowTable = row_.ValueAt(kColumnTable).StringIf();
  const std::string* rowColumn = row_.ValueAt(kColumnColumn).StringIf();
  return rowTable && rowColumn && *rowTable == table && *rowColumn == column;
}

RowGrouping RowReader::Grouping(const qbDBFunctions* functions) const {
  return ReadGrouping(Text(kColumnGroupBy), functions);
}

bool RowReader::HasContent(std::size_t lastColumn) const {
  for (std::size_t column = kColumnOutput + 1; column <= lastColumn; ++column) {
    if (column != kColumnGroupBy && !IsBlank(column)) return true;
  }
  return false;
}

bool RowReader::HasCriteria(std::size_t lastColumn) const {
  for (std::size_t column = kColumnCriteria; column <= lastColumn; ++column) {
    if (!IsBlank(column)) return true;
  }
  return false;
}

std::vector<std::string> RowReader::Criteria(std::size_t lastColumn) const {
  std::vector<std::string> criteria;
  for (std::size_t column = lastColumn; column >= kColumnCriteria; --column) {
    if (criteria.empty() && IsBlank(column)) continue;  // behind the last filled one
    if (criteria.empty()) criteria.resize(column - kColumnCriteria + 1);
    criteria[column - kColumnCriteria] = Text(column);
  }
  return criteria;
}

QueryRow RowReader::Read(std::size_t lastColumn, const qbDBFunctions* functions) const {
  QueryRow row;
  row.column = Text(kColumnColumn);
  row.alias = Text(kColumnAlias);
  row.table = Text(kColumnTable);
  row.output = IsOutput();
  const SortWord sort = ReadSort(Text(kColumnSortType));
  row.sort = {sort.direction, Place(), sort.nulls};
  row.grouping = Grouping(functions);
  row.criteria = Criteria(lastColumn);
  return row;
}

// --- Writing ---

// A listener of the value finds the tag that belongs to it.
void RowWriter::SetGrouping(const GroupingCell& grouping) const {
  SetGroupingTag(grouping);
  SetText(kColumnGroupBy, grouping.text);
}

void RowWriter::Write(const QueryRow& content, const qbDBFunctions* functions) const {
  const auto set = [this](std::size_t column, std::string_view text) {
    if (!text.empty()) SetText(column, text);
  };
  set(kColumnTable, content.table);
  set(kColumnColumn, content.column);
  set(kColumnAlias, content.alias);
  SetOutput(content.output);
  set(kColumnSortType, TextOf(content.sort.direction, content.sort.nulls));
  if (content.sort.place) SetText(kColumnSortOrder, NumberText(*content.sort.place));
  const std::string_view grouping = content.grouping.Text();
  const Ref<qbDBFunction> function = functions ? functions->FindGroupBy(grouping) : nullptr;
  if (function) {
    SetGrouping(ChoiceOf(*function));
  } else {
    set(kColumnGroupBy, grouping);
  }
  for (std::size_t i = 0; i < content.criteria.size(); ++i) set(kColumnCriteria + i, content.criteria[i]);
}

}  // namespace zrqrybld
