#include "zrqrybld/grid/field_names.h"

#include "zrqrybld/base/text.h"

namespace zrqrybld {

// A column's key is its name; an item that was given another text is found by that.
Ref<qbEntityItem> FindItemExactly(const qbEntity& entity, const std::string& text) {
  const Ref<qbEntityItem> item = entity.Items()->Item(text);
  return item && item->Text() == text ? item : entity.Items()->FindByText(text, true);
}

Ref<qbEntity> FindTypedTable(const qbEntities& entities, std::string_view text, const NameRules& rules) {
  const std::string typed(TrimWhite(text));
  if (const Ref<qbEntity> entity = entities.Item(typed)) return entity;
  return entities.Item(RemoveIdentifierQuotes(typed, rules));
}

Ref<qbEntityItem> FindTypedColumn(const qbEntity& entity, std::string_view text, const NameRules& rules) {
  const qbEntityItems& items = *entity.Items();
  const std::string typed(TrimWhite(text));
  for (const std::string& name : {typed, RemoveIdentifierQuotes(typed, rules)}) {
    // By key at once; an item that was given another text is found by that.
    const Ref<qbEntityItem> item = items.Item(name);
    if (item && EqualsNoCase(item->Text(), name)) return item;
    if (const Ref<qbEntityItem> renamed = items.FindByText(name)) return renamed;
  }
  return nullptr;
}

std::optional<FieldName> FindQualifiedField(const qbEntities& entities, std::string_view text, const NameRules& rules) {
  const std::vector<std::string_view> parts = SplitOutsideQuotes(text, ".");
  // Captions and columns may hold points themselves: the longest caption is tried first.
  for (std::size_t i = parts.size(); i-- > 1;) {
    const auto end = static_cast<std::size_t>(parts[i].data() - text.data());
    const Ref<qbEntity> entity = FindTypedTable(entities, text.substr(0, end - 1), rules);
    const Ref<qbEntityItem> item = entity ? FindTypedColumn(*entity, text.substr(end), rules) : nullptr;
    if (item) return FieldName{entity->Caption(), item->Text()};
  }
  return std::nullopt;
}

std::optional<FieldName> FindOnlyField(const qbEntities& entities, std::string_view text, const NameRules& rules) {
  std::optional<FieldName> found;
  for (std::int32_t i = 1; i <= entities.Count(); ++i) {
    const Ref<qbEntity> entity = entities.Item(i);
    const Ref<qbEntityItem> item = FindTypedColumn(*entity, text, rules);
    if (!item) continue;
    if (found) return std::nullopt;
    found = FieldName{entity->Caption(), item->Text()};
  }
  return found;
}

SnapshotType DescribeType(std::int32_t code, bool isLong, const qbDataTypes& types) {
  SnapshotType type{code, isLong, {}, {}};
  Ref<qbDataType> dataType = types.FindByIndicatorLong(code, isLong);
  if (!dataType) dataType = types.FindByIndicator(code);
  if (!dataType) return type;
  type.prefix = dataType->PrefixLetters;
  type.suffix = dataType->SuffixLetters;
  return type;
}

SnapshotType TypeOfColumn(const qbEntity& entity, const std::string& column, const qbDataTypes& types) {
  const Ref<qbEntityItem> item = entity.Items()->Item(column);
  if (!item) return {};
  const Variant* code = item->Properties()->Find("data_type");
  const Variant* isLong = item->Properties()->Find("is_long");
  return DescribeType(code ? static_cast<std::int32_t>(code->Number().value_or(0)) : 0,
                      isLong && *isLong == Variant(true), types);
}

}  // namespace zrqrybld
