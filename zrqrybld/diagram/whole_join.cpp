#include "zrqrybld/diagram/whole_join.h"

#include <algorithm>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/diagram/diagram_site.h"
#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/diagram/join_properties.h"
#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/host/step_context.h"
#include "zrqrybld/host/step_names.h"

namespace zrqrybld {
namespace {

// Whoever stands later in the diagram states its own joins first, as the statement does.
auto PlaceOf(const Ref<qbRelationship>& join) {
  const Ref<qbEntity> source = join->Source();
  return std::pair(source ? -source->Index() : 0, join->Index());
}

}  // namespace

std::vector<Ref<qbRelationship>> qbWholeJoin::Relationships() const {
  using Placed = std::pair<std::pair<std::int32_t, std::int32_t>, Ref<qbRelationship>>;
  std::vector<Placed> placed;
  placed.reserve(drawn_.Count());
  for (const WeakRef<qbRelationship>& link : drawn_) {
    const Ref<qbRelationship> join = link.lock();
    if (!join || !join->Line()) continue;
    placed.emplace_back(drawn_.Count() > 1 ? PlaceOf(join) : std::pair<std::int32_t, std::int32_t>(), join);
  }
  std::ranges::sort(placed, {}, [](const Placed& one) { return one.first; });
  std::vector<Ref<qbRelationship>> joins;
  joins.reserve(placed.size());
  for (Placed& one : placed) joins.push_back(std::move(one.second));
  return joins;
}

Ref<qbRelationship> qbWholeJoin::First() const {
  const std::vector<Ref<qbRelationship>> joins = Relationships();
  return joins.empty() ? nullptr : joins.front();
}

Ref<qbRelationship> qbWholeJoin::Item(const Variant& index) const {
  const std::vector<Ref<qbRelationship>> joins = Relationships();
  const std::optional<double> position = index.Number();
  if (!position || !(*position >= 1 && *position <= static_cast<double>(joins.size()))) ThrowNoSuchItem();
  return joins[static_cast<std::size_t>(*position) - 1];
}

Ref<qbEntity> qbWholeJoin::Source() const {
  const Ref<qbRelationship> first = First();
  return first ? first->Source() : nullptr;
}

Ref<qbEntity> qbWholeJoin::Target() const {
  const Ref<qbRelationship> first = First();
  return first ? first->Target() : nullptr;
}

JoinKind qbWholeJoin::Kind() const {
  const Ref<qbRelationship> first = First();
  return first ? first->Kind() : JoinKind();
}

JoinKind qbWholeJoin::KindFor(const qbRelationship& join) const {
  const Ref<qbRelationship> first = First();
  if (!first) return {};
  return first->Source() == join.Source() ? first->Kind() : first->Kind().Reversed();
}

void qbWholeJoin::SetKindFrom(const Ref<qbEntity>& source, JoinKind kind) {
  for (const Ref<qbRelationship>& one : Relationships()) {
    SetJoinKind(*one, one->Source() == source ? kind : kind.Reversed());
  }
}

void qbWholeJoin::ChangeKind(JoinKind kind) {
  const Ref<DiagramSite> site = site_.lock();
  const Ref<QueryContext> context = site ? site->Context() : nullptr;
  const StepScope step(context, kStepEditJoin);
  SetKindFrom(Source(), kind);
  if (context) context->steps.QueryChanged();
}

void qbWholeJoin::SetItemData(std::int32_t kind) { ChangeKind(JoinKind::FromBits(kind)); }

void qbWholeJoin::SetExistence(JoinExistenceEnum existence) {
  ChangeKind(JoinKind::Asking(JoinExistenceAt(existence)));
}

std::string qbWholeJoin::Text() const {
  const Ref<DiagramSite> site = site_.lock();
  return Say(site ? site->Context() : nullptr, DescribePairs(Relationships()));
}

void qbWholeJoin::Remove() {
  const Ref<DiagramSite> site = site_.lock();
  const StepScope step(site ? site->Context() : nullptr, kStepDeleteJoin);
  for (const Ref<qbRelationship>& join : Relationships()) {
    if (const Ref<qbEntity> source = join->Source()) source->Relationships()->Remove(join->Index());
  }
}

bool qbWholeJoin::CanReverse() const {
  return std::ranges::all_of(drawn_, [](const WeakRef<qbRelationship>& link) {
    const Ref<qbRelationship> join = link.lock();
    return !join || Mirrored(join->Comparison());
  });
}

}  // namespace zrqrybld
