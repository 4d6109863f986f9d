#include "grid/rows.h"

#include <algorithm>

#include "base/error.h"
#include "base/text.h"

namespace zrqrybld {
namespace {

const Variant& EmptyCell() {
  static const Variant kEmpty;
  return kEmpty;
}

Variant AsCheckBoxValue(const Variant& value) {
  try {
    return value.ToBoolean();
  } catch (const Error&) {
    throw Error(ErrorInvalidPropertyValue, "Invalid property value. Boolean value expected.");
  }
}

}  // namespace

std::size_t zrGridRow::Position(const Variant& column) const {
  if (!list_ || !list_->owner_) ThrowObjectRemoved();
  return list_->owner_->ColumnPosition(column);
}

zrGridRow::Cell& zrGridRow::CellAt(std::size_t column) {
  if (cells_.size() < column) cells_.resize(column);
  return cells_[column - 1];
}

const Variant& zrGridRow::ValueAt(std::size_t column) const {
  return column <= cells_.size() ? cells_[column - 1].value : EmptyCell();
}

const Variant& zrGridRow::TagAt(std::size_t column) const {
  return column <= cells_.size() ? cells_[column - 1].tag : EmptyCell();
}

const std::string& zrGridRow::HintAt(std::size_t column) const {
  static const std::string kNone;
  return column <= cells_.size() && cells_[column - 1].hint ? *cells_[column - 1].hint : kNone;
}

const std::string& zrGridRow::Hint(const Variant& column) const { return HintAt(Position(column)); }

void zrGridRow::SetHint(const Variant& column, std::string text) {
  std::unique_ptr<std::string>& hint = CellAt(Position(column)).hint;
  hint = text.empty() ? nullptr : std::make_unique<std::string>(std::move(text));
  list_->owner_->CellLooksChanged();
}

std::int32_t zrGridRow::MaxLen(const Variant& column) const {
  const std::size_t position = Position(column);
  return position <= cells_.size() ? cells_[position - 1].maxLen : 0;
}

void zrGridRow::SetMaxLen(const Variant& column, std::int32_t characters) {
  CellAt(Position(column)).maxLen = characters;
}

const Variant& zrGridRow::Value(const Variant& column) const { return ValueAt(Position(column)); }

void zrGridRow::SetValue(const Variant& column, Variant value) {
  const std::size_t position = Position(column);
  RowOwner& owner = *list_->owner_;
  if (ValueAt(position) == value) return;
  if (owner.IsCheckBoxColumn(position)) {
    value = AsCheckBoxValue(value);
    if (ValueAt(position) == value) return;
  }
  const Ref<Object> alive = shared_from_this();  // a listener may remove the row
  if (!owner.BeforeCellChange(index_, position) || !list_) return;
  Cell& cell = CellAt(position);
  cell.value = std::move(value);
  cell.hint.reset();
  owner.AfterCellChange(index_, position);
}

const Variant& zrGridRow::TagVariant(const Variant& column) const { return TagAt(Position(column)); }

void zrGridRow::SetTagVariant(const Variant& column, Variant tag) { CellAt(Position(column)).tag = std::move(tag); }

void zrGridRow::SetKey(std::string key) {
  if (list_) list_->items_.Rekey(index_, key);
  key_ = std::move(key);
}

Ref<zrGridRow> zrGridRows::Add(const std::string& key, const Variant& before, const Variant& after) {
  const std::size_t place = PlaceFor(items_, before, after);
  const Ref<zrGridRow> row(new zrGridRow(this, key));
  items_.Insert(row, key, place);
  Renumber(place);
  if (owner_) owner_->RowsChanged(place);
  return row;
}

void zrGridRows::DetachRows() {
  for (std::size_t i = 1; i <= items_.Count(); ++i) {
    (*items_.At(i))->list_ = nullptr;
    (*items_.At(i))->index_ = 0;
  }
}

void zrGridRows::Clear() {
  DetachRows();
  items_.Clear();
  if (owner_) owner_->RowsChanged(1);
}

void zrGridRows::Move(std::int32_t from, std::int32_t to) {
  const std::size_t source = RequirePosition(items_, from);
  const std::size_t target = RequirePosition(items_, to);
  items_.Move(source, target);
  Renumber(std::min(source, target));
  if (owner_) owner_->RowsChanged(std::min(source, target));
}

void zrGridRows::Remove(const Variant& index) {
  const std::size_t position = RequirePosition(items_, index);
  const Ref<zrGridRow> row = items_.RemoveAt(position);
  row->list_ = nullptr;
  row->index_ = 0;
  Renumber(position);
  if (owner_) owner_->RowsChanged(position);
}

void zrGridRows::RemoveIf(const std::function<bool(const zrGridRow&)>& unwanted) {
  std::size_t first = 0;
  items_.RemoveIf([&](const Ref<zrGridRow>& row) {
    if (!unwanted(*row)) return false;
    if (first == 0 || row->index_ < first) first = row->index_;
    row->list_ = nullptr;
    row->index_ = 0;
    return true;
  });
  if (first == 0) return;
  Renumber(first);
  if (owner_) owner_->RowsChanged(first);
}

void zrGridRows::DropColumn(std::size_t position) {
  for (std::size_t i = 1; i <= items_.Count(); ++i) {
    auto& cells = (*items_.At(i))->cells_;
    if (position <= cells.size()) cells.erase(cells.begin() + static_cast<std::ptrdiff_t>(position - 1));
  }
}

void zrGridRows::Renumber(std::size_t from) {
  for (std::size_t i = from; i <= items_.Count(); ++i) (*items_.At(i))->index_ = i;
}

}  // namespace zrqrybld
