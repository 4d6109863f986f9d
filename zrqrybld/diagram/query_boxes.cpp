#include "zrqrybld/diagram/query_boxes.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

#include "zrqrybld/diagram/relationships.h"
#include "zrqrybld/diagram/type_kind.h"

namespace zrqrybld {
namespace {

ItemState ItemCalled(const std::string& name) {
  ItemState item;
  item.text = item.key = name;
  item.properties = std::make_shared<qbProperties>();
  return item;
}

std::vector<ItemState> ItemsFor(const std::vector<QueryColumn>& columns, const qbDataTypes& types) {
  std::vector<ItemState> items{ItemCalled("*")};
  for (const QueryColumn& column : columns) {
    ItemState item = ItemCalled(column.name);
    if (column.type != 0) {
      item.properties->Add(column.type, "data_type");
      item.properties->Add(column.isLong, "is_long");
      item.kind = KindOfType(column.type);
      const Ref<qbDataType> type = types.FindByIndicatorLong(column.type, column.isLong);
      if (type) item.toolTip = column.name + ": " + type->Name;
    }
    items.push_back(std::move(item));
  }
  return items;
}

bool ShowsAlready(const qbEntityItems& shown, const std::vector<ItemState>& items) {
  if (static_cast<std::size_t>(shown.Count()) != items.size()) return false;
  return std::ranges::equal(shown, items, [](const Ref<qbEntityItem>& one, const ItemState& other) {
    return one->Text() == other.text && one->Kind() == other.kind && one->ToolTipText() == other.toolTip;
  });
}

std::string TextOf(const Ref<qbEntityItem>& item) { return item ? item->Text() : std::string(); }

// An end of a join and the column that it had.
struct JoinEnd {
  Ref<qbRelationship> join;
  bool isSource;
  std::string column;
};

std::vector<JoinEnd> EndsAt(const qbEntities& entities, const qbEntity& entity) {
  std::vector<JoinEnd> ends;
  for (const Ref<qbEntity>& other : entities) {
    for (const Ref<qbRelationship>& join : *other->Relationships()) {
      if (other.get() == &entity) ends.push_back({join, true, TextOf(join->SourceItem())});
      if (join->Target().get() == &entity) ends.push_back({join, false, TextOf(join->TargetItem())});
    }
  }
  return ends;
}

}  // namespace

bool ShowColumns(const qbEntities& entities, qbEntity& entity, const std::vector<QueryColumn>& columns,
                 const qbDataTypes& types) {
  const std::vector<ItemState> items = ItemsFor(columns, types);
  qbEntityItems& shown = *entity.Items();
  if (!entity.EntityBox()) return false;
  if (!entity.EntityBox()->IsQuery()) entity.EntityBox()->SetIsQuery(true);
  if (ShowsAlready(shown, items)) return false;
  const std::vector<JoinEnd> ends = EndsAt(entities, entity);
  std::unordered_set<std::string> ticked;
  for (const Ref<qbEntityItem>& item : shown) {
    if (item->Checked()) ticked.insert(item->Text());
  }
  shown.Restore(items);
  std::vector<bool> ticks;
  ticks.reserve(items.size());
  for (const ItemState& item : items) ticks.push_back(ticked.contains(item.text));
  entity.EntityBox()->Rows().SetTicks(ticks);
  for (const JoinEnd& end : ends) {
    const Ref<qbEntityItem> item = end.column.empty() ? nullptr : shown.Item(end.column);
    const Variant index = item ? Variant(item->Index()) : Variant();
    if (end.isSource) {
      end.join->SetSourceItemIndex(index);
    } else {
      end.join->SetTargetItemIndex(index);
    }
  }
  return true;
}

std::vector<std::string> TextsOf(const qbEntity& entity) {
  std::vector<std::string> texts;
  for (const Ref<qbEntityItem>& item : *entity.Items()) {
    if (item->Text() != "*") texts.push_back(item->Text());
  }
  return texts;
}

void RenameItem(qbEntity& entity, const std::string& before, const std::string& after) {
  std::vector<ItemState> items;
  std::vector<bool> ticks;
  for (const Ref<qbEntityItem>& item : *entity.Items()) {
    items.push_back(item->State());
    ticks.push_back(item->Checked());
    if (items.back().text == before) items.back().text = items.back().key = after;
  }
  entity.Items()->Restore(items);
  entity.EntityBox()->Rows().SetTicks(ticks);
}

}  // namespace zrqrybld
