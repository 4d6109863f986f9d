#include "zrqrybld/grid/sort_places.h"

#include <algorithm>

#include "zrqrybld/grid/sort_order.h"

namespace zrqrybld {
namespace {

std::int32_t PlaceOf(const Ref<zrGridRow>& row) {
  const std::optional<double> place = RowReader(*row).Place();
  return place && *place >= 1 && *place < 1e6 ? static_cast<std::int32_t>(*place) : 0;
}

std::vector<std::int32_t> PlacesOf(const std::vector<Ref<zrGridRow>>& rows) {
  std::vector<std::int32_t> places(rows.size());
  std::ranges::transform(rows, places.begin(), PlaceOf);
  return places;
}

}  // namespace

void SortPlaces::Note(const zrGridRow& row) {
  constexpr std::size_t kSlack = 64;
  if (sorted_.size() > 2 * static_cast<std::size_t>(rows_.Count()) + kSlack) Rows();
  sorted_.push_back(rows_.At(row.Index()).weak_from_this());
}

// In their order: what is not sorted costs nothing.
std::vector<Ref<zrGridRow>> SortPlaces::Rows() const {
  std::vector<Ref<zrGridRow>> rows;
  for (const WeakRef<Object>& noted : sorted_) {
    const auto row = std::static_pointer_cast<zrGridRow>(noted.lock());
    if (row && row->Index() != 0 && RowReader(*row).HasSort()) rows.push_back(row);
  }
  std::ranges::sort(rows, {}, [](const Ref<zrGridRow>& row) { return row->Index(); });
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  sorted_.assign(rows.begin(), rows.end());
  return rows;
}

std::int16_t SortPlaces::Next(std::int32_t except) const {
  std::int16_t next = 1;
  for (const Ref<zrGridRow>& row : Rows()) {
    if (row->Index() != except && RowReader(*row).Direction() != SortDirection::None) ++next;
  }
  return next;
}

void SortPlaces::Place(zrGridRow& row, std::int32_t place) {
  std::vector<Ref<zrGridRow>> rows = Rows();
  const Ref<zrGridRow> self = rows_.Hold(row.Index());
  auto at = std::ranges::find(rows, self);
  if (at == rows.end()) {
    at = std::ranges::find_if(rows, [&](const Ref<zrGridRow>& other) { return other->Index() > row.Index(); });
    at = rows.insert(at, self);
  }
  Write(rows, PlaceSortOrder(PlacesOf(rows), static_cast<std::size_t>(at - rows.begin()), place));
}

void SortPlaces::CloseGaps() {
  const std::vector<Ref<zrGridRow>> rows = Rows();
  Write(rows, CloseSortGaps(PlacesOf(rows)));
}

void SortPlaces::Sort(zrGridRow& row, std::string_view type) {
  const RowWriter writer(row);
  writer.SetText(kColumnSortType, type);
  if (type.empty()) {
    writer.SetSortPlace(0);
    CloseGaps();
  } else if (PlaceOf(RefTo(row)) == 0) {
    writer.SetSortPlace(Last(row));
  }
}

void SortPlaces::Write(const std::vector<Ref<zrGridRow>>& rows, const std::vector<std::int32_t>& places) {
  const auto busy = rows_.Busy();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i]->Index() == 0) continue;  // a listener has removed it
    const bool hadNone = RowReader(*rows[i]).IsBlank(kColumnSortOrder);
    if (places[i] != 0 || !hadNone) RowWriter(*rows[i]).SetSortPlace(places[i]);
  }
}

}  // namespace zrqrybld
