#include "zrqrybld/diagram/entity_state.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

#include "zrqrybld/diagram/entity.h"
#include "zrqrybld/diagram/relationships.h"

namespace zrqrybld {
namespace {

using Items = std::shared_ptr<const std::vector<ItemState>>;

Items ItemsOf(const qbEntityItems& items, const Items& before) {
  auto now = std::make_shared<std::vector<ItemState>>();
  now->reserve(static_cast<std::size_t>(items.Count()));
  for (const Ref<qbEntityItem>& item : items) now->push_back(item->State());
  return before && *before == *now ? before : now;
}

bool HasTicks(const BoxRows& rows, const std::vector<bool>& ticks) {
  if (rows.Count() != ticks.size()) return false;
  for (std::size_t i = 0; i < ticks.size(); ++i) {
    if (rows.At(i + 1)->Checked() != ticks[i]) return false;
  }
  return true;
}

std::vector<bool> TicksOf(const BoxRows& rows) {
  std::vector<bool> ticks(rows.Count());
  for (std::size_t i = 0; i < ticks.size(); ++i) ticks[i] = rows.At(i + 1)->Checked();
  return ticks;
}

// The ticks as they were, on columns of which some have come or gone.
std::vector<bool> CarriedTicks(const EntityState& before, const std::vector<ItemState>& items) {
  std::unordered_set<std::string_view> ticked;
  for (std::size_t i = 0; i < before.ticks.size(); ++i) {
    if (before.ticks[i]) ticked.insert((*before.items)[i].text);
  }
  std::vector<bool> ticks;
  ticks.reserve(items.size());
  for (const ItemState& item : items) ticks.push_back(ticked.contains(item.text));
  return ticks;
}

std::vector<JoinState> JoinsOf(const qbRelationships& relationships) {
  std::vector<JoinState> joins;
  for (const Ref<qbRelationship>& join : relationships) {
    const Ref<qbEntity> target = join->Target();
    if (target) joins.push_back({join->Identity(), target->Identity(), join->Facts()});
  }
  return joins;
}

// Whether the table is as it was, without making anything: most tables are, in most steps.
bool IsAsBefore(qbEntity& entity, const EntityState& before, bool withTicks) {
  const qbEntityList& box = *entity.EntityBox();
  const EntityFacts& facts = before.facts;
  const bool same = entity.Identity()->rowsSeen == box.Rows().Revision() && box.Caption() == facts.caption &&
                    box.Shape() == facts.shape && entity.TagVariant() == facts.tag && box.IsView() == facts.isView &&
                    box.IsQuery() == facts.isQuery && box.CaptionIcon() == facts.captionIcon &&
                    box.CaptionIconMaskColor() == facts.iconMaskColor &&
                    box.UseCaptionIconMaskColor() == facts.useIconMaskColor && box.BackColor() == facts.backColor &&
                    box.ShowMinimizeButton() == facts.showMinimizeButton && entity.Properties() == facts.properties;
  const qbRelationships& joins = *entity.Relationships();
  if (!same || static_cast<std::size_t>(joins.Count()) != before.joins.size()) return false;
  if (withTicks && !HasTicks(box.Rows(), before.ticks)) return false;
  return std::ranges::equal(joins, before.joins, [](const Ref<qbRelationship>& join, const JoinState& state) {
    return join->Identity() == state.identity && join->Facts() == state.facts;
  });
}

}  // namespace

std::shared_ptr<const EntityState> StateOf(qbEntity& entity, const std::shared_ptr<const EntityState>& before,
                                           bool withTicks) {
  if (before && IsAsBefore(entity, *before, withTicks)) return before;
  const BoxRows& rows = entity.EntityBox()->Rows();
  EntityState now;
  now.identity = entity.Identity();
  now.facts = entity.Facts();
  now.joins = JoinsOf(*entity.Relationships());
  const bool sameRows = before && now.identity->rowsSeen == rows.Revision();
  now.items = sameRows ? before->items : ItemsOf(*entity.Items(), before ? before->items : nullptr);
  if (before && !withTicks) {
    now.ticks = before->items == now.items ? before->ticks : CarriedTicks(*before, *now.items);
  } else {
    now.ticks = TicksOf(rows);
  }
  if (withTicks) now.identity->rowsSeen = rows.Revision();
  const bool same = before && before->facts == now.facts && before->items == now.items && before->ticks == now.ticks &&
                    before->joins == now.joins;
  return same ? before : std::make_shared<const EntityState>(std::move(now));
}

}  // namespace zrqrybld
