#include "zrqrybld/diagram/relationship.h"

#include <algorithm>

#include "zrqrybld/base/error.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/sql/join_condition.h"

namespace zrqrybld {

std::int32_t qbRelationship::Index() const {
  const auto owner = owner_.lock();
  if (!owner) ThrowObjectRemoved();
  return static_cast<std::int32_t>(owner->PositionOf(*this));
}

// A join is remembered with the entity that it starts at.
JoinFacts& qbRelationship::Changing() {
  const Ref<qbEntity> source = Source();
  if (source && source->EntityBox()) source->EntityBox()->Touch();
  return facts_;
}

// The line goes to another row now, or to none, and listeners learn of the change.
void qbRelationship::NotifyEnd(const Ref<qbEntity>& end) {
  if (!end || !end->EntityBox()) return;
  const Ref<qbEntityList> box = end->EntityBox();
  box->Notify("move", std::int32_t{1});
  box->Notify("relationshipchange", Ref<Object>(RefTo(*this)));
}

// While the other end is not set there is no line to move yet.
void qbRelationship::SetSourceItemIndex(Variant index) {
  Changing().sourceItemIndex = std::move(index);
  if (!facts_.targetItemIndex.IsEmpty()) NotifyEnd(Source());
}

void qbRelationship::SetTargetItemIndex(Variant index) {
  Changing().targetItemIndex = std::move(index);
  if (!facts_.sourceItemIndex.IsEmpty()) NotifyEnd(Target());
}

// A join with one column only is still being put together; one with none may ask a condition alone.
void qbRelationship::NotifyWhenComplete() {
  if (facts_.sourceItemIndex.IsEmpty() == facts_.targetItemIndex.IsEmpty()) NotifyEnd(Source());
}

void qbRelationship::SetComparison(JoinComparisonEnum comparison) {
  comparison = JoinComparisonAt(comparison);
  if (comparison == facts_.comparison) return;
  Changing().comparison = comparison;
  NotifyWhenComplete();
}

void qbRelationship::SetCondition(std::string_view typed) {
  std::string condition = JoinConditionText(typed);
  if (condition == facts_.condition) return;
  NoteAsking(!condition.empty());
  Changing().condition = std::move(condition);
  NotifyWhenComplete();
}

// A join that asks more than its columns is found without a search of all joins.
void qbRelationship::NoteAsking(bool will) {
  const Ref<qbEntity> source = will && !facts_.AsksMore() ? Source() : nullptr;
  if (source) source->NoteAsking(RefTo(*this));
}

void qbRelationship::SetGroupLevel(std::int32_t level) {
  level = std::clamp(level, 0, kDeepestGroup);
  if (level == facts_.groupLevel) return;
  Changing().groupLevel = level;
  NotifyWhenComplete();
}

// No listener is told, but the line shows which rows the join keeps.
void qbRelationship::SetItemData(Variant value) {
  Changing().itemData = std::move(value);
  const Ref<qbEntity> source = Source();
  if (source && source->EntityBox()) source->EntityBox()->Changed.Raise();
}

void qbRelationship::RedrawEnds() {
  const Ref<qbEntity> source = Source();
  if (source && source->EntityBox()) source->EntityBox()->Notify("move", std::int32_t{1});
}

void qbRelationship::SetLeftIndicator(RelationshipIndicatorStyle style) {
  Changing().leftIndicator = style;
  RedrawEnds();
}

void qbRelationship::SetRightIndicator(RelationshipIndicatorStyle style) {
  Changing().rightIndicator = style;
  RedrawEnds();
}

Ref<qbEntityItem> qbRelationship::SourceItem() const {
  const Ref<qbEntity> source = Source();
  return source ? source->Items()->Item(facts_.sourceItemIndex) : nullptr;
}

Ref<qbEntityItem> qbRelationship::TargetItem() const {
  const Ref<qbEntity> target = Target();
  return target ? target->Items()->Item(facts_.targetItemIndex) : nullptr;
}

void qbRelationship::SetExistence(JoinExistenceEnum existence) {
  existence = JoinExistenceAt(existence);
  if (existence == facts_.existence) return;
  NoteAsking(existence != JoinReturnsRows);
  Changing().existence = existence;
  NotifyWhenComplete();
}

JoinKind qbRelationship::Kind() const {
  if (facts_.existence != JoinReturnsRows) return JoinKind::Asking(facts_.existence);
  const std::optional<double> number = facts_.itemData.Number();
  if (!number || !(*number >= 0 && *number < 65536)) return {};
  return JoinKind::FromBits(static_cast<std::int32_t>(*number));
}

const std::shared_ptr<JoinIdentity>& qbRelationship::Identity() {
  if (!identity_) identity_ = std::make_shared<JoinIdentity>(JoinIdentity{std::weak_ptr(RefTo(*this))});
  return identity_;
}

void qbRelationship::Restore(const JoinFacts& facts) {
  if (facts == Facts()) return;
  NoteAsking(facts.AsksMore());
  Changing() = facts;
  NotifyEnd(Source());
}

void qbRelationship::Detach() {
  source_.reset();
  target_.reset();
  owner_.reset();
  line_ = nullptr;
}

}  // namespace zrqrybld
