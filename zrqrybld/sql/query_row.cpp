#include "zrqrybld/sql/query_row.h"

#include <algorithm>

#include "zrqrybld/base/text.h"
#include "zrqrybld/host/catalogs.h"

namespace zrqrybld {
namespace {

constexpr SortWord kSortWords[] = {
    {"Ascending", SortDirection::Ascending},
    {"Descending", SortDirection::Descending},
    {"Unsorted", SortDirection::None},
    {"Ascending, nulls first", SortDirection::Ascending, NullsPlace::First},
    {"Ascending, nulls last", SortDirection::Ascending, NullsPlace::Last},
    {"Descending, nulls first", SortDirection::Descending, NullsPlace::First},
    {"Descending, nulls last", SortDirection::Descending, NullsPlace::Last},
};
constexpr std::size_t kPlainSorts = 3;

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

std::span<const SortWord> OfferedSorts(bool withNulls) {
  return std::span(kSortWords).first(withNulls ? std::size(kSortWords) : kPlainSorts);
}

std::string_view TextOf(SortDirection direction, NullsPlace nulls) {
  if (direction == SortDirection::None) return {};
  return std::ranges::find_if(kSortWords,
                              [&](const SortWord& w) { return w.direction == direction && w.nulls == nulls; })
      ->text;
}

SortWord ReadSort(std::string_view cell) {
  if (cell.empty()) return {};
  const auto* word = std::ranges::find_if(kSortWords, [cell](const SortWord& w) { return EqualsNoCase(w.text, cell); });
  return word != std::end(kSortWords) ? *word : SortWord{cell, SortDirection::Ascending};
}

const SortWord* FindTypedSort(std::string_view typed, bool withNulls) {
  const std::span<const SortWord> offered = OfferedSorts(withNulls);
  const auto word =
      std::ranges::find_if(offered, [typed](const SortWord& w) { return StartsWithNoCase(w.text, typed); });
  return word != offered.end() ? &*word : nullptr;
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
