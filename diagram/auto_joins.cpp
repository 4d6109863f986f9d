#include "diagram/auto_joins.h"

#include <string>
#include <unordered_map>

#include "base/error.h"
#include "base/text.h"
#include "diagram/relationships.h"
#include "diagram/source_names.h"
#include "sql/source_rules.h"

namespace zrqrybld {
namespace {

// The entities of the diagram by the table they show.
class EntitiesByTable {
 public:
  EntitiesByTable(const qbEntities& entities, const NameRules& rules) {
    for (std::int32_t i = 1; i <= entities.Count(); ++i) {
      const Ref<qbEntity> entity = entities.Item(i);
      const std::vector<Identifier> name = SourceName(*entity, rules);
      const std::string schema = name.size() > 1 ? name[name.size() - 2].Name() : std::string();
      byTable_[Key(schema, name.back().Name())].push_back(i);
    }
  }

  // Positions in the diagram, ascending.
  const std::vector<std::int32_t>& Find(std::string_view schema, std::string_view table) const {
    static const std::vector<std::int32_t> kNone;
    const auto found = byTable_.find(Key(schema, table));
    return found == byTable_.end() ? kNone : found->second;
  }

 private:
  static std::string Key(std::string_view schema, std::string_view table) {
    return FoldCase(schema) + '\n' + FoldCase(table);
  }
  std::unordered_map<std::string, std::vector<std::int32_t>> byTable_;
};

void Join(QueryContext& context, const Ref<qbEntity>& child, const Ref<qbEntity>& parent,
          const std::string& childColumn, const std::string& parentColumn) {
  const Ref<qbEntityItem> from = child->Items()->Item(childColumn);
  const Ref<qbEntityItem> to = parent->Items()->Item(parentColumn);
  if (!from || !to) return;
  const Variant fromIndex = from->Index();
  const Variant toIndex = to->Index();
  if (child->Relationships()->Exists(child, parent, fromIndex, toIndex)) return;
  const Ref<qbRelationship> join = child->Relationships()->Add(parent);
  join->SetSourceItemIndex(fromIndex);
  join->SetTargetItemIndex(toIndex);
  context.RaiseInfo(InfoRelationshipAdded, Ref<Object>(join));
}

void JoinToParents(const Ref<QueryContext>& context, const Ref<qbEntities>& entities, const NameRules& rules,
                   const EntitiesByTable& byTable, std::int32_t childPosition) {
  const Ref<qbEntity> child = entities->Item(childPosition);
  const std::vector<Identifier> name = SourceName(*child, rules);
  SchemaRestrictions table;
  table.table = name.back().Name();
  if (name.size() > 1) table.schema = name[name.size() - 2].Name();
  const auto rows = context->Connection()->OpenSchema(SchemaKind::ForeignKeys, table);
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string parentSchema = rows->Text("PK_TABLE_SCHEMA");
    const std::string parentTable = rows->Text("PK_TABLE_NAME");
    const bool referencesItself = EqualsNoCase(parentTable, rows->Text("FK_TABLE_NAME")) &&
                                  EqualsNoCase(parentSchema, rows->Text("FK_TABLE_SCHEMA"));
    for (const std::int32_t parentPosition : byTable.Find(parentSchema, parentTable)) {
      if (referencesItself && parentPosition <= childPosition) continue;
      Join(*context, child, entities->Item(parentPosition), rows->Text("FK_COLUMN_NAME"), rows->Text("PK_COLUMN_NAME"));
    }
  }
}

}  // namespace

void RefreshRelationships(const Ref<QueryContext>& context) {
  const Ref<qbEntities> entities = context->Entities();
  if (!entities || !context->IsConnected()) return;
  const StepScope step(context, "Automatic joins");
  const NameRules rules = CurrentNameRules(*context);
  const EntitiesByTable byTable(*entities, rules);
  try {
    for (std::int32_t i = 1; i <= entities->Count(); ++i) JoinToParents(context, entities, rules, byTable, i);
  } catch (const Error& error) {
    if (error.Number() != ErrorSchemaNotSupported) throw;
  }
}

}  // namespace zrqrybld
