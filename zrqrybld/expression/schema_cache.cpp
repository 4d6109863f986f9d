#include "zrqrybld/expression/schema_cache.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

#include "zrqrybld/base/text.h"
#include "zrqrybld/base/variant.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/diagram/source_names.h"
#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/platform/database.h"
#include "zrqrybld/platform/schema_fields.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/outer_queries.h"
#include "zrqrybld/sql/parameters.h"
#include "zrqrybld/sql/query_snapshot.h"
#include "zrqrybld/sql/source_rules.h"

namespace zrqrybld {
namespace {

// While one types, a source that fails is one that has nothing to tell.
template <class Read>
void Trapped(Read read) {
  try {
    read();
  } catch (const std::exception&) {
    // What is missing is not offered; whoever uses the table for good gets the error.
  }
}

// All columns of the table are there: a source may have millions.
void Close(TableFacts& table) {
  table.columns.shrink_to_fit();
  table.foldedColumns.clear();
  for (const ColumnFacts& column : table.columns) table.foldedColumns += column.folded + "\n";
  table.foldedColumns.shrink_to_fit();
}

ColumnFacts MakeColumn(std::string name, std::string type) {
  std::string folded = FoldCase(name);
  return {std::move(name), std::move(folded), std::move(type)};
}

constexpr std::int32_t kGroupingChoice = 2;  // of a function's flags: only the grid's group-by column knows it

constexpr std::size_t kMostRecent = 24;

}  // namespace

// --- Words ---

Vocabulary ReadVocabulary(const QueryContext& context) {
  Vocabulary words;
  const auto syntaxOf = [](const auto& entry) { return entry.Syntax().empty() ? entry.Name() : entry.Syntax(); };
  for (const Ref<qbDBFunction>& entry : *context.source.DBFunctions()) {
    if ((entry->Flags() & kGroupingChoice) != 0) continue;
    auto& list = entry->Name().starts_with('?') ? words.parameters : words.functions;
    list.push_back({entry->Name(), syntaxOf(*entry), entry->Description(), (entry->Flags() & 1) != 0, false});
  }
  for (const Ref<qbDBOperator>& entry : *context.source.DBOperators()) {
    const bool condition = (entry->Flags() & (SQLOperatorComparison | SQLOperatorLogical)) != 0;
    words.operators.push_back({entry->Name(), syntaxOf(*entry), entry->Description(), false, condition});
  }
  // A sign that joins texts; a call that does is a function.
  const std::string concatenation(context.design.CurrentDialect().concatenation);
  const bool isSign = !concatenation.empty() && concatenation.find('(') == std::string::npos;
  if (isSign && !context.source.DBOperators()->FindByName(concatenation)) {
    words.operators.push_back({concatenation, concatenation, {}, false, false});
  }
  for (const Ref<qbDBKeyword>& entry : *context.source.DBKeywords()) {
    words.keywords.push_back({entry->Name(), entry->Name(), entry->Description(), false, false});
  }
  words.fullJoin = context.design.HasFullJoin();
  words.pieces.push_back({"CASE WHEN", "CASE WHEN @Condition THEN @Value ELSE @Otherwise END", {}});
  const auto hasWindow = [](const VocabularyWord& word) { return word.syntax.find(" OVER (") != std::string::npos; };
  if (std::ranges::any_of(words.functions, hasWindow)) {
    words.endings.push_back({"OVER", "OVER (PARTITION BY @Partition ORDER BY @Order)", {}});
  }
  return words;
}

std::vector<std::string> QueryMarkers(const QuerySnapshot& query) {
  std::vector<std::string> markers;
  const auto take = [&markers](const std::string& text) {
    for (std::string& marker : ParameterMarkers(text)) markers.push_back(std::move(marker));
  };
  for (const SnapshotRow& row : query.rows) {
    take(row.column);
    for (const std::string& criterion : row.criteria) take(criterion);
  }
  return markers;
}

void AddMarkers(Vocabulary& words, const std::vector<std::string>& markers, const std::string& description) {
  std::size_t place = 0;
  for (const std::string& marker : markers) {
    if (std::ranges::find(words.parameters, marker, &VocabularyWord::name) != words.parameters.end()) continue;
    words.parameters.insert(words.parameters.begin() + static_cast<std::ptrdiff_t>(place++),
                            {marker, marker, description, false, false});
  }
}

// --- The source's tables ---

void SchemaCache::NoteTaken(const std::string& name) {
  std::erase(recent_, name);
  recent_.insert(recent_.begin(), name);
  if (recent_.size() > kMostRecent) recent_.pop_back();
}

void SchemaCache::Clear() {
  listed_.clear();
  byName_.clear();
  tables_.clear();
  source_.reset();
}

void SchemaCache::Refresh() {
  FollowSource();
  TakeQueryTables();
}

void SchemaCache::FollowSource() {
  const Ref<Connection> source = context_.source.IsConnected() ? context_.source.Connection() : nullptr;
  if (!source) {
    Clear();
  } else if (source_.lock() != source || sourceText_ != source->ConnectionString()) {
    Clear();
    source_ = source;
    sourceText_ = source->ConnectionString();
    Trapped([this] { ReadTables(); });
  }
}

void SchemaCache::ReadTables() {
  const auto rows = context_.source.Connection()->OpenSchema(SchemaKind::Tables);
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string type = UpperAscii(rows->Text("TABLE_TYPE"));
    if (type != "TABLE" && type != "VIEW") continue;
    auto table = std::make_unique<Known>();
    table->schema = rows->Text("TABLE_SCHEMA");
    table->name = rows->Text("TABLE_NAME");
    table->folded = FoldCase(table->name);
    table->isView = type == "VIEW";
    byName_[table->folded].push_back(table.get());
    listed_.push_back(table.get());
    tables_.push_back(std::move(table));
  }
  std::ranges::sort(listed_, {}, [](const TableFacts* table) { return std::tie(table->schema, table->folded); });
  TakeKnownColumns();
}

// What was read on connecting need not be read again. It bears no schema: a name that is there twice stays unknown.
void SchemaCache::TakeKnownColumns() {
  for (const SourceTable& known : context_.source.SourceTables()) {
    const auto found = byName_.find(FoldCase(known.name));
    if (found == byName_.end() || found->second.size() != 1) continue;
    std::vector<ColumnFacts>& columns = found->second.front()->columns;
    columns.clear();
    for (const std::string& column : known.columns) columns.push_back(MakeColumn(column, {}));
    Close(*found->second.front());
  }
}

const TableFacts* SchemaCache::Find(const std::vector<std::string>& parts) {
  if (const Known* table = FindInSource(parts)) return table;
  const auto inQuery = std::ranges::find(queryTables_, FoldCase(parts.back()),
                                         [](const QueryTableFacts& table) { return table.facts->folded; });
  return inQuery == queryTables_.end() ? nullptr : inQuery->facts;
}

SchemaCache::Known* SchemaCache::FindInSource(const std::vector<std::string>& parts) {
  const std::string schema = parts.size() > 1 ? FoldCase(parts[parts.size() - 2]) : std::string();
  const auto found = byName_.find(FoldCase(parts.back()));
  if (found == byName_.end()) return nullptr;
  const auto table = std::ranges::find_if(found->second, [&](const Known* one) {
    return schema.empty() || one->schema.empty() || FoldCase(one->schema) == schema;
  });
  if (table == found->second.end()) return nullptr;
  if (!std::exchange((*table)->read, true)) Read(**table);
  return *table;
}

bool SchemaCache::MayBeNull(const std::vector<std::string>& table, const std::string& column) {
  FollowSource();
  const Known* known = FindInSource(table);
  if (!known) return false;
  const auto found = std::ranges::find(known->columns, FoldCase(column), &ColumnFacts::folded);
  return found != known->columns.end() && found->mayBeNull;
}

void SchemaCache::Read(Known& table) {
  Trapped([&] { ReadColumns(table); });
  Trapped([&] { ReadForeignKeys(table); });
}

void SchemaCache::ReadColumns(Known& table) {
  const auto rows = context_.source.Connection()->OpenSchema(SchemaKind::Columns, {{}, table.schema, table.name});
  std::vector<ColumnFacts> columns;
  for (; !rows->Eof(); rows->MoveNext()) {
    const Variant flags = rows->Value("COLUMN_FLAGS");
    const bool isLong = !flags.IsBlank() && (flags.ToInt32() & ColumnLong) != 0;
    columns.push_back(MakeColumn(rows->Text("COLUMN_NAME"), TypeName(rows->Value("DATA_TYPE"), isLong)));
    const Variant nullable = rows->Value("IS_NULLABLE");
    columns.back().mayBeNull = !nullable.IsBlank() && nullable.ToBoolean();
  }
  table.columns = std::move(columns);
  Close(table);
}

// The rows of one key belong together by its name; a column that begins a key anew (its ordinal is 1) begins another
// one, where keys have no names.
void SchemaCache::ReadForeignKeys(Known& table) {
  std::map<std::pair<std::string, std::string>, std::size_t> keys;
  const auto rows = context_.source.Connection()->OpenSchema(SchemaKind::ForeignKeys, {{}, table.schema, table.name});
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string parent = rows->Text("PK_TABLE_NAME");
    const std::string name = rows->Text("FK_NAME");
    const Variant ordinal = rows->Value("ORDINAL");
    const bool begins = name.empty() && (ordinal.IsBlank() || ordinal.ToInt32() <= 1);
    const auto [key, isNew] = keys.try_emplace(std::pair(name, parent), table.foreignKeys.size());
    if (isNew || begins) {
      key->second = table.foreignKeys.size();
      table.foreignKeys.push_back({rows->Text("PK_TABLE_SCHEMA"), parent, {}});
    }
    ForeignKeyFacts& facts = table.foreignKeys[key->second];
    facts.pairs.push_back({rows->Text("FK_COLUMN_NAME"), rows->Text("PK_COLUMN_NAME")});
  }
}

std::string SchemaCache::TypeName(const Variant& type, bool isLong) const {
  if (type.IsBlank()) return {};
  const Ref<qbDataType> found = context_.source.DataTypes()->FindByIndicatorLong(type.ToInt32(), isLong);
  return found ? found->Name : std::string();
}

// --- The query's tables ---

void SchemaCache::TakeQueryTables() {
  queryTables_.clear();
  std::erase_if(entities_, [](const auto& taken) { return taken.second.entity.expired(); });
  const Ref<qbEntities> entities = context_.design.Entities();
  if (!entities) return;
  const NameRules rules = CurrentNameRules(context_);
  for (const Ref<qbEntity>& entity : *entities) {
    const bool ownName = entity->Caption() == entity->TagVariant().Text();
    const SqlText qualifier = ownName ? RenderQualified(WrittenName(*entity, rules), rules)
                                      : QuoteWhenNeeded(Identifier(entity->Caption()), rules);
    queryTables_.push_back({entity->Caption(), qualifier.Text(), &Taken(entity).facts});
  }
  TakeOuterTables();
}

// A table that is called as one nearer is cannot be named.
void SchemaCache::TakeOuterTables() {
  outer_.clear();
  const std::shared_ptr<const OuterQueries> nearest = context_.design.Outer();
  const NameRules rules = CurrentNameRules(context_);
  for (const OuterQueries* query = nearest.get(); query; query = query->Around()) {
    for (std::size_t i = 0; i < query->Tables().size(); ++i) {
      const SnapshotTable& table = query->Tables()[i];
      const std::string& caption = table.caption.Name();
      const auto isCalledSo = [&](const QueryTableFacts& known) { return EqualsNoCase(known.caption, caption); };
      if (std::ranges::any_of(queryTables_, isCalledSo)) continue;
      TableFacts& facts = *outer_.emplace_back(std::make_unique<TableFacts>());
      facts.name = table.name.empty() ? caption : table.name.back().Name();
      facts.folded = FoldCase(facts.name);
      for (const std::string& column : query->ColumnsOf(i)) facts.columns.push_back(MakeColumn(column, {}));
      queryTables_.push_back({caption, TableTerm(table, rules).Text(), &facts, true});
    }
  }
}

SchemaCache::TakenEntity& SchemaCache::Taken(const Ref<qbEntity>& entity) {
  TakenEntity& taken = entities_[entity.get()];
  const std::int32_t count = entity->Items()->Count();
  if (taken.entity.lock() == entity && taken.items == count) return taken;
  taken = {entity, count, {}};
  taken.facts.name = SourceName(*entity, CurrentNameRules(context_)).back().Name();
  if (taken.facts.name.empty()) taken.facts.name = entity->Caption();
  taken.facts.folded = FoldCase(taken.facts.name);
  for (const Ref<qbEntityItem>& item : *entity->Items()) {
    if (item->Text() == "*") continue;
    const Variant* type = item->Properties()->Find("data_type");
    const Variant* isLong = item->Properties()->Find("is_long");
    taken.facts.columns.push_back(
        MakeColumn(item->Text(), type ? TypeName(*type, isLong && isLong->ToBoolean()) : std::string()));
  }
  return taken;
}

}  // namespace zrqrybld
