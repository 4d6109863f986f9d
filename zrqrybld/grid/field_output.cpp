#include "zrqrybld/grid/field_output.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {
namespace {

std::string KeyOf(const FieldName& field) {
  return std::to_string(field.table.size()) + ":" + field.table + field.column;
}

}  // namespace

// --- Into the grid, and out of it ---

std::int32_t FieldOutput::Tick(const FieldName& field) {
  const std::vector<Ref<zrGridRow>> rows = fields_.Of(field);
  if (rows.empty()) return 0;
  RowWriter(*rows.front()).SetOutput(true);
  return rows.front()->Index();
}

std::int32_t FieldOutput::Add(const FieldName& field, std::int32_t before) {
  std::int32_t position = before;
  if (before > 0) {
    rows_.Grid().Rows()->Add({}, before);
  } else {
    position = fields_.FirstEmpty();
    if (position == 0) {
      rows_.AddEmpty();
      position = rows_.Count();
    }
  }
  const Ref<zrGridRow> row = rows_.Hold(position);
  const RowWriter writer(*row);
  writer.SetAliasMaxLen(rows_.AliasMaxLen());
  writer.SetText(kColumnTable, field.table);
  writer.SetText(kColumnColumn, field.column);
  writer.SetOutput(true);
  if (grouping_.IsShown()) grouping_.Fill(*row);
  rows_.EnsureEmptyLast();
  return row->Index();
}

void FieldOutput::Untick(const FieldName& field) {
  const std::vector<Ref<zrGridRow>> rows = fields_.Of(field);
  for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
    if ((*row)->Index() == 0) continue;  // a listener of RowColChange has removed it
    if (RowReader(**row).HasContent(rows_.LastColumn())) {
      RowWriter(**row).SetOutput(false);
    } else {
      rows_.Grid().Rows()->Remove((*row)->Index());
    }
  }
  rows_.EnsureEmptyLast();
}

void FieldOutput::AddRows(const std::vector<QueryRow>& rows) {
  const Ref<QueryContext> context = rows_.Context();  // it holds the functions
  std::optional<RedrawPause> pause(std::in_place, rows_.Grid());
  std::int32_t position = fields_.FirstEmpty();
  for (const QueryRow& content : rows) {
    // Filled rows may stand between the empty ones.
    while (position != 0 && position <= rows_.Count() && !RowReader(rows_.At(position)).IsEmpty()) ++position;
    if (position == 0 || position > rows_.Count()) {
      rows_.AddEmpty();
      position = rows_.Count();
    }
    const Ref<zrGridRow> row = rows_.Hold(position);
    const RowWriter writer(*row);
    writer.SetAliasMaxLen(rows_.AliasMaxLen());
    writer.Write(content, rows_.Functions());
    ++position;
  }
  rows_.EnsureEmptyLast();
  pause.reset();
  for (const QueryRow& content : rows) {
    if (content.output) Push({content.table, content.column}, true);
  }
}

// --- The diagram ---

void FieldOutput::Push(const FieldName& field, bool checked) const {
  const Ref<qbEntities> entities = rows_.Entities();
  const Ref<qbEntity> entity = entities ? entities->FindExactly(field.table) : nullptr;
  const Ref<qbEntityItem> item = entity ? FindItemExactly(*entity, field.column) : nullptr;
  if (item) item->SetChecked(checked);
}

void FieldOutput::FollowAll() const {
  std::unordered_set<std::string> outputs;
  for (const Ref<zrGridRow>& row : *rows_.Grid().Rows()) {
    if (RowReader(*row).IsOutput()) outputs.insert(KeyOf(FieldOf(*row)));
  }
  const Ref<qbEntities> entities = rows_.Entities();
  for (std::int32_t i = 1; entities && i <= entities->Count(); ++i) {
    const Ref<qbEntity> entity = entities->Item(i);
    for (std::int32_t j = 1; j <= entity->Items()->Count(); ++j) {
      const Ref<qbEntityItem> item = entity->Items()->Item(j);
      item->SetChecked(outputs.contains(KeyOf({entity->Caption(), item->Text()})));
    }
  }
}

std::vector<FieldName> FieldOutput::TickedOnly() const {
  std::vector<FieldName> fields;
  const Ref<qbEntities> entities = rows_.Entities();
  for (std::int32_t i = 1; entities && i <= entities->Count(); ++i) {
    const Ref<qbEntity> entity = entities->Item(i);
    for (std::int32_t j = 1; j <= entity->Items()->Count(); ++j) {
      const Ref<qbEntityItem> item = entity->Items()->Item(j);
      if (!item->Checked()) continue;
      FieldName field{entity->Caption(), item->Text()};
      if (!fields_.IsOutput(field)) fields.push_back(std::move(field));
    }
  }
  return fields;
}

void FieldOutput::AboutToGo(std::int32_t first, std::int32_t last) {
  const auto busy = rows_.Busy();
  for (std::int32_t i = first; i <= last && i <= rows_.Count(); ++i) {
    const Ref<zrGridRow> row = rows_.Hold(i);
    if (!RowReader(*row).IsOutput()) continue;
    RowWriter(*row).SetOutput(false);
    const FieldName field = FieldOf(*row);
    if (!fields_.IsOutput(field)) Push(field, false);
  }
}

// --- Names ---

void FieldOutput::Respell(zrGridRow& row, std::int32_t column) const {
  const Ref<QueryContext> context = rows_.Context();
  const Ref<qbEntities> entities = rows_.Entities();
  if (!entities || !context) return;
  const FieldName typed = FieldOf(row);
  if (column == kColumnTable && typed.table.empty()) return;
  const NameRules rules = CurrentNameRules(*context);
  const Ref<qbEntity> entity = FindTypedTable(*entities, typed.table, rules);
  const Ref<qbEntityItem> item = entity ? FindTypedColumn(*entity, typed.column, rules) : nullptr;
  const auto set = [&row](std::size_t cell, const std::string& text) {
    if (row.Index() != 0) RowWriter(row).SetText(cell, text);  // a listener may have removed it
  };
  if (item) {
    const std::string name = item->Text();
    set(kColumnTable, entity->Caption());
    set(kColumnColumn, name);
  } else if (column == kColumnTable) {
    if (entity) set(kColumnTable, entity->Caption());
  } else if (const std::optional<FieldName> field = FindQualifiedField(*entities, typed.column, rules)) {
    set(kColumnTable, field->table);
    set(kColumnColumn, field->column);
  }
}

// A field of the diagram is found however it is written. Of any other text, what stands behind the last "." is the
// field, and what stands before it the table, its parts joined by the source's separator.
FieldName FieldOutput::FieldIn(const std::string& text) const {
  const Ref<QueryContext> context = rows_.Context();
  const Ref<qbEntities> entities = rows_.Entities();
  const std::size_t dot = text.rfind('.');
  FieldName field{dot == std::string::npos ? "" : text.substr(0, dot),
                  text.substr(dot == std::string::npos ? 0 : dot + 1)};
  if (!entities) return field;
  const NameRules rules = CurrentNameRules(*context);
  std::optional<FieldName> known = FindQualifiedField(*entities, text, rules);
  if (!known && dot == std::string::npos) known = FindOnlyField(*entities, text, rules);
  if (known) return *known;
  const std::optional<std::string> separator = context->source.Properties()->FindText("SCHEMA_SEPARATOR");
  if (separator && !separator->empty() && !entities->Item(field.table)) {
    field.table = ReplaceAll(field.table, ".", *separator);
  }
  if (const Ref<qbEntity> entity = entities->Item(field.table)) {
    const Ref<qbEntityItem> item = entity->Items()->Item(field.column);
    return {entity->Caption(), item ? item->Text() : field.column};
  }
  return field;
}

}  // namespace zrqrybld
