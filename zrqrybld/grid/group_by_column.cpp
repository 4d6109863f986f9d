#include "zrqrybld/grid/group_by_column.h"

#include "zrqrybld/base/text.h"

namespace zrqrybld {
namespace {

constexpr float kWidth = 1200;

bool IsAllColumns(const zrGridRow& row) { return RowReader(row).Text(kColumnColumn) == kAllColumns; }

}  // namespace

void GroupByColumn::Show(bool show) {
  shown_ = show;
  const Ref<zrGridColumn> column = rows_.Grid().Columns()->Item(KeyOf(kColumnGroupBy));
  if (!show && column->Width() > 0) width_ = column->Width();
  column->SetWidth(!show ? 0 : width_ > 0 ? width_ : kWidth);
}

void GroupByColumn::Apply(bool show) {
  Show(show);
  const auto busy = rows_.Busy();
  for (const Ref<zrGridRow>& row : *rows_.Grid().Rows()) Fill(*row);
}

void GroupByColumn::Fill(zrGridRow& row) const {
  if (RowReader(row).Text(kColumnColumn).empty()) return;
  RowWriter(row).SetGrouping(!shown_ ? kNoGrouping : IsAllColumns(row) ? kCountCell : kGroupByCell);
}

std::optional<GroupingCell> GroupByColumn::ChoiceNamed(std::string_view text, const zrGridRow& row) const {
  if (text.empty()) return kNoGrouping;
  if (IsAllColumns(row)) return EqualsNoCase(text, kCountChoice.text) ? std::optional(kCountChoice) : std::nullopt;
  const qbDBFunctions* functions = rows_.Functions();
  const Ref<qbDBFunction> function = functions ? functions->FindGroupBy(text) : nullptr;
  return function ? std::optional(ChoiceOf(*function)) : std::nullopt;
}

void GroupByColumn::TagText(zrGridRow& row) const {
  const auto choice = ChoiceNamed(RowReader(row).Text(kColumnGroupBy), row);
  if (choice) RowWriter(row).SetGroupingTag(*choice);
}

void GroupByColumn::FillList(zrGridComboItems& list, const zrGridRow& row) const {
  const auto add = [&list](const GroupingCell& choice) { list.Add(std::string(choice.text), choice.tag); };
  if (IsAllColumns(row)) return add(kCountChoice);
  const qbDBFunctions* functions = rows_.Functions();
  constexpr std::int32_t kChoice = 1;
  for (std::int32_t i = 1; functions && i <= functions->Count(); ++i) {
    const Ref<qbDBFunction> function = functions->Item(i);
    if ((function->Flags() & kChoice) != 0) add(ChoiceOf(*function));
  }
}

std::string GroupByColumn::AggregateOf(const zrGridRow& row) const {
  return RowReader(row).Grouping(shown_ ? rows_.Functions() : nullptr).syntax;
}

}  // namespace zrqrybld
