#include "zrqrybld/grid/or_columns.h"

#include <algorithm>
#include <optional>

#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

constexpr std::string_view kKey = "or";

std::string OrKey(std::int32_t number) { return std::string(kKey) + std::to_string(number); }

// Of the OR columns that the row fills, the last; 0 for none.
std::int32_t LastUsed(const RowContent& content) {
  std::size_t column = content.cells.size();
  while (column > kColumnCriteria && content.cells[column - 1].value.IsBlank()) --column;
  return static_cast<std::int32_t>(std::max<std::size_t>(column, kColumnCriteria)) - kColumnCriteria;
}

std::int32_t LastUsed(const SharedRowContent& content) { return content ? LastUsed(*content) : 0; }

}  // namespace

std::int32_t AlternativeColumns::NeededBy(const std::vector<SharedRowContent>& contents) {
  std::int32_t needed = 0;
  for (const SharedRowContent& content : contents) needed = std::max(needed, LastUsed(content));
  return needed;
}

std::int32_t AlternativeColumns::Used() const {
  std::int32_t used = 0;
  for (const Ref<zrGridRow>& row : *rows_.Grid().Rows()) used = std::max(used, LastUsed(row->Content()));
  return used;
}

void AlternativeColumns::Set(std::int32_t count) {
  least_ = std::clamp(count, kFirstOrColumns, kMostOrColumns);
  Fit();
}

void AlternativeColumns::SetGrows(bool grows) {
  grows_ = grows;
  Fit();
}

// An application may have taken columns away: what it left is no place for more.
void AlternativeColumns::Ensure(std::int32_t count) {
  if (rows_.LastColumn() < kColumnOr3) return;
  while (Count() < std::min(count, kMostOrColumns)) Add();
}

void AlternativeColumns::Add() {
  zrGridColumns& columns = *rows_.Grid().Columns();
  const std::string key = OrKey(Count() + 1);
  const Ref<zrGridColumn> before = columns.Item(Count() + kColumnCriteria);
  const Ref<zrGridColumn> column = columns.Add(columns.Find(key) ? "" : key, before->Caption());
  const GridColumnRow& alike = kGridColumns[kColumnOr3 - 1];
  column->SetStyle(alike.style);
  column->SetShare(alike.share);
  column->SetHasButton(alike.hasButton);
  column->SetWidth(alike.width);
}

std::size_t AlternativeColumns::PositionOf(std::string_view key) {
  zrGridColumns& columns = *rows_.Grid().Columns();
  if (!columns.Find(key) && StartsWithNoCase(key, kKey)) {
    const std::optional<double> number = ParseNumber(key.substr(kKey.size()));
    if (number && *number > kFirstOrColumns && *number <= kMostOrColumns) Ensure(static_cast<std::int32_t>(*number));
  }
  return columns.PositionOf(std::string(key));
}

void AlternativeColumns::CellChanged(const zrGridRow& row, std::int32_t column) {
  const auto position = static_cast<std::size_t>(column);
  if (grows_ && position == rows_.LastColumn() && !row.ValueAt(position).IsBlank()) Ensure(Count() + 1);
}

void AlternativeColumns::Fit() {
  const std::int32_t needed = std::min(std::max(least_, Used() + (grows_ ? 1 : 0)), kMostOrColumns);
  Ensure(needed);
  const Ref<zrGrid> grid = RefTo(rows_.Grid());  // a listener may let go of it
  zrGridColumns& columns = *grid->Columns();
  if (Count() > needed && grid->Column() > kColumnCriteria + needed) {
    grid->GotoRowCol(grid->Row(), kColumnCriteria + needed);
  }
  // What an application has added stays.
  while (Count() > needed && columns.At(rows_.LastColumn()).Key() == OrKey(Count())) columns.Remove(columns.Count());
}

void AlternativeColumns::ApplyCaption(std::string_view caption) const {
  for (std::size_t column = kColumnOr3 + 1; column <= rows_.LastColumn(); ++column) {
    rows_.Grid().Columns()->At(column).SetCaption(std::string(caption));
  }
}

}  // namespace zrqrybld
