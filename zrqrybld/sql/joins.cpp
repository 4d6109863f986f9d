#include "zrqrybld/sql/joins.h"

#include <iterator>
#include <utility>

#include "zrqrybld/base/collection.h"

namespace zrqrybld {

// --- Conditions ---

Ref<qbJoinTable> qbJoinTables::Add(std::string leftTable, std::string leftField, std::string rightTable,
                                   std::string rightField) {
  const std::string key = "[" + leftTable + "].[" + leftField + "] = [" + rightTable + "].[" + rightField + "]";
  if (items_.HasExactly(key)) return *items_.Find(key);
  return items_.Insert(std::make_shared<qbJoinTable>(std::move(leftTable), std::move(leftField), std::move(rightTable),
                                                     std::move(rightField)),
                       key);
}

Ref<qbJoinTable> qbJoinTables::Item(const Variant& index) const { return *items_.At(RequirePosition(items_, index)); }

void qbJoinTables::Remove(const Variant& index) { items_.RemoveAt(RequirePosition(items_, index)); }

// --- Tables ---

qbJoins::Place qbJoins::Require(const Variant& index) {
  if (const std::string* caption = index.StringIf()) {
    const auto found = places_.find(*caption);
    if (found != places_.end()) return found->second;
  } else if (const std::optional<double> position = index.Number();
             position && *position >= 1 && *position <= static_cast<double>(items_.size())) {
    return std::next(items_.begin(), static_cast<std::ptrdiff_t>(*position) - 1);
  }
  ThrowNoSuchItem();
}

Ref<qbJoin> qbJoins::Add(const std::string& caption, std::string_view before, std::string_view after) {
  Place place = items_.end();
  if (!before.empty()) {
    place = Require(std::string(before));
  } else if (!after.empty()) {
    place = std::next(Require(std::string(after)));
  }
  const auto known = places_.find(caption);
  if (known == places_.end()) {
    place = items_.insert(place, std::make_shared<qbJoin>(caption));
    places_.emplace((*place)->Caption(), place);
    return *place;
  }
  const bool moves = (!before.empty() || !after.empty()) && place != known->second;
  if (moves) items_.splice(place, items_, known->second);
  return *known->second;
}

void qbJoins::Clear() {
  places_.clear();
  items_.clear();
}

void qbJoins::Remove(const Variant& index) {
  const Place place = Require(index);
  places_.erase((*place)->Caption());
  items_.erase(place);
}

}  // namespace zrqrybld
