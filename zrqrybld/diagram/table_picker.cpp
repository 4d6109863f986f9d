#include "zrqrybld/diagram/table_picker.h"

#include <algorithm>
#include <map>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/base/texts_diagram.h"
#include "zrqrybld/diagram/auto_joins.h"
#include "zrqrybld/diagram/query_boxes.h"
#include "zrqrybld/diagram/source_names.h"
#include "zrqrybld/diagram/type_kind.h"
#include "zrqrybld/host/connection_info.h"
#include "zrqrybld/host/language_ids.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/platform/dialogs.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/outer_queries.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {
namespace {

// How many of the separators in a name are tried as the one behind the schema: each costs a question.
constexpr int kMostSplits = 4;

// Two parts are schema and table; of more, the last two count and the one before is the catalog.
SchemaRestrictions RestrictionsFor(const std::vector<Identifier>& parts) {
  SchemaRestrictions restrictions;
  const auto part = [&](std::size_t fromEnd) -> std::optional<std::string> {
    if (parts.size() <= fromEnd || parts[parts.size() - 1 - fromEnd].Empty()) return std::nullopt;
    return parts[parts.size() - 1 - fromEnd].Name();
  };
  restrictions.table = part(0);
  restrictions.schema = part(1);
  restrictions.catalog = part(2);
  return restrictions;
}

// Whether the name is that of a table of a query around, and the design names it.
bool NamesAround(const QueryContext& context, const std::string& name) {
  const std::shared_ptr<const OuterQueries> outer = context.design.Outer();
  return outer && outer->FindTable(name) &&
         std::ranges::any_of(OuterTablesNamed(context.design.Snapshot()),
                             [&](const std::string& named) { return EqualsNoCase(named, name); });
}

}  // namespace

// The first copy keeps its separators; later copies lose them, so that a number can follow. A table that would take the
// name of one of a query around which is named here counts as a copy.
std::string TablePicker::FreshKey(const std::string& tableName) const {
  const std::string name = IsTextSource(*context_) ? ReplaceAll(tableName, ".", "_") : tableName;
  const Ref<qbEntities> entities = context_->design.Entities();
  if (!entities->Item(name) && !NamesAround(*context_, name)) return name;
  const std::optional<std::string> separator = context_->source.Properties()->FindText("SCHEMA_SEPARATOR");
  const std::string stem = separator ? ReplaceAll(name, *separator, "_") : name;
  for (int copy = 1;; ++copy) {
    std::string key = stem + std::to_string(copy);
    if (!entities->Item(key)) return key;
  }
}

Ref<qbEntity> TablePicker::AddTable(const std::string& tableName) {
  if (!context_->design.Entities()) return nullptr;
  Ref<qbEntity> entity;
  const BusyPointer busy(context_->source.GetToolkit());
  context_->steps.RunOperation(
      kStepAddTable, InfoRetrieveTableInfo,
      [&] {
        try {
          entity = MakeEntity(tableName);
        } catch (const std::exception& cause) {
          throw WrapError(ErrorAddingTable, {text::AddingTableFailed, tableName}, cause);
        }
      },
      tableName);
  return entity;
}

Ref<qbEntity> TablePicker::MakeEntity(const std::string& tableName) {
  const Ref<qbEntities> entities = context_->design.Entities();
  const Ref<qbEntity> entity = entities->Add(FreshKey(tableName));
  const std::optional<std::vector<QueryColumn>> query = context_->design.ColumnsOfQuery(tableName);
  if (!entity || (!context_->source.IsConnected() && !query)) return entity;
  entity->SetTagVariant(tableName);
  entity->Items()->Add("*", "*");
  try {
    context_->steps.RaiseInfo(InfoRetrieveTableInfo, Ref<Object>(entity));
  } catch (...) {
    entities->TakeBack(entity);
    throw;
  }
  if (query) {
    ShowColumns(*entities, *entity, *query, *context_->source.DataTypes());
  } else {
    FillFromSource(*entity, tableName);
  }
  if (!entity->EntityBox()) ThrowObjectRemoved();  // a listener has removed it
  entity->EntityBox()->SetIsView(
      EqualsNoCase(entity->Properties()->FindText(std::string(kSchemaFactPrefix) + "TABLE_TYPE").value_or(""), "VIEW"));
  entities->Fit(*entity);
  context_->reports.TableAdded(entity->Caption());
  return entity;
}

void TablePicker::FillFromSource(qbEntity& entity, const std::string& tableName) {
  if (tableName.empty()) return;  // to a source that means any table
  const FoundTable table = FindTable(tableName);
  for (std::size_t i = 0; !table.row->Eof() && i < table.row->FieldCount(); ++i) {
    entity.Properties()->Set(std::string(kSchemaFactPrefix) + std::string(table.row->FieldName(i)),
                             table.row->Value(i));
  }
  AddColumns(entity, table.restrictions);
  MarkPrimaryKeys(entity, table.restrictions);
}

// A name whose parts name no table may itself hold the separator or the quotes: it is then tried whole.
TablePicker::FoundTable TablePicker::FindTable(const std::string& tableName) {
  const std::vector<Identifier> parts = SplitName(tableName, CurrentNameRules(*context_));
  FoundTable found{RestrictionsFor(parts), nullptr};
  // Quotes in a listed name are part of it.
  if (tableName.find_first_of("\"[`") != std::string::npos) {
    if (std::optional<FoundTable> listed = FindListed(tableName)) return *std::move(listed);
  }
  const bool namesTable = found.restrictions.table.has_value();
  if (namesTable) {
    found.row = context_->source.Connection()->OpenSchema(SchemaKind::Tables, found.restrictions);
    if (!found.row->Eof() || (parts.size() == 1 && parts.front().Name() == tableName)) return found;
  }
  FoundTable whole;
  whole.restrictions.table = tableName;
  whole.row = context_->source.Connection()->OpenSchema(SchemaKind::Tables, whole.restrictions);
  if (!whole.row->Eof()) return whole;
  if (std::optional<FoundTable> listed = FindListed(tableName)) return *std::move(listed);
  return namesTable ? std::move(found) : std::move(whole);
}

// A name as lists show it: the schema, the separator and the table, of which either may hold anything.
std::optional<TablePicker::FoundTable> TablePicker::FindListed(const std::string& tableName) {
  const std::string separator = CurrentNameRules(*context_).schemaSeparator;
  if (separator.empty()) return std::nullopt;
  std::size_t place = tableName.find(separator);
  for (int i = 0; i < kMostSplits && place != std::string::npos; ++i, place = tableName.find(separator, place + 1)) {
    FoundTable listed;
    listed.restrictions.schema = tableName.substr(0, place);
    listed.restrictions.table = tableName.substr(place + separator.size());
    if (listed.restrictions.schema->empty() || listed.restrictions.table->empty()) continue;
    listed.row = context_->source.Connection()->OpenSchema(SchemaKind::Tables, listed.restrictions);
    if (!listed.row->Eof()) return listed;
  }
  return std::nullopt;
}

bool TablePicker::HasTable(const std::string& tableName) {
  return !tableName.empty() && !FindTable(tableName).row->Eof();
}

bool TablePicker::HasTableSpelled(const std::string& tableName, const std::string& ownName) {
  const FoundTable table = FindTable(tableName);
  return !table.row->Eof() && table.row->Text("TABLE_NAME") == ownName;
}

std::optional<std::vector<SourceColumn>> TablePicker::ReadColumns(const std::string& tableName, std::string* ownName) {
  if (tableName.empty()) return std::nullopt;
  const FoundTable table = FindTable(tableName);
  if (table.row->Eof()) return std::nullopt;
  if (ownName) *ownName = table.row->Text("TABLE_NAME");
  return ReadColumns(table.restrictions);
}

std::optional<std::vector<SourceColumn>> TablePicker::ReadColumnsAndKeys(const std::string& tableName) {
  if (tableName.empty()) return std::nullopt;
  const FoundTable table = FindTable(tableName);
  if (table.row->Eof()) return std::nullopt;
  std::vector<SourceColumn> columns = ReadColumns(table.restrictions);
  for (const std::string& key : ReadKeyColumns(table.restrictions)) {
    const auto column = std::ranges::find(columns, key, &SourceColumn::name);
    if (column != columns.end()) column->isKey = true;
  }
  return columns;
}

std::vector<SourceColumn> TablePicker::ReadColumns(const SchemaRestrictions& table) {
  std::map<std::int32_t, SourceColumn> columns;
  const bool byOrdinal = context_->design.RetrieveFieldOrder() == FieldOrderOrdinal;
  const auto rows = context_->source.Connection()->OpenSchema(SchemaKind::Columns, table);
  for (; !rows->Eof(); rows->MoveNext()) {
    const auto next = static_cast<std::int32_t>(columns.size()) + 1;
    const Variant ordinal = rows->Value("ORDINAL_POSITION");
    const std::int32_t position = byOrdinal && !ordinal.IsNull() ? ordinal.ToInt32() : next;
    const Variant flags = rows->Value("COLUMN_FLAGS");
    const std::int32_t bits = flags.IsBlank() ? 0 : flags.ToInt32();
    SourceColumn column{rows->Text("COLUMN_NAME"), rows->Value("DATA_TYPE").ToInt32(), (bits & ColumnLong) != 0};
    const bool added = columns.try_emplace(position, std::move(column)).second;
    if (!added) ThrowDuplicateKey("fld" + std::to_string(position));
  }
  std::vector<SourceColumn> inOrder;
  std::int32_t expected = 0;
  for (auto& [position, column] : columns) {
    // Positions with gaps are a fault of the source that must not go unnoticed.
    if (position != ++expected) ThrowNoSuchItem();
    if (column.name != "*") inOrder.push_back(std::move(column));  // a row with "*" means all columns
  }
  return inOrder;
}

void TablePicker::AddColumns(qbEntity& entity, const SchemaRestrictions& table) {
  for (const SourceColumn& column : ReadColumns(table)) {
    const Ref<qbEntityItem> item = entity.Items()->Add(column.name, column.name);
    item->Properties()->Add(column.type, "data_type");
    item->Properties()->Add(column.isLong, "is_long");
    item->SetKind(KindOfType(column.type));
    const Ref<qbDataType> type = context_->source.DataTypes()->FindByIndicatorLong(column.type, column.isLong);
    if (!type) continue;
    entity.EntityBox()->Rows().At(static_cast<std::size_t>(item->Index()))->SetDataTypeName(type->Name);
    item->SetToolTipText(column.name + ": " + type->Name);
  }
}

std::vector<std::string> TablePicker::ReadKeyColumns(const SchemaRestrictions& table) {
  std::vector<std::string> keys;
  try {
    const auto rows = context_->source.Connection()->OpenSchema(SchemaKind::PrimaryKeys, table);
    for (; !rows->Eof(); rows->MoveNext()) keys.push_back(rows->Text("COLUMN_NAME"));
  } catch (const Error& error) {
    if (error.Number() != ErrorSchemaNotSupported) throw;
  }
  return keys;
}

void TablePicker::MarkPrimaryKeys(qbEntity& entity, const SchemaRestrictions& table) {
  for (const std::string& key : ReadKeyColumns(table)) {
    if (const Ref<qbEntityItem> item = entity.Items()->Item(key)) item->SetBold(true);
  }
}

std::vector<ListedTable> TablePicker::ReadTables() {
  std::vector<ListedTable> tables;
  const NameRules rules = CurrentNameRules(*context_);
  const auto rows = context_->source.Connection()->OpenSchema(SchemaKind::Tables);
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string type = UpperAscii(rows->Text("TABLE_TYPE"));
    if (type != "TABLE" && type != "VIEW") continue;
    SourceTableName name{rows->Text("TABLE_SCHEMA"), rows->Text("TABLE_NAME")};
    std::string text = QualifiedText(name.schema, name.table, rules);
    tables.push_back({std::move(name), std::move(text), type == "VIEW"});
  }
  return tables;
}

TableLists TablePicker::ListTables() {
  TableLists lists;
  for (ListedTable& table : ReadTables()) {
    (table.isView ? lists.views : lists.tables).push_back(std::move(table.text));
  }
  return lists;
}

void TablePicker::ShowTables() {
  TableLists lists = ListTables();
  TablesDialog dialog;
  dialog.caption = context_->source.GetLanguageString(LanguageTableCaption);
  dialog.tablesTab = context_->source.GetLanguageString(LanguageTableTables);
  dialog.viewsTab = context_->source.GetLanguageString(LanguageTableViews);
  dialog.addButton = context_->source.GetLanguageString(LanguageTableAddButton);
  dialog.closeButton = context_->source.GetLanguageString(LanguageTableCloseButton);
  dialog.tables = std::move(lists.tables);
  dialog.views = std::move(lists.views);
  // A window that nobody waits for may outlive this picker, and the designer.
  dialog.add = [link = WeakRef<QueryContext>(context_)](const std::vector<std::string>& names,
                                                        const TablesDialog::Progress& progress) {
    std::size_t added = 0;
    const Ref<QueryContext> context = link.lock();
    if (!context) return added;
    try {
      TablePicker(context).AddTables(names, [&](std::size_t count) {
        added = count;
        if (progress) progress(count);
      });
    } catch (const Error& error) {
      context->source.GetToolkit().GetDialogs().ShowMessage(context->source.Say(error), MessageIcon::Critical);
    }
    return added;
  };
  context_->source.GetToolkit().GetDialogs().ShowTables(dialog);
}

void TablePicker::AddTables(const std::vector<std::string>& names, const TablesDialog::Progress& progress) {
  const bool one = names.size() == 1;
  const auto add = [&] {
    context_->steps.RaiseInfo(InfoAddTables, static_cast<std::int32_t>(names.size()));
    const Ref<qbEntities> entities = context_->design.Entities();
    std::int32_t whole = entities ? entities->Count() : 0;
    try {
      for (std::size_t i = 0; i < names.size(); ++i) {
        AddTable(names[i]);
        if (entities) whole = entities->Count();
        if (progress) progress(i + 1);
      }
    } catch (const Error&) {
      try {
        while (entities && entities->Count() > whole)
          entities->Drop(entities->Item(entities->Count()));  // half a table is none
        RefreshRelationships(context_);
      } catch (const Error&) {
        // The first failure is the one to tell.
      }
      throw;
    }
    RefreshRelationships(context_);
  };
  context_->steps.RunOperation(one ? kStepAddTable : kStepAddTables, InfoAddTables, add,
                               one ? names.front() : std::string());
}

}  // namespace zrqrybld
