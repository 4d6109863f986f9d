#include "zrqrybld/sql/query_row.h"

#include <algorithm>

#include "zrqrybld/base/text.h"
#include "zrqrybld/host/catalogs.h"

namespace zrqrybld {
namespace {

struct GroupingWord {
  std::string_view text;
  GroupingKind kind;
};
constexpr GroupingWord kGroupingWords[] = {
    {"", GroupingKind::None},
    {"Group By", GroupingKind::GroupBy},
    {"Where", GroupingKind::Where},
    {"Expression", GroupingKind::Expression},
};

}  // namespace

std::string_view TextOf(SortDirection direction) {
  return direction == SortDirection::None ? std::string_view()
                                          : std::ranges::find(kSortWords, direction, &SortWord::direction)->text;
}

SortDirection ReadSortDirection(std::string_view cell) {
  if (cell.empty()) return SortDirection::None;
  const auto* word = std::ranges::find_if(kSortWords, [cell](const SortWord& w) { return EqualsNoCase(w.text, cell); });
  return word != std::end(kSortWords) ? word->direction : SortDirection::Ascending;
}

const SortWord* FindTypedSort(std::string_view typed) {
  const auto* word =
      std::ranges::find_if(kSortWords, [typed](const SortWord& w) { return StartsWithNoCase(w.text, typed); });
  return word != std::end(kSortWords) ? word : nullptr;
}

std::optional<double> ReadSortPlace(std::string_view cell) { return cell.empty() ? std::nullopt : ParseNumber(cell); }

std::string_view RowGrouping::Text() const {
  if (kind == GroupingKind::Aggregate) return name;
  return std::ranges::find(kGroupingWords, kind, &GroupingWord::kind)->text;
}

RowGrouping ReadGrouping(std::string_view cell, const qbDBFunctions* functions) {
  for (const GroupingWord& word : kGroupingWords) {
    if (EqualsNoCase(word.text, cell)) return word.kind;
  }
  const Ref<qbDBFunction> function = functions ? functions->FindGroupBy(cell) : nullptr;
  return {std::string(cell), function ? function->Syntax() : std::string()};
}

}  // namespace zrqrybld
