#include "zrqrybld/host/query_context.h"

#include <algorithm>
#include <new>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/scoped_value.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_hub.h"

namespace zrqrybld {

QueryContext::QueryContext(std::shared_ptr<Toolkit> toolkit) : toolkit_(std::move(toolkit)) {
  toolkit_->SetTexts(language_);
  properties_->Add(std::int16_t{0}, "_QBDSFLAGS");
  FillCatalogs(*keywords_, *operators_, *functions_, *quotedIdentifiers_);
}

Ref<zrqrybld::Connection> QueryContext::Connection() {
  if (!connection_) connection_ = std::make_shared<ProviderConnection>(toolkit_->Providers());
  return connection_;
}

std::shared_ptr<const WordSet> QueryContext::ReservedWords() const {
  const std::uint64_t revision = keywords_->Revision() + functions_->Revision();
  if (reservedWords_ && reservedWordsRevision_ == revision) return reservedWords_;
  auto words = std::make_shared<WordSet>(sourceWords_);
  for (const auto& keyword : *keywords_) words->insert(keyword->Name());
  for (const auto& function : *functions_) {
    if (function->IsReserved()) words->insert(function->Name());
  }
  reservedWords_ = std::move(words);
  reservedWordsRevision_ = revision;
  return reservedWords_;
}

void QueryContext::SetSourceWords(const std::vector<std::string>& words) {
  sourceWords_ = WordSet(words.begin(), words.end());
  reservedWords_ = nullptr;
}

void QueryContext::RaiseInfo(QueryBuilderInfoEnum info, Variant parameters) { Info.Raise(info, parameters); }

void QueryContext::RunOperation(const StepName& stepName, QueryBuilderInfoEnum operation,
                                const std::function<void()>& work, const std::string& about) {
  const Ref<Object> alive = shared_from_this();  // a listener may let go of it
  TakeBackState();
  const bool outermost = state_ == InfoDone;
  const auto run = [&] {
    const StepScope step(RefTo(*this), stepName, about);
    const StateScope state(*this, operation);
    WholeOrNothing(RefTo<QueryContext>(*this), work);
  };
  try {
    run();
  } catch (...) {
    if (outermost) RaiseInfo(InfoDone, static_cast<std::int32_t>(operation));
    throw;
  }
  if (outermost) RaiseInfo(InfoDone, static_cast<std::int32_t>(operation));
}

void QueryContext::BeginStep(const StepName& name, const std::string& about) {
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

void QueryContext::EndStep() {
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

void QueryContext::EntitiesChanged(std::int32_t from) {
  from = std::max(from, 1);  // a listener may have removed all of them
  if (stepDepth_ > 0) {
    entitiesChangedFrom_ = std::min(from, entitiesChangedFrom_.value_or(from));
  } else {
    RefreshTableList(from);
  }
}

void QueryContext::QueryChanged() {
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

}  // namespace zrqrybld
