#include "zrqrybld/diagram/entity_items.h"

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"

namespace zrqrybld {

BoxRows& qbEntityItems::Rows() const {
  if (!rows_) ThrowObjectRemoved();
  return *rows_;
}

Ref<qbEntityItem> qbEntityItems::Add(std::string text, const std::string& key) {
  const Ref<qbEntityItem> item(new qbEntityItem(&items_, Rows().Add(std::move(text), key)));
  items_.Insert(item, key);
  return item;
}

void qbEntityItems::Clear() {
  BoxRows& rows = Rows();
  for (std::size_t i = 1; i <= items_.Count(); ++i) (*items_.At(i))->Detach();
  items_.Clear();
  rows.Clear();
}

Ref<qbEntityItem> qbEntityItems::FindByText(std::string_view text, bool caseSensitive) const {
  if (rows_ && !rows_->TextsDiffer()) {
    const Ref<qbEntityItem>* item = caseSensitive ? items_.FindExactly(text) : items_.FirstAlike(text);
    return item ? *item : nullptr;
  }
  for (std::size_t i = 1; i <= items_.Count(); ++i) {
    const Ref<qbEntityItem>& item = *items_.At(i);
    if (caseSensitive ? item->Text() == text : EqualsNoCase(item->Text(), text)) return item;
  }
  return nullptr;
}

void qbEntityItems::Remove(const Variant& index) {
  BoxRows& rows = Rows();
  const std::size_t position = RequirePosition(items_, index);
  const Ref<qbEntityItem> item = items_.RemoveAt(position);
  item->Detach();
  rows.RemoveAt(position);
}

void qbEntityItems::Restore(const std::vector<ItemState>& items) {
  Rows().SetTicks(std::vector<bool>(Rows().Count()));  // they are restored on their own
  std::size_t same = 0;
  while (same < items.size() && same < items_.Count() && (*items_.At(same + 1))->State() == items[same]) ++same;
  while (items_.Count() > same) Remove(Count());
  for (std::size_t i = same; i < items.size(); ++i) Add(items[i].text, items[i].key)->Restore(items[i]);
}

void qbEntityItems::DetachRows() {
  for (std::size_t i = 1; i <= items_.Count(); ++i) (*items_.At(i))->Detach();
  items_.Clear();
  rows_ = nullptr;
}

}  // namespace zrqrybld
