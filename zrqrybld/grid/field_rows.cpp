#include "zrqrybld/grid/field_rows.h"

#include <algorithm>

#include "zrqrybld/diagram/entities.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kSlack = 64;

std::string KeyOf(const std::string& table, const std::string& column) { return table + '\0' + column; }

// The rows that are still there and suit, each once.
template <class Suits>
std::vector<Ref<zrGridRow>> RowsAmong(const std::vector<WeakRef<Object>>& noted, Suits suits) {
  std::vector<Ref<zrGridRow>> rows;
  for (const WeakRef<Object>& entry : noted) {
    const auto row = std::static_pointer_cast<zrGridRow>(entry.lock());
    if (row && row->Index() != 0 && suits(*row)) rows.push_back(row);
  }
  std::ranges::sort(rows, {}, [](const Ref<zrGridRow>& row) { return row->Index(); });
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

}  // namespace

FieldName FieldOf(const zrGridRow& row) {
  return {RowReader(row).Text(kColumnTable), RowReader(row).Text(kColumnColumn)};
}

void FieldRows::Note(const zrGridRow& row) {
  if (RowReader(row).IsEmpty()) Shifted(row.Index());
  const std::string* table = row.ValueAt(kColumnTable).StringIf();
  const std::string* column = row.ValueAt(kColumnColumn).StringIf();
  if (table && !table->empty()) NoteTable(row, *table);
  const Ref<qbEntities> entities = rows_.Entities();
  if (column && !column->empty() && !(table && entities && entities->FindExactly(*table))) NoteTyped(row);
  if (!table || !column || column->empty()) return;
  if (byField_.size() > Many()) {
    std::erase_if(byField_, [](const auto& entry) {
      return std::ranges::all_of(entry.second, [](const WeakRef<Object>& noted) { return noted.expired(); });
    });
  }
  Noted& noted = byField_[KeyOf(*table, *column)];
  noted.push_back(rows_.At(row.Index()).weak_from_this());
  if (noted.size() > Many()) Of({*table, *column});
}

void FieldRows::NoteTable(const zrGridRow& row, const std::string& table) {
  if (byTable_.size() > Many()) {
    std::erase_if(byTable_, [this](const auto& entry) { return OfTable(entry.first).empty(); });
  }
  Noted& noted = byTable_[table];
  if (noted.size() > Many()) {
    const std::vector<Ref<zrGridRow>> rows = OfTable(table);
    noted.assign(rows.begin(), rows.end());
  }
  noted.push_back(rows_.At(row.Index()).weak_from_this());
}

void FieldRows::NoteTyped(const zrGridRow& row) {
  if (typed_.size() > Many()) {
    const std::vector<Ref<zrGridRow>> rows = RowsAmong(typed_, [](const zrGridRow&) { return true; });
    typed_.assign(rows.begin(), rows.end());
  }
  typed_.push_back(rows_.At(row.Index()).weak_from_this());
}

// More entries than these hold some that are out of date.
std::size_t FieldRows::Many() const { return 2 * static_cast<std::size_t>(rows_.Count()) + kSlack; }

void FieldRows::Shifted(std::int32_t from) { emptyFrom_ = std::min(emptyFrom_, from); }

void FieldRows::Clear() {
  byField_.clear();
  byTable_.clear();
  typed_.clear();
}

std::vector<Ref<zrGridRow>> FieldRows::OfTable(const std::string& table) const {
  const auto noted = byTable_.find(table);
  if (noted == byTable_.end()) return {};
  return RowsAmong(noted->second, [&](const zrGridRow& row) {
    const std::string* named = row.ValueAt(kColumnTable).StringIf();
    return named && *named == table;
  });
}

std::vector<Ref<zrGridRow>> FieldRows::MayName(const std::string& table) const {
  std::vector<WeakRef<Object>> noted = typed_;
  for (const Ref<zrGridRow>& row : OfTable(table)) noted.push_back(row);
  return RowsAmong(noted, [](const zrGridRow&) { return true; });
}

std::vector<Ref<zrGridRow>> FieldRows::Of(const FieldName& field) const {
  const auto noted = byField_.find(KeyOf(field.table, field.column));
  if (noted == byField_.end()) return {};
  std::vector<Ref<zrGridRow>> rows =
      RowsAmong(noted->second, [&](const zrGridRow& row) { return RowReader(row).Names(field.table, field.column); });
  if (rows.empty()) {
    byField_.erase(noted);
  } else {
    noted->second.assign(rows.begin(), rows.end());
  }
  return rows;
}

bool FieldRows::IsOutput(const FieldName& field) const {
  const auto noted = byField_.find(KeyOf(field.table, field.column));
  return noted != byField_.end() && std::ranges::any_of(noted->second, [&](const WeakRef<Object>& entry) {
           const auto row = std::static_pointer_cast<zrGridRow>(entry.lock());
           return row && row->Index() != 0 && RowReader(*row).IsOutput() &&
                  RowReader(*row).Names(field.table, field.column);
         });
}

std::int32_t FieldRows::FirstEmpty() {
  while (emptyFrom_ <= rows_.Count() && !RowReader(rows_.At(emptyFrom_)).IsEmpty()) ++emptyFrom_;
  return emptyFrom_ <= rows_.Count() ? emptyFrom_ : 0;
}

}  // namespace zrqrybld
