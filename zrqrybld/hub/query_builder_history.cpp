// Undo and redo: when the design is looked at, and how it is brought back.
#include "zrqrybld/base/error.h"
#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/hub/hub_parts.h"
#include "zrqrybld/sql/sql_pane.h"

namespace zrqrybld {

// --- The design as it is ---

// Only what was touched is looked at: a step costs what it changes.
void qbQueryBuilder::TakeTables(DesignChange& change, bool withTicks) const {
  const Ref<qbEntities> entities = Entities();
  if (!entities) return;
  const DiagramState& known = parts_->history.Known().entities;
  const auto count = static_cast<std::size_t>(entities->Count());
  change.untouchedEntities = entities->SinceRemembered().Within(std::min(count, known.size()));
  change.entities = entities->State(known, change.untouchedEntities, withTicks);
}

DesignChange qbQueryBuilder::CurrentChange() const {
  DesignChange change;
  TakeTables(change, true);
  change.options = CurrentOptions();
  if (!gridPane_) return change;
  const zrGridRows& rows = *gridPane_->Grid()->Rows();
  const auto count = static_cast<std::size_t>(rows.Count());
  change.untouchedRows = rows.SinceRemembered().Within(std::min(count, parts_->history.Known().rows.size()));
  for (std::size_t i = change.untouchedRows.before + 1; i <= count - change.untouchedRows.behind; ++i) {
    change.rows.push_back(rows.At(i).Content());
  }
  return change;
}

// Another pane: what could be undone in the one before is of no use in it.
void qbQueryBuilder::RememberAll() {
  Design all;
  if (const Ref<qbEntities> entities = Entities()) {
    all.entities = entities->State({}, {}, true);
    entities->Remembered();
  }
  if (gridPane_) {
    zrGridRows& rows = *gridPane_->Grid()->Rows();
    for (std::size_t i = 1; i <= static_cast<std::size_t>(rows.Count()); ++i) {
      all.rows.push_back(rows.At(i).Content());
    }
    rows.Remembered();
  }
  all.options = CurrentOptions();
  const bool hadSteps = CanUndo() || CanRedo();
  parts_->history.Forget(std::move(all));
  parts_->querySetBefore.reset();
  historyLost_ = false;
  if (hadSteps) HistoryChanged.Raise();
}

void qbQueryBuilder::ClearHistory() {
  if (steps.InStep()) throw Error(ErrorInvalidCall, text::HistoryInUse);
  RememberAll();
}

// --- Steps ---

// What the application has set outside of any step, such as the place of a box or the dialect, is no part of the step
// that begins. Ticks and cells have changed already when their step begins.
void qbQueryBuilder::StepBegins(const StepLabel& step) {
  if (historyLost_) RememberAll();
  if (takesBack_) TakeBack();
  typed_.reset();
  if (sqlPane_ && sqlPane_->IsEdited() && step.id != kStepApplyStatement.id) typed_ = sqlPane_->SQLStatement();
  DesignChange change;
  TakeTables(change, false);
  change.options = CurrentOptions();
  parts_->history.Adopt(std::move(change));
}

void qbQueryBuilder::StepFailed() {
  typed_.reset();
  takesBack_ = !historyLost_;
  if (takesBack_) TakeBack();
}

// All of the design is compared with what is known: what a failed step has touched, nobody can say.
void qbQueryBuilder::TakeBack() {
  if (std::optional<QuerySet> before = std::exchange(parts_->querySetBefore, std::nullopt)) {
    const ScopedValue travelling(travelling_, true);
    RestoreQueries(parts_->querySet, *before);
  }
  Design now;
  if (gridPane_) {
    const zrGridRows& rows = *gridPane_->Grid()->Rows();
    for (std::size_t i = 1; i <= static_cast<std::size_t>(rows.Count()); ++i) now.rows.push_back(rows.At(i).Content());
  }
  now.options = CurrentOptions();
  Restore(now, Design(parts_->history.Known()));
  takesBack_ = false;
}

void qbQueryBuilder::StepMade(const StepLabel& step, bool writes) {
  std::optional<std::string> typed = std::exchange(typed_, std::nullopt);
  if (!writes || (sqlPane_ && sqlPane_->KeepsTyped())) typed.reset();
  try {
    if (diagramPane_) diagramPane_->PlaceAdded();
    LeaveCells();
    const QuerySet& set = parts_->querySet;
    const bool isInCell = set.StandsInCell(set.shown);
    std::optional<QuerySet> known;
    if (isInCell && !parts_->querySetBefore) known = QueriesKnown();
    if (std::optional<QuerySet> before = std::exchange(parts_->querySetBefore, std::nullopt)) {
      StoreShown();
      WriteIntoCells();
      parts_->history.RecordQueries(step, std::move(*before), parts_->querySet, *parts_->querySet.Shown().design,
                                    std::move(typed));
      historyChanged_ = true;
    } else {
      const bool isStep = parts_->history.Record(step, CurrentChange(), std::move(typed), set.shown);
      historyChanged_ |= isStep;
      if (known && isStep) {
        StoreShown();
        WriteIntoCells();
        parts_->history.Widen(std::move(*known), set);
      }
    }
    if (const Ref<qbEntities> entities = Entities()) entities->Remembered();
    if (gridPane_) gridPane_->Grid()->Rows()->Remembered();
  } catch (...) {
    historyLost_ = true;
    throw;
  }
}

void qbQueryBuilder::StepEnded() {
  const bool tellsQueries = std::exchange(queriesChanged_, false);
  if (std::exchange(historyChanged_, false)) HistoryChanged.Raise();
  if (tellsQueries) QueriesChanged.Raise();
}

// --- Undo and redo ---

bool qbQueryBuilder::Travel(bool back) {
  if (steps.InStep() || travelling_ || (state() != InfoDone && state() != InfoParsingSQL)) {
    throw Error(ErrorInvalidCall, text::StepGoesOn);
  }
  const Ref<Object> alive = shared_from_this();  // a listener may let go of it
  const ScopedValue travelling(travelling_, true);
  SetState(InfoDone);  // a statement that could not be read has left it
  if (gridPane_) gridPane_->Grid()->CommitEdit();
  EndStepless();
  const History::Step* step = back ? parts_->history.Last() : parts_->history.Next();
  if (!step) {
    StepEnded();
    return false;
  }
  const std::optional<std::string> typed = back ? step->typed : std::nullopt;
  {
    const StepScope scope(RefTo(*this), kStepChange);
    WholeOrNothing(RefTo(*this), [&] {
      if (step->queries) {
        const auto [before, after] = *step->queries;
        parts_->history.Travel(back);
        historyChanged_ = true;
        RestoreQueries(back ? after : before, back ? before : after);
        return;
      }
      SwitchTo(step->query);
      // What a listener has changed while a query was put into the panes may be known to no step: then all are
      // forgotten.
      const bool hadQueries = parts_->querySet.lastId > 0;
      if (hadQueries && !(ShowsKnown() && parts_->history.Fits(back))) return RememberAll();
      const Design now = parts_->history.Known();
      const Design then = parts_->history.Travel(back);
      historyChanged_ = true;
      Restore(now, then);
      // What cannot come back as it was, such as an icon that is gone, is no step: undoing comes to its end.
      parts_->history.Adopt(CurrentChange());
    });
  }
  if (typed && sqlPane_ && !sqlPane_->IsEdited()) SQLPane()->ShowTyped(*typed);
  return true;
}

// What was changed without any step is one, before others are undone. Nobody is told before they are: a listener could
// change more.
void qbQueryBuilder::EndStepless() {
  const StepLabel step(kStepChange, {});
  StepBegins(step);
  StepMade(step, false);
}

void qbQueryBuilder::Restore(const Design& now, const Design& then) {
  if (diagramPane_) diagramPane_->Restore(now.entities, then.entities);
  if (gridPane_) {
    gridPane_->Restore(then.rows);
    gridPane_->ApplyAliasMaxLen();
  }
  if (now.options != then.options) RestoreOptions(then.options);
  EntitiesChanged(1);
  QueryChanged();
}

namespace {

std::string TextOf(const History::Step* step, const SourceContext& source) {
  if (!step) return {};
  const std::string text = step->label.id != 0 ? source.GetLanguageString(step->label.id) : step->label.text;
  return std::string(TrimWhite(ReplaceNoCase(text, "%NAME%", step->label.about)));
}

}  // namespace

History& qbQueryBuilder::Steps() { return parts_->history; }
bool qbQueryBuilder::CanUndo() const { return parts_->history.Last() != nullptr; }
bool qbQueryBuilder::CanRedo() const { return parts_->history.Next() != nullptr; }
std::string qbQueryBuilder::UndoText() const { return TextOf(parts_->history.Last(), source); }
std::string qbQueryBuilder::RedoText() const { return TextOf(parts_->history.Next(), source); }

}  // namespace zrqrybld
