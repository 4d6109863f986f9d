#include "zrqrybld/grid/columns.h"

#include <algorithm>

namespace zrqrybld {

void zrGridColumn::Changed() const {
  if (list_ && list_->owner_) list_->owner_->ColumnsChanged();
}

const Ref<zrGridComboItems>& zrGridColumn::ComboItems() {
  if (!comboItems_) comboItems_ = std::make_shared<zrGridComboItems>();
  return comboItems_;
}

void zrGridColumn::SetHidden(bool hidden) {
  if (hidden == hidden_) return;
  hidden_ = hidden;
  if (hidden) {
    shownWidth_ = width_;
    width_ = 0;
  } else {
    width_ = shownWidth_;
  }
  Changed();
}

void zrGridColumn::SetKey(std::string key) {
  if (list_) list_->items_.Rekey(index_, key);
  key_ = std::move(key);
}

void zrGridColumn::SetWidth(float twips) {
  width_ = std::max(twips, 0.0F);
  if (width_ > 0) hidden_ = false;
  Changed();
}

void zrGridColumn::SetShare(float share) {
  share_ = std::max(share, 0.0F);
  Changed();
}

void zrGridColumn::SetHasButton(bool has) {
  hasButton_ = has;
  Changed();
}

void zrGridColumn::SetCaption(std::string caption) {
  caption_ = std::move(caption);
  Changed();
}

void zrGridColumn::SetStyle(std::int16_t style) {
  style_ = style;
  Changed();
}

void zrGridColumn::SetDisplayAttribute(std::int16_t attribute) {
  displayAttribute_ = attribute;
  Changed();
}

void zrGridColumn::SetAlignment(std::int16_t alignment) {
  alignment_ = alignment;
  Changed();
}

Ref<zrGridColumn> zrGridColumns::Add(const std::string& key, std::string caption) {
  const Ref<zrGridColumn> column(new zrGridColumn(this, key, std::move(caption)));
  items_.Insert(column, key);
  column->index_ = items_.Count();
  column->Changed();
  return column;
}

void zrGridColumns::Clear() {
  for (const Ref<zrGridColumn>& column : *this) {
    column->list_ = nullptr;
    column->index_ = 0;
  }
  for (; items_.Count() > 0; items_.RemoveAt(items_.Count())) {
    if (owner_) owner_->ColumnRemoved(items_.Count());
  }
  if (owner_) owner_->ColumnsChanged();
}

void zrGridColumns::Remove(const Variant& index) {
  const std::size_t position = PositionOf(index);
  const Ref<zrGridColumn> column = items_.RemoveAt(position);
  column->list_ = nullptr;
  column->index_ = 0;
  for (std::size_t i = position; i <= items_.Count(); ++i) (*items_.At(i))->index_ = i;
  if (!owner_) return;
  owner_->ColumnRemoved(position);
  owner_->ColumnsChanged();
}

}  // namespace zrqrybld
