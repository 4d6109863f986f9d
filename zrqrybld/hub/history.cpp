#include "zrqrybld/hub/history.h"

#include <algorithm>
#include <span>
#include <unordered_map>
#include <unordered_set>

#include "zrqrybld/grid/grid_columns.h"

namespace zrqrybld {
namespace {

constexpr auto kTypingPause = std::chrono::seconds(1);

template <class T>
auto At(std::vector<T>& list, std::size_t position) {
  return list.begin() + static_cast<std::ptrdiff_t>(position);
}

// Leaves out what is the same at both ends.
template <class T, class Same>
void Trim(Splice<T>& splice, Same same) {
  std::size_t begin = 0;
  const std::size_t shorter = std::min(splice.before.size(), splice.after.size());
  while (begin < shorter && same(splice.before[begin], splice.after[begin])) ++begin;
  std::size_t end = 0;
  while (end < shorter - begin &&
         same(splice.before[splice.before.size() - 1 - end], splice.after[splice.after.size() - 1 - end])) {
    ++end;
  }
  for (std::vector<T>* list : {&splice.before, &splice.after}) {
    list->erase(At(*list, list->size() - end), list->end());
    list->erase(list->begin(), At(*list, begin));
  }
  splice.first += begin;
}

bool IsSamePiece(const std::shared_ptr<const EntityState>& a, const std::shared_ptr<const EntityState>& b) {
  return a == b;
}

// Replaces a part of the list that is as long as `gone`.
template <class T>
void Replace(std::vector<T>& list, std::size_t first, const std::vector<T>& gone, const std::vector<T>& come) {
  const std::size_t both = std::min(gone.size(), come.size());
  std::copy_n(come.begin(), both, At(list, first));
  const auto place = list.erase(At(list, first + both), At(list, first + gone.size()));
  list.insert(place, come.begin() + static_cast<std::ptrdiff_t>(both), come.end());
}

// What has become of the part of the list that is not untouched.
template <class T>
Splice<T> Between(std::vector<T>& known, const Untouched& untouched, std::vector<T> now) {
  return {untouched.before, {At(known, untouched.before), At(known, known.size() - untouched.behind)}, std::move(now)};
}

template <class T>
void Apply(std::vector<T>& list, const Splice<T>& splice, bool back) {
  Replace(list, splice.first, back ? splice.after : splice.before, back ? splice.before : splice.after);
}

// The table as it is known, with what the step had made of `gone` made `come` again.
std::shared_ptr<const EntityState> WithChange(const EntityState& known, const EntityState& gone,
                                              const EntityState& come) {
  EntityState result = known;
  const auto take = [](auto& value, const auto& from, const auto& to) {
    if (from != to) value = to;
  };
  take(result.facts.caption, gone.facts.caption, come.facts.caption);
  take(result.facts.tag, gone.facts.tag, come.facts.tag);
  take(result.facts.shape, gone.facts.shape, come.facts.shape);
  take(result.items, gone.items, come.items);
  take(result.joins, gone.joins, come.joins);
  if (result.items == come.items) result.ticks.resize(come.ticks.size());
  for (std::size_t i = 0; i < std::min(result.ticks.size(), come.ticks.size()); ++i) {
    if (i >= gone.ticks.size() || gone.ticks[i] != come.ticks[i]) result.ticks[i] = come.ticks[i];
  }
  return std::make_shared<const EntityState>(std::move(result));
}

// A table may have changed without any step: of that the step takes nothing back.
void Apply(DiagramState& list, const Splice<std::shared_ptr<const EntityState>>& splice, bool back) {
  const DiagramState& gone = back ? splice.after : splice.before;
  DiagramState come = back ? splice.before : splice.after;
  std::unordered_map<const EntityIdentity*, std::size_t> places;
  for (std::size_t i = 0; i < gone.size(); ++i) places.emplace(list[splice.first + i]->identity.get(), i);
  for (auto& state : come) {
    const auto place = places.find(state->identity.get());
    if (place == places.end()) continue;
    const std::shared_ptr<const EntityState>& known = list[splice.first + place->second];
    const std::shared_ptr<const EntityState>& was = gone[place->second];
    if (state == was) {
      state = known;
    } else if (known != was) {
      state = WithChange(*known, *was, *state);
    }
  }
  Replace(list, splice.first, gone, come);
}

bool IsBlank(const SharedRowContent& row) { return SaysTheSame(row, nullptr); }

// The place of the cell, when its text is all that was changed.
std::optional<std::pair<std::size_t, std::size_t>> OnlyCell(const History::Step& step) {
  const Splice<SharedRowContent>& rows = step.rows;
  if (!step.entities.Empty() || step.options || rows.before.size() != 1 || rows.after.size() != 1) return std::nullopt;
  static const RowContent kEmpty;
  const std::vector<GridCell>& before = (rows.before[0] ? *rows.before[0] : kEmpty).cells;
  const std::vector<GridCell>& after = (rows.after[0] ? *rows.after[0] : kEmpty).cells;
  std::optional<std::size_t> column;
  for (std::size_t i = 0; i < std::max(before.size(), after.size()); ++i) {
    const Variant was = i < before.size() ? before[i].value : Variant();
    const Variant is = i < after.size() ? after[i].value : Variant();
    if (was == is) continue;
    if (column || i + 1 == kColumnOutput) return std::nullopt;
    column = i;
  }
  if (!column) return std::nullopt;
  return std::pair(rows.first, *column);
}

// Of a table that is there before and after counts what differs.
std::size_t SizeOfTables(const DiagramState& states, const DiagramState& others) {
  std::unordered_map<const EntityIdentity*, const EntityState*> byIdentity;
  for (const auto& state : others) byIdentity.emplace(state->identity.get(), state.get());
  std::size_t bytes = states.size() * sizeof(states.front());
  for (const auto& state : states) {
    const auto other = byIdentity.find(state->identity.get());
    if (other == byIdentity.end()) {
      bytes += SizeOf(*state, nullptr);
    } else if (other->second != state.get()) {
      bytes += SizeOf(*state, other->second);
    }
  }
  return bytes;
}

// What is shared with other moments is counted, too: such steps are few.
std::size_t SizeOfQueries(const QuerySet& set) {
  std::size_t bytes = 0;
  for (const StoredQuery& query : set.queries) {
    bytes += sizeof(query) + query.name.size();
    if (!query.design) continue;
    bytes += SizeOfTables(query.design->entities, {});
    for (const SharedRowContent& row : query.design->rows) bytes += SizeOf(row);
  }
  return bytes;
}

std::size_t SizeOfStep(const History::Step& step) {
  std::size_t bytes = sizeof(step) + (step.typed ? step.typed->size() : 0);
  for (const auto* rows : {&step.rows.before, &step.rows.after}) {
    for (const SharedRowContent& row : *rows) bytes += SizeOf(row);
  }
  if (step.queries) bytes += SizeOfQueries(step.queries->first) + SizeOfQueries(step.queries->second);
  return bytes + SizeOfTables(step.entities.before, step.entities.after) +
         SizeOfTables(step.entities.after, step.entities.before);
}

}  // namespace

// --- Recording ---

void History::Show(Design now) {
  known_ = std::move(now);
  mayMerge_ = false;
}

void History::RecordQueries(const StepLabel& label, QuerySet before, QuerySet after, Design now,
                            std::optional<std::string> typed) {
  Step step;
  step.label = label;
  step.query = after.shown;
  step.queries.emplace(std::move(before), std::move(after));
  step.typed = std::move(typed);
  for (const Step& undone : std::exchange(redo_, {})) bytes_ -= undone.bytes;
  Push(std::move(step));
  Show(std::move(now));
}

void History::Widen(QuerySet before, QuerySet after) {
  Step& step = undo_.back();
  step.entities = {};
  step.rows = {};
  step.options.reset();
  step.cell.reset();
  step.queries.emplace(std::move(before), std::move(after));
  bytes_ -= step.bytes;
  step.bytes = SizeOfStep(step);
  bytes_ += step.bytes;
}

bool History::Record(const StepLabel& label, DesignChange change, std::optional<std::string> typed,
                     std::int32_t query) {
  Step step;
  step.label = label;
  step.query = query;
  step.entities = Between(known_.entities, change.untouchedEntities, std::move(change.entities));
  Trim(step.entities, IsSamePiece);
  step.rows = Between(known_.rows, change.untouchedRows, std::move(change.rows));
  Trim(step.rows, SaysTheSame);
  if (change.options != known_.options) step.options.emplace(known_.options, change.options);

  if (step.entities.Empty() && step.rows.Empty() && !step.options) return false;
  const bool wasEmpty = known_.entities.empty() && std::ranges::all_of(known_.rows, IsBlank);
  known_.options = std::move(change.options);
  if (wasEmpty && step.entities.Empty() && std::ranges::all_of(step.rows.after, IsBlank)) {
    Absorb(step.rows, query);
    return false;
  }
  Apply(known_.entities, step.entities, false);
  Apply(known_.rows, step.rows, false);

  for (const Step& undone : std::exchange(redo_, {})) bytes_ -= undone.bytes;
  step.typed = std::move(typed);
  step.cell = OnlyCell(step);
  step.at = clock_();
  if (!Merge(step)) Push(std::move(step));
  mayMerge_ = true;
  return true;
}

// Blank rows that come or go are no step, so the steps before and behind end and begin with the rows as they are now:
// what they replace is found by its place.
void History::Absorb(const Splice<SharedRowContent>& change, std::int32_t query) {
  mayMerge_ = false;
  if (change.Empty()) return;
  // The nearest step of the same query; behind one that has changed several, the rows are those that it holds.
  const auto nearest = [query](auto begin, auto end) -> Step* {
    for (; begin != end && !begin->queries; ++begin) {
      if (begin->query == query) return &*begin;
    }
    return nullptr;
  };
  Step* const last = nearest(undo_.rbegin(), undo_.rend());
  Step* const next = nearest(redo_.rbegin(), redo_.rend());
  std::vector<SharedRowContent> before = known_.rows;
  std::vector<SharedRowContent> after = known_.rows;
  if (last) Apply(before, last->rows, true);
  if (next) Apply(after, next->rows, false);
  Apply(known_.rows, change, false);
  const auto rewrite = [this](Step& step, const std::vector<SharedRowContent>& was,
                              const std::vector<SharedRowContent>& is) {
    step.rows = {0, was, is};
    Trim(step.rows, SaysTheSame);
    step.cell.reset();
    bytes_ -= step.bytes;
    step.bytes = SizeOfStep(step);
    bytes_ += step.bytes;
  };
  if (last) rewrite(*last, before, known_.rows);
  if (next) rewrite(*next, known_.rows, after);
}

// Makes one step of it and the one before, when it goes on with what that has begun.
bool History::Merge(Step& step) {
  if (!mayMerge_ || undo_.empty() || step.at - undo_.back().at > kTypingPause) return false;
  Step& last = undo_.back();
  const bool isNamed = step.label.id == 0 || last.label.id == 0;
  if (isNamed || last.queries || step.query != last.query) return false;
  const bool sameCell = step.cell && step.cell == last.cell;
  const bool sameKey = step.label.repeats && last.label.repeats && step.label.id == last.label.id &&
                       step.label.about == last.label.about && !step.options && !last.options && step.rows.Empty() &&
                       last.rows.Empty();
  if (!sameCell && !sameKey) return false;
  if (sameCell) {
    last.rows.after = std::move(step.rows.after);
    Trim(last.rows, SaysTheSame);
  } else if (last.entities.first == step.entities.first && last.entities.after == step.entities.before) {
    last.entities.after = std::move(step.entities.after);
    Trim(last.entities, IsSamePiece);
  } else {
    DiagramState before = known_.entities;
    Apply(before, step.entities, true);
    Apply(before, last.entities, true);
    last.entities = {0, std::move(before), known_.entities};
    Trim(last.entities, IsSamePiece);
  }
  last.at = step.at;
  const bool nothingLeft = last.rows.Empty() && last.entities.Empty();
  bytes_ -= last.bytes;
  last.bytes = SizeOfStep(last);
  bytes_ += last.bytes;
  if (nothingLeft) {
    bytes_ -= last.bytes;
    undo_.pop_back();
  }
  return true;
}

void History::Push(Step step) {
  step.bytes = SizeOfStep(step);
  bytes_ += step.bytes;
  undo_.push_back(std::move(step));
  while (undo_.size() > kMostSteps || (bytes_ > kMostBytes && undo_.size() > 1)) {
    bytes_ -= undo_.front().bytes;
    undo_.pop_front();
  }
}

void History::Adopt(DesignChange change) {
  known_.options = std::move(change.options);
  const std::size_t untouched = change.untouchedEntities.before;
  const DiagramState& entities = change.entities;
  for (std::size_t i = 0; i < entities.size() && untouched + i < known_.entities.size(); ++i) {
    auto& known = known_.entities[untouched + i];
    if (known->identity == entities[i]->identity) known = entities[i];
  }
}

void History::Forget(Design now) {
  known_ = std::move(now);
  undo_.clear();
  redo_.clear();
  bytes_ = 0;
  mayMerge_ = false;
}

// --- Travelling ---

bool History::Fits(bool back) const {
  const Step& step = back ? undo_.back() : redo_.back();
  const auto fits = [back](const auto& splice, std::size_t size) {
    return splice.first + (back ? splice.after : splice.before).size() <= size;
  };
  if (!fits(step.entities, known_.entities.size()) || !fits(step.rows, known_.rows.size())) return false;
  const DiagramState& gone = back ? step.entities.after : step.entities.before;
  return std::ranges::equal(
      gone, std::span(known_.entities).subspan(step.entities.first, gone.size()), {},
      [](const auto& state) { return state->identity; }, [](const auto& state) { return state->identity; });
}

namespace {

// A join that was made outside of steps may lead to a table that goes with the step in which it came: it goes, too.
void LeaveOutLostJoins(DiagramState& entities) {
  std::unordered_set<const EntityIdentity*> there;
  for (const auto& entity : entities) there.insert(entity->identity.get());
  const auto isLost = [&](const JoinState& join) { return !there.contains(join.target.get()); };
  for (auto& entity : entities) {
    if (std::ranges::none_of(entity->joins, isLost)) continue;
    EntityState kept = *entity;
    std::erase_if(kept.joins, isLost);
    entity = std::make_shared<const EntityState>(std::move(kept));
  }
}

}  // namespace

const Design& History::Travel(bool back) {
  // What needs memory comes first: the step is undone whole or not at all.
  const Step& step = back ? undo_.back() : redo_.back();
  Design then = known_;
  Apply(then.entities, step.entities, back);
  if (!step.entities.Empty()) LeaveOutLostJoins(then.entities);
  Apply(then.rows, step.rows, back);
  if (step.options) then.options = back ? step.options->first : step.options->second;
  if (back) {
    redo_.push_back(std::move(undo_.back()));
    undo_.pop_back();
  } else {
    undo_.push_back(std::move(redo_.back()));
    redo_.pop_back();
  }
  known_ = std::move(then);
  mayMerge_ = false;
  return known_;
}

}  // namespace zrqrybld
