#include "zrqrybld/grid/cell_values.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zrqrybld/base/error.h"
#include "zrqrybld/base/text.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/source_names.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/grid/field_names.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/generator.h"
#include "zrqrybld/sql/outer_queries.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {
namespace {

constexpr std::size_t kMostValues = 150;

// Where values are read, and which columns.
struct Place {
  std::vector<Identifier> table;
  std::vector<std::string> columns;
};

bool MayBeAsked(const CriteriaContext& rules) {
  const ValueKind kind = ValueKindOf(rules.dataType);
  const auto isType = [&rules](DataTypeCode code) { return rules.dataType == static_cast<std::int32_t>(code); };
  const bool isLong = rules.isLong || isType(DataTypeCode::LongVarChar) || isType(DataTypeCode::LongVarWChar);
  return !isLong && kind != ValueKind::Binary && kind != ValueKind::Boolean && rules.aggregate.empty();
}

bool IsText(const ColumnFacts& column) {
  const auto holds = [&column](std::string_view word) {
    return FindNoCase(column.type, word) != std::string_view::npos;
  };
  return column.type.empty() || holds("CHAR") || holds("TEXT") || holds("STRING");
}

// The column that tells a person which row it is; "" when none looks like that.
std::string NameColumnOf(const TableFacts& table, std::string_view key) {
  const auto suits = [key](const ColumnFacts& column) { return !EqualsNoCase(column.name, key) && IsText(column); };
  for (const std::string_view word : {"name", "title", "label", "description"}) {
    const auto named = std::ranges::find_if(table.columns, [&](const ColumnFacts& column) {
      return suits(column) && column.folded.find(word) != std::string::npos;
    });
    if (named != table.columns.end()) return named->name;
  }
  return {};
}

// The table that the column alone refers to.
std::optional<Place> ReferredBy(SchemaCache& schema, const std::vector<Identifier>& table, const std::string& column) {
  const auto partsOf = [](const std::vector<Identifier>& name) {
    std::vector<std::string> parts;
    parts.reserve(name.size());
    for (const Identifier& part : name) parts.push_back(part.Name());
    return parts;
  };
  const TableFacts* facts = schema.Find(partsOf(table));
  if (!facts) return std::nullopt;
  const auto key = std::ranges::find_if(facts->foreignKeys, [&column](const ForeignKeyFacts& each) {
    return each.pairs.size() == 1 && EqualsNoCase(each.pairs[0].column, column);
  });
  if (key == facts->foreignKeys.end()) return std::nullopt;
  Place place;
  const std::string parentColumn = key->pairs[0].parentColumn;
  if (!key->parentSchema.empty()) place.table.emplace_back(key->parentSchema);
  place.table.emplace_back(key->parentTable);
  const TableFacts* parent = schema.Find(partsOf(place.table));
  if (!parent || parentColumn.empty()) return std::nullopt;
  place.columns = {parentColumn};
  if (std::string name = NameColumnOf(*parent, parentColumn); !name.empty()) place.columns.push_back(std::move(name));
  return place;
}

// Each value once, no more than may be; unsorted, so that a source with an index on nothing stops early.
std::string StatementFor(const Place& place, const NameRules& names, const Dialect& dialect) {
  QuerySnapshot query;
  query.names = names;
  query.tables.push_back({place.table.back(), place.table, false});
  for (const std::string& column : place.columns) {
    SnapshotRow& row = query.rows.emplace_back();
    row.column = column;
    row.table = 0;
    row.output = true;
  }
  query.distinct = true;
  query.top = std::to_string(kMostValues);
  return GenerateSelect(query, dialect).text;
}

std::optional<ValueQuestion> QuestionFor(QueryContext& context, const qbEntity& entity, const std::string& column,
                                         const Dialect* dialect) {
  if (!context.source.IsConnected()) return std::nullopt;
  const NameRules names = CurrentNameRules(context);
  Place place{SourceName(entity, names), {column}};
  const std::shared_ptr<SchemaCache> schema = context.design.Schema();
  schema->Refresh();
  if (std::optional<Place> referred = ReferredBy(*schema, place.table, column)) place = std::move(*referred);
  ValueQuestion question{
      entity.Caption(), column, {}, dialect ? dialect : &context.design.CurrentDialect(), kMostValues};
  question.sql = StatementFor(place, names, *question.dialect);
  return question;
}

}  // namespace

CriteriaContext CriteriaRulesOf(const QueryContext& context, const FieldName& field, std::string aggregate) {
  const Ref<qbEntities> entities = context.design.Entities();
  const Ref<qbEntity> entity = entities ? entities->FindExactly(field.table) : nullptr;
  const SnapshotType type = entity ? TypeOfColumn(*entity, field.column, *context.source.DataTypes()) : SnapshotType{};
  const NameRules names = CurrentNameRules(context);
  CriteriaContext rules = context.design.CriteriaRules();
  rules.dataType = type.code;
  rules.isLong = type.isLong;
  rules.prefix = type.prefix;
  rules.suffix = type.suffix;
  rules.aggregate = std::move(aggregate);
  rules.quotePrefix = names.quotePrefix;
  if (entities) {
    rules.isColumn = [entities, names, outer = context.design.Outer()](const std::vector<std::string>& parts) {
      if (outer && outer->HasColumn(parts)) return true;
      std::string text;
      for (const std::string& part : parts) text += (text.empty() ? "" : ".") + part;
      return FindQualifiedField(*entities, text, names) || FindOnlyField(*entities, text, names);
    };
  }
  return rules;
}

std::shared_ptr<ColumnValues> ValuesFor(const Ref<QueryContext>& context, const FieldName& field, CriteriaContext rules,
                                        std::shared_ptr<ValueSource> source) {
  const Ref<qbEntities> entities = context->design.Entities();
  const Ref<qbEntity> entity = entities ? entities->FindExactly(field.table) : nullptr;
  const Ref<qbEntityItem> item = entity ? entity->Items()->Item(field.column) : nullptr;
  if (!item || item->Text() == "*" || !rules.aggregate.empty()) return nullptr;
  if (!MayBeAsked(rules)) source = nullptr;
  const auto question = [link = WeakRef<QueryContext>(context), table = WeakRef<qbEntity>(entity),
                         column = item->Text(), dialect = rules.source]() -> std::optional<ValueQuestion> {
    const Ref<QueryContext> designer = link.lock();
    const Ref<qbEntity> asked = table.lock();
    if (!designer || !asked || !asked->EntityBox()) return std::nullopt;
    return QuestionFor(*designer, *asked, column, dialect);
  };
  return std::make_shared<ColumnValues>(std::move(rules), std::move(source), question);
}

}  // namespace zrqrybld
