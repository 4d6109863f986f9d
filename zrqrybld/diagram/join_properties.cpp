#include "zrqrybld/diagram/join_properties.h"

#include <algorithm>

#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/entity.h"

namespace zrqrybld {
Phrase DescribeJoin(const std::string& source, const std::string& target, JoinKind kind) {
  if (kind.Asks()) {
    const bool asksTarget = kind.AsksTarget();
    return {kind.AsksForNone() ? text::JoinMissing : text::JoinExists, asksTarget ? source : target,
            asksTarget ? target : source};
  }
  if (kind.IsFull()) {
    return {text::JoinFull, source, target};
  }
  if (kind.allOfTarget) return {text::JoinAllOf, target, source};
  if (kind.allOfSource) return {text::JoinAllOf, source, target};
  return {text::JoinInner, source, target};
}

std::string DescribeEnds(const qbRelationship& relationship) {
  const auto end = [](const Ref<qbEntity>& entity, const Ref<qbEntityItem>& item) {
    return (entity ? entity->Caption() : std::string()) + (item ? "." + item->Text() : std::string());
  };
  return end(relationship.Source(), relationship.SourceItem()) + " " + std::string(SignOf(relationship.Comparison())) +
         " " + end(relationship.Target(), relationship.TargetItem());
}

bool IsConditionAlone(const qbRelationship& relationship) {
  return relationship.SourceItemIndex().IsEmpty() && relationship.TargetItemIndex().IsEmpty() &&
         !relationship.Condition().empty();
}

std::string ConditionOf(const std::vector<Ref<qbRelationship>>& pairs) {
  std::string condition;
  for (const Ref<qbRelationship>& pair : pairs) {
    if (!pair->Condition().empty()) condition += (condition.empty() ? "" : " AND ") + pair->Condition();
  }
  return condition;
}

Phrase DescribePairs(const std::vector<Ref<qbRelationship>>& pairs) {
  constexpr std::size_t kMost = 12;
  Phrase said;
  std::size_t count = 0;
  for (const Ref<qbRelationship>& pair : pairs) {
    if (IsConditionAlone(*pair) || ++count > kMost) continue;
    said = count == 1 ? Phrase(DescribeEnds(*pair)) : Phrase(text::PairsTogether, said, DescribeEnds(*pair));
  }
  if (count > kMost) said = {text::PairsAndMore, said, count - kMost};
  const std::string condition = ConditionOf(pairs);
  if (condition.empty()) return said;
  if (count > 0) return {text::PairsAndCondition, said, condition};
  return {text::JoinByCondition, pairs.front()->Source()->Caption(), pairs.front()->Target()->Caption(), condition};
}

void SetJoinKind(qbRelationship& relationship, JoinKind kind) {
  relationship.SetItemData(kind.Bits());
  relationship.SetExistence(kind.existence);
  relationship.SetRightIndicator(kind.allOfTarget ? IndicatorImage : IndicatorNone);
  relationship.SetLeftIndicator(kind.allOfSource ? IndicatorImage : IndicatorNone);
}

}  // namespace zrqrybld
