#include "zrqrybld/grid/rows.h"

#include <algorithm>
#include <new>
#include <optional>
#include <utility>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_grid.h"

namespace zrqrybld {
namespace {

const Variant& EmptyCell() {
  static const Variant kEmpty;
  return kEmpty;
}

const std::string& NoText() {
  static const std::string kNone;
  return kNone;
}

Variant AsCheckBoxValue(const Variant& value) {
  try {
    return value.ToBoolean();
  } catch (const Error&) {
    throw Error(ErrorInvalidPropertyValue, text::BooleanExpected);
  }
}

}  // namespace

zrGridRow::zrGridRow(std::string key) {
  if (key.empty()) return;
  content_ = std::make_shared<RowContent>();
  content_->key = std::move(key);
}

std::size_t zrGridRow::Position(const Variant& column) const {
  if (!list_ || !list_->owner_) ThrowObjectRemoved();
  return list_->owner_->ColumnPosition(column);
}

// What the row holds, to be changed: a copy when it is remembered elsewhere.
RowContent& zrGridRow::Changing() {
  if (!content_) {
    content_ = std::make_shared<RowContent>();
  } else if (content_.use_count() > 1) {
    content_ = std::make_shared<RowContent>(*content_);
  }
  if (list_) list_->untouched_.Touch(IndexInList() - 1, list_->items_.Count() - IndexInList());
  return *content_;
}

GridCell& zrGridRow::CellAt(std::size_t column) {
  RowContent& content = Changing();
  if (content.cells.size() < column) content.cells.resize(column);
  return content.cells[column - 1];
}

const GridCell* zrGridRow::CellIf(std::size_t column) const {
  return content_ && column <= content_->cells.size() ? &content_->cells[column - 1] : nullptr;
}

const Variant& zrGridRow::ValueAt(std::size_t column) const {
  const GridCell* cell = CellIf(column);
  return cell ? cell->value : EmptyCell();
}

const Variant& zrGridRow::TagAt(std::size_t column) const {
  const GridCell* cell = CellIf(column);
  return cell ? cell->tag : EmptyCell();
}

const std::string& zrGridRow::HintAt(std::size_t column) const {
  const GridCell* cell = CellIf(column);
  return cell && cell->hint ? *cell->hint : NoText();
}

const std::string& zrGridRow::Hint(const Variant& column) const { return HintAt(Position(column)); }

void zrGridRow::SetHint(const Variant& column, std::string text) {
  const std::size_t position = Position(column);
  CellAt(position).hint = text.empty() ? nullptr : std::make_shared<const std::string>(std::move(text));
  list_->owner_->CellLooksChanged();
}

std::int32_t zrGridRow::MaxLen(const Variant& column) const {
  const GridCell* cell = CellIf(Position(column));
  return cell ? cell->maxLen : 0;
}

void zrGridRow::SetMaxLen(const Variant& column, std::int32_t characters) {
  const std::size_t position = Position(column);
  const GridCell* cell = CellIf(position);
  if ((cell ? cell->maxLen : 0) != characters) CellAt(position).maxLen = characters;
}

const Variant& zrGridRow::Value(const Variant& column) const { return ValueAt(Position(column)); }

void zrGridRow::SetValue(const Variant& column, Variant value) {
  const std::size_t position = Position(column);
  if (ValueAt(position) == value) return;
  RowOwner& owner = *list_->owner_;
  if (owner.IsCheckBoxColumn(position)) {
    value = AsCheckBoxValue(value);
    if (ValueAt(position) == value) return;
  }
  const Ref<Object> alive = shared_from_this();  // a listener may remove the row, or let go of the grid
  const Ref<Object> grid = owner.Alive();
  if (!owner.BeforeCellChange(IndexInList(), position) || !list_) return;
  GridCell& cell = CellAt(position);
  Variant before = std::exchange(cell.value, std::move(value));
  cell.hint.reset();
  try {
    owner.AfterCellChange(IndexInList(), position);
  } catch (const std::bad_alloc&) {
    // Where the change was remembered, or was taken back, the content is shared; else nobody has heard of it.
    const bool unheard = content_.use_count() == 1 && position <= content_->cells.size();
    if (unheard) content_->cells[position - 1].value = std::move(before);
    throw;
  }
}

const Variant& zrGridRow::TagVariant(const Variant& column) const { return TagAt(Position(column)); }

void zrGridRow::SetTagVariant(const Variant& column, Variant tag) { CellAt(Position(column)).tag = std::move(tag); }

const std::string& zrGridRow::Key() const { return content_ ? content_->key : NoText(); }

void zrGridRow::SetKey(std::string key) {
  if (list_) list_->items_.Rekey(IndexInList(), key);
  Changing().key = std::move(key);
}

void zrGridRows::Insert(const Ref<zrGridRow>& row, std::size_t position) {
  items_.Insert(row, row->Key(), position);
  row->mark_ = items_.MarkAt(position);
  row->list_ = this;
}

void zrGridRows::TakeOut(std::size_t position) { items_.RemoveAt(position)->list_ = nullptr; }

Ref<zrGridRow> zrGridRows::Add(const std::string& key, const Variant& before, const Variant& after) {
  const std::size_t place = PlaceFor(items_, before, after);
  const Ref<zrGridRow> row(new zrGridRow(key));
  Insert(row, place);
  untouched_.Touch(place - 1, items_.Count() - place);
  Changed(place);
  return row;
}

// Who listens may let go of the grid.
void zrGridRows::Changed(std::size_t from) {
  if (!owner_) return;
  const Ref<Object> grid = owner_->Alive();
  owner_->RowsChanged(from);
}

void zrGridRows::DetachRows() {
  for (const Ref<zrGridRow>& row : *this) row->list_ = nullptr;
}

void zrGridRows::Clear() {
  DetachRows();
  items_.Clear();
  untouched_.Touch(0, 0);
  Changed(1);
}

void zrGridRows::Move(std::int32_t from, std::int32_t to) {
  const std::size_t source = RequirePosition(items_, from);
  const std::size_t target = RequirePosition(items_, to);
  items_.Move(source, target);
  untouched_.Touch(std::min(source, target) - 1, items_.Count() - std::max(source, target));
  Changed(std::min(source, target));
}

void zrGridRows::Remove(const Variant& index) {
  const std::size_t position = RequirePosition(items_, index);
  TakeOut(position);
  untouched_.Touch(position - 1, items_.Count() - (position - 1));
  Changed(position);
}

void zrGridRows::RemoveIf(const std::function<bool(const zrGridRow&)>& unwanted) {
  std::vector<Ref<zrGridRow>> rows;
  for (const Ref<zrGridRow>& row : *this) {
    if (unwanted(*row)) rows.push_back(row);
  }
  RemoveAll(rows);
}

void zrGridRows::RemoveAll(const std::vector<Ref<zrGridRow>>& rows) {
  std::optional<std::size_t> first;
  for (const Ref<zrGridRow>& row : rows) {
    if (row->list_ != this) continue;
    const std::size_t position = row->IndexInList();
    first = std::min(position, first.value_or(position));
    TakeOut(position);
    untouched_.Touch(position - 1, items_.Count() - (position - 1));
  }
  if (first) Changed(*first);
}

void zrGridRows::DropColumn(std::size_t position) {
  for (const Ref<zrGridRow>& row : *this) {
    if (!row->CellIf(position)) continue;
    std::vector<GridCell>& cells = row->Changing().cells;
    cells.erase(cells.begin() + static_cast<std::ptrdiff_t>(position - 1));
  }
}

// --- What undo remembers ---

void zrGridRows::Remembered() { untouched_ = {items_.Count(), items_.Count()}; }

void zrGridRows::Restore(std::size_t first, std::size_t count, const std::vector<SharedRowContent>& contents) {
  const auto keyOf = [](const SharedRowContent& content) { return content ? content->key : std::string(); };
  std::size_t same = 0;
  while (same < std::min(count, contents.size()) && (*items_.At(first + same))->Key() == keyOf(contents[same])) ++same;
  for (std::size_t i = 0; i < same; ++i) {
    (*items_.At(first + i))->content_ = std::const_pointer_cast<RowContent>(contents[i]);
  }
  for (std::size_t i = count; i > same; --i) {
    TakeOut(first + i - 1);
  }
  for (std::size_t i = same; i < contents.size(); ++i) {
    const Ref<zrGridRow> row(new zrGridRow({}));
    row->content_ = std::const_pointer_cast<RowContent>(contents[i]);
    Insert(row, first + i);
  }
  untouched_.Touch(first - 1, items_.Count() - (first - 1) - contents.size());
  if (!owner_) return;
  owner_->CellLooksChanged();
  if (same != count || same != contents.size()) Changed(first + same);
}

bool SaysTheSame(const SharedRowContent& a, const SharedRowContent& b) {
  if (a == b) return true;
  static const RowContent kEmpty;
  const RowContent& one = a ? *a : kEmpty;
  const RowContent& other = b ? *b : kEmpty;
  if (one.key != other.key || one.locked != other.locked) return false;
  static const GridCell kNone;
  for (std::size_t i = 0; i < std::max(one.cells.size(), other.cells.size()); ++i) {
    const GridCell& cell = i < one.cells.size() ? one.cells[i] : kNone;
    const GridCell& with = i < other.cells.size() ? other.cells[i] : kNone;
    const bool blank = cell.value.IsBlank() && with.value.IsBlank();
    if ((!blank && cell.value != with.value) || cell.tag != with.tag) return false;
  }
  return true;
}

std::size_t SizeOf(const SharedRowContent& content) {
  std::size_t bytes = sizeof(SharedRowContent);
  if (!content) return bytes;
  bytes += sizeof(RowContent);
  for (const GridCell& cell : content->cells) {
    const std::string* text = cell.value.StringIf();
    bytes += sizeof(GridCell) + (text ? text->size() : 0);
  }
  return bytes;
}

}  // namespace zrqrybld
