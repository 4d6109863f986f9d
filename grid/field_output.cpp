// SetFieldOutput: the one way by which a field gets into the grid or out of it, and how the grid and
// the boxes keep each other's ticks.
#include <algorithm>
#include <optional>

#include "base/scoped_value.h"
#include "base/text.h"
#include "diagram/entities.h"
#include "grid/field_names.h"
#include "grid/grid_pane.h"
#include "sql/source_rules.h"

namespace zrqrybld {
namespace {

std::string FieldKey(const std::string& table, const std::string& name) { return table + '\0' + name; }

}  // namespace

std::int32_t qbGridPane::SetFieldOutput(const std::string& fieldName, bool checked, const std::string& tableName,
                                        const FieldOutputOptions& options) {
  if (busy_) return 0;
  const StepScope step(context_.lock(), checked ? kStepAddColumn : kStepRemoveColumn, fieldName);
  return WholeOrNothing(context_.lock(), [&] {
    const Field field{tableName, fieldName};
    std::int32_t row = 0;
    {
      const ScopedValue busy(busy_, true);
      if (checked) {
        if (!options.skipSearch) row = TickRows(field);
        if (row == 0) row = FillNewRow(field, options.before);
      } else {
        UntickRows(field);
      }
      PushToDiagram(field, checked);
    }
    ReportChange();
    return row;
  });
}

// --- The rows of a field ---

// A row that names another field, or none, from now on. What it named before stays noted until it is looked up.
void qbGridPane::NoteRow(const zrGridRow& row) {
  if (RowReader(row).IsEmpty()) emptyFrom_ = std::min(emptyFrom_, row.Index());
  const std::string* table = row.ValueAt(kColumnTable).StringIf();
  const std::string* column = row.ValueAt(kColumnColumn).StringIf();
  if (table && !table->empty()) NoteTable(row, *table);
  if (!table || !column || column->empty()) return;
  constexpr std::size_t kSlack = 64;
  if (rowsByField_.size() > 2 * static_cast<std::size_t>(RowCount()) + kSlack) {
    std::erase_if(rowsByField_, [](const auto& entry) {
      return std::ranges::all_of(entry.second, [](const WeakRef<Object>& noted) { return noted.expired(); });
    });
  }
  rowsByField_[FieldKey(*table, *column)].push_back(RowAt(row.Index()).weak_from_this());
}

void qbGridPane::NoteTable(const zrGridRow& row, const std::string& table) {
  constexpr std::size_t kSlack = 64;
  const std::size_t many = 2 * static_cast<std::size_t>(RowCount()) + kSlack;
  if (rowsByTable_.size() > many) {
    std::erase_if(rowsByTable_, [this](const auto& entry) { return RowsOfTable(entry.first).empty(); });
  }
  std::vector<WeakRef<Object>>& noted = rowsByTable_[table];
  if (noted.size() > many) {
    const std::vector<Ref<zrGridRow>> rows = RowsOfTable(table);
    noted.assign(rows.begin(), rows.end());
  }
  noted.push_back(RowAt(row.Index()).weak_from_this());
}

// The rows that name the table, in their order.
std::vector<Ref<zrGridRow>> qbGridPane::RowsOfTable(const std::string& table) const {
  std::vector<Ref<zrGridRow>> rows;
  const auto noted = rowsByTable_.find(table);
  if (noted == rowsByTable_.end()) return rows;
  for (const WeakRef<Object>& entry : noted->second) {
    const auto row = std::static_pointer_cast<zrGridRow>(entry.lock());
    const std::string* named = row && row->Index() != 0 ? row->ValueAt(kColumnTable).StringIf() : nullptr;
    if (named && *named == table) rows.push_back(row);
  }
  std::ranges::sort(rows, {}, [](const Ref<zrGridRow>& row) { return row->Index(); });
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

// The rows that name the field, in their order.
std::vector<Ref<zrGridRow>> qbGridPane::RowsOf(const Field& field) const {
  std::vector<Ref<zrGridRow>> rows;
  const auto noted = rowsByField_.find(FieldKey(field.table, field.name));
  if (noted == rowsByField_.end()) return rows;
  for (const WeakRef<Object>& entry : noted->second) {
    const auto row = std::static_pointer_cast<zrGridRow>(entry.lock());
    if (row && row->Index() != 0 && RowReader(*row).Names(field.table, field.name)) rows.push_back(row);
  }
  std::ranges::sort(rows, {}, [](const Ref<zrGridRow>& row) { return row->Index(); });
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  if (rows.empty()) {
    rowsByField_.erase(noted);
  } else {
    noted->second.assign(rows.begin(), rows.end());
  }
  return rows;
}

// The first row of the field outputs it from now on; 0 when it has no row.
std::int32_t qbGridPane::TickRows(const Field& field) {
  const std::vector<Ref<zrGridRow>> rows = RowsOf(field);
  if (rows.empty()) return 0;
  RowWriter(*rows.front()).SetOutput(true);
  return rows.front()->Index();
}

// All rows of the field stop to output it; those that say nothing else go.
void qbGridPane::UntickRows(const Field& field) {
  const std::vector<Ref<zrGridRow>> rows = RowsOf(field);
  for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
    if ((*row)->Index() == 0) continue;  // a listener of RowColChange has removed it
    if (RowReader(**row).HasContent(LastColumn())) {
      RowWriter(**row).SetOutput(false);
    } else {
      grdPane_->Rows()->Remove((*row)->Index());
    }
  }
  EnsureEmptyLastRow();
}

bool qbGridPane::IsOutput(const Field& field) const {
  return std::ranges::any_of(RowsOf(field), [](const Ref<zrGridRow>& row) { return RowReader(*row).IsOutput(); });
}

std::int32_t qbGridPane::FirstEmptyRow() {
  while (emptyFrom_ <= RowCount() && !RowReader(RowAt(emptyFrom_)).IsEmpty()) ++emptyFrom_;
  return emptyFrom_ <= RowCount() ? emptyFrom_ : 0;
}

std::int32_t qbGridPane::FillNewRow(const Field& field, std::int32_t before) {
  std::int32_t position = before;
  if (before > 0) {
    grdPane_->Rows()->Add({}, before);
  } else {
    position = FirstEmptyRow();
    if (position == 0) {
      AddEmptyRow();
      position = RowCount();
    }
  }
  const Ref<zrGridRow> row = grdPane_->Rows()->Item(position);
  const RowWriter writer(*row);
  writer.SetAliasMaxLen(AliasMaxLen());
  writer.SetText(kColumnTable, field.table);
  writer.SetText(kColumnColumn, field.name);
  writer.SetOutput(true);
  if (showGroupBy_) SetRowGroupBy(*row);
  EnsureEmptyLastRow();
  return row->Index();
}

// The columns that are ticked in the diagram and no row outputs.
std::vector<qbGridPane::Field> qbGridPane::TickedFields() const {
  std::vector<Field> fields;
  const Ref<qbEntities> entities = Entities();
  for (std::int32_t i = 1; entities && i <= entities->Count(); ++i) {
    const Ref<qbEntity> entity = entities->Item(i);
    for (std::int32_t j = 1; j <= entity->Items()->Count(); ++j) {
      const Ref<qbEntityItem> item = entity->Items()->Item(j);
      if (!item->Checked()) continue;
      Field field{entity->Caption(), item->Text()};
      if (!IsOutput(field)) fields.push_back(std::move(field));
    }
  }
  return fields;
}

bool qbGridPane::OutputTicked() {
  const std::vector<Field> fields = TickedFields();
  if (fields.empty()) return false;
  const StepScope step(context_.lock(), kStepAddColumns);
  for (const Field& field : fields) SetFieldOutput(field.name, true, field.table);
  return true;
}

void qbGridPane::AddRows(const std::vector<QueryRow>& rows) {
  const Ref<QueryContext> context = context_.lock();
  const StepScope step(context, kStepAddColumns);
  {
    const ScopedValue busy(busy_, true);
    std::optional<RedrawPause> pause(std::in_place, *grdPane_);
    std::int32_t position = FirstEmptyRow();
    for (const QueryRow& content : rows) {
      // Filled rows may stand between the empty ones.
      while (position != 0 && position <= RowCount() && !RowReader(RowAt(position)).IsEmpty()) ++position;
      if (position == 0 || position > RowCount()) {
        AddEmptyRow();
        position = RowCount();
      }
      const Ref<zrGridRow> row = HoldRow(position);
      const RowWriter writer(*row);
      writer.SetAliasMaxLen(AliasMaxLen());
      writer.Write(content, context ? context->DBFunctions().get() : nullptr);
      ++position;
    }
    EnsureEmptyLastRow();
    pause.reset();
    for (const QueryRow& content : rows) {
      if (content.output) PushToDiagram({content.table, content.column}, true);
    }
  }
  ReportChange();
}

// --- The diagram ---

void qbGridPane::PushToDiagram(const Field& field, bool checked) {
  const Ref<qbEntities> entities = Entities();
  const Ref<qbEntity> entity = entities ? entities->FindExactly(field.table) : nullptr;
  const Ref<qbEntityItem> item = entity ? FindItemExactly(*entity, field.name) : nullptr;
  if (item) item->SetChecked(checked);
}

// A field of the diagram is found however it is written. Of any other text, what stands behind the last "." is the
// field, and what stands before it the table, its parts joined by the source's separator.
qbGridPane::Field qbGridPane::FieldIn(const std::string& text) const {
  const Ref<QueryContext> context = context_.lock();
  const Ref<qbEntities> entities = Entities();
  const std::size_t dot = text.rfind('.');
  Field field{dot == std::string::npos ? "" : text.substr(0, dot), text.substr(dot == std::string::npos ? 0 : dot + 1)};
  if (!entities) return field;
  const NameRules rules = CurrentNameRules(*context);
  std::optional<FieldName> known = FindQualifiedField(*entities, text, rules);
  if (!known && dot == std::string::npos) known = FindOnlyField(*entities, text, rules);
  if (known) return {known->table, known->column};
  const std::optional<std::string> separator = context->Properties()->FindText("SCHEMA_SEPARATOR");
  if (separator && !separator->empty() && !entities->Item(field.table)) {
    field.table = ReplaceAll(field.table, ".", *separator);
  }
  if (const Ref<qbEntity> entity = entities->Item(field.table)) {
    const Ref<qbEntityItem> item = entity->Items()->Item(field.name);
    return {entity->Caption(), item ? item->Text() : field.name};
  }
  return field;
}

bool qbGridPane::IsFieldText(const std::string& text) {
  return text.find_first_of("\r\n") == std::string::npos && !TrimWhite(text).empty() && !text.ends_with('.');
}

// The field goes in above the row it was dropped on.
void qbGridPane::DropField(const std::string& text, PixelPoint at) {
  const std::string trimmed(TrimWhite(text));
  if (!IsFieldText(trimmed)) return;
  const Field field = FieldIn(trimmed);
  const GridHit hit = grdPane_->GetRowColumnIndex({1_px, at.y});
  SetFieldOutput(field.name, true, field.table, {false, static_cast<std::int32_t>(hit.row)});
}

}  // namespace zrqrybld
