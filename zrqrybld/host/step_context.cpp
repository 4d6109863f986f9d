#include "zrqrybld/host/step_context.h"

#include <algorithm>
#include <new>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/base/texts_hub.h"
#include "zrqrybld/host/context_link.h"

namespace zrqrybld {

void StepContext::RunOperation(const StepName& stepName, QueryBuilderInfoEnum operation,
                               const std::function<void()>& work, const std::string& about) {
  const Ref<QueryContext> whole = Whole();  // a listener may let go of it
  TakeBackState();
  const bool outermost = state_ == InfoDone;
  const auto run = [&] {
    const StepScope step(whole, stepName, about);
    const StateScope state(*whole, operation);
    WholeOrNothing(whole, work);
  };
  try {
    run();
  } catch (...) {
    if (outermost) RaiseInfo(InfoDone, static_cast<std::int32_t>(operation));
    throw;
  }
  if (outermost) RaiseInfo(InfoDone, static_cast<std::int32_t>(operation));
}

void StepContext::BeginStep(const StepName& name, const std::string& about) {
  TakeBackState();
  if (stepDepth_ == 0) step_ = StepLabel(name, about);
  if (++stepDepth_ > 1) return;
  try {
    StepBegins(step_);
  } catch (...) {
    --stepDepth_;  // it has not begun
    throw;
  }
}

void StepContext::EndStep() {
  if (stepDepth_ == 0) throw Error(ErrorInvalidCall, text::NoStepBegun);
  if (stepDepth_ == 1 && std::exchange(takesStepBack_, false)) {
    try {
      StepFailed();
    } catch (...) {
      stepDepth_ = 0;
      throw;
    }
    entitiesChangedFrom_ = 1;
  }
  if (--stepDepth_ > 0) return;
  const ScopedValue ending(stepEnding_, true);
  const bool writes = std::exchange(changed_, false) && state_ == InfoDone;
  try {
    StepMade(step_, writes);
    if (const auto from = std::exchange(entitiesChangedFrom_, std::nullopt)) RefreshTableList(*from);
    if (writes) RefreshStatement();
  } catch (const std::bad_alloc&) {
    changed_ = changed_ || writes;  // the next step writes what this one could not
    throw;
  }
  if (state_ == InfoDone) StepEnded();
}

void StepContext::EntitiesChanged(std::int32_t from) {
  from = std::max(from, 1);  // a listener may have removed all of them
  if (stepDepth_ > 0) {
    entitiesChangedFrom_ = std::min(from, entitiesChangedFrom_.value_or(from));
  } else {
    RefreshTableList(from);
  }
}

void StepContext::QueryChanged() {
  TakeBackState();
  if (stepDepth_ > 0) {
    changed_ = true;
    return;
  }
  const ScopedValue ending(stepEnding_, true);
  StepMade(StepLabel(kStepChange, {}), state_ == InfoDone);
  if (state_ != InfoDone) return;
  RefreshStatement();
  StepEnded();
}

StepScope::StepScope(Ref<QueryContext> context, const StepName& name, const std::string& about)
    : context_(std::move(context)) {
  if (context_) context_->steps.BeginStep(name, about);
}

StepScope::~StepScope() noexcept(false) {
  if (!context_) return;
  if (std::uncaught_exceptions() == exceptions_) {
    context_->steps.EndStep();
    return;
  }
  try {
    context_->steps.EndStep();
  } catch (...) {
    // The step ends because of an error; that error goes on, not one from writing the statement.
  }
}

void TakeStepBack(const Ref<QueryContext>& context) {
  if (context) context->steps.TakeStepBack();
}

StateScope::StateScope(QueryContext& context, QueryBuilderInfoEnum value)
    : steps_(context.steps), outermost_(steps_.state() == InfoDone) {
  if (outermost_) steps_.SetState(value);
}

StateScope::~StateScope() {
  if (outermost_) steps_.SetState(InfoDone);
}

}  // namespace zrqrybld
