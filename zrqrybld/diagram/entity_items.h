// qbEntityItems: the columns of one entity, in the order and under the keys of the rows of its box.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zrqrybld/base/collection.h"
#include "zrqrybld/base/export.h"
#include "zrqrybld/base/object.h"
#include "zrqrybld/diagram/entity_item.h"

namespace zrqrybld {

class ZRQRYBLD_API qbEntityItems final : public Object {
 public:
  std::string_view TypeName() const override { return "qbEntityItems"; }
  ~qbEntityItems() override { DetachRows(); }

  /// Adds a column at the end, and its row in the box. Error 457 when the key is in use.
  Ref<qbEntityItem> Add(std::string text = {}, const std::string& key = {});

  /// Removes all columns.
  void Clear();

  /// How many there are; positions run from 1 to it, in the order of the rows.
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.Count()); }
  /// Walks them in that order, for a range-based loop.
  CollectionIterator<qbEntityItems> begin() const { return CollectionIterator(*this); }
  std::default_sentinel_t end() const { return {}; }

  /// The first column with this text, or nothing.
  Ref<qbEntityItem> FindByText(std::string_view text, bool caseSensitive = false) const;

  /// The column at a position from 1 or under a key, or nothing.
  Ref<qbEntityItem> Item(const Variant& index) const { return ItemOrNothing(items_, index); }

  /// Removes a column by position or key. Error 9 when there is none.
  void Remove(const Variant& index);

  // --- For the model ---

  /// The rows of the box that shows the entity.
  void SetRows(BoxRows* rows) { rows_ = rows; }
  /// Makes the columns these, without ticks. Those at the beginning that are as they were stay the same objects.
  void Restore(const std::vector<ItemState>& items);
  /// The entity leaves the diagram: its columns lose their rows.
  void DetachRows();

 private:
  BoxRows& Rows() const;

  KeyedList<Ref<qbEntityItem>> items_;
  BoxRows* rows_ = nullptr;
};

}  // namespace zrqrybld
