// StepContext: the steps that can be undone, and what the designer is busy with.
//
// Every change runs inside a step. Steps nest; the statement is written once, at the end of the outermost one.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/host/designer_values.h"
#include "zrqrybld/host/step_names.h"

namespace zrqrybld {

struct QueryContext;

class ZRQRYBLD_API StepContext {
 public:
  StepContext() = default;
  StepContext(const StepContext&) = delete;
  StepContext& operator=(const StepContext&) = delete;
  virtual ~StepContext() = default;

  /// What the designer is busy with; `InfoDone` when idle.
  QueryBuilderInfoEnum state() const { return state_; }
  void SetState(QueryBuilderInfoEnum value) {
    state_ = value;
    stateIsLeft_ = false;
  }
  /// The operation has failed: its state stays, for whoever asks, up to the next change.
  void LeaveState() { stateIsLeft_ = true; }
  /// Ends what a failed operation has left.
  void TakeBackState() {
    if (stateIsLeft_) SetState(InfoDone);
  }

  /// Raises the designer's `Info`: what happened, and the thing it happened to.
  virtual void RaiseInfo(QueryBuilderInfoEnum info, Variant parameters = {}) = 0;

  /// Runs a long operation as a step, with `state` at `operation`. The outermost one ends with `Info`: `InfoDone` and
  /// the operation's number, after `state` is back and the statement is written; on errors too.
  void RunOperation(const StepName& step, QueryBuilderInfoEnum operation, const std::function<void()>& work,
                    const std::string& about = {});

  /// Begins a step of the user's or the application's, which can be undone as a whole. Steps nest, and the outermost
  /// one counts. `about` is what the step is about, for its name.
  void BeginStep(const StepName& name, const std::string& about = {});
  /// Ends it. Error 5 when none has begun.
  void EndStep();
  /// Memory has run out in the step that goes on: at its end the query is made what it was before it.
  void TakeStepBack() { takesStepBack_ = stepDepth_ > 0; }
  /// Whether a step is going on, or what it has changed is being told.
  bool InStep() const { return stepDepth_ > 0 || stepEnding_; }

  /// Something that the statement depends on has changed. The statement is written once, at the end of
  /// the outermost step; not while the designer is busy. Without a step the change is one by itself.
  void QueryChanged();

  /// The set of entities, their order or their captions have changed, from this position on. The list of tables follows
  /// once, at the end of the outermost step.
  void EntitiesChanged(std::int32_t from);

 protected:
  /// The context that this is a part of; the handle keeps the designer alive.
  virtual Ref<QueryContext> Whole() = 0;

  /// Writes the statement anew.
  virtual void RefreshStatement() = 0;
  /// Fills the list of tables anew; what stands before the position is as it was.
  virtual void RefreshTableList(std::int32_t from) = 0;

  // --- Steps, for whoever remembers them ---

  /// The outermost step begins.
  virtual void StepBegins(const StepLabel& step) = 0;
  /// It is to be taken back; it goes on while that is done. Done again when the next step begins, when memory runs out
  /// in it.
  virtual void StepFailed() = 0;
  /// Its changes are complete; the statement is written next, when `writes` says so.
  virtual void StepMade(const StepLabel& step, bool writes) = 0;
  /// The statement is written, too, and the designer is idle.
  virtual void StepEnded() = 0;

 private:
  QueryBuilderInfoEnum state_ = InfoDone;
  bool stateIsLeft_ = false;
  int stepDepth_ = 0;
  bool takesStepBack_ = false;
  bool stepEnding_ = false;
  StepLabel step_;
  bool changed_ = false;
  std::optional<std::int32_t> entitiesChangedFrom_;
};

/// A named step for the length of a scope.
class [[nodiscard]] StepScope {
 public:
  ZRQRYBLD_API StepScope(Ref<QueryContext> context, const StepName& name, const std::string& about = {});
  StepScope(const StepScope&) = delete;
  StepScope& operator=(const StepScope&) = delete;
  ZRQRYBLD_API ~StepScope() noexcept(false);

 private:
  Ref<QueryContext> context_;
  int exceptions_ = std::uncaught_exceptions();
};

/// Memory has run out in the step that goes on; nothing without a context.
void TakeStepBack(const Ref<QueryContext>& context);

/// Runs a part of a step. When memory runs out in it, the error goes on and the step is taken back at its end: what is
/// half done is not left in the design.
template <class Work>
decltype(auto) WholeOrNothing(const Ref<QueryContext>& context, Work work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    TakeStepBack(context);
    throw;
  }
}

/// Says what the designer is busy with for the length of a scope. Only the outermost operation sets the
/// state, and it sets it back, also when an error ends it.
class [[nodiscard]] StateScope {
 public:
  StateScope(QueryContext& context, QueryBuilderInfoEnum value);
  StateScope(const StateScope&) = delete;
  StateScope& operator=(const StateScope&) = delete;
  ~StateScope();

 private:
  StepContext& steps_;
  bool outermost_;
};

}  // namespace zrqrybld
